#include "hpeva_clitool.h"

#include <algorithm>
#include <memory>
#include <string_view>

#include "cfisemaphoreguard.h"
#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "hpeva_clierrorprocessor.h"
#include "hpeva_cliexception.h"
#include "hpeva_process.h"

using namespace qorin_pdk_4_4;

namespace {

const char *const kConnectionFailed = "Error opening https connection";
// How much of a flood the failure shows.
const size_t kFloodLinesShown = 10;

// Why a run gave no output at all, for the administrator.
std::string whyNothing(int status, const EFiExecPipe &failure, const ACE_WString &path)
{
    if (failure.getCode() == QRN_EXEC_PIPE_CREATE_CHILD_PROCESS_FAILED) {
        return "SSSU could not be started (" + CFiStringTool::wstr2str(failure.getText()) + "): check that " +
               CFiStringTool::tstr2str(path) + " is an executable program";
    }
    if (status == 0 || failure.getCode() == QRN_EXEC_PIPE_CMD_FAILED) {
        return "SSSU printed nothing and ended with exit status " +
               std::to_string(status == 0 ? 0 : failure.getStatus());
    }
    return std::string("SSSU printed nothing (") + failure.getCodeName() + ")";
}

}  // namespace

void CHpEvaCliTool::stopFlood(const ACE_WString &command, const CFiOutputLines &lines) const
{
    CFiTraceLogPtr log = processTraceLog();
    log->trace(1, "SSSU's output for [%S] passed the limit of %u MB after %d lines; the run was stopped.",
               command.c_str(), static_cast<unsigned>(m_outputLimitMb), static_cast<int>(lines.size()));
    std::vector<std::string> first = lines.strings(kFloodLinesShown);
    CHpEvaCliErrorProcessor::cleanPassword(first);
    throw CHpEvaCliException(CHpEvaCliException::CLI_COMMAND_FAILED, command,
                             "SSSU printed more than " + std::to_string(m_outputLimitMb) +
                                 " MB for one run and was stopped; if the arrays really hold that much, raise "
                                 "SSSU_OUTPUT_LIMIT_MB in [TUNING_PARAMS] of tamlin.conf. Its first lines follow",
                             first, __FILE__, __LINE__);
}

CHpEvaCliTool::CHpEvaCliTool() = default;

CHpEvaCliTool::CHpEvaCliTool(const ACE_WString &directory, const ACE_WString &fileName) :
    m_fileName(fileName),
    m_directory(directory)
{
}

ACE_WString CHpEvaCliTool::getPath() const
{
    ACE_WString path(m_directory);
    path += m_fileName;
    return path;
}

void CHpEvaCliTool::execSSSU(const ACE_WString &arguments, std::vector<std::string> &lines, int timeout) const
{
    CFiOutputLines output;
    try {
        execSSSU(arguments, output, timeout);
    } catch (...) {
        lines = output.strings();
        throw;
    }
    lines = output.strings();
}

void CHpEvaCliTool::execSSSU(const ACE_WString &arguments, CFiOutputLines &lines, int timeout) const
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCliTool::execSSSU");

    log->trace(6, "execSSSU : Acquring lock .");
    CFiSemaphoreGuard hold(&m_env->machineLock(SEMAPHORE_KEY));
    log->trace(6, "execSSSU : Got the lock .");

    std::unique_ptr<CFiExecPipeBase> pipe = m_env->newExecPipe();
    pipe->setTraceLog(log);
    pipe->setOutputLimit(static_cast<uint64_t>(m_outputLimitMb) << 20);
    lines.clear();

    ACE_WString command(L"\"");
    command += m_directory;
    command += m_fileName;
    command += L"\" ";
    command += arguments;
    const std::string narrow = CFiStringTool::tstr2str(command);

    int attemptsLeft = MAX_RUNS;
    int status = 0;
    bool repeat;
    do {
        repeat = false;
        log->trace(3, "Command going to execute is :[%S]", command.c_str());
        status = pipe->Exec(narrow, lines, std::string(), static_cast<uint32_t>(timeout), std::string(), std::string(),
                            std::string());
        log->trace(3, "execSSSU : command returned [%d] lines .", static_cast<int>(lines.size()));
        if (status == QRN_EXEC_PIPE_CMD_KILLED) {
            stopFlood(command, lines);
        }
        if (lines.empty()) {
            break;
        }
        if (std::any_of(lines.begin(), lines.end(),
                        [](std::string_view line) { return line.find(kConnectionFailed) != std::string_view::npos; })) {
            log->trace(2, "Command [%S] returned https connection error, retrying!!! ", command.c_str());
            repeat = true;
            --attemptsLeft;
            m_env->sleepForSeconds(RETRY_WAIT);
        }
    } while (repeat && attemptsLeft != 0);

    CHpEvaCliErrorProcessor::cleanPassword(lines);
    if (status == QRN_EXEC_PIPE_READ_TIMEOUT) {
        const std::string silent = "SSSU was silent for " + std::to_string(timeout) +
                                   (timeout == 1 ? " second" : " seconds") + " and was stopped";
        log->trace(1, "execSSSU: %s: [%s]", silent.c_str(), narrow.c_str());
        throw CHpEvaCliException(lines.empty() ? CHpEvaCliException::CLI_NO_DATA
                                               : CHpEvaCliException::CLI_COMMAND_FAILED,
                                 command, silent, lines.strings(), __FILE__, __LINE__);
    }
    if (lines.empty()) {
        const std::string nothing = whyNothing(status, pipe->getLastError(), getPath());
        log->trace(2, "No output was found for command [%S]: %s", command.c_str(), nothing.c_str());
        throw CHpEvaCliException(CHpEvaCliException::CLI_NO_DATA, command, nothing, lines.strings(), __FILE__,
                                 __LINE__);
    }
    const bool tolerated = CHpEvaCliErrorProcessor::processBuffer(lines, command);
    if (status != 0 && !tolerated) {
        EFiExecPipe failure = pipe->getLastError();
        if (status == QRN_EXEC_PIPE_CMD_FAILED) {
            log->trace(1, "execSSSU: CLI Command [%s] failed with error [%ld].", narrow.c_str(),
                       static_cast<long>(failure.getStatus()));
        }
        log->trace(1,
                   "Execution pipe returned exit status error [%d] for command [%s] which was not caught by the "
                   "HP EVA error processor.",
                   status, narrow.c_str());
        for (const std::string_view line : lines) {
            log->trace(1, "CLIDATA: [%s]", std::string(line).c_str());
        }
        log->trace(6, "execSSSU : Releasing the lock .");
        throw failure;
    }
    log->trace(6, "execSSSU : Releasing the lock .");
}
