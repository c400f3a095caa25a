// Envs for tests that must not wait or start programs: a clock that records sleeps instead
// of sleeping, and SSSU answered in process from canned output. They chain, the canned SSSU
// in front of the clock:
//
//     tamlin_test::RecordingClock clock;
//     tamlin_test::CannedSssu sssu(&clock);
//     sssu.answerAll("...");
//     CHpEvaCliTool tool;
//     tool.setEnv(&sssu);      // or plugin->setEnv(&sssu)
//     ... clock.sleeps() == std::vector<uint32_t>{1, 1}
#ifndef TEST_ENV_H
#define TEST_ENV_H

#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

#include "cfienv.h"
#include "cfiexecpipeposix.h"
#include "efiexecpipe.h"

namespace tamlin_test {

// Time stands still but for sleeps: each sleepForSeconds is recorded, moves nowMicros on and
// returns at once.
class RecordingClock : public qorin_pdk_4_4::CFiEnvWrapper {
public:
    using CFiEnvWrapper::CFiEnvWrapper;

    uint64_t nowMicros() override
    {
        std::lock_guard<std::mutex> guard(m_lock);
        return m_now;
    }
    void sleepForSeconds(uint32_t seconds) override
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_sleeps.push_back(seconds);
        m_now += static_cast<uint64_t>(seconds) * 1000000u;
    }

    std::vector<uint32_t> sleeps() const
    {
        std::lock_guard<std::mutex> guard(m_lock);
        return m_sleeps;
    }

private:
    mutable std::mutex m_lock;
    uint64_t m_now = 0;
    std::vector<uint32_t> m_sleeps;
};

// SSSU without a process: each run is answered from the output and exit status laid down for
// its number (counted from 1), or for every run. A run's command line and the script its
// "FILE <path>" argument names are kept. The machine-wide locks are of this process only, one
// per key, so that these tests stay out of other processes' way.
class CannedSssu : public qorin_pdk_4_4::CFiEnvWrapper {
public:
    using CFiEnvWrapper::CFiEnvWrapper;

    void answer(int run, const std::string &output, int status = 0) { m_answers[run] = Answer{output, status}; }
    void answerAll(const std::string &output, int status = 0) { m_default = Answer{output, status}; }
    // After its output, run falls silent past any time-out.
    void silence(int run) { m_answers[run].silent = true; }

    int runs() const { return static_cast<int>(m_runs.size()); }
    const std::string &commandLine(int run) const { return m_runs.at(run - 1).commandLine; }
    const std::string &script(int run) const { return m_runs.at(run - 1).script; }

    std::unique_ptr<qorin_pdk_4_4::CFiExecPipeBase> newExecPipe() override
    {
        return std::unique_ptr<qorin_pdk_4_4::CFiExecPipeBase>(new Pipe(*this));
    }
    qorin_pdk_4_4::CFiSemaphorePosix &machineLock(int key) override
    {
        std::lock_guard<std::mutex> guard(m_locksLock);
        std::unique_ptr<qorin_pdk_4_4::CFiSemaphorePosix> &lock = m_locks[key];
        if (!lock) {
            lock.reset(new qorin_pdk_4_4::CFiSemaphorePosix);
        }
        return *lock;
    }

private:
    struct Answer {
        std::string output;
        int status = 0;
        bool silent = false;
    };
    struct Run {
        std::string commandLine;
        std::string script;
    };

    // One run through the kit's own Exec: only starting, reading and ending are canned.
    class Pipe : public qorin_pdk_4_4::CFiExecPipeBase {
    public:
        explicit Pipe(CannedSssu &owner) : CFiExecPipeBase(1), m_owner(owner) {}

        int ExecPipe(std::string command, std::string) override
        {
            m_command = command;
            Run run{command, std::string()};
            for (const std::string &word : qorin_pdk_4_4::CFiExecPipePosix::splitCommandLine(command)) {
                if (word.compare(0, 5, "FILE ") == 0) {
                    std::ifstream in(word.substr(5));
                    std::stringstream text;
                    text << in.rdbuf();
                    run.script = text.str();
                }
            }
            m_owner.m_runs.push_back(run);
            auto found = m_owner.m_answers.find(m_owner.runs());
            const Answer &answer = found != m_owner.m_answers.end() ? found->second : m_owner.m_default;
            m_status = answer.status;
            m_silent = answer.silent;
            std::istringstream lines(answer.output);
            std::string line;
            while (std::getline(lines, line)) {
                m_lines.push_back(line);
            }
            return 0;
        }
        int ReadLine(char *line, int size, int *timedOut, int32_t) override
        {
            *timedOut = 0;
            if (m_next == m_lines.size()) {
                *timedOut = m_silent ? 1 : 0;
                return 0;
            }
            const std::string &text = m_lines[m_next++];
            const size_t length = text.size() < static_cast<size_t>(size) ? text.size() : static_cast<size_t>(size);
            memcpy(line, text.data(), length);
            line[length] = '\0';
            return 1;
        }
        int WaitPid(int32_t) override { return m_status; }
        int Close(int32_t) override
        {
            if (m_status == 0) {
                return 0;
            }
            m_lastError = qorin_pdk_4_4::EFiExecPipe(m_command, qorin_pdk_4_4::QRN_EXEC_PIPE_CMD_FAILED,
                                                     L"Command exited", m_status);
            return qorin_pdk_4_4::QRN_EXEC_PIPE_CMD_FAILED;
        }

    private:
        CannedSssu &m_owner;
        std::string m_command;
        std::vector<std::string> m_lines;
        size_t m_next = 0;
        int m_status = 0;
        bool m_silent = false;
    };

    std::map<int, Answer> m_answers;
    Answer m_default;
    std::vector<Run> m_runs;
    std::mutex m_locksLock;
    std::map<int, std::unique_ptr<qorin_pdk_4_4::CFiSemaphorePosix>> m_locks;
};

}  // namespace tamlin_test

#endif
