#ifndef EFIEXECPIPE_H
#define EFIEXECPIPE_H

#include <cstdint>
#include <string>

#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// Outcome codes of an exec pipe run. The numbers are fixed: they travel in messages.
enum qrn_exec_pipe_code : int32_t {
    QRN_EXEC_PIPE_SUCCESS = 0,
    QRN_EXEC_PIPE_CREATE_PIPE_FAILED = 1,
    QRN_EXEC_PIPE_DUPLICATE_HANDLE_FAILED = 2,
    QRN_EXEC_PIPE_CLOSE_HANDLE_FAILED = 3,
    QRN_EXEC_PIPE_CREATE_CHILD_PROCESS_FAILED = 4,
    QRN_EXEC_PIPE_READ_TIMEOUT = 5,
    QRN_EXEC_PIPE_PARSE_COMMAND_FAILED = 6,
    QRN_EXEC_PIPE_EXE_DOES_NOT_EXIST = 7,
    QRN_EXEC_PIPE_ERROR_UNEXPECTED = 8,
    QRN_EXEC_PIPE_IMPERSONATION_TIMEOUT = 9,
    QRN_EXEC_PIPE_CANNOT_IMPERSONATE = 10,
    QRN_EXEC_PIPE_CMD_FAILED = 11,
    QRN_EXEC_PIPE_CMD_KILLED = 12,
    QRN_EXEC_PIPE_CMD_ERROR_UNEXPECTED = 13
};

// Exit status reported for a child that had to be killed.
const int32_t QRN_EXEC_PIPE_FORCED_EXIT_STATUS = 1067;

// The error record of an exec pipe run, and the exception that carries it. Status is a
// system error number (code 4) or the child's exit status (code 11).
class QORIN_PDK_API EFiExecPipe {
public:
    EFiExecPipe(const std::string &command, int32_t code);
    EFiExecPipe(const std::string &command, int32_t code, const std::wstring &text);
    EFiExecPipe(const std::string &command, int32_t code, const std::wstring &text, int32_t status);

    const std::string &getCommand() const { return m_command; }
    const std::wstring &getText() const { return m_text; }
    int32_t getCode() const { return m_code; }
    int32_t getStatus() const { return m_status; }

    // The constant's name of a code, such as "QRN_EXEC_PIPE_READ_TIMEOUT";
    // "QRN_EXEC_PIPE_UNKNOWN_CODE" outside the table.
    static const char *codeName(int32_t code);
    const char *getCodeName() const { return codeName(m_code); }

private:
    std::string m_command;
    std::wstring m_text;
    int32_t m_code;
    int32_t m_status;
};

}  // namespace qorin_pdk_4_4

#endif
