// Copies that take time: a snapclone or restore copy runs for reads or seconds (per world, per copy,
// or per unit of capacity) and then ends; a copy can stall, go on, fail or end at once; a
// demand-allocated snapshot grows with what is written; DR groups change state and links.
#include "evasim_harness.h"

#include <gtest/gtest.h>

#include <fstream>

using evasim_test::element;
using evasim_test::Harness;
using evasim_test::Outcome;

namespace {

const std::string kClone = "\\Virtual Disks\\d1_c\\ACTIVE";

class Copies : public ::testing::Test {
protected:
    // A clock that only 'advance' moves, so that no check depends on how fast the test runs.
    void SetUp() override
    {
        h.init();
        admin({"clock", "freeze"});
    }
    void admin(const std::vector<std::string> &args)
    {
        const Outcome r = h.evasim(args);
        ASSERT_EQ(r.status, 0) << r.err;
    }
    void ok(const std::vector<std::string> &commands, const std::string &cell = "EVA01")
    {
        const Outcome r = h.sssu(commands, cell);
        ASSERT_EQ(r.status, 0) << r.out;
    }
    // A read of the disk as the provider makes it: it counts for a copy that counts reads.
    std::string read(const std::string &path, const std::string &tag = "sharingrelationship")
    {
        return element(h.sssu({"LS VDISK \"" + path + "\" XML"}).out, tag);
    }
    // The same without a read.
    std::string shown(const std::string &path) { return h.disk(path).at("sharing"); }
    Harness h;
};

TEST_F(Copies, ReadsCountPerUnitOfCapacityWhenAskedAndOnlyReadsThatShowTheCopyCount)
{
    admin({"set", "snapclone_reads=1", "copy_unit_gb=8"});  // d1 is 10 GB: two units, two reads
    ok({"ADD COPY \"d1_c\" VDISK=\"d1\""});
    EXPECT_EQ(shown(kClone), "snapclone_in_progress");
    ok({"LS VDISK \"\\Virtual Disks\\f\\d3\\ACTIVE\" XML", "LS VDISK", "LS HOST FULL XML"});
    EXPECT_EQ(shown(kClone), "snapclone_in_progress") << "other disks' reads and name lists don't count";
    EXPECT_EQ(read("d1"), "parent") << "a read of the source counts too";
    EXPECT_EQ(read(kClone), "snapclone_in_progress");
    EXPECT_EQ(read(kClone), "none");
    EXPECT_EQ(read("d1"), "none");
    EXPECT_EQ(read(kClone, "operationalstatedetail"), "none");
    EXPECT_EQ(read("d1", "childvdiskname"), "n/a") << "a finished clone is no child";
}

TEST_F(Copies, SecondsFollowTheSimulatedClockForSnapclonesAndRestores)
{
    admin({"set", "copy_progress=seconds", "snapclone_seconds=60", "restore_seconds=120"});
    ok({"ADD COPY \"d1_c\" VDISK=\"d1\""});
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(read(kClone), "snapclone_in_progress") << "reads don't count";
    }
    EXPECT_EQ(read(kClone, "operationalstatedetail"), "copy_in_progress");
    admin({"clock", "advance", "59"});
    EXPECT_EQ(shown(kClone), "snapclone_in_progress");
    admin({"clock", "advance", "2"});
    EXPECT_EQ(shown(kClone), "none") << "done without a read";
    EXPECT_EQ(read("d1"), "none");

    // The restore of d1 from its clone: the clone, the copy's source, reads parent until the end.
    ok({"DELETE LUN \"\\Hosts\\h1\\1\"", "SET VDISK \"d1\" CHANGE_INTO_CONTAINER",
        "SET VDISK \"d1_c\" WRITECACHE=writethrough", "ADD COPY \"d1\" VDISK=\"d1_c\" CONTAINER=\"d1\""});
    EXPECT_EQ(read(kClone), "parent");
    EXPECT_EQ(read("d1"), "snapclone_in_progress");
    admin({"clock", "advance", "119"});
    EXPECT_EQ(read(kClone), "parent");
    admin({"clock", "advance", "2"});
    EXPECT_EQ(read(kClone), "none");
    EXPECT_EQ(read("d1"), "none");
}

