// tamlinctl restore as an administrator runs it against evasim: the outcome and the array's
// state on the way, the pairs it refuses before anything is sent, and Ctrl-C during a slow copy.
#include <gtest/gtest.h>

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "provider_install.h"
#include "scratch_files.h"
#include "test_paths.h"

extern char **environ;

namespace {

const char kData[] = "\\Virtual Disks\\db\\data\\ACTIVE";

// One run of tamlinctl with its standard output and error apart; stdin is /dev/null.
class Ctl {
public:
    explicit Ctl(const std::vector<std::string> &args)
    {
        std::vector<std::string> argv = {tamlin_test::envOr("TAMLINCTL", TAMLINCTL_DEFAULT)};
        argv.insert(argv.end(), args.begin(), args.end());
        std::vector<char *> pointers;
        for (std::string &a : argv) {
            pointers.push_back(&a[0]);
        }
        pointers.push_back(nullptr);
        int out[2], err[2];
        if (pipe(out) != 0 || pipe(err) != 0) {
            return;
        }
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, out[1], 1);
        posix_spawn_file_actions_adddup2(&actions, err[1], 2);
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        // Ctrl-C as at a terminal, whatever this test inherited.
        sigset_t defaults;
        sigemptyset(&defaults);
        sigaddset(&defaults, SIGINT);
        posix_spawnattr_setsigdefault(&attributes, &defaults);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
        posix_spawn(&m_pid, pointers[0], &actions, &attributes, pointers.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
        close(out[1]);
        close(err[1]);
        m_out = out[0];
        m_err = err[0];
    }

    // Reads until standard error holds text or the run ends; false after seconds without it.
    bool waitFor(const std::string &text, int seconds)
    {
        const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
        while (err.find(text) == std::string::npos) {
            if (std::chrono::steady_clock::now() > until || !readSome(200)) {
                return err.find(text) != std::string::npos;
            }
        }
        return true;
    }
    void interrupt() { kill(m_pid, SIGINT); }
    // Reads to the end and gives the exit status (-1: not ended within seconds, then killed).
    int finish(int seconds = 60)
    {
        const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
        while (readSome(200) || (m_out >= 0 || m_err >= 0)) {
            if (std::chrono::steady_clock::now() > until) {
                kill(m_pid, SIGKILL);
                break;
            }
        }
        int status = 0;
        waitpid(m_pid, &status, 0);
        return std::chrono::steady_clock::now() > until ? -1 : WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string out, err;

private:
    // False once both streams have ended.
    bool readSome(int milliseconds)
    {
        struct pollfd fds[2] = {{m_out, POLLIN, 0}, {m_err, POLLIN, 0}};
        if (m_out < 0 && m_err < 0) {
            return false;
        }
        poll(fds, 2, milliseconds);
        drain(fds[0], m_out, out);
        drain(fds[1], m_err, err);
        return m_out >= 0 || m_err >= 0;
    }
    static void drain(const pollfd &ready, int &fd, std::string &to)
    {
        if (fd < 0 || ready.revents == 0) {
            return;
        }
        char buffer[4096];
        const ssize_t n = read(fd, buffer, sizeof buffer);
        if (n > 0) {
            to.append(buffer, static_cast<size_t>(n));
        } else {
            close(fd);
            fd = -1;
        }
    }

    pid_t m_pid = -1;
    int m_out = -1, m_err = -1;
};

// The world of tests/restore/restore.scn behind an installed provider; SSSU's scripts and
// the SSSU lock in a private directory.
class CtlRestore : public ::testing::Test {
protected:
    CtlRestore() :
        scripts(tamlin_test::makeTempDir("ctl-restore")),
        site({{"cv1", "admin", "secret"}}, ProviderInstall::sourceDir() + "/tests/restore/restore.scn", 1)
    {
        site.root().setEnv("TMPDIR", scripts);
        site.root().setEnv("QORIN_LOCK_DIR", scripts);
    }
    ~CtlRestore() override { tamlin_test::removeTree(scripts); }
    void SetUp() override { ASSERT_TRUE(site.ok()) << site.loadReport(); }

    static std::string evasim(const std::string &arguments) { return ProviderInstall::evasim(arguments).output; }
    // SSSU's script files left in the scripts directory.
    size_t leftScripts() const
    {
        size_t n = 0;
        for (const auto &entry : std::filesystem::directory_iterator(scripts)) {
            n += entry.path().filename().string().rfind("omx_fi", 0) == 0 ? 1 : 0;
        }
        return n;
    }

