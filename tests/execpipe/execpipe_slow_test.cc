// The staged kill with the waits that Close really uses: ten seconds per stage.
#include <gtest/gtest.h>

#include <signal.h>

#include <string>
#include <vector>

#include "cfiexecpipeposix.h"
#include "execpipe_support.h"

using namespace qorin_pdk_4_4;

class ExecPipeSlow : public TracedTest {};

TEST_F(ExecPipeSlow, SilentChildIsBroughtDownByTheFirstStage)
{
    CFiExecPipePosix pipe(1);
    pipe.setTraceLog(m_log);
    ASSERT_EQ(pipe.getCloseWait(), 10);
    std::vector<std::string> output;
    EXPECT_EQ(pipe.Exec(childCommand("silent 120"), output, "", 2, "", "", ""), QRN_EXEC_PIPE_READ_TIMEOUT);
    EXPECT_EQ(m_lines.holding("Process has timmedout (2 sec)").size(), 1u);
    EXPECT_EQ(pipe.getLastError().getStatus(), 128 + SIGINT);
}

TEST_F(ExecPipeSlow, ChildIgnoringThePoliteStagesIsKilledAfterThreeWaits)
{
    CFiExecPipePosix pipe(1);
    pipe.setTraceLog(m_log);
    std::vector<std::string> output;
    EXPECT_EQ(pipe.Exec(childCommand("ignore"), output, "", 1, "", "", ""), QRN_EXEC_PIPE_READ_TIMEOUT);
    EXPECT_EQ(pipe.getLastError().getCode(), QRN_EXEC_PIPE_CMD_FAILED);
    EXPECT_EQ(pipe.getLastError().getStatus(), QRN_EXEC_PIPE_FORCED_EXIT_STATUS);
    EXPECT_EQ(m_lines.holding("Close of the process returned 11").size(), 1u);
}
