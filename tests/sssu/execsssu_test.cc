// execSSSU against a scripted stand-in tool: the command line, the connection retries,
// what counts as a failed run, masking, and the machine-wide lock across threads,
// processes and a holder that is killed.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <sstream>
#include <thread>

#include "cfisemaphoreposix.h"
#include "efiexecpipe.h"
#include "hpeva_cliexception.h"
#include "hpeva_commandtempfile.h"
#include "qrn_results.h"
#include "sssu_support.h"

using namespace qorin_pdk_4_4;
using namespace sssu_test;

namespace {

const char kConnection[] = "\n\nError opening https connection\n";

SFiCredential login()
{
    SFiCredential c;
    c.hostname = L"cv1";
    c.username = L"admin";
    c.password = L"s3cret word";
    return c;
}

class ExecSSSU : public ::testing::Test {
protected:
    void SetUp() override
    {
        recorder = &processRecorder();
        recorder->clear();
    }

    // One run of a one-command script, as an array operation makes it.
    void run(std::vector<std::string> &lines, int timeout = 30)
    {
        CHpEvaCommandTempFile script(login(), ACE_WString(L"LS CELL"), ACE_WString());
        site.tool().execSSSU(script.getCommandFileOption(), lines, timeout);
    }

    StandIn site;
    Recorder *recorder = nullptr;
};

struct Interval {
    long long start, end;
};

std::vector<Interval> intervals(const std::string &log)
{
    std::vector<Interval> out;
    std::istringstream in(log);
    long long pid, start, end;
    while (in >> pid >> start >> end) {
        out.push_back({start, end});
    }
    std::sort(out.begin(), out.end(), [](const Interval &a, const Interval &b) { return a.start < b.start; });
    return out;
}

void expectNoOverlap(const std::vector<Interval> &runs)
{
    for (size_t i = 1; i < runs.size(); ++i) {
        EXPECT_GE(runs[i].start, runs[i - 1].end) << "runs " << i - 1 << " and " << i << " overlap";
    }
}

}  // namespace

TEST_F(ExecSSSU, TwoArgumentsAMaskedOutputAndNoPasswordInTheTrace)
{
    site.output("default", "\n\nSSSU for HP StorageWorks Command View EVA\n"
                           "NoSystemSelected> select manager cv1 user=admin password=s3cret word\n"
                           "\nNoSystemSelected> LS CELL\n\ncell1\n");
    std::vector<std::string> lines;
    std::string scriptPath;
    {
        CHpEvaCommandTempFile script(login(), ACE_WString(L"LS CELL"), ACE_WString());
        scriptPath = CFiStringTool::tstr2str(script.getPath());
        site.tool().execSSSU(script.getCommandFileOption(), lines, 30);
    }
    EXPECT_EQ(site.runs(), 1);
    EXPECT_EQ(site.argv(1), "FILE " + scriptPath + "\n") << "one argument after the tool";
    EXPECT_NE(site.script(1).find("password=s3cret word\nLS CELL\nexit\n"), std::string::npos);
    EXPECT_EQ(lines, (std::vector<std::string>{"", "", "SSSU for HP StorageWorks Command View EVA",
                                               "NoSystemSelected> select manager cv1 user=admin password=********", "",
                                               "NoSystemSelected> LS CELL", "", "cell1"}));
    EXPECT_TRUE(recorder->traced("Command going to execute is :[\"" + std::string(SSSU_STANDIN) + "\"  \"FILE " +
                                 scriptPath + "\"]"));
    EXPECT_TRUE(recorder->traced("execSSSU : Got the lock ."));
    EXPECT_TRUE(recorder->traced("execSSSU : Releasing the lock ."));
    for (const std::string &line : recorder->lines) {
        EXPECT_EQ(line.find("s3cret"), std::string::npos) << line;
    }
    EXPECT_TRUE(filesIn(site.tmp).empty()) << "the script is gone after the run";
}

TEST_F(ExecSSSU, AConnectionFailureIsRunThreeTimesAtMost)
{
    site.output("default", kConnection);
    std::vector<std::string> lines;
    auto begun = std::chrono::steady_clock::now();
    run(lines);
    auto took = std::chrono::steady_clock::now() - begun;
    EXPECT_EQ(site.runs(), 3);
    EXPECT_GE(took, std::chrono::milliseconds(2900)) << "one second after each of the three failures";
    EXPECT_EQ(recorder->count("returned https connection error, retrying!!! "), 3u);
    // Without "Error: " the last run's output is judged like any other: it passes.
    EXPECT_EQ(lines.back(), "Error opening https connection");
}