    std::string scripts;
    ProviderInstall site;
};

}  // namespace

// The array's state on the way shows in the Ctrl-C cases, which need no four-second sleep.
TEST_F(CtlRestore, RestoresPairsAndGivesTheOutcomeOfEach)
{
    Ctl run({"--json", "restore", "db\\data", "EVA01##db\\data_clone000", "db\\logs", "db\\logs_clone000", "--yes"});
    ASSERT_EQ(run.finish(), 0) << run.err;
    EXPECT_NE(run.err.find("EVA01##db\\logs <- EVA01##db\\logs_clone000: done"), std::string::npos) << run.err;
    EXPECT_NE(
        run.out.find("{\"primary\":\"HP##HSV##EVA01##db\\\\data\",\"primary_udid\":\"UDID##HP##HSV##5000-1FE1-5000-"
                     "0001##6005-08B4-0001-0000-0000-0000-00AA-0000\",\"secondary\":\"HP##HSV##EVA01##db\\\\data_"
                     "clone000\""),
        std::string::npos)
        << run.out;
    const size_t first = run.out.find("\"outcome\":\"done\"");
    EXPECT_NE(first, std::string::npos) << run.out;
    EXPECT_NE(run.out.find("\"outcome\":\"done\"", first + 1), std::string::npos) << "both pairs: " << run.out;
    EXPECT_EQ(site.disk(kData, "sharing"), "none");
    EXPECT_EQ(site.disk(kData, "presentations"), "\\Hosts\\h1:7,\\Hosts\\h2:4");
}

TEST_F(CtlRestore, PairsThatTheArrayWouldRefuseHalfwayAreRefusedBeforeAnythingIsSent)
{
    struct Case {
        std::vector<std::string> args;
        const char *says;
    };
    const Case cases[] = {
        {{"x\\tmp", "x\\tmp\\tmp_vsnap000", "--yes"}, "tmp_vsnap000 is a snapshot"},
        {{"db\\data", "db\\data_clone000", "db\\logs", "db\\data", "--yes"}, "db\\data is named twice"},
        {{"db\\data", "db\\logs_clone000", "--yes"}, "the disks differ in size"},
        {{"db\\data", "nowhere", "--yes"}, "nowhere"},
        {{"db\\data", "--yes"}, "disks come in pairs"},
        {{"db\\data", "db\\data_clone000"}, "give --yes to confirm"},
    };
    for (const Case &c : cases) {
        Ctl run([&] {
            std::vector<std::string> args = {"restore"};
            args.insert(args.end(), c.args.begin(), c.args.end());
            return args;
        }());
        EXPECT_EQ(run.finish(), 2) << run.err;
        EXPECT_NE(run.err.find(c.says), std::string::npos) << run.err;
    }
    const std::string history = evasim("history --format tsv");
    EXPECT_EQ(history.find("DELETE LUN"), std::string::npos);
    EXPECT_EQ(history.find("SET VDISK"), std::string::npos);
}

TEST_F(CtlRestore, AFailureHalfwayListsTheCommandsSent)
{
    evasim("fault error --match 'ADD LUN' --skip 1");
    Ctl run({"restore", "db\\data", "db\\data_clone000", "--yes"});
    EXPECT_EQ(run.finish(), 1) << run.err;
    EXPECT_NE(run.err.find("tamlin error:"), std::string::npos) << run.err;
    EXPECT_EQ(run.err.find("tamlin error: tamlin:"), std::string::npos) << "the provider named once: " << run.err;
    EXPECT_NE(run.err.find("nothing was undone. These commands were sent; the array did those before the one that "
                           "failed:\n  DELETE LUN \"\\Hosts\\h1\\7\"\n  DELETE LUN \"\\Hosts\\h2\\4\"\n"),
              std::string::npos)
        << run.err;
    EXPECT_NE(run.err.find("  ADD LUN 4 HOST=\"\\Hosts\\h2\"  VDISK=\"data\" \n"), std::string::npos) << run.err;
    EXPECT_NE(run.out.find("failed, see the message above"), std::string::npos) << run.out;
    EXPECT_EQ(site.disk(kData, "presentations"), "\\Hosts\\h1:7");
}

TEST_F(CtlRestore, CtrlCStopsTheWaitingWhileTheCopiesGoOn)
{
    evasim("set copy_progress=seconds restore_seconds=600");
    Ctl run({"restore", "db\\data", "db\\data_clone000", "db\\logs", "db\\logs_clone000", "--yes"});
    ASSERT_TRUE(run.waitFor("data_clone000: copying (array: parent)", 60)) << run.err;
    run.interrupt();
    EXPECT_EQ(run.finish(15), 130) << run.err;
    EXPECT_NE(run.err.find("stopped waiting. The copies go on on the array"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("tamlinctl disks --udid 'UDID##HP##HSV##5000-1FE1-5000-0001##6005-08B4-0001-0000-0000-0000-"
                           "00BB-0000'"),
              std::string::npos)
        << run.err;
    EXPECT_NE(run.out.find("0 of 2 disks restored"), std::string::npos) << run.out;
    EXPECT_EQ(site.disk(kData, "sharing"), "snapclone_in_progress");
    EXPECT_EQ(site.disk(kData, "presentations"), "\\Hosts\\h1:7,\\Hosts\\h2:4")
        << "presented again before the wait began";
    EXPECT_EQ(leftScripts(), 0u) << "no SSSU run was cut short";

    Ctl follow({"disks", "--udid", "UDID##HP##HSV##5000-1FE1-5000-0001##6005-08B4-0001-0000-0000-0000-00AA-0000"});
    EXPECT_EQ(follow.finish(), 0) << follow.err;
    EXPECT_NE(follow.out.find("  snapclone_in_progress\n"), std::string::npos) << follow.out;
}

TEST_F(CtlRestore, CtrlCWhileThePairsAreStartedLetsEveryPairStartFirst)
{
    evasim("set copy_progress=seconds restore_seconds=600");
    evasim("fault delay --seconds 2 --match 'ADD COPY \"data\"'");
    Ctl run({"restore", "db\\data", "db\\data_clone000", "db\\logs", "db\\logs_clone000", "--yes"});
    ASSERT_TRUE(run.waitFor("data_clone000: copying, not read yet", 60)) << run.err;
    run.interrupt();
    EXPECT_EQ(run.finish(15), 130) << run.err;
    EXPECT_NE(run.err.find("the restores are being started; the wait stops once all have started"), std::string::npos)
        << run.err;
    EXPECT_EQ(site.disk(kData, "sharing"), "snapclone_in_progress");
    EXPECT_EQ(site.disk("\\Virtual Disks\\db\\logs\\ACTIVE", "sharing"), "snapclone_in_progress")
        << "the second pair started too";
    EXPECT_EQ(leftScripts(), 0u);
}
