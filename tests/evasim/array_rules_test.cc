// The array's rules behind each command: snapshots, snapclones, containers and restore copies,
// presentations, deletes, renames, DR groups and space.
#include "evasim_harness.h"

#include <gtest/gtest.h>

using evasim_test::element;
using evasim_test::Harness;
using evasim_test::Outcome;

namespace {

class ArrayRules : public ::testing::Test {
protected:
    void SetUp() override { h.init(); }

    // Runs the commands and expects success.
    Outcome ok(const std::vector<std::string> &commands, const std::string &cell = "EVA01")
    {
        Outcome r = h.sssu(commands, cell);
        EXPECT_EQ(r.status, 0) << r.out;
        EXPECT_EQ(r.out.find("Error: "), std::string::npos) << r.out;
        return r;
    }
    // Runs one command and gives the error line it ends with.
    std::string refused(const std::string &command, const std::string &cell = "EVA01")
    {
        const Outcome r = h.sssu({command}, cell);
        EXPECT_EQ(r.status, 1) << r.out;
        return r.lines().back();
    }
    std::string sharing(const std::string &path)
    {
        return element(h.sssu({"LS VDISK \"" + path + "\" XML"}).out, "sharingrelationship");
    }
    double usedGb(const std::string &cell)
    {
        for (const auto &row : h.table("cells")) {
            if (row.at("name") == cell) {
                return std::stod(row.at("used"));
            }
        }
        return -1;
    }