TEST_F(ExecSSSU, ACleanSecondRunLeavesOnlyItsOwnLines)
{
    site.output("1", kConnection);
    site.output("2", "second run\n");
    std::vector<std::string> lines;
    run(lines);
    EXPECT_EQ(site.runs(), 2);
    EXPECT_EQ(lines, std::vector<std::string>{"second run"});
}

TEST_F(ExecSSSU, ThePrefixedConnectionErrorOnTheLastRunFails)
{
    site.output("default", "Error: Error opening https connection\n");
    std::vector<std::string> lines;
    try {
        run(lines);
        ADD_FAILURE() << "succeeded";
    } catch (const CHpEvaCliException &e) {
        EXPECT_EQ(e.getKind(), CHpEvaCliException::CLI_COMMAND_FAILED);
        EXPECT_EQ(e.getErrorText(), "Error: Error opening https connection");
    }
    EXPECT_EQ(site.runs(), 3);
}

TEST_F(ExecSSSU, StatusAndErrorLinesDecideTogether)
{
    struct Row {
        const char *output;
        int status;
        enum { OK, NO_DATA, COMMAND_FAILED, PIPE } outcome;
        const char *errorText;
    } rows[] = {
        {"", 0, Row::NO_DATA, ""},
        {"", 3, Row::NO_DATA, ""},
        {"fine\n", 0, Row::OK, ""},
        {"x\nError: Deletion completed\n", 1, Row::OK, ""},
        {"Error: Deletion completed\nError: Virtual disk busy\n", 1, Row::COMMAND_FAILED, "Error: Virtual disk busy"},
        {"Error: Virtual disk busy\n", 0, Row::COMMAND_FAILED, "Error: Virtual disk busy"},
        {"no error text\n", 1, Row::PIPE, ""},
    };
    for (const Row &row : rows) {
        StandIn fresh;
        fresh.output("default", row.output);
        fresh.status("default", row.status);
        std::vector<std::string> lines;
        try {
            CHpEvaCommandTempFile script(login(), ACE_WString(L"DELETE VDISK x"), ACE_WString(L"c"));
            fresh.tool().execSSSU(script.getCommandFileOption(), lines, 30);
            EXPECT_EQ(row.outcome, Row::OK) << row.output;
        } catch (const CHpEvaCliException &e) {
            EXPECT_EQ(row.outcome, e.getKind() == CHpEvaCliException::CLI_NO_DATA ? Row::NO_DATA : Row::COMMAND_FAILED)
                << row.output;
            EXPECT_EQ(e.getErrorText(), row.errorText);
        } catch (const EFiExecPipe &e) {
            EXPECT_EQ(row.outcome, Row::PIPE) << row.output;
            EXPECT_EQ(e.getCode(), QRN_EXEC_PIPE_CMD_FAILED);
            EXPECT_EQ(e.getStatus(), row.status);
            EXPECT_TRUE(recorder->traced("CLIDATA: [no error text]"));
            EXPECT_EQ(lines, std::vector<std::string>{"no error text"}) << "the caller keeps what was read";
        }
        EXPECT_TRUE(filesIn(fresh.tmp).empty()) << "script left behind: " << row.output;
    }
}

TEST_F(ExecSSSU, APasswordEchoIsMaskedInTheExceptionTheMessageAndTheTrace)
{
    site.output("default", "NoSystemSelected> select manager cv1 user=admin password=s3cret word\n"
                           "Error: Login failed\n");
    std::vector<std::string> lines;
    try {
        run(lines);
        ADD_FAILURE() << "succeeded";
    } catch (const CHpEvaCliException &e) {
        EXPECT_EQ(e.getOutput()[0], "NoSystemSelected> select manager cv1 user=admin password=********");
        EXPECT_EQ(e.report(), QRN_ERR_FAILED);
    }
    ASSERT_EQ(recorder->messages.size(), 1u);
    const qrn_msg_info *pushed = recorder->messages[0]->serialize();
    std::string text(pushed->text, pushed->length);
    EXPECT_NE(text.find("password=********"), std::string::npos);
    EXPECT_EQ(text.find("s3cret"), std::string::npos);
    for (const std::string &line : recorder->lines) {
        EXPECT_EQ(line.find("s3cret"), std::string::npos) << line;
    }
}

