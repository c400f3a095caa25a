#include "efiexecpipe.h"

namespace qorin_pdk_4_4 {

namespace {

// Indexed by code.
const char *const kCodeNames[] = {
    "QRN_EXEC_PIPE_SUCCESS",
    "QRN_EXEC_PIPE_CREATE_PIPE_FAILED",
    "QRN_EXEC_PIPE_DUPLICATE_HANDLE_FAILED",
    "QRN_EXEC_PIPE_CLOSE_HANDLE_FAILED",
    "QRN_EXEC_PIPE_CREATE_CHILD_PROCESS_FAILED",
    "QRN_EXEC_PIPE_READ_TIMEOUT",
    "QRN_EXEC_PIPE_PARSE_COMMAND_FAILED",
    "QRN_EXEC_PIPE_EXE_DOES_NOT_EXIST",
    "QRN_EXEC_PIPE_ERROR_UNEXPECTED",
    "QRN_EXEC_PIPE_IMPERSONATION_TIMEOUT",
    "QRN_EXEC_PIPE_CANNOT_IMPERSONATE",
    "QRN_EXEC_PIPE_CMD_FAILED",
    "QRN_EXEC_PIPE_CMD_KILLED",
    "QRN_EXEC_PIPE_CMD_ERROR_UNEXPECTED",
};

}  // namespace

EFiExecPipe::EFiExecPipe(const std::string &command, int32_t code) : m_command(command), m_code(code), m_status(0) {}

EFiExecPipe::EFiExecPipe(const std::string &command, int32_t code, const std::wstring &text) :
    m_command(command),
    m_text(text),
    m_code(code),
    m_status(0)
{
}

EFiExecPipe::EFiExecPipe(const std::string &command, int32_t code, const std::wstring &text, int32_t status) :
    m_command(command),
    m_text(text),
    m_code(code),
    m_status(status)
{
}

const char *EFiExecPipe::codeName(int32_t code)
{
    if (code < 0 || code >= static_cast<int32_t>(sizeof kCodeNames / sizeof kCodeNames[0])) {
        return "QRN_EXEC_PIPE_UNKNOWN_CODE";
    }
    return kCodeNames[code];
}

}  // namespace qorin_pdk_4_4
