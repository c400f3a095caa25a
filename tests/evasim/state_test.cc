// The state between runs: what a run changes stays, what it refuses or doesn't finish changes
// nothing, and runs at the same time leave it whole.
#include "evasim_harness.h"

#include <gtest/gtest.h>

#include <signal.h>

#include <chrono>
#include <set>
#include <thread>

using evasim_test::Harness;
using evasim_test::Outcome;

namespace {

class State : public ::testing::Test {
protected:
    void SetUp() override { h.init(); }
    std::string everything() { return h.evasim({"show", "all", "--format", "tsv"}).out; }
    Harness h;
};

TEST_F(State, ChangesOfOneRunAreSeenByTheNext)
{
    ASSERT_EQ(h.sssu({"ADD SNAPSHOT \"keep\" VDISK=\"\\Virtual Disks\\d1\\ACTIVE\""}).status, 0);
    const Outcome r = h.sssu({"LS VDISK"});
    EXPECT_TRUE(r.has("\n\\Virtual Disks\\d1\\keep\n"));
}

TEST_F(State, RefusedCommandsChangeNothing)
{
    std::string const before = everything();
    for (const char *command : {
             "DELETE VDISK \"\\Virtual Disks\\d1\\ACTIVE\"",
             "ADD SNAPSHOT \"x\" VDISK=\"\\Virtual Disks\\f\\d3\\d3_vsnap000\"",
             "ADD COPY \"x\" VDISK=\"\\Virtual Disks\\f\\d3\\ACTIVE\"",
             "ADD LUN 1 HOST=\"\\Hosts\\h1\"  VDISK=\"\\Virtual Disks\\f\\d2\\ACTIVE\" ",
             "SET VDISK \"\\Virtual Disks\\f\\d2\\ACTIVE\" NAME=\"renamed\" WRITECACHE=sometimes",
             "SET VDISK \"\\Virtual Disks\\d1\\ACTIVE\" CHANGE_INTO_CONTAINER",
             "ADD VDISK \"huge\" SIZE=4TB",
             "DELETE LUN \"\\Hosts\\h1\\7\"",
             "SET DR_GROUP \"nosuch\" SUSPEND",
         }) {
        const Outcome r = h.sssu({command});
        EXPECT_EQ(r.status, 1) << command;
        EXPECT_EQ(everything(), before) << command;
    }
}

TEST_F(State, CommandsBeforeAnErrorStayAndThoseAfterItNeverRun)
{
    const Outcome r = h.sssu(
        {"ADD SNAPSHOT \"first\" VDISK=\"d1\"", "DELETE VDISK \"nosuch\"", "ADD SNAPSHOT \"second\" VDISK=\"d1\""});
    EXPECT_EQ(r.status, 1);
    EXPECT_FALSE(h.disk("\\Virtual Disks\\d1\\first").empty());
    EXPECT_TRUE(h.disk("\\Virtual Disks\\d1\\second").empty());
}

TEST_F(State, ARunKilledBeforeItsEndChangesNothing)
{
    // The pause comes in the listing behind the change, so the change has been made in memory.
    std::string const before = everything();
    ASSERT_EQ(h.evasim({"fault", "silence", "--seconds", "5", "--after-line", "20"}).status, 0);
    const Outcome killed =
        h.evasim({"FILE " + h.script({"select manager cv1 user=admin password=secret", "select cell EVA01",
                                      "ADD SNAPSHOT \"gone\" VDISK=\"d1\"", "LS VDISK FULL", "exit"})},
                 [](pid_t pid) {
                     std::this_thread::sleep_for(std::chrono::milliseconds(300));
                     ::kill(pid, SIGKILL);
                 });
    EXPECT_EQ(killed.status, 128 + SIGKILL);
    EXPECT_TRUE(killed.has("EVA01> LS VDISK FULL")) << "the change was made before the kill";
    EXPECT_TRUE(h.disk("\\Virtual Disks\\d1\\gone").empty());
    EXPECT_EQ(h.table("faults").size(), 0u) << "the fault counts although the run died";
}

TEST_F(State, ConcurrentRunsLeaveTheStateConsistent)
{
    constexpr int kPerRun = 25;
    auto script = [](const std::string &tag) {
        std::vector<std::string> commands;
        for (int i = 0; i < kPerRun; ++i) {
            commands.push_back("ADD SNAPSHOT \"" + tag + std::to_string(i) +
                               "\" VDISK=\"\\Virtual Disks\\d1\\ACTIVE\"");
            commands.push_back("ADD LUN 0 HOST=\"\\Hosts\\lab\\h2\"  VDISK=\"\\Virtual Disks\\d1\\" + tag +
                               std::to_string(i) + "\" ");
        }
        return commands;
    };
    Outcome a, b;
    std::thread first([&] { a = h.sssu(script("a")); });
    std::thread second([&] { b = h.sssu(script("b")); });
    const Outcome reader = h.evasim({"show", "disks"});
    first.join();
    second.join();
    ASSERT_EQ(a.status, 0) << a.out;
    ASSERT_EQ(b.status, 0) << b.out;
    EXPECT_EQ(reader.status, 0) << reader.err;

    std::set<std::string> luns, wwns;
    int snapshots = 0;
    for (const auto &d : h.table("disks")) {
        EXPECT_TRUE(wwns.insert(d.at("wwlunid")).second) << "duplicate LUN id " << d.at("wwlunid");
        if (d.at("parent") != "\\Virtual Disks\\d1\\ACTIVE") {
            continue;
        }
        ++snapshots;
        luns.insert(d.at("presentations"));
    }
    EXPECT_EQ(snapshots, 2 * kPerRun);
    EXPECT_EQ(luns.size(), size_t(2 * kPerRun)) << "every LUN the array chose is its own";
    EXPECT_TRUE(luns.count("\\Hosts\\lab\\h2:1"));
    EXPECT_TRUE(luns.count("\\Hosts\\lab\\h2:50"));
}

}  // namespace
