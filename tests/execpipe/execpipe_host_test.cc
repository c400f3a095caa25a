// The exec pipe inside hosts that handle children their own way: a host that ignores
// SIGCHLD, a host thread that reaps every child it can, a host that dies in the middle of a
// run. A process of its own, since the cases change process-wide signal dispositions.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "cfiexecpipeposix.h"
#include "execpipe_support.h"

using namespace qorin_pdk_4_4;

namespace {

using Lines = std::vector<std::string>;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double cpuSeconds()
{
    struct rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// SIGCHLD as a host sets it, for one test; the old disposition comes back at the end.
class SigchldAs {
public:
    explicit SigchldAs(void (*handler)(int))
    {
        struct sigaction action = {};
        action.sa_handler = handler;
        sigemptyset(&action.sa_mask);
        sigaction(SIGCHLD, &action, &m_before);
    }
    ~SigchldAs() { sigaction(SIGCHLD, &m_before, nullptr); }

    static void (*current())(int)
    {
        struct sigaction now;
        sigaction(SIGCHLD, nullptr, &now);
        return now.sa_handler;
    }

private:
    struct sigaction m_before;
};

std::atomic<int> g_sigchlds{0};
void countSigchld(int)
{
    ++g_sigchlds;
}

}  // namespace

TEST(ExecPipeHost, HostIgnoringSigchldStillGetsTheStatusAndTheEndOfEveryRun)
{
    SigchldAs ignored(SIG_IGN);

    CFiExecPipePosix pipe(1);
    Lines output;
    EXPECT_EQ(pipe.Exec(childCommand("exit 3"), output, "", 30, "", "", ""), QRN_EXEC_PIPE_CMD_FAILED);
    EXPECT_EQ(pipe.getLastError().getStatus(), 3) << "the kernel did not reap the child for the host";
    EXPECT_EQ(pipe.Exec(childCommand("nonl"), output, "", 30, "", "", ""), 0);
    EXPECT_EQ(output, (Lines{"first", "last without line feed"}));

    // The end of a child whose descendant holds the pipe is noticed at once, not when the
    // descendant lets go after a minute; a child that ended by itself leaves its group alone.
    Clock::time_point start = Clock::now();
    ASSERT_EQ(pipe.Exec(childCommand("orphan"), output, "", 120, "", "", ""), 0);
    EXPECT_LT(secondsSince(start), 30.0);
    ASSERT_EQ(output.size(), 2u);
    int grandchild = 0;
    ASSERT_EQ(sscanf(output[0].c_str(), "grandchild %d", &grandchild), 1);
    EXPECT_EQ(output[1], "done");
    EXPECT_FALSE(goneOrDead(grandchild));
    kill(grandchild, SIGKILL);

    // A silent child: the time-out holds, and the wait sleeps instead of spinning.
    pipe.setCloseWait(1);
    start = Clock::now();
    double cpuBefore = cpuSeconds();
    EXPECT_EQ(pipe.Exec(childCommand("silent 60"), output, "", 2, "", "", ""), QRN_EXEC_PIPE_READ_TIMEOUT);
    double took = secondsSince(start);
    EXPECT_LT(took, 20.0);
    EXPECT_LT(cpuSeconds() - cpuBefore, took / 2) << "the wait burnt a core";
    EXPECT_EQ(pipe.getLastError().getStatus(), 128 + SIGINT);

    EXPECT_EQ(SigchldAs::current(), SIG_IGN) << "the host's disposition is left alone";
}

TEST(ExecPipeHost, HostThreadReapingEveryChildTakesNoneOfOurs)
{
    SigchldAs counted(countSigchld);
    g_sigchlds = 0;
    std::atomic<bool> stop{false};
    std::atomic<int> stolen{0};
    std::thread reaper([&] {
        while (!stop) {
            int status;
            if (waitpid(-1, &status, WNOHANG) > 0) {
                ++stolen;
            }
            struct timespec pause = {0, 100 * 1000};
            nanosleep(&pause, nullptr);
        }
    });

    int wrong = 0;
    for (int i = 0; i < 20; ++i) {
        CFiExecPipePosix pipe(1);
        Lines output;
        int result = pipe.Exec(childCommand("exit " + std::to_string(i % 4)), output, "", 30, "", "", "");
        int expected = i % 4 == 0 ? 0 : QRN_EXEC_PIPE_CMD_FAILED;
        if (result != expected || (expected != 0 && pipe.getLastError().getStatus() != i % 4)) {
            ++wrong;
        }
    }
    stop = true;
    reaper.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(stolen, 0);
    EXPECT_EQ(g_sigchlds, 0) << "our children raise no SIGCHLD in the host";
    EXPECT_EQ(SigchldAs::current(), &countSigchld);
}

TEST(ExecPipeHost, ChildEndsWhenItsHostIsKilled)
{
    int report[2];
    ASSERT_EQ(pipe(report), 0);
    pid_t host = fork();
    ASSERT_GE(host, 0);
    if (host == 0) {
        close(report[0]);
        CFiExecPipePosix pipe(1);
        int child = -1;
        char line[8192];
        int timedOut = 0;
        if (pipe.ExecPipe(childCommand("silent 120"), "") == 0 && pipe.ReadLine(line, 8191, &timedOut, 30) == 1) {
            child = pipe.getChildPid();
        }
        ssize_t ignored = write(report[1], &child, sizeof child);
        (void)ignored;
        for (;;) {
            pause();
        }
    }
    close(report[1]);
    int child = -1;
    ASSERT_EQ(read(report[0], &child, sizeof child), static_cast<ssize_t>(sizeof child));
    close(report[0]);
    ASSERT_GT(child, 0);

    kill(host, SIGKILL);
    int status;
    ASSERT_EQ(waitpid(host, &status, 0), host);
    bool ended = endsWithin(child, 10);
    if (!ended) {
        kill(child, SIGKILL);
    }
    EXPECT_TRUE(ended) << "the child outlived its killed host";
}
