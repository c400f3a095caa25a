// tamlinctl restore as an administrator runs it against evasim: the outcome and the array's
// state on the way, the pairs it refuses before anything is sent, and Ctrl-C during a slow copy.
#include <gtest/gtest.h>

#include <signal.h>

#include <filesystem>
#include <string>
#include <vector>

#include "child_process.h"
#include "provider_install.h"
#include "scratch_files.h"
#include "test_paths.h"

namespace {

const char kData[] = "\\Virtual Disks\\db\\data\\ACTIVE";

// One run of tamlinctl with its standard output and error apart.
class Ctl : public tamlin_test::ChildProcess {
public:
    explicit Ctl(std::vector<std::string> args) : ChildProcess(withProgram(std::move(args))) {}
    void interrupt() { signal(SIGINT); }

private:
    static std::vector<std::string> withProgram(std::vector<std::string> args)
    {
        args.insert(args.begin(), tamlin_test::envOr("TAMLINCTL", TAMLINCTL_DEFAULT));
        return args;
    }
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
