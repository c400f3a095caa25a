// What an exec pipe run gathers from its child, how the command line becomes arguments,
// and how a start that fails is reported.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <pwd.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "cfiexecpipeposix.h"
#include "cfistringtool.h"
#include "execpipe_support.h"
#include "scratch_files.h"

using namespace qorin_pdk_4_4;

namespace {

using Lines = std::vector<std::string>;

int run(const std::string &arguments, Lines &output, uint32_t seconds = 30, const std::string &directory = "")
{
    CFiExecPipePosix pipe(1);
    return pipe.Exec(childCommand(arguments), output, "", seconds, directory, "", "");
}

// run, and again with the lines kept as one text: both must give the same lines.
int runBothWays(const std::string &arguments, Lines &output)
{
    const int result = run(arguments, output);
    CFiExecPipePosix pipe(1);
    CFiOutputLines text;
    EXPECT_EQ(pipe.Exec(childCommand(arguments), text, "", 30, "", "", ""), result) << arguments;
    EXPECT_EQ(text.strings(), output) << arguments;
    return result;
}

std::string letters(size_t from, size_t count)
{
    std::string text;
    for (size_t i = from; i < from + count; ++i) {
        text += static_cast<char>('a' + i % 26);
    }
    return text;
}

// A copy of the test child in a directory of its own below /tmp, which the account must be
// able to run; reason() says why not when it can't.
class ChildCopy {
public:
    ChildCopy(uid_t uid, gid_t gid) : m_dir(tamlin_test::makeTempDir("execpipe-child"))
    {
        std::error_code failed;
        if (m_dir.empty() || chmod(m_dir.c_str(), 0755) != 0) {
            m_reason = "no directory for a copy of the test child below /tmp";
            return;
        }
        m_path = m_dir + "/execpipe_child";
        std::filesystem::copy_file(EXECPIPE_CHILD, m_path, failed);
        if (failed || chmod(m_path.c_str(), 0755) != 0) {
            m_reason = "cannot copy the test child to " + m_path;
            return;
        }
        pid_t probe = fork();
        if (probe == 0) {
            _exit(setgid(gid) == 0 && setuid(uid) == 0 && access(m_path.c_str(), X_OK) == 0 ? 0 : 1);
        }
        int status = 0;
        if (probe < 0 || waitpid(probe, &status, 0) != probe || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
            m_reason = "uid " + std::to_string(uid) + " cannot run " + m_path + " (is /tmp closed to it?)";
        }
    }
    ~ChildCopy() { tamlin_test::removeTree(m_dir); }

    const std::string &reason() const { return m_reason; }
    std::string command(const std::string &arguments) const { return "\"" + m_path + "\" " + arguments; }

private:
    std::string m_dir;
    std::string m_path;
    std::string m_reason;
};

}  // namespace

TEST(ExecPipeOutput, ChildWithoutOutputGivesNoLinesAndTheResultOfClose)
{
    Lines output{"stale"};
    EXPECT_EQ(runBothWays("exit 0", output), 0);
    EXPECT_TRUE(output.empty());

    CFiExecPipePosix pipe(1);
    EXPECT_EQ(pipe.Exec(childCommand("exit 3"), output, "", 30, "", "", ""), QRN_EXEC_PIPE_CMD_FAILED);
    EXPECT_TRUE(output.empty());
    EFiExecPipe error = pipe.getLastError();
    EXPECT_EQ(error.getCode(), QRN_EXEC_PIPE_CMD_FAILED);
    EXPECT_EQ(error.getStatus(), 3);
    EXPECT_EQ(error.getText(), L"Command exited with status 3");
    EXPECT_EQ(error.getCommand(), childCommand("exit 3"));
}

TEST(ExecPipeOutput, LineEnds)
{
    Lines output;
    ASSERT_EQ(runBothWays("nonl", output), 0);
    EXPECT_EQ(output, (Lines{"first", "last without line feed"}));

    // Only a carriage return right before a line feed goes.
    ASSERT_EQ(runBothWays("crlf", output), 0);
    EXPECT_EQ(output, (Lines{"one", "two", "", "in\rside", "ends in cr\r"}));
}

TEST(ExecPipeOutput, LongLinesArriveInPiecesOf8191Bytes)
{
    Lines output;
    ASSERT_EQ(runBothWays("long 20000", output), 0);
    ASSERT_EQ(output.size(), 4u);
    EXPECT_EQ(output[0], letters(0, 8191));
    EXPECT_EQ(output[1], letters(8191, 8191));
    EXPECT_EQ(output[2], letters(16382, 3618));
    EXPECT_EQ(output[3], "short");

    // The line feed counts against the piece: 8190 bytes and the feed fit, 8191 don't, and
    // the feed then ends an empty line of its own.
    ASSERT_EQ(runBothWays("long 8190", output), 0);
    EXPECT_EQ(output, (Lines{letters(0, 8190), "short"}));
    ASSERT_EQ(runBothWays("long 8191", output), 0);
    EXPECT_EQ(output, (Lines{letters(0, 8191), "", "short"}));
}

