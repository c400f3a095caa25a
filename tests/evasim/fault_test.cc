// Each fault does what it says, for as many uses as it was armed for, and is then gone.
#include "evasim_harness.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <thread>

using evasim_test::Harness;
using evasim_test::Outcome;

namespace {

class Faults : public ::testing::Test {
protected:
    void SetUp() override { h.init(); }
    void arm(std::vector<std::string> args)
    {
        args.insert(args.begin(), "fault");
        const Outcome r = h.evasim(args);
        ASSERT_EQ(r.status, 0) << r.err;
    }
    size_t armed() { return h.table("faults").size(); }
    static bool normal(const Outcome &r) { return r.status == 0 && r.has("Hosts available on this Cell:"); }
    Outcome listHosts() { return h.sssu({"LS HOST"}); }

    Harness h;
};

TEST_F(Faults, HttpsFailsTheNextLoginsThenIsGone)
{
    arm({"https", "--count", "2"});
    const Outcome versionOnly = h.sssu({}, "", "");
    EXPECT_TRUE(versionOnly.has("Version: ")) << "a run without a login uses no https fault";
    for (int i = 0; i < 2; ++i) {
        const Outcome r = listHosts();
        EXPECT_EQ(r.status, 0);
        EXPECT_EQ(r.lines().back(), "Error opening https connection") << "run " << i;
        EXPECT_FALSE(r.has("LS HOST"));
    }
    EXPECT_TRUE(normal(listHosts()));
    EXPECT_EQ(armed(), 0u);
}

TEST_F(Faults, HttpsForOneServerSparesTheOthers)
{
    arm({"https", "--server", "elsewhere"});
    EXPECT_TRUE(normal(listHosts()));
    EXPECT_EQ(armed(), 1u);
    arm({"https", "--server", "CV1"});
    EXPECT_EQ(listHosts().lines().back(), "Error opening https connection");
    EXPECT_EQ(armed(), 1u) << "the fault for the other server stays";
}

TEST_F(Faults, SilenceBeforeOutputDelaysTheFirstLine)
{
    arm({"silence", "--seconds", "1"});
    const Outcome r = listHosts();
    EXPECT_TRUE(normal(r));
    ASSERT_FALSE(r.lineTimes.empty());
    EXPECT_GE(r.lineTimes.front(), 0.95);
    const Outcome next = listHosts();
    EXPECT_LT(next.lineTimes.front(), 0.8) << "used up";
}

TEST_F(Faults, SilenceAfterALineLetsThatLineOutWholeFirst)
{
    arm({"silence", "--seconds", "1", "--after-line", "3"});
    const Outcome r = listHosts();
    EXPECT_TRUE(normal(r));
    ASSERT_GE(r.lineTimes.size(), 4u);
    EXPECT_LT(r.lineTimes[2], 0.8) << "line 3 came before the pause";
    EXPECT_GE(r.lineTimes[3] - r.lineTimes[2], 0.95);
    EXPECT_EQ(r.lines()[2], "SSSU for HP StorageWorks Command View EVA");
}

TEST_F(Faults, IgnoredSignalsLetTheRunFinish)
{
    auto signalLater = [](pid_t pid) {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        ::kill(pid, SIGINT);
        ::kill(pid, SIGTERM);
    };
    arm({"silence", "--seconds", "0.8"});
    const Outcome killed = h.evasim({"FILE " + h.script({"exit"})}, signalLater);
    EXPECT_EQ(killed.status, 128 + SIGINT) << "without the fault SIGINT ends the run";

    arm({"silence", "--seconds", "0.8"});
    arm({"ignore-signals"});
    const Outcome survived = h.evasim({"FILE " + h.script({"exit"})}, signalLater);
    EXPECT_EQ(survived.status, 0);
    EXPECT_TRUE(survived.has("NoSystemSelected> exit"));
    EXPECT_EQ(armed(), 0u);
}

TEST_F(Faults, ExitAfterEndsTheProcessAfterThatManyLines)
{
    arm({"exit-after", "--lines", "8", "--status", "3"});
    const Outcome r = listHosts();
    EXPECT_EQ(r.status, 3);
    EXPECT_EQ(r.lineTimes.size(), 8u);
    EXPECT_EQ(r.out.back(), '\n');
    EXPECT_TRUE(normal(listHosts()));
}

TEST_F(Faults, NoOutputPrintsNothing)
{
    arm({"no-output", "--status", "0"});
    const Outcome r = listHosts();
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, "");
    EXPECT_TRUE(normal(listHosts()));
}

