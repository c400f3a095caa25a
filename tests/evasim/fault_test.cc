// Each fault does what it says, for as many uses as it was armed for, and is then gone.
#include "evasim_harness.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <unistd.h>

#include <algorithm>
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

TEST_F(Faults, BusyAnswersNTimesThenTheCommandWorks)
{
    arm({"busy", "--match", "add snapshot", "--count", "2"});
    std::string const snap = "ADD SNAPSHOT \"s\" VDISK=\"d1\"";
    for (int i = 0; i < 2; ++i) {
        const Outcome r = h.sssu({snap});
        EXPECT_EQ(r.lines().back(), "Error: The storage system is busy. Retry the operation later.") << i;
        EXPECT_TRUE(h.disk("\\Virtual Disks\\d1\\s").empty()) << i;
    }
    EXPECT_EQ(h.sssu({snap}).status, 0);
    EXPECT_FALSE(h.disk("\\Virtual Disks\\d1\\s").empty());
}

// --skip counts the matching commands of each run: exactly the second ADD SNAPSHOT of a run fails,
// and a run with only one leaves the fault armed.
TEST_F(Faults, SkipHitsExactlyTheNthMatchingCommandOfARun)
{
    arm({"error", "--match", "ADD SNAPSHOT", "--skip", "1", "--message", "second"});
    EXPECT_EQ(h.sssu({"ADD SNAPSHOT \"a\" VDISK=\"d1\""}).status, 0);
    EXPECT_EQ(armed(), 1u);
    const Outcome r = h.sssu({"ADD SNAPSHOT \"b\" VDISK=\"d1\"", "LS HOST", "ADD SNAPSHOT \"c\" VDISK=\"d1\"",
                              "ADD SNAPSHOT \"d\" VDISK=\"d1\""});
    EXPECT_EQ(r.lines().back(), "Error: second");
    EXPECT_FALSE(h.disk("\\Virtual Disks\\d1\\b").empty());
    EXPECT_TRUE(h.disk("\\Virtual Disks\\d1\\c").empty());
    EXPECT_EQ(armed(), 0u);
}

// The array changes under a run: a disk fails at the second listing, a running copy stops, a DR
// link goes down as the group is suspended.
TEST_F(Faults, ChangeAltersTheArrayJustBeforeTheMatchingCommand)
{
    arm({"change", "--match", "LS VDISK \"d1\"", "--skip", "1", "disk", "EVA01", "d1", "operationalstate=failed"});
    const Outcome r = h.sssu({"LS VDISK \"d1\" XML", "LS VDISK \"d1\" XML"});
    const size_t second = r.out.rfind("<object>");
    EXPECT_EQ(evasim_test::element(r.out, "operationalstate"), "good");
    EXPECT_EQ(evasim_test::element(r.out.substr(second), "operationalstate"), "failed");

    ASSERT_EQ(h.evasim({"set", "snapclone_reads=9"}).status, 0);
    arm({"change", "--match", "LS VDISK", "disk", "EVA01", "\\Virtual Disks\\d1_c\\ACTIVE", "copy=failed"});
    const Outcome copy = h.sssu({"ADD COPY \"d1_c\" VDISK=\"d1\"", "LS VDISK \"d1_c\" XML"});
    EXPECT_EQ(evasim_test::element(copy.out, "sharingrelationship"), "none");
    EXPECT_EQ(evasim_test::element(copy.out, "operationalstate"), "failed");

    arm({"change", "--match", "SUSPEND", "drgroup", "DRG1", "linkstate=disconnected"});
    const Outcome link = h.sssu({"SET DR_GROUP \"DRG1\" SUSPEND", "LS DR_GROUP \"DRG1\" XML"});
    EXPECT_EQ(evasim_test::element(link.out, "linkstate"), "disconnected");
    EXPECT_EQ(evasim_test::element(link.out, "suspendstate"), "suspended");
}

TEST_F(Faults, ProcessFaultsBoundToACommandActAtItsLine)
{
    arm({"exit-after", "--match", "\"b\"", "--status", "9"});
    const Outcome ended = h.sssu({"ADD SNAPSHOT \"a\" VDISK=\"d1\"", "ADD SNAPSHOT \"b\" VDISK=\"d1\"", "LS HOST"});
    EXPECT_EQ(ended.status, 9);
    EXPECT_EQ(ended.lines()[ended.lines().size() - 2], "EVA01> ADD SNAPSHOT \"b\" VDISK=\"d1\"");
    EXPECT_FALSE(h.disk("\\Virtual Disks\\d1\\a").empty());
    EXPECT_TRUE(h.disk("\\Virtual Disks\\d1\\b").empty()) << "the command at the fault never ran";

    arm({"silence", "--seconds", "0.6", "--match", "LS HOST"});
    const Outcome quiet = listHosts();
    EXPECT_TRUE(normal(quiet));
    const std::vector<std::string> lines = quiet.lines();
    const size_t echo = std::find(lines.begin(), lines.end(), "EVA01> LS HOST") - lines.begin();
    ASSERT_LT(echo + 1, quiet.lineTimes.size());
    EXPECT_GE(quiet.lineTimes[echo + 1] - quiet.lineTimes[echo], 0.55) << "the pause comes after the echo";

    arm({"banner", "--text", "Version: 9.2.0 ", "--match", "LS CELL"});
    EXPECT_EQ(listHosts().lines()[3], "Version: 8.0.2 ") << "runs without LS CELL don't use it";
    EXPECT_EQ(h.sssu({"LS CELL"}, "").lines()[3], "Version: 9.2.0 ");
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
        {{"fault", "busy"}, "--match TEXT is required"},
        {{"fault", "error", "--skip", "1"}, "--match TEXT is required"},
        {{"fault", "https", "--skip", "1"}, "--skip needs --match"},
        {{"fault", "banner", "--text", "x", "--match", "LS", "--skip", "1"}, "a banner fault acts on whole runs"},
        {{"fault", "silence", "--seconds", "1", "--after-line", "2", "--match", "LS"}, "two ways to say where"},
        {{"fault", "change", "--match", "LS", "disk", "EVA01"}, "usage: disk CELL PATH KEY=VALUE"},
        {{"fault", "change", "--match", "LS", "drgroup", "G", "color=red"}, "a drgroup takes operationalstate="},
        {{"fault", "delay", "--seconds", "1", "--cell", "EVA01"}, "--cell is for faults that hit commands"},
    };
    for (const Case &c : cases) {
        const Outcome r = h.evasim(c.args);
        EXPECT_EQ(r.status, 2) << c.message;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << r.err;
    }
    EXPECT_EQ(armed(), 0u);
}

}  // namespace
