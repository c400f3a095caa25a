// Shared pieces of the exec pipe tests: the child's command line and a trace log whose
// lines the test can read back.
#ifndef EXECPIPE_SUPPORT_H
#define EXECPIPE_SUPPORT_H

#include <signal.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "cfierrorhandlerbase.h"
#include "cfierrormanager.h"
#include "cfiexecpipeposix.h"
#include "cfitracelog.h"
#include "temp_install_root.h"

// The command line that runs the test child in a mode, quoted as the SSSU layer quotes.
inline std::string childCommand(const std::string &arguments)
{
    return std::string("\"") + EXECPIPE_CHILD + "\" " + arguments;
}

// A process that no longer runs: gone, or a zombie that its new parent hasn't reaped yet.
inline bool goneOrDead(int pid)
{
    if (kill(pid, 0) != 0) {
        return true;
    }
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string text((std::istreambuf_iterator<char>(stat)), std::istreambuf_iterator<char>());
    size_t close = text.rfind(')');
    return close != std::string::npos && close + 2 < text.size() && text[close + 2] == 'Z';
}

// Whether pid stops running within seconds; a signal reaches its target a moment later.
inline bool endsWithin(int pid, int seconds)
{
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    while (!goneOrDead(pid)) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        struct timespec pause = {0, 10 * 1000 * 1000};
        nanosleep(&pause, nullptr);
    }
    return true;
}

// A pipe whose first read of a run waits as long as a loaded machine may take to start the
// child; the caller's time-out holds from the first line on. A test of a silence then never
// races the child's start, nor a signal the child's own handling of it.
class PatientStart : public qorin_pdk_4_4::CFiExecPipePosix {
public:
    using CFiExecPipePosix::CFiExecPipePosix;
    int ExecPipe(std::string command, std::string directory) override
    {
        m_started = false;
        return CFiExecPipePosix::ExecPipe(command, directory);
    }
    int ReadLine(char *line, int size, int *timedOut, int32_t seconds) override
    {
        int got = CFiExecPipePosix::ReadLine(line, size, timedOut, m_started ? seconds : std::max(seconds, 120));
        m_started = m_started || got == 1;
        return got;
    }

private:
    bool m_started = false;
};

// Collects every trace line that reaches the error manager's handlers.
class TraceLines : public qorin_pdk_4_4::CFiErrorHandlerBase {
public:
    int handleText(char *text, qrn_eseverity severity) override
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_lines.emplace_back(text, severity);
        return 0;
    }
    int handleMessage(qorin_pdk_4_4::CFiMessagePtr) override { return 0; }

    // Lines that hold the text, with their severity.
    std::vector<std::pair<std::string, int>> holding(const std::string &text)
    {
        std::lock_guard<std::mutex> guard(m_lock);
        std::vector<std::pair<std::string, int>> found;
        for (const auto &line : m_lines) {
            if (line.first.find(text) != std::string::npos) {
                found.push_back(line);
            }
        }
        return found;
    }

private:
    std::mutex m_lock;
    std::vector<std::pair<std::string, int>> m_lines;
};

// A trace log that writes into a directory of its own and hands every line to a TraceLines.
class TracedTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        const char *tmp = getenv("TMPDIR");
        std::string pattern = std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") + "/execpipe_trace_XXXXXX";
        std::vector<char> name(pattern.begin(), pattern.end());
        name.push_back('\0');
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        m_directory = name.data();

        // The level comes from the install root's configuration, as in an installation.
        m_root.writeFile("ConfigFiles/tamlin.conf", "[DEBUG_TRACE_INFO]\n\"TRACELEVEL\"=dword:00000001\n");
        m_errors = qorin_pdk_4_4::CFiErrorManagerPtr(new qorin_pdk_4_4::CFiErrorManager);
        m_errors->registerHandler(&m_lines);
        m_log = qorin_pdk_4_4::CFiTraceLogPtr(new qorin_pdk_4_4::CFiTraceLog);
        m_log->registerErrorManager(m_errors);
        std::wstring directory(m_directory.begin(), m_directory.end());
        m_log->initialize(L"tamlin", directory.c_str(), L"execpipe", 1, false);
        ASSERT_TRUE(m_log->isInitialized());
    }
    void TearDown() override
    {
        m_log = qorin_pdk_4_4::CFiTraceLogPtr();
        m_errors = qorin_pdk_4_4::CFiErrorManagerPtr();
        std::error_code ignored;
        std::filesystem::remove_all(m_directory, ignored);
    }

    TempInstallRoot m_root;
    std::string m_directory;
    TraceLines m_lines;
    qorin_pdk_4_4::CFiErrorManagerPtr m_errors;
    qorin_pdk_4_4::CFiTraceLogPtr m_log;
};

#endif
