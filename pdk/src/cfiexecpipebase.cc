#include "cfiexecpipebase.h"

#include <cwchar>
#include <type_traits>

#include "cfitracelogfunction.h"

namespace qorin_pdk_4_4 {

CFiExecPipeBase::CFiExecPipeBase(int closeAfterExec) :
    m_abort(0),
    m_lastError(std::string(), QRN_EXEC_PIPE_SUCCESS),
    m_closeAfterExec(closeAfterExec != 0)
{
}

CFiExecPipeBase::CFiExecPipeBase(std::vector<std::string> arguments, int closeAfterExec) :
    m_abort(0),
    m_arguments(std::move(arguments)),
    m_lastError(std::string(), QRN_EXEC_PIPE_SUCCESS),
    m_closeAfterExec(closeAfterExec != 0)
{
}

CFiExecPipeBase::~CFiExecPipeBase() = default;

int CFiExecPipeBase::IsAbortRequested()
{
    return m_abort.load();
}

int CFiExecPipeBase::IsChildContext()
{
    return 0;
}

int CFiExecPipeBase::ExecCommandInChildContext(std::string, std::vector<std::string> &)
{
    return 0;
}

void CFiExecPipeBase::Abort()
{
    m_abort.store(1);
}

void CFiExecPipeBase::Init() {}

EFiExecPipe CFiExecPipeBase::getLastError()
{
    return m_lastError;
}

int CFiExecPipeBase::Exec(std::string command, std::vector<std::string> &output, std::string extra, uint32_t seconds,
                          std::string directory, std::string user, std::string password)
{
    CFiTraceLogFunction function(m_traceLog, "qorin_pdk_4_4::CFiExecPipeBase::Exec");
    return closeAfterExec(ExecMain(command, output, extra, seconds, directory, user, password));
}

int CFiExecPipeBase::Exec(std::string command, CFiOutputLines &output, std::string extra, uint32_t seconds,
                          std::string directory, std::string user, std::string password)
{
    CFiTraceLogFunction function(m_traceLog, "qorin_pdk_4_4::CFiExecPipeBase::Exec");
    return closeAfterExec(run(command, output, extra, seconds, directory, user, password));
}

int CFiExecPipeBase::closeAfterExec(int result)
{
    if (m_closeAfterExec) {
        int closed = Close(10);
        if (closed != 0) {
            trace(2, "Close of the process returned %d", closed);
        }
    }
    return result;
}

int CFiExecPipeBase::ExecMain(std::string command, std::vector<std::string> &output, std::string extra,
                              uint32_t seconds, std::string directory, std::string user, std::string password)
{
    return run(command, output, extra, seconds, directory, user, password);
}

template <class Output>
int CFiExecPipeBase::run(const std::string &command, Output &output, const std::string &extra, uint32_t seconds,
                         const std::string &directory, const std::string &user, const std::string &password)
{
    CFiTraceLogFunction function(m_traceLog, "qorin_pdk_4_4::CFiExecPipeBase::ExecMain");
    std::vector<char> line(LINE_PIECE_SIZE + 1);
    m_user = user;
    m_password = password;
    m_extra = extra;

    if (IsChildContext() != 0) {
        if constexpr (std::is_same_v<Output, std::vector<std::string>>) {
            return ExecCommandInChildContext(command, output);
        } else {
            std::vector<std::string> lines;
            const int result = ExecCommandInChildContext(command, lines);
            output = CFiOutputLines(lines);
            return result;
        }
    }
    int started = ExecPipe(command, directory);
    if (started != 0) {
        return started;
    }
    output.clear();

    // Each read may wait this long; a longer wait than the type allows is no different from
    // an endless one for the caller.
    int32_t wait = seconds > static_cast<uint32_t>(INT32_MAX) ? INT32_MAX : static_cast<int32_t>(seconds);
    uint64_t held = 0;
    for (;;) {
        line[0] = '\0';
        if (IsAbortRequested() != 0) {
            break;
        }
        int timedOut = 0;
        int got = ReadLine(line.data(), LINE_PIECE_SIZE, &timedOut, wait);
        if (timedOut == 1) {
            // The child is still alive; Close, from Exec or the destructor, brings it down.
            m_lastError = EFiExecPipe(command, QRN_EXEC_PIPE_READ_TIMEOUT);
            trace(1, "Process has timmedout (%d sec)", static_cast<int>(wait));
            return QRN_EXEC_PIPE_READ_TIMEOUT;
        }
        if (got == 1) {
            // Up to the first NUL, as the line's C string reads. The limit counts a string per
            // line whichever way the lines are kept, so that it means the same for both.
            if constexpr (std::is_same_v<Output, std::vector<std::string>>) {
                output.emplace_back(line.data());
            } else {
                output.push_back(line.data());
            }
            held += output.back().size() + sizeof(std::string);
            if (m_outputLimit != 0 && held > m_outputLimit) {
                // A child that floods its output must not take the host's memory with it.
                wchar_t text[128];
                swprintf(text, sizeof text / sizeof text[0], L"Output passed the limit of %llu bytes",
                         static_cast<unsigned long long>(m_outputLimit));
                m_lastError = EFiExecPipe(command, QRN_EXEC_PIPE_CMD_KILLED, text);
                trace(1, "Output of the process passed the limit of %llu bytes after %d lines; stopping it",
                      static_cast<unsigned long long>(m_outputLimit), static_cast<int>(output.size()));
                return QRN_EXEC_PIPE_CMD_KILLED;
            }
        } else if (got == 0) {
            break;
        }
    }
    return Close(10);
}

}  // namespace qorin_pdk_4_4
