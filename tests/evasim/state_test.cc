// The state between runs: what a run changes stays, what it refuses changes nothing, a killed
// run keeps what it completed, runs at the same time leave it whole, and the history tells it all.
#include "evasim_harness.h"

#include <gtest/gtest.h>

#include <signal.h>

#include <algorithm>
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

// A command with several changes checks them all first (the array's rules have their own test).
TEST_F(State, ACommandRefusedForAnyPartChangesNothing)
{
    std::string const before = everything();
    for (const char *command : {
             "SET VDISK \"\\Virtual Disks\\f\\d2\\ACTIVE\" NAME=\"renamed\" WRITECACHE=sometimes",
             "SET VDISK \"\\Virtual Disks\\f\\d3\\ACTIVE\" NAME=\"d3x\" CHANGE_INTO_CONTAINER",
             "DELETE LUN \"\\Hosts\\h1\\7\"",
         }) {
        const Outcome r = h.sssu({command});
        EXPECT_EQ(r.status, 1) << command;
        EXPECT_EQ(everything(), before) << command;
    }
}

// Each command is kept as it completes. A run killed at any line of its output keeps every
// command whose answer had begun and none after; the state never holds half a command.
TEST_F(State, ARunKilledAtAnyLineKeepsExactlyTheCommandsAnsweredBeforeIt)
{
    const std::vector<std::string> commands{
        "ADD VDISK \"\\Virtual Disks\\k\\a\" SIZE=1GB",
        "ADD SNAPSHOT \"a_vsnap000\" VDISK=\"\\Virtual Disks\\k\\a\\ACTIVE\"",
        "ADD LUN 7 HOST=\"\\Hosts\\h1\"  VDISK=\"\\Virtual Disks\\k\\a\\a_vsnap000\" ",
        "SET VDISK \"\\Virtual Disks\\f\\d2\\ACTIVE\" WRITECACHE=writethrough",
        "LS HOST",
        "DELETE LUN \"\\Hosts\\h1\\1\"",
        "SET DR_GROUP \"DRG1\" SUSPEND",
    };
    std::vector<std::string> after;  // the world after the first j commands
    for (size_t j = 0; j <= commands.size(); ++j) {
        h.init();
        ASSERT_EQ(h.sssu({commands.begin(), commands.begin() + static_cast<long>(j)}).status, 0);
        after.push_back(everything());
    }
    h.init();
    const std::vector<std::string> lines = h.sssu(commands).lines();
    std::vector<size_t> echo;  // the output line of each command's echo
    for (const std::string &c : commands) {
        echo.push_back(std::find(lines.begin(), lines.end(), "EVA01> " + c) - lines.begin());
        ASSERT_LT(echo.back(), lines.size()) << c;
    }
    std::string const script = h.sssuScript(commands);
    for (size_t k = 1; k < lines.size(); ++k) {
        h.init();
        ASSERT_EQ(h.evasim({"fault", "silence", "--seconds", "60", "--after-line", std::to_string(k)}).status, 0);
        const Outcome killed = h.evasim({"FILE " + script}, {}, k);
        ASSERT_EQ(killed.status, 128 + SIGKILL) << "line " << k;
        // A command is done once the first line of its answer went out, and the answer follows
        // its echo at once; a command killed right after its echo has not begun.
        const size_t done = std::count_if(echo.begin(), echo.end(), [k](size_t e) { return e + 1 < k; });
        EXPECT_EQ(everything(), after[done]) << "killed after line " << k << ": " << lines[k - 1];
    }
}

TEST_F(State, HistoryTellsEveryRunWithItsCommandsAnswersAndExitStatus)
{
    h.sssu({"LS HOST", "ADD SNAPSHOT \"s\" VDISK=\"d1\"", "DELETE VDISK \"nosuch\"", "LS VDISK"});
    ASSERT_EQ(h.evasim({"fault", "silence", "--seconds", "60", "--after-line", "16"}).status, 0);
    h.evasim({"FILE " + h.script({"select manager cv1 user=admin password=secret", "select cell EVA01", "LS HOST",
                                  "ADD SNAPSHOT \"t\" VDISK=\"d1\"", "exit"})},
             {}, 16);
    const Outcome tsv = h.evasim({"history", "--format", "tsv"});
    EXPECT_TRUE(tsv.has("1\t1\t4\tok\tselect manager cv1 user=admin password=********\t\n")) << tsv.out;
    EXPECT_TRUE(tsv.has("1\t1\t6\tok\tLS HOST\tHosts available on this Cell: | \\Hosts\\h1 | \\Hosts\\lab\\h2\n"));
    EXPECT_TRUE(tsv.has("1\t1\t7\tok\tADD SNAPSHOT \"s\" VDISK=\"d1\"\t\n"));
    EXPECT_TRUE(tsv.has("1\t1\t8\terror\tDELETE VDISK \"nosuch\"\tError: nosuch not found\n"));
    EXPECT_FALSE(tsv.has("LS VDISK")) << "the run stopped at the error";
    EXPECT_TRUE(tsv.has("2\tunfinished\t3\tok\tLS HOST\tHosts available")) << tsv.out;
    EXPECT_TRUE(tsv.has("2\tunfinished\t4\tcut off\tADD SNAPSHOT \"t\" VDISK=\"d1\"\t\n")) << tsv.out;
    EXPECT_FALSE(h.disk("\\Virtual Disks\\d1\\t").empty()) << "the command cut off was kept";
    EXPECT_FALSE(tsv.has("secret"));
}

TEST_F(State, ConcurrentRunsLeaveTheStateConsistent)
{
    ASSERT_EQ(h.evasim({"set", "copies_per_source=0"}).status, 0);
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