    Harness h;
};

TEST_F(ArrayRules, SnapshotsLieInTheFamilyAndTakeSpaceByTheirAllocation)
{
    const double before = usedGb("EVA01");
    ok({"ADD SNAPSHOT \"d1_vsnap000\" VDISK=\"\\Virtual Disks\\d1\\ACTIVE\" ALLOCATION_POLICY=DEMAND  "
        "REDUNDANCY=Vraid0 "});
    const auto vsnap = h.disk("\\Virtual Disks\\d1\\d1_vsnap000");
    ASSERT_FALSE(vsnap.empty());
    EXPECT_EQ(vsnap.at("type"), "vsnap");
    EXPECT_EQ(vsnap.at("parent"), "\\Virtual Disks\\d1\\ACTIVE");
    EXPECT_DOUBLE_EQ(usedGb("EVA01"), before) << "a vsnap takes space on demand only";

    ok({"ADD SNAPSHOT \"d1_snap000\" VDISK=\"\\Virtual Disks\\d1\\ACTIVE\" ALLOCATION_POLICY=FULLY  "
        "REDUNDANCY=Vraid0 "});
    EXPECT_DOUBLE_EQ(usedGb("EVA01"), before + 10) << "a full snapshot in vraid0 takes its size";
    const Outcome parent = ok({"LS VDISK \"\\Virtual Disks\\d1\\ACTIVE\" XML"});
    EXPECT_EQ(element(parent.out, "childvdiskname"), "\\Virtual Disks\\d1\\d1_snap000");
    EXPECT_EQ(element(parent.out, "sharingrelationship"), "parent");

    EXPECT_EQ(refused("ADD SNAPSHOT \"x\" VDISK=\"\\Virtual Disks\\nosuch\\ACTIVE\""),
              "Error: \\Virtual Disks\\nosuch\\ACTIVE not found");
}

TEST_F(ArrayRules, DeletingGivesTheSpaceBack)
{
    const double before = usedGb("EVA01");
    ok({"DELETE VDISK \"\\Virtual Disks\\f\\d3\\d3_vsnap000\"", "DELETE VDISK \"\\Virtual Disks\\f\\d3\\ACTIVE\""});
    EXPECT_TRUE(h.disk("\\Virtual Disks\\f\\d3\\ACTIVE").empty());
    EXPECT_DOUBLE_EQ(usedGb("EVA01"), before - 10);
    ok({"DELETE LUN \"\\Hosts\\h1\\1\"", "DELETE VDISK \"\\Virtual Disks\\d1\\ACTIVE\""});
    EXPECT_TRUE(h.disk("\\Virtual Disks\\d1\\ACTIVE").empty());
}

TEST_F(ArrayRules, AddLunTakesTheProvidersTemplateAndKeepsLunsUniquePerHost)
{
    ok({"ADD LUN 5 HOST=\"\\Hosts\\h1\"  VDISK=\"\\Virtual Disks\\f\\d3\\ACTIVE\" "});
    EXPECT_EQ(h.disk("\\Virtual Disks\\f\\d3\\ACTIVE").at("presentations"), "\\Hosts\\h1:5");
    EXPECT_EQ(refused("ADD LUN 1 HOST=\"\\Hosts\\nosuch\"  VDISK=\"\\Virtual Disks\\f\\d2\\ACTIVE\" "),
              "Error: \\Hosts\\nosuch not found");
    EXPECT_EQ(refused("ADD LUN 256 HOST=\"\\Hosts\\h1\"  VDISK=\"\\Virtual Disks\\f\\d2\\ACTIVE\" "),
              "Error: Invalid LUN 256; LUNs are 1 to 255, 0 lets the array choose");

    // LUN 0: the lowest free number of that host; 1 and 5 are taken on h1.
    ok({"ADD LUN 0 HOST=\"\\Hosts\\h1\"  VDISK=\"\\Virtual Disks\\f\\d2\\ACTIVE\" ",
        "ADD LUN 0 HOST=\"\\Hosts\\lab\\h2\"  VDISK=\"\\Virtual Disks\\f\\d2\\ACTIVE\" "});
    EXPECT_EQ(h.disk("\\Virtual Disks\\f\\d2\\ACTIVE").at("presentations"), "\\Hosts\\h1:2,\\Hosts\\lab\\h2:1");

    ok({"DELETE LUN \"\\Hosts\\h1\\2\"", "DELETE LUN \"\\Hosts\\lab\\h2\\1\""});
    EXPECT_EQ(h.disk("\\Virtual Disks\\f\\d2\\ACTIVE").at("presentations"), "");
    EXPECT_EQ(refused("DELETE LUN \"\\Hosts\\h1\\9\""), "Error: \\Hosts\\h1\\9 not found");
}

// The script that a restore sends, with the secondary a finished snapclone of the primary.
TEST_F(ArrayRules, RestoreTurnsThePrimaryIntoAContainerAndCopiesTheCloneIntoIt)
{
    ASSERT_EQ(h.evasim({"set", "snapclone_reads=0", "restore_reads=2"}).status, 0);
    ok({"ADD COPY \"d1_clone000\" VDISK=\"\\Virtual Disks\\d1\\ACTIVE\""});
    std::string const primary = "\\Virtual Disks\\d1\\ACTIVE";
    std::string const secondary = "\\Virtual Disks\\d1_clone000\\ACTIVE";
    std::string const wwn = h.disk(primary).at("wwlunid");
    ok({"DELETE LUN \"\\Hosts\\h1\\1\""});
    ok({"SET OPTION COMMAND_DELAY=5", "REFRESH", "SET VDISK \"d1\" CHANGE_INTO_CONTAINER",
        "SET VDISK \"d1_clone000\" writecache=writethrough", "REDISCOVER", "REFRESH",
        "ADD COPY \"d1\" VDISK=\"d1_clone000\" CONTAINER=\"d1\"", "SET VDISK \"d1_clone000\" writecache=writeback",
        "ADD LUN 1 HOST=\"\\Hosts\\h1\"  VDISK=\"d1\" "});
    const auto restored = h.disk(primary);
    EXPECT_EQ(restored.at("type"), "snapclone");
    EXPECT_EQ(restored.at("wwlunid"), wwn) << "the primary keeps its identity";
    EXPECT_EQ(restored.at("presentations"), "\\Hosts\\h1:1");
    EXPECT_EQ(h.disk(secondary).at("writecache"), "writeback");
    EXPECT_EQ(sharing(secondary), "parent");
    EXPECT_EQ(sharing(secondary), "parent");
    EXPECT_EQ(sharing(secondary), "none");
    EXPECT_EQ(sharing(primary), "none");
}

// The renames of a swap-based restore: world wide names over a temporary one, then names.
TEST_F(ArrayRules, WorldWideNamesAndFamilyNamesCanBeTraded)
{
    ok({"SET VDISK \"\\Virtual Disks\\f\\d2\\ACTIVE\" writecache=writeback"});
    std::string const p = "\\Virtual Disks\\f\\d3\\ACTIVE";
    std::string const s = "\\Virtual Disks\\d1\\ACTIVE";
    std::string const pw = h.disk(p).at("wwlunid");
    std::string const sw = h.disk(s).at("wwlunid");
    std::string const temp = pw.substr(0, pw.size() - 4) + "1111";
    ok({"SET VDISK \"" + p + "\" WORLD_WIDE_LUN_NAME=" + temp, "SET VDISK \"" + s + "\" WORLD_WIDE_LUN_NAME=" + pw,
        "SET VDISK \"" + p + "\" WORLD_WIDE_LUN_NAME=" + sw, "SET VDISK \"" + p + "\" NAME=\"d3_RESTORING\""});
    EXPECT_EQ(h.disk(s).at("wwlunid"), pw);
    const auto moved = h.disk("\\Virtual Disks\\f\\d3_RESTORING\\ACTIVE");
    ASSERT_FALSE(moved.empty());
    EXPECT_EQ(moved.at("wwlunid"), sw);
    EXPECT_FALSE(h.disk("\\Virtual Disks\\f\\d3_RESTORING\\d3_vsnap000").empty()) << "snapshots move with the family";
}

TEST_F(ArrayRules, SpaceShrinksWithNewDisksByTheirRedundancy)
{
    const double before = usedGb("EVA01");
    ok({"ADD VDISK \"\\Virtual Disks\\new\\big\" SIZE=100GB REDUNDANCY=vraid1"});
    EXPECT_DOUBLE_EQ(usedGb("EVA01"), before + 200) << "vraid1 takes twice the size";
    EXPECT_EQ(refused("ADD VDISK \"huge\" SIZE=2048GB REDUNDANCY=vraid0"),
              "Error: Not enough free space in the disk group (2 TB needed, 781.50 GB free)");
}

}  // namespace
