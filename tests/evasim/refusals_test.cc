// Every rule of the array refuses with its exact error line and leaves the world as it was; every
// rule that `evasim show rules` names is tried here; a rule that is an assumption can be turned off.
#include "evasim_harness.h"

#include <gtest/gtest.h>

#include <set>

using evasim_test::Harness;
using evasim_test::Outcome;

namespace {

struct Refusal {
    const char *rule;
    std::vector<std::vector<std::string>> admin;  // evasim commands that prepare the world
    std::vector<std::string> setup;               // SSSU commands that prepare it further
    std::string command;
    std::string error;
    const char *cell = "EVA01";
};

const std::string kBox = "ADD VDISK \"\\Virtual Disks\\box\" SIZE=10GB REDUNDANCY=vraid0";
const std::string kBoxToContainer = "SET VDISK \"box\" CHANGE_INTO_CONTAINER";
const std::string kCopyE = "ADD COPY \"e_clone\" VDISK=\"e\"";
const std::vector<std::string> kSlowClones{"set", "snapclone_reads=5"};

std::vector<Refusal> refusals()
{
    return {
        {"snapshot-of-snapshot",
         {},
         {},
         "ADD SNAPSHOT \"x\" VDISK=\"\\Virtual Disks\\f\\d3\\d3_vsnap000\"",
         "Error: Cannot create a snapshot of a snapshot (\\Virtual Disks\\f\\d3\\d3_vsnap000)"},
        {"snapshot-of-container",
         {},
         {kBox, kBoxToContainer},
         "ADD SNAPSHOT \"x\" VDISK=\"box\"",
         "Error: Cannot create a snapshot of a container (\\Virtual Disks\\box\\ACTIVE)"},
        {"copy-of-snapshot",
         {},
         {},
         "ADD COPY \"x\" VDISK=\"\\Virtual Disks\\f\\d3\\d3_vsnap000\"",
         "Error: Cannot create a copy of a snapshot (\\Virtual Disks\\f\\d3\\d3_vsnap000)"},
        {"copy-of-container",
         {},
         {kBox, kBoxToContainer},
         "ADD COPY \"x\" VDISK=\"box\"",
         "Error: Cannot create a copy of a container (\\Virtual Disks\\box\\ACTIVE)"},
        {"snapclone-with-snapshots",
         {},
         {},
         "ADD COPY \"x\" VDISK=\"\\Virtual Disks\\f\\d3\\ACTIVE\"",
         "Error: Cannot create a snapclone of a Vdisk that has snapshots (\\Virtual Disks\\f\\d3\\ACTIVE)"},
        {"second-copy",
         {kSlowClones},
         {"ADD COPY \"c1\" VDISK=\"d1\""},
         "ADD COPY \"c2\" VDISK=\"d1\"",
         "Error: Cannot create a copy of a Vdisk while its copy \\Virtual Disks\\c1\\ACTIVE is in progress"},
        {"copy-of-unfinished-copy",
         {kSlowClones},
         {"ADD COPY \"c1\" VDISK=\"d1\""},
         "ADD COPY \"c2\" VDISK=\"c1\"",
         "Error: Cannot copy a Vdisk while it is being copied into (\\Virtual Disks\\c1\\ACTIVE)"},
        {"copies-per-source",
         {{"set", "copies_per_source=1"}},
         {"ADD SNAPSHOT \"s1\" VDISK=\"d1\""},
         "ADD SNAPSHOT \"s2\" VDISK=\"d1\"",
         "Error: The Vdisk \\Virtual Disks\\d1\\ACTIVE already has the most snapshots and copies allowed (1)"},
        {"dr-destination-not-suspended",
         {},
         {},
         "ADD COPY \"x\" VDISK=\"\\Virtual Disks\\r\\d2\\ACTIVE\"",
         "Error: Cannot copy \\Virtual Disks\\r\\d2\\ACTIVE: DR group \\Data Replication\\DRG1 is not suspended",
         "EVA02"},
        {"container-source-writeback",
         {},
         {"ADD VDISK \"\\Virtual Disks\\box\" SIZE=10GB", kBoxToContainer},
         "ADD COPY \"box\" VDISK=\"d1\" CONTAINER=\"box\"",
         "Error: Cannot copy into a container while the source Vdisk \\Virtual Disks\\d1\\ACTIVE is in write-back "
         "mode"},
        {"container-size",
         {},
         {"ADD VDISK \"\\Virtual Disks\\box\" SIZE=20GB", kBoxToContainer},
         "ADD COPY \"box\" VDISK=\"d1\" CONTAINER=\"box\"",
         "Error: The capacity of container \\Virtual Disks\\box\\ACTIVE does not match the source Vdisk"},
        {"not-a-container",
         {},
         {},
         "ADD COPY \"x\" VDISK=\"d1\" CONTAINER=\"\\Virtual Disks\\f\\d3\"",
         "Error: \\Virtual Disks\\f\\d3\\ACTIVE is not a container"},
        {"name-taken",
         {},
         {},
         "ADD SNAPSHOT \"D3_VSNAP000\" VDISK=\"\\Virtual Disks\\f\\d3\\ACTIVE\"",
         "Error: \\Virtual Disks\\f\\d3\\d3_vsnap000 already exists"},
        {"wwn-taken",
         {},
         {},
         "SET VDISK \"\\Virtual Disks\\f\\d3\" WORLD_WIDE_LUN_NAME=60050"
         "8b4000100000000000000010000",
         "Error: World wide LUN name 6005-08b4-0001-0000-0000-0000-0001-0000 is already in use"},
        {"space",
         {{"change", "cell", "EVA01", "total=50GB"}},
         {"ADD SNAPSHOT \"v\" VDISK=\"d1\""},
         "ADD SNAPSHOT \"full\" VDISK=\"d1\" ALLOCATION_POLICY=FULLY",
         "Error: Not enough free space in the disk group (12.50 GB needed, 7.50 GB free)"},
        {"space",
         {{"change", "cell", "EVA01", "total=50GB"}},
         {},
         "ADD COPY \"c\" VDISK=\"d1\"",
         "Error: Not enough free space in the disk group (12.50 GB needed, 7.50 GB free)"},
        {"delete-presented",
         {},
         {},
         "DELETE VDISK \"\\Virtual Disks\\d1\\ACTIVE\"",
         "Error: Cannot delete Vdisks when LUNs are still present."},
        {"delete-with-snapshots",
         {},
         {},
         "DELETE VDISK \"\\Virtual Disks\\f\\d3\\ACTIVE\"",
         "Error: Cannot delete Vdisks when snapshots are still present."},
        {"delete-dr-member",
         {},
         {},
         "DELETE VDISK \"\\Virtual Disks\\f\\d2\\ACTIVE\"",
         "Error: Cannot delete a Vdisk that is a member of a DR group."},
        {"delete-copy-source",
         {kSlowClones},
         {"ADD VDISK \"\\Virtual Disks\\e\" SIZE=1GB", kCopyE},
         "DELETE VDISK \"e\"",
         "Error: Cannot delete a Vdisk while it is being copied."},
        {"container-presented",
         {},
         {},
         "SET VDISK \"d1\" CHANGE_INTO_CONTAINER",
         "Error: Cannot change a presented Vdisk into a container (\\Virtual Disks\\d1\\ACTIVE)"},
        {"container-with-snapshots",
         {},
         {},
         "SET VDISK \"\\Virtual Disks\\f\\d3\" CHANGE_INTO_CONTAINER",
         "Error: Cannot change a Vdisk with snapshots into a container (\\Virtual Disks\\f\\d3\\ACTIVE)"},
        {"container-dr-member",
         {},
         {},
         "SET VDISK \"\\Virtual Disks\\f\\d2\" CHANGE_INTO_CONTAINER",
         "Error: Cannot change a DR group member into a container (\\Virtual Disks\\f\\d2\\ACTIVE)"},
        {"container-copy-running",
         {kSlowClones},
         {"ADD VDISK \"\\Virtual Disks\\e\" SIZE=1GB", kCopyE},
         "SET VDISK \"e_clone\" CHANGE_INTO_CONTAINER",
         "Error: Cannot change a Vdisk into a container while a copy runs (\\Virtual Disks\\e_clone\\ACTIVE)"},
        {"present-container",
         {},
         {kBox, kBoxToContainer},
         "ADD LUN 9 HOST=\"\\Hosts\\h1\"  VDISK=\"box\" ",
         "Error: Cannot present a container (\\Virtual Disks\\box\\ACTIVE)"},
        {"lun-in-use",
         {},
         {},
         "ADD LUN 1 HOST=\"\\Hosts\\h1\"  VDISK=\"\\Virtual Disks\\f\\d3\\ACTIVE\" ",
         "Error: LUN 1 is already in use on host \\Hosts\\h1"},
        {"presented-twice",
         {},
         {},
         "ADD LUN 5 HOST=\"\\Hosts\\h1\"  VDISK=\"d1\" ",
         "Error: \\Virtual Disks\\d1\\ACTIVE is already presented to \\Hosts\\h1 as LUN 1"},
    };
}

class Refusals : public ::testing::Test {
protected:
    void SetUp() override { h.init(); }
    std::string world() { return h.evasim({"show", "all", "--format", "tsv"}).out; }
    Harness h;
};

TEST_F(Refusals, EachRuleAnswersItsErrorLineAndChangesNothing)
{
    for (const Refusal &r : refusals()) {
        h.init();
        for (const auto &admin : r.admin) {
            ASSERT_EQ(h.evasim(admin).status, 0) << r.rule;
        }
        const Outcome setup = h.sssu(r.setup, r.cell);
        ASSERT_EQ(setup.status, 0) << r.rule << "\n" << setup.out;
        std::string const before = world();
        const Outcome refused = h.sssu({r.command}, r.cell);
        EXPECT_EQ(refused.status, 1) << r.rule;
        EXPECT_EQ(refused.lines().back(), r.error) << r.rule;
        EXPECT_EQ(world(), before) << r.rule;
    }
}

TEST_F(Refusals, EveryListedRuleIsTriedAndOnlyAssumptionsCanBeTurnedOff)
{
    std::set<std::string> tried;
    for (const Refusal &r : refusals()) {
        tried.insert(r.rule);
    }
    std::vector<std::string> assumptions;
    for (const auto &row : h.table("rules")) {
        EXPECT_TRUE(tried.count(row.at("rule"))) << row.at("rule") << " has no test";
        EXPECT_EQ(row.at("state"), "on");
        if (row.at("basis") == "assumption") {
            assumptions.push_back(row.at("rule"));
        }
    }
    EXPECT_EQ(assumptions.size(), 9u);
    const Outcome known = h.evasim({"set", "rules_off=delete-presented"});
    EXPECT_EQ(known.status, 2);
    EXPECT_NE(known.err.find("rules_off takes rules that are assumptions"), std::string::npos) << known.err;

    ASSERT_EQ(h.evasim({"set", "snapclone_reads=5", "rules_off=second-copy,copy-of-snapshot"}).status, 0);
    EXPECT_EQ(h.sssu({"ADD COPY \"c1\" VDISK=\"d1\"", "ADD COPY \"c2\" VDISK=\"d1\""}).status, 0);
    for (const auto &row : h.table("rules")) {
        EXPECT_EQ(row.at("state"),
                  row.at("rule") == "second-copy" || row.at("rule") == "copy-of-snapshot" ? "off" : "on");
    }
}

}  // namespace