TEST_F(Copies, ACopyCanStallGoOnFailOrEndAtOnce)
{
    admin({"set", "snapclone_reads=1"});
    ok({"ADD COPY \"d1_c\" VDISK=\"d1\""});
    admin({"change", "disk", "EVA01", kClone, "copy=stalled"});
    EXPECT_EQ(read(kClone, "operationalstatedetail"), "copy_stalled");
    EXPECT_EQ(read(kClone), "snapclone_in_progress");
    EXPECT_EQ(read(kClone), "snapclone_in_progress") << "a stalled copy doesn't progress";
    admin({"change", "disk", "EVA01", kClone, "copy=running", "copy_seconds=30"});
    EXPECT_EQ(read(kClone), "snapclone_in_progress");
    admin({"clock", "advance", "31"});
    EXPECT_EQ(shown(kClone), "none");

    ok({"DELETE VDISK \"d1_c\"", "ADD COPY \"d1_c\" VDISK=\"d1\""});
    admin({"change", "disk", "EVA01", kClone, "copy=failed"});
    EXPECT_EQ(read(kClone), "none");
    EXPECT_EQ(read(kClone, "operationalstate"), "failed");
    EXPECT_EQ(read("d1"), "none") << "the source is free";

    ok({"ADD COPY \"d3_c\" VDISK=\"\\Virtual Disks\\f\\d2\""});
    admin({"change", "disk", "EVA01", "\\Virtual Disks\\f\\d3_c", "copy_reads=3"});
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(read("\\Virtual Disks\\f\\d3_c"), "snapclone_in_progress") << i;
    }
    admin({"change", "disk", "EVA01", "\\Virtual Disks\\f\\d3_c", "copy=done"});
    EXPECT_EQ(shown("\\Virtual Disks\\f\\d3_c\\ACTIVE"), "none");
    const Outcome none = h.evasim({"change", "disk", "EVA01", "d1", "copy=done"});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.err, "evasim change: no copy runs into \\Virtual Disks\\d1\\ACTIVE\n");
}

TEST_F(Copies, ADemandSnapshotTakesWhatWasWrittenWithinTheFreeSpace)
{
    admin({"change", "cell", "EVA01", "total=50GB"});  // 42.5 GB are used
    ok({"ADD SNAPSHOT \"v\" VDISK=\"\\Virtual Disks\\f\\d3\""});
    admin({"change", "disk", "EVA01", "\\Virtual Disks\\f\\d3\\v", "written=5GB"});
    EXPECT_EQ(h.table("cells")[0].at("used"), "47.50 GB");
    const Outcome full = h.evasim({"change", "disk", "EVA01", "\\Virtual Disks\\f\\d3\\v", "written=8GB"});
    EXPECT_EQ(full.status, 1);
    EXPECT_NE(full.err.find("Not enough free space"), std::string::npos) << full.err;
    EXPECT_EQ(h.table("cells")[0].at("used"), "47.50 GB");
}