TEST(ExecPipeOutput, StandardErrorSharesThePipeInWritingOrder)
{
    Lines output;
    ASSERT_EQ(runBothWays("interleave", output), 0);
    Lines expected;
    for (int i = 0; i < 5; ++i) {
        expected.push_back("out " + std::to_string(i));
        expected.push_back("err " + std::to_string(i));
    }
    EXPECT_EQ(output, expected);
}

TEST(ExecPipeCommandLine, SplitsLikeTheOtherPlatformsRuntime)
{
    struct Case {
        const char *line;
        Lines words;
    } cases[] = {
        {"\"/opt/HP/SSSU/sssu\"  \"FILE /tmp/omx_fiAbc\"", {"/opt/HP/SSSU/sssu", "FILE /tmp/omx_fiAbc"}},
        {"  prog   a\tb  ", {"prog", "a", "b"}},
        {"prog \"\" x", {"prog", "", "x"}},
        {"prog a\"b c\"d", {"prog", "ab cd"}},
        {"prog a\\\"b", {"prog", "a\"b"}},
        {"prog \"a\\\\\" b", {"prog", "a\\", "b"}},
        {"prog a\\\\\\\"b", {"prog", "a\\\"b"}},
        {"prog a\\b\\\\c", {"prog", "a\\b\\\\c"}},
        {"prog \"say \"\"hi\"\"\"", {"prog", "say \"hi\""}},
        {"prog \"open ended", {"prog", "open ended"}},
        {"\"C:\\dir\\\" next", {"C:\\dir\\", "next"}},
        {"", {}},
        {"   ", {}},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(CFiExecPipePosix::splitCommandLine(c.line), c.words) << "[" << c.line << "]";
    }
}

TEST(ExecPipeCommandLine, ArgumentsReachTheChildAsSplitWithoutAShell)
{
    Lines output;
    // Two blanks before the quoted option, as the SSSU layer writes it. The child knows no
    // such mode and says so on standard error.
    CFiExecPipePosix pipe(1);
    ASSERT_EQ(pipe.Exec(childCommand(" \"FILE /tmp/omx_fi script\""), output, "", 30, "", "", ""),
              QRN_EXEC_PIPE_CMD_FAILED);
    EXPECT_EQ(pipe.getLastError().getStatus(), 2);
    EXPECT_EQ(output, (Lines{"execpipe_child: unknown mode [FILE /tmp/omx_fi script]"}));

    ASSERT_EQ(run("args $HOME ';' '|' `id` \"a b\" *", output), 0);
    // Single quotes group nothing here.
    EXPECT_EQ(output, (Lines{"[$HOME]", "[';']", "['|']", "[`id`]", "[a b]", "[*]"}));
}

TEST(ExecPipeCommandLine, ProgramIsNotSearchedOnPath)
{
    CFiExecPipePosix pipe(1);
    Lines output;
    EXPECT_EQ(pipe.Exec("sh -c \"echo hi\"", output, "", 30, "", "", ""), QRN_EXEC_PIPE_CLOSE_HANDLE_FAILED);
    EXPECT_EQ(pipe.getLastError().getCode(), QRN_EXEC_PIPE_CREATE_CHILD_PROCESS_FAILED);
    EXPECT_EQ(pipe.getLastError().getStatus(), ENOENT);
}

TEST(ExecPipeStart, FailureGives3AndTheRecordHoldsCode4WithTheSystemsText)
{
    struct Case {
        std::string command;
        std::string directory;
        int error;
    } cases[] = {
        {"/nonexistent/tamlin/program FILE x", "", ENOENT},
        {"\"" + std::string(TAMLIN_TEST_SOURCE) + "\" args", "", EACCES},
        {childCommand("pwd"), "/nonexistent/tamlin/dir", ENOENT},
        {"", "", ENOENT},
    };
    for (const Case &c : cases) {
        CFiExecPipePosix pipe(1);
        Lines output{"kept"};
        EXPECT_EQ(pipe.Exec(c.command, output, "", 30, c.directory, "", ""), QRN_EXEC_PIPE_CLOSE_HANDLE_FAILED)
            << c.command;
        EFiExecPipe error = pipe.getLastError();
        EXPECT_EQ(error.getCode(), QRN_EXEC_PIPE_CREATE_CHILD_PROCESS_FAILED) << c.command;
        EXPECT_EQ(error.getStatus(), c.error) << c.command;
        EXPECT_EQ(error.getText(), CFiStringTool::str2wstr(strerror(c.error))) << c.command;
        EXPECT_EQ(error.getCommand(), c.command);
        EXPECT_EQ(output, Lines{"kept"}) << "a run that never started leaves the output alone";
        EXPECT_EQ(pipe.getChildPid(), -1);
    }
}

