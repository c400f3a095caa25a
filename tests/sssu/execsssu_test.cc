// execSSSU against a scripted stand-in process: what reaches a real tool, a tool that
// can't start, and the machine-wide lock across threads, processes and a holder that is
// killed. What SSSU's answers mean is tested in process (run_test.cc).
#include <gtest/gtest.h>

#include <grp.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <future>
#include <sstream>
#include <thread>

#include "cfisemaphoreposix.h"
#include "eva_cells.h"
#include "hpeva_cliexception.h"
#include "hpeva_commandtempfile.h"
#include "sssu_support.h"

using namespace qorin_pdk_4_4;
using namespace sssu_test;

namespace {

SFiCredential login()
{
    return tamlin_test::login(L"cv1", L"admin", L"s3cret word");
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

TEST_F(ExecSSSU, AFloodOfOutputIsStoppedAtTheLimitAndNamesTheCommand)
{
    site.output("default", "password=hidden flood follows\n");
    site.flood("a line that SSSU prints again and again\n");
    CHpEvaCliTool tool = site.tool();
    tool.setOutputLimitMb(4);
    CHpEvaCommandTempFile script(login(), ACE_WString(L"LS VDISK FULL XML"), ACE_WString());
    std::vector<std::string> lines;
    try {
        tool.execSSSU(script.getCommandFileOption(), lines, 30);
        ADD_FAILURE() << "a flood passed";
    } catch (const CHpEvaCliException &e) {
        EXPECT_EQ(e.getKind(), CHpEvaCliException::CLI_COMMAND_FAILED);
        EXPECT_NE(std::wstring(e.getCommand().c_str()).find(L"FILE "), std::wstring::npos) << "names the command";
        EXPECT_NE(e.getErrorText().find("more than 4 MB"), std::string::npos) << e.getErrorText();
        EXPECT_NE(e.getErrorText().find("SSSU_OUTPUT_LIMIT_MB"), std::string::npos) << "says what to do";
        ASSERT_EQ(e.getOutput().size(), 10u) << "only the first lines";
        EXPECT_EQ(e.getOutput()[0], "password=********");
    }
    // Held: the limit and at most one more line.
    size_t held = 0;
    for (const std::string &line : lines) {
        held += line.size() + sizeof(std::string);
    }
    EXPECT_LE(held, (4u << 20) + 100);
    EXPECT_GT(held, 4u << 20);
    EXPECT_EQ(site.runs(), 1) << "not run again";
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

namespace {

// Runs take(lock) in a child process as uid (with its gid) under umask; the child's exit
// code: 0 when the lock was taken and given back.
int asAccount(uid_t uid, mode_t mask)
{
    pid_t child = fork();
    if (child == 0) {
        umask(mask);
        if (setgroups(0, nullptr) != 0 || setgid(uid) != 0 || setuid(uid) != 0) {
            _exit(100);
        }
        try {
            CFiSemaphorePosix lock(1002);
            lock.wait();
            lock.post();
        } catch (const std::exception &e) {
            fprintf(stderr, "uid %u: %s\n", static_cast<unsigned>(uid), e.what());
            _exit(1);
        }
        _exit(0);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        return -1;
    }
    return WEXITSTATUS(status);
}

}  // namespace

TEST(MachineLock, EveryAccountTakesItWhateverTheUmaskAndWhoeverMadeIt)
{
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "ThreadSanitizer does not follow a multi-threaded process into fork";
#endif
    if (geteuid() != 0) {
        GTEST_SKIP() << "switching accounts needs root";
    }
    // A sticky directory open to all, owned by root, as /run/lock and /tmp are.
    std::string dir = makeTempDir("sssu-shared-lock");
    ASSERT_EQ(chmod(dir.c_str(), 01777), 0);
    std::string before = getenv("QORIN_LOCK_DIR");
    setenv("QORIN_LOCK_DIR", dir.c_str(), 1);
    const uid_t first = 4241;
    const uid_t second = 4242;

    // The first account to run makes the file, under the strictest umask.
    EXPECT_EQ(asAccount(first, 077), 0);
    struct stat made;
    ASSERT_EQ(stat((dir + "/qorin-sem-1002").c_str(), &made), 0);
    EXPECT_EQ(made.st_uid, first);
    EXPECT_EQ(made.st_mode & 0777, 0644u) << "readable by every account, whatever the umask";
    // Another account takes the file it didn't make. Where fs.protected_regular is set, an
    // open with O_CREAT of this file would fail even with a mode that allows it.
    EXPECT_EQ(asAccount(second, 077), 0);
    EXPECT_EQ(asAccount(0, 022), 0);

    // A file made before, with write rights for its owner alone, serves all the same.
    ASSERT_EQ(chmod((dir + "/qorin-sem-1002").c_str(), 0644), 0);
    ASSERT_EQ(chown((dir + "/qorin-sem-1002").c_str(), second, second), 0);
    EXPECT_EQ(asAccount(first, 022), 0);

    setenv("QORIN_LOCK_DIR", before.c_str(), 1);
    removeTree(dir);
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