TEST_F(Copies, AFamilyShowsAsATreeOfSnapshotsAndCopiesWithTheirProgress)
{
    admin({"set", "snapclone_reads=3"});
    ok({"ADD COPY \"d2_clone000\" VDISK=\"\\Virtual Disks\\f\\d2\"", "ADD SNAPSHOT \"c_v\" VDISK=\"d2_clone000\"",
        "ADD SNAPSHOT \"d2_vsnap000\" VDISK=\"\\Virtual Disks\\f\\d2\""});
    const Outcome tree = h.evasim({"show", "disks", "--family", "d2", "--cell", "EVA01", "--format", "tsv"});
    EXPECT_EQ(tree.out,
              "# Family d2\n"
              "cell\tdisk\ttype\tsize\tsharing\tcopy\tpresentations\n"
              "EVA01\t\\Virtual Disks\\f\\d2\\ACTIVE\tactive\t20 GB\tparent\t\t\n"
              "EVA01\t+- copy: \\Virtual Disks\\f\\d2_clone000\\ACTIVE\tsnapclone\t20 GB\tsnapclone_in_progress\t"
              "copy running, 3 reads left\t\n"
              "EVA01\t   +- \\Virtual Disks\\f\\d2_clone000\\c_v\tvsnap\t20 GB\tsnapshot\t\t\n"
              "EVA01\t+- \\Virtual Disks\\f\\d2\\d2_vsnap000\tvsnap\t20 GB\tsnapshot\t\t\n");
    EXPECT_EQ(h.evasim({"show", "disks", "--family", "nosuch"}).err, "evasim show: no family 'nosuch'\n");
}

TEST_F(Copies, ScenariosDeclareCopiesInProgressAndDrGroupsWithoutLinks)
{
    std::string const file = h.home() + "/copies.scn";
    std::ofstream(file) << "server cv1 user=admin password=secret\n"
                           "cell A wwn=5000-1FE1-5000-00A1 servers=cv1\ncell B wwn=5000-1FE1-5000-00B1 servers=cv1\n"
                           "vdisk A \"\\Virtual Disks\\src\" size=1GB\n"
                           "snapclone A src src_clone000 seconds=30\n"
                           "snapshot A src src_vsnap000 written=512MB\n"
                           "drgroup G source=A destination=B links=no\n";
    admin({"init", "--scenario", file});
    admin({"clock", "freeze"});
    EXPECT_EQ(shown("\\Virtual Disks\\src_clone000\\ACTIVE"), "snapclone_in_progress");
    admin({"clock", "advance", "31"});
    EXPECT_EQ(shown("\\Virtual Disks\\src_clone000\\ACTIVE"), "none");
    EXPECT_EQ(h.table("cells")[0].at("used"), "3.12 GB") << "1.25 GB each for disk and clone, 0.625 GB written";
    const Outcome group = h.sssu({"LS DR_GROUP \"G\" XML"}, "A");
    EXPECT_TRUE(group.has("<links>\n  </links>")) << group.out;
}

// The road of a DR group snapclone: the group suspended at its source, its destination disk copied
// on the other cell, the group resumed; a fault-changed state shows on both cells.
TEST_F(Copies, ADrDestinationIsCopiedWhileItsGroupIsSuspendedAndGroupStatesCanChange)
{
    ok({"SET DR_GROUP \"\\Data Replication\\DRG1\" SUSPEND"});
    ok({"ADD COPY \"d2_drclone000\" VDISK=\"\\Virtual Disks\\r\\d2\\ACTIVE\""}, "EVA02");
    ok({"SET DR_GROUP \"\\Data Replication\\DRG1\" NOSUSPEND"});
    EXPECT_EQ(h.disk("\\Virtual Disks\\r\\d2_drclone000\\ACTIVE").at("type"), "snapclone");

    admin(
        {"change", "drgroup", "DRG1", "operationalstate=failed", "membercondition=copying", "linkstate=disconnected"});
    for (const char *cell : {"EVA01", "EVA02"}) {
        const Outcome g = h.sssu({"LS DR_GROUP \"DRG1\" XML"}, cell);
        EXPECT_EQ(element(g.out, "operationalstate"), "failed") << cell;
        EXPECT_EQ(element(g.out, "membercondition"), "copying") << cell;
        EXPECT_EQ(element(g.out, "linkstate"), "disconnected") << cell;
    }
    admin({"change", "drgroup", "DRG1", "links=no"});
    EXPECT_EQ(element(h.sssu({"LS DR_GROUP \"DRG1\" XML"}).out, "scellname"), "(missing)");
}

}  // namespace