TEST(ExecPipeStart, PipesThatCantBeMadeGive1)
{
    // In a process that may open no further descriptor.
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            int next = open("/dev/null", O_RDONLY);
            close(next);
            struct rlimit limit;
            getrlimit(RLIMIT_NOFILE, &limit);
            limit.rlim_cur = static_cast<rlim_t>(next);
            setrlimit(RLIMIT_NOFILE, &limit);
            CFiExecPipePosix pipe(1);
            Lines output;
            int result = pipe.Exec(childCommand("exit 0"), output, "", 30, "", "", "");
            _exit(result == pipe.getLastError().getCode() ? result : 100 + result);
        },
        testing::ExitedWithCode(QRN_EXEC_PIPE_CREATE_PIPE_FAILED), "");
}

TEST(ExecPipeStart, DirectoryOfTheChild)
{
    char here[4096];
    ASSERT_NE(getcwd(here, sizeof here), nullptr);
    Lines output;
    ASSERT_EQ(run("pwd", output), 0);
    EXPECT_EQ(output, Lines{here}) << "an empty directory keeps the parent's";

    ASSERT_EQ(run("pwd", output, 30, "/tmp"), 0);
    EXPECT_EQ(output, Lines{"/tmp"});

    // A relative program is found from the parent's directory, not from the child's.
    std::string child = EXECPIPE_CHILD;
    std::string folder = child.substr(0, child.rfind('/'));
    ASSERT_EQ(chdir(folder.c_str()), 0);
    CFiExecPipePosix pipe(1);
    int result = pipe.Exec("execpipe_child pwd", output, "", 30, "/tmp", "", "");
    ASSERT_EQ(chdir(here), 0);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(output, Lines{"/tmp"});
}

TEST(ExecPipeUser, AnAccountNeedsRootAndThenTheChildRunsAsIt)
{
    struct passwd *nobody = getpwnam("nobody");
    ASSERT_NE(nobody, nullptr);
    uid_t nobodyUid = nobody->pw_uid;
    gid_t nobodyGid = nobody->pw_gid;

    if (geteuid() == 0) {
        // The build tree may lie where the account can't go (a clone in root's home, mode
        // 0700): the account runs a copy of the child from a directory open to it.
        ChildCopy child(nobodyUid, nobodyGid);
        if (!child.reason().empty()) {
            GTEST_SKIP() << child.reason();
        }
        Lines output;
        CFiExecPipePosix asNobody(1);
        ASSERT_EQ(asNobody.Exec(child.command("id"), output, "", 30, "/", "nobody", ""), 0);
        ASSERT_EQ(output.size(), 1u);
        unsigned uid, gid;
        ASSERT_EQ(sscanf(output[0].c_str(), "%u %u", &uid, &gid), 2);
        EXPECT_EQ(uid, nobodyUid);
        EXPECT_EQ(gid, nobodyGid);

        CFiExecPipePosix pipe(1);
        EXPECT_EQ(pipe.Exec(childCommand("id"), output, "", 30, "", "no-such-user-tamlin", "secret"),
                  QRN_EXEC_PIPE_CLOSE_HANDLE_FAILED);
        EXPECT_EQ(pipe.getLastError().getCode(), QRN_EXEC_PIPE_CANNOT_IMPERSONATE);
        EXPECT_EQ(pipe.getLastError().getCommand(), "no-such-user-tamlin") << "the record names the user";

        // What the account may not do fails the start as it would for the caller.
        char closed[] = "/tmp/execpipe_closed_XXXXXX";
        ASSERT_NE(mkdtemp(closed), nullptr);
        CFiExecPipePosix refused(1);
        int result = refused.Exec(child.command("pwd"), output, "", 30, closed, "nobody", "");
        rmdir(closed);
        EXPECT_EQ(result, QRN_EXEC_PIPE_CLOSE_HANDLE_FAILED);
        EXPECT_EQ(refused.getLastError().getCode(), QRN_EXEC_PIPE_CREATE_CHILD_PROCESS_FAILED);
        EXPECT_EQ(refused.getLastError().getStatus(), EACCES);
    }

    // Without root any account is refused; checked in a process that gave root up.
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            if (geteuid() == 0 && (setgid(nobodyGid) != 0 || setuid(nobodyUid) != 0)) {
                _exit(100);
            }
            CFiExecPipePosix pipe(1);
            Lines output;
            int result = pipe.Exec(childCommand("id"), output, "", 30, "", "root", "");
            _exit(result == QRN_EXEC_PIPE_CLOSE_HANDLE_FAILED ? pipe.getLastError().getCode() : 200 + result);
        },
        testing::ExitedWithCode(QRN_EXEC_PIPE_CANNOT_IMPERSONATE), "");
}

TEST(ExecPipeConcurrency, PipesRunSideBySide)
{
    std::vector<std::thread> threads;
    std::vector<int> failures(4, 0);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t, &failures] {
            for (int i = 0; i < 5; ++i) {
                Lines output;
                size_t length = 1000 * static_cast<size_t>(t + 1) + static_cast<size_t>(i);
                if (run("long " + std::to_string(length), output) != 0 ||
                    output != Lines{letters(0, length), "short"}) {
                    ++failures[t];
                }
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures, std::vector<int>(4, 0));
}
