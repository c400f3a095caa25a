// Time-outs, aborts and the ending of children that don't end by themselves. The kill
// stages wait one second here instead of ten; execpipe_slow_test runs the real waits.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/types.h>

#include <atomic>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "cfiexecpipeposix.h"
#include "execpipe_support.h"

using namespace qorin_pdk_4_4;

namespace {

using Lines = std::vector<std::string>;

const int kSigint = 128 + SIGINT;
const int kSigpipe = 128 + SIGPIPE;

// Aborts from another thread once it has handed out a given number of lines.
class AbortingPipe : public CFiExecPipePosix {
public:
    explicit AbortingPipe(int after) : CFiExecPipePosix(1), m_after(after) {}
    int ReadLine(char *line, int size, int *timedOut, int32_t seconds) override
    {
        int got = CFiExecPipePosix::ReadLine(line, size, timedOut, seconds);
        if (got == 1 && ++m_lines == m_after) {
            std::thread other([this] { Abort(); });
            other.join();
        }
        return got;
    }

private:
    int m_after;
    int m_lines = 0;
};

}  // namespace

class ExecPipeKill : public TracedTest {};

TEST_F(ExecPipeKill, SilenceBeyondTheTimeoutGives5AndTheChildIsBroughtDown)
{
    PatientStart pipe(1);
    pipe.setTraceLog(m_log);
    pipe.setCloseWait(1);
    Lines output;
    EXPECT_EQ(pipe.Exec(childCommand("silent 60"), output, "", 2, "", "", ""), QRN_EXEC_PIPE_READ_TIMEOUT);
    EXPECT_EQ(output, Lines{"started"}) << "lines before the silence stay";

    auto timedOut = m_lines.holding("Process has timmedout (2 sec)");
    ASSERT_EQ(timedOut.size(), 1u);
    EXPECT_EQ(timedOut[0].second, 3) << "traced at level 1";
    // Close then found the child alive and ended it at the first stage.
    EFiExecPipe error = pipe.getLastError();
    EXPECT_EQ(error.getCode(), QRN_EXEC_PIPE_CMD_FAILED);
    EXPECT_EQ(error.getStatus(), kSigint);
    auto closed = m_lines.holding("Close of the process returned 11");
    ASSERT_EQ(closed.size(), 1u);
    EXPECT_EQ(closed[0].second, 2) << "traced at level 2";
    EXPECT_EQ(pipe.getChildPid(), -1);
}

TEST(ExecPipeWaitPid, ForcedEndOfAChildThatIgnoresThePoliteSignals)
{
    CFiExecPipePosix pipe(0);
    ASSERT_EQ(pipe.ExecPipe(childCommand("ignore"), ""), 0);
    pid_t child = pipe.getChildPid();
    ASSERT_GT(child, 0);
    char line[8192];
    int timedOut = 0;
    ASSERT_EQ(pipe.ReadLine(line, 8191, &timedOut, 30), 1);
    EXPECT_STREQ(line, "ignoring");
    EXPECT_EQ(pipe.WaitPid(1), QRN_EXEC_PIPE_FORCED_EXIT_STATUS);
    EXPECT_EQ(pipe.getChildPid(), -1);
    EXPECT_TRUE(endsWithin(child, 10)) << "the child is gone";
    EXPECT_EQ(pipe.WaitPid(1), QRN_EXEC_PIPE_FORCED_EXIT_STATUS) << "the status stays until Close";
    EXPECT_EQ(pipe.Close(10), QRN_EXEC_PIPE_CMD_FAILED);
    EXPECT_EQ(pipe.WaitPid(1), -1) << "no child after Close";
}

TEST(ExecPipeWaitPid, SignalsReachTheWholeGroup)
{
    CFiExecPipePosix pipe(0);
    ASSERT_EQ(pipe.ExecPipe(childCommand("ignore family"), ""), 0);
    char line[8192];
    int timedOut = 0;
    ASSERT_EQ(pipe.ReadLine(line, 8191, &timedOut, 30), 1);
    int grandchild = 0;
    ASSERT_EQ(sscanf(line, "grandchild %d", &grandchild), 1);
    EXPECT_EQ(pipe.WaitPid(1), QRN_EXEC_PIPE_FORCED_EXIT_STATUS);
    EXPECT_TRUE(endsWithin(grandchild, 10)) << "SIGKILL reaches it, if not at once";
    pipe.Close(10);
}