TEST_F(Faults, MalformedXmlSpoilsTheNextXmlListingOnly)
{
    arm({"malformed-xml"});
    const Outcome text = h.sssu({"LS VDISK"});
    EXPECT_TRUE(text.has("Vdisks available on this Cell:")) << "a text listing doesn't use it";
    const Outcome bad = h.sssu({"LS VDISK FULL XML"});
    EXPECT_EQ(bad.status, 0);
    EXPECT_TRUE(bad.has("</objectnam>"));
    const Outcome good = h.sssu({"LS VDISK FULL XML"});
    EXPECT_FALSE(good.has("</objectnam>"));
}

TEST_F(Faults, ErrorHitsTheNextMatchingCommandAndChangesNothing)
{
    arm({"error", "--match", "add lun", "--message", "The array is busy"});
    std::string const cmd = "ADD LUN 4 HOST=\"\\Hosts\\h1\"  VDISK=\"\\Virtual Disks\\f\\d2\\ACTIVE\" ";
    const Outcome r = h.sssu({"LS HOST", cmd, "LS VDISK"});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.has("Hosts available on this Cell:"));
    EXPECT_EQ(r.lines().back(), "Error: The array is busy");
    EXPECT_EQ(h.disk("\\Virtual Disks\\f\\d2\\ACTIVE").at("presentations"), "");
    EXPECT_EQ(h.sssu({cmd}).status, 0);
    EXPECT_EQ(h.disk("\\Virtual Disks\\f\\d2\\ACTIVE").at("presentations"), "\\Hosts\\h1:4");
}

TEST_F(Faults, ErrorForOneCellSparesTheOtherCells)
{
    arm({"error", "--match", "ls vdisk", "--cell", "eva02", "--count", "2"});
    EXPECT_TRUE(h.sssu({"LS VDISK"}).has("Vdisks available on this Cell:")) << "EVA01 is spared";
    EXPECT_EQ(armed(), 1u);
    EXPECT_EQ(h.sssu({"LS VDISK"}, "EVA02").lines().back(), "Error: Simulated failure");
    EXPECT_EQ(h.sssu({"LS VDISK"}, "EVA02").lines().back(), "Error: Simulated failure");
    EXPECT_TRUE(h.sssu({"LS VDISK"}, "EVA02").has("Vdisks available on this Cell:"));
    EXPECT_EQ(armed(), 0u);
}

TEST_F(Faults, BannerShowsAnotherVersionLineForItsRuns)
{
    arm({"banner", "--text", "Version: 9.2.0 ", "--count", "2"});
    EXPECT_EQ(listHosts().lines()[3], "Version: 9.2.0 ");
    EXPECT_EQ(listHosts().lines()[3], "Version: 9.2.0 ");
    EXPECT_EQ(listHosts().lines()[3], "Version: 8.0.2 ");
}

TEST_F(Faults, DelayWaitsBeforeEachCommand)
{
    arm({"delay", "--seconds", "0.15"});
    const Outcome r = listHosts();  // 3 options, select cell, LS HOST, exit; the login is a line too
    EXPECT_TRUE(normal(r));
    EXPECT_GE(r.seconds, 1.0);
    EXPECT_LT(listHosts().seconds, 0.9);
}

TEST_F(Faults, ListAndClear)
{
    arm({"delay", "--seconds", "1"});
    arm({"https"});
    const Outcome list = h.evasim({"fault", "list"});
    EXPECT_TRUE(list.has("\tdelay\t1\twaits 1 s before each command\n"));
    EXPECT_TRUE(list.has("\thttps\t1\t"));
    EXPECT_EQ(h.evasim({"fault", "clear"}).status, 0);
    EXPECT_EQ(armed(), 0u);
    EXPECT_TRUE(normal(listHosts()));
}

TEST_F(Faults, BadFaultArgumentsAreRefusedWithUsage)
{
    struct Case {
        std::vector<std::string> args;
        const char *message;
    } const cases[] = {
        {{"fault", "flood"}, "unknown fault 'flood'"},
        {{"fault", "silence"}, "--seconds is required"},
        {{"fault", "silence", "--seconds", "soon"}, "--seconds needs a number"},
        {{"fault", "exit-after"}, "--lines is required"},
        {{"fault", "exit-after", "--lines", "0"}, "--lines must be 1 or more"},
        {{"fault", "error"}, "--match TEXT is required"},
        {{"fault", "https", "--count", "0"}, "--count must be 1 or more"},
        {{"fault", "https", "--seconds", "1"}, "unknown option --seconds"},
        {{"fault", "banner"}, "--text is required"},
    };
    for (const Case &c : cases) {
        const Outcome r = h.evasim(c.args);
        EXPECT_EQ(r.status, 2) << c.message;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << r.err;
    }
    EXPECT_EQ(armed(), 0u);
}

}  // namespace