TEST_F(ExecSSSU, ALineBreakInAnOperationsValueNeverStartsTheTool)
{
    SFiCredential broken = login();
    broken.hostname = L"cv1\nselect manager other";
    std::vector<std::string> lines;
    auto operation = [&] {
        CHpEvaCommandTempFile script(broken, ACE_WString(L"LS CELL"), ACE_WString());
        site.tool().execSSSU(script.getCommandFileOption(), lines, 30);
    };
    EXPECT_THROW(operation(), CHpEvaCliException);
    EXPECT_EQ(site.runs(), 0);
    EXPECT_TRUE(filesIn(site.tmp).empty());
}

TEST_F(ExecSSSU, AToolThatCannotStartGivesNoData)
{
    CHpEvaCliTool missing(CFiStringTool::str2tstr(site.root + "/nowhere/"), ACE_WString(L"sssu"));
    CHpEvaCommandTempFile script(login(), ACE_WString(L"LS CELL"), ACE_WString());
    std::vector<std::string> lines;
    try {
        missing.execSSSU(script.getCommandFileOption(), lines, 30);
        ADD_FAILURE() << "ran a missing tool";
    } catch (const CHpEvaCliException &e) {
        EXPECT_EQ(e.getKind(), CHpEvaCliException::CLI_NO_DATA);
    }
}

TEST_F(ExecSSSU, AFailedRunLeavesTheLockFree)
{
    site.output("default", "Error: nope\n");
    std::vector<std::string> lines;
    EXPECT_THROW(run(lines), CHpEvaCliException);
    site.output("default", "ok\n");
    auto next = std::async(std::launch::async, [&] {
        std::vector<std::string> more;
        run(more);
        return more;
    });
    ASSERT_EQ(next.wait_for(std::chrono::seconds(20)), std::future_status::ready) << "lock still held";
    EXPECT_EQ(next.get(), std::vector<std::string>{"ok"});
}

TEST_F(ExecSSSU, ThreadsTakeTurns)
{
    site.output("default", "ok\n");
    site.hold(100);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            std::vector<std::string> lines;
            run(lines);
        });
    }
    for (std::thread &t : threads) {
        t.join();
    }
    std::vector<Interval> runs = intervals(site.runsLog());
    ASSERT_EQ(runs.size(), 4u);
    expectNoOverlap(runs);
}

TEST_F(ExecSSSU, ProcessesTakeTurns)
{
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "ThreadSanitizer does not follow a multi-threaded process into fork";
#endif
    site.output("default", "ok\n");
    site.hold(100);
    std::vector<pid_t> children;
    for (int i = 0; i < 3; ++i) {
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            int code = 0;
            try {
                std::vector<std::string> lines;
                run(lines);
                code = lines == std::vector<std::string>{"ok"} ? 0 : 1;
            } catch (...) {
                code = 2;
            }
            _exit(code);
        }
        children.push_back(pid);
    }
    for (pid_t pid : children) {
        int status = 0;
        ASSERT_EQ(waitpid(pid, &status, 0), pid);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    std::vector<Interval> runs = intervals(site.runsLog());
    ASSERT_EQ(runs.size(), 3u);
    expectNoOverlap(runs);
}

TEST(MachineLock, NamedInTheLockDirectoryAndFreedWhenItsHolderIsKilled)
{
    CFiSemaphorePosix lock(1002);
    EXPECT_EQ(lock.getPath(), std::string(getenv("QORIN_LOCK_DIR")) + "/qorin-sem-1002");

    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    pid_t holder = fork();
    ASSERT_GE(holder, 0);
    if (holder == 0) {
        CFiSemaphorePosix mine(1002);
        mine.wait();
        (void)!write(ready[1], "x", 1);
        pause();
        _exit(0);
    }
    char byte;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    auto waiter = std::async(std::launch::async, [&] {
        lock.wait();
        lock.post();
    });
    EXPECT_EQ(waiter.wait_for(std::chrono::milliseconds(300)), std::future_status::timeout)
        << "the lock is held by another process";
    kill(holder, SIGKILL);
    waitpid(holder, nullptr, 0);
    EXPECT_EQ(waiter.wait_for(std::chrono::seconds(10)), std::future_status::ready)
        << "a killed holder must not block the machine";
    close(ready[0]);
    close(ready[1]);
}

int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    // One lock directory for the whole process: the lock of execSSSU is made once.
    std::string locks = makeTempDir("sssu-locks");
    setenv("QORIN_LOCK_DIR", locks.c_str(), 1);
    int result = RUN_ALL_TESTS();
    removeTree(locks);
    return result;
}