TEST(ExecPipeTimeout, ZeroReadsOnlyWhatIsAlreadyThere)
{
    CFiExecPipePosix pipe(0);
    pipe.setCloseWait(1);
    ASSERT_EQ(pipe.ExecPipe(childCommand("burst 60"), ""), 0);
    char line[8192];
    int timedOut = 0;
    // The three lines come in one write, so once the first is read the rest is there.
    ASSERT_EQ(pipe.ReadLine(line, 8191, &timedOut, 30), 1);
    EXPECT_STREQ(line, "a");
    Lines rest;
    while (pipe.ReadLine(line, 8191, &timedOut, 0) == 1) {
        rest.push_back(line);
    }
    EXPECT_EQ(rest, (Lines{"b", "c"}));
    EXPECT_EQ(timedOut, 1);
    EXPECT_EQ(pipe.Close(10), QRN_EXEC_PIPE_CMD_FAILED);
    EXPECT_EQ(pipe.getLastError().getStatus(), kSigint);

    // Through Exec: a child that is still running has nothing more to give at once.
    Lines output;
    EXPECT_EQ(pipe.Exec(childCommand("silent 60"), output, "", 0, "", "", ""), QRN_EXEC_PIPE_READ_TIMEOUT);
    EXPECT_LE(output.size(), 1u);
}

TEST(ExecPipeAbort, AbortBeforeTheFirstLineClosesTheChildDown)
{
    CFiExecPipePosix pipe(1);
    pipe.setCloseWait(1);
    pipe.Abort();
    Lines output{"stale"};
    EXPECT_EQ(pipe.Exec(childCommand("silent 60"), output, "", 60, "", "", ""), QRN_EXEC_PIPE_CMD_FAILED);
    EXPECT_TRUE(output.empty());
    // Either the interrupt of the first stage or the closed pipe ended it.
    int status = pipe.getLastError().getStatus();
    EXPECT_TRUE(status == kSigint || status == kSigpipe) << status;
}

TEST(ExecPipeAbort, AbortFromAnotherThreadStopsBeforeTheNextLine)
{
    AbortingPipe pipe(2);
    pipe.setCloseWait(1);
    Lines output;
    EXPECT_EQ(pipe.Exec(childCommand("burst 60"), output, "", 60, "", "", ""), QRN_EXEC_PIPE_CMD_FAILED);
    EXPECT_EQ(output, (Lines{"a", "b"}));
    EXPECT_EQ(pipe.getLastError().getStatus(), kSigint);
}

TEST(ExecPipeClose, ClosingStandardInputIsTheChildsEndOfInput)
{
    // The child reads its input to the end. Close shuts the input before it waits; were it
    // the other way round, the kill stages would end the child and Close would give 11.
    CFiExecPipePosix pipe(0);
    ASSERT_EQ(pipe.ExecPipe(childCommand("stdin"), ""), 0);
    EXPECT_EQ(pipe.Close(10), 0);
}

TEST_F(ExecPipeKill, CloseReportsOnceAcrossItsRepeatedCalls)
{
    CFiExecPipePosix pipe(1);
    pipe.setTraceLog(m_log);
    Lines output;
    EXPECT_EQ(pipe.Exec(childCommand("exit 4"), output, "", 30, "", "", ""), QRN_EXEC_PIPE_CMD_FAILED);
    // ExecMain's Close reported the status; Exec's own Close found nothing left to do.
    EXPECT_TRUE(m_lines.holding("Close of the process returned").empty());
    EXPECT_EQ(pipe.Close(10), 0);
    EXPECT_EQ(pipe.getLastError().getStatus(), 4) << "a later Close keeps the record";

    // Without close-after-exec the object is ready for the next command all the same.
    CFiExecPipePosix again(0);
    ASSERT_EQ(again.Exec(childCommand("nonl"), output, "", 30, "", "", ""), 0);
    ASSERT_EQ(again.Exec(childCommand("exit 0"), output, "", 30, "", "", ""), 0);
    EXPECT_TRUE(output.empty());
    again.Init();
    ASSERT_EQ(again.Exec(childCommand("nonl"), output, "", 30, "", "", ""), 0);
    EXPECT_EQ(output, (Lines{"first", "last without line feed"}));
}

TEST(ExecPipeClose, DestroyingAPipeEndsItsRunningChild)
{
    pid_t child;
    {
        CFiExecPipePosix pipe(0);
        pipe.setCloseWait(1);
        ASSERT_EQ(pipe.ExecPipe(childCommand("silent 60"), ""), 0);
        child = pipe.getChildPid();
        ASSERT_GT(child, 0);
        char line[8192];
        int timedOut = 0;
        ASSERT_EQ(pipe.ReadLine(line, 8191, &timedOut, 30), 1);
    }
    EXPECT_TRUE(endsWithin(child, 10)) << "the child outlived its pipe";
}
