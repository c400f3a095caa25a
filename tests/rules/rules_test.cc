// The provider's rules on records made in the test: which flags are refused, which filters pass
// the provider, a cell and a disk, the checks of a snapshot group, the
// free snapshot name and which names are the provider's copies.
#include <gtest/gtest.h>

#include "hpeva_disknames.h"
#include "hpeva_rules.h"

using namespace hpeva_rules;

namespace {

SHpEvaVdisk disk(const char *path)
{
    SHpEvaVdisk d;
    d.objectname = path;
    return d;
}

}  // namespace

TEST(EnumerationRules, FlagsWithoutTheServedBitAreRefused)
{
    EXPECT_FALSE(flagsRefused(0));
    EXPECT_FALSE(flagsRefused(FLAG_SERVED));
    EXPECT_FALSE(flagsRefused(FLAG_SERVED | FLAG_NO_SNAPSHOTS | FLAG_NO_ACTIVE));
    EXPECT_TRUE(flagsRefused(FLAG_NO_SNAPSHOTS));
    EXPECT_TRUE(flagsRefused(FLAG_NO_ACTIVE));
}

TEST(EnumerationRules, TheIdentityKeysIgnoreCaseAndAnotherProviderOrVendorFails)
{
    EXPECT_TRUE(providerPasses(CHpEvaNodeFilter(nullptr)));
    EXPECT_TRUE(providerPasses(CHpEvaNodeFilter(L"vendor_id=hp,product_id=hsv,provider_name=TAMLIN")));
    EXPECT_FALSE(providerPasses(CHpEvaNodeFilter(L"provider_name=other")));
    EXPECT_FALSE(providerPasses(CHpEvaNodeFilter(L"vendor_id=IBM")));
    EXPECT_FALSE(providerPasses(CHpEvaNodeFilter(L"product_id=HSV2")));
}

TEST(EnumerationRules, ACellByNameOrIdIgnoringCase)
{
    SHpEvaCell cell;
    cell.cellname = L"EVA 03";
    cell.objectwwn = "5000-1FE1-5000-00C3";
    EXPECT_TRUE(cellPasses(CHpEvaNodeFilter(L"enclosure_name=eva 03"), cell));
    EXPECT_TRUE(cellPasses(CHpEvaNodeFilter(L"enclosure_id=5000-1fe1-5000-00c3"), cell));
    EXPECT_FALSE(cellPasses(CHpEvaNodeFilter(L"enclosure_name=EVA 03,enclosure_id=5000-1FE1-5000-0001"), cell));
    EXPECT_FALSE(cellPasses(CHpEvaNodeFilter(L"enclosure_name=EVA"), cell)) << "equal, not a prefix";
}

TEST(EnumerationRules, ADiskByItsPrefixWithCaseAndAsSnapshotOrActive)
{
    const SHpEvaVdisk active = disk("\\Virtual Disks\\db\\data\\ACTIVE");
    const SHpEvaVdisk snapshot = disk("\\Virtual Disks\\db\\data\\data_snap");
    const CHpEvaNodeFilter db(L"node_prefix=\\db\\");
    EXPECT_TRUE(diskPasses(db, FLAG_SERVED, active));
    EXPECT_TRUE(diskPasses(db, FLAG_SERVED, snapshot));
    EXPECT_FALSE(diskPasses(CHpEvaNodeFilter(L"node_prefix=\\DB\\"), 0, active)) << "the prefix keeps its case";

    EXPECT_TRUE(diskPasses(db, FLAG_SERVED | FLAG_NO_SNAPSHOTS, active));
    EXPECT_FALSE(diskPasses(db, FLAG_SERVED | FLAG_NO_SNAPSHOTS, snapshot));
    EXPECT_FALSE(diskPasses(db, FLAG_SERVED | FLAG_NO_ACTIVE, active));
    EXPECT_TRUE(diskPasses(db, FLAG_SERVED | FLAG_NO_ACTIVE, snapshot));
    EXPECT_FALSE(diskPasses(db, FLAG_SERVED | FLAG_NO_SNAPSHOTS | FLAG_NO_ACTIVE, snapshot));
}

// Selection, DR groups and the free snapshot name, on records made here. The keys' arguments
// are shown end to end.
namespace {

SHpEvaVdisk active(const char *family, const char *folder = "\\Virtual Disks\\f\\")
{
    SHpEvaVdisk d;
    d.familyname = family;
    d.objectname = std::string(folder) + family + "\\ACTIVE";
    d.childvdiskname = "n/a";
    return d;
}

std::string keyOf(const SHpEvaRefusal &refused)
{
    return refused ? refused.key : "passed";
}

SHpEvaDrGroup goodGroup()
{
    SHpEvaDrGroup group;
    group.objectname = "\\Data Replication\\DRG1";
    group.drmmode = "source";
    group.membercondition = "normal";
    group.operationalstate = "good";
    group.parentstoragecellname = "EVA01";
    group.links.push_back({"EVA02", "id2", "connected", "none"});
    return group;
}

SHpEvaCell cellNamed(const wchar_t *name, const char *wwn)
{
    SHpEvaCell cell;
    cell.cellname = name;
    cell.objectwwn = wwn;
    return cell;
}

}  // namespace

TEST(SelectionRules, OnlyActiveDisksAndASnapcloneOnlyOfOneWithoutSnapshots)
{
    SHpEvaVdisk disk = active("d2");
    for (const char *method : {METHOD_VSNAP, METHOD_SNAPSHOT, METHOD_SNAPCLONE, METHOD_DR_SNAPCLONE, "any"}) {
        EXPECT_FALSE(selectionRefusal(disk, method, "6005", "G")) << method;
    }
    disk.childvdiskname = "d2_vsnap000";
    EXPECT_FALSE(selectionRefusal(disk, METHOD_VSNAP, "6005", "G"));
    EXPECT_FALSE(selectionRefusal(disk, "any", "6005", "G")) << "any is checked as a vsnap";
    EXPECT_EQ(keyOf(selectionRefusal(disk, METHOD_SNAPCLONE, "6005", "G")),
              "MSG_ERROR_VERIFY_FAILED_CREATE_CLONE_WITH_VSNAP_PRESENT_NOT_SUPPORTED");

    SHpEvaVdisk snapshot = disk;
    snapshot.objectname = "\\Virtual Disks\\f\\d2\\d2_vsnap000";
    for (const char *method : {METHOD_VSNAP, METHOD_SNAPCLONE, "any"}) {
        EXPECT_EQ(keyOf(selectionRefusal(snapshot, method, "6005", "G")),
                  "MSG_ERROR_VERIFY_FAILED_OPERATIONS_ON_VSNAP_NOT_SUPPORTED")
            << method;
    }
    EXPECT_EQ(keyOf(selectionRefusal(SHpEvaVdisk(), METHOD_VSNAP, "6005", "G")),
              "MSG_ERROR_VERIFY_FAILED_OPERATIONS_ON_VSNAP_NOT_SUPPORTED")
        << "a disk the array didn't find";
}

// Each refusal's key and arguments are shown end to end; here what the array can't easily show:
// the order of the checks, and which cell becomes the remote one.
TEST(DrGroupRules, TheFirstFailingCheckAndTheRemoteCellByTheFirstLinkExactly)
{
    SHpEvaVdisk disk = active("d2");
    disk.drmgroupname = "\\Data Replication\\DRG2";
    EXPECT_FALSE(drMembershipRefusal(disk, true, SHpEvaDrGroup())) << "the first node's group is read after";
    EXPECT_EQ(keyOf(drMembershipRefusal(disk, false, SHpEvaDrGroup())), "MSG_ERROR_DR_GROUP_NAMES_DONT_MATCH")
        << "no group read: the first node was skipped";

    const std::vector<SHpEvaCell> cells = {cellNamed(L"EVA01", "W1"), cellNamed(L"EVA02", "W2"),
                                           cellNamed(L"eva02", "W3"), cellNamed(L"EVA02", "W4")};
    SHpEvaDrGroup group = goodGroup();
    ASSERT_FALSE(drGroupRefusal(disk, cells, group));
    EXPECT_EQ(group.remoteCell.objectwwn, "W4") << "the last cell of that exact name";

    const std::pair<void (*)(SHpEvaDrGroup &), const char *> cases[] = {
        {[](SHpEvaDrGroup &g) { g.drmmode = "destination", g.operationalstate = "failed"; },
         "MSG_ERROR_DR_GROUP_IS_NOT_SOURCED_ON_THIS_CELL_ERROR"},
        {[](SHpEvaDrGroup &g) { g.membercondition = "degraded", g.links.clear(); },
         "MSG_ERROR_DR_GROUP_MEMBER_CONDITION_ERROR"},
        {[](SHpEvaDrGroup &g) {
             g.links.insert(g.links.begin(), {"EVA09", "", "", ""});
         },
         "MSG_ERROR_DR_GROUP_NO_REMOTE_CELL_LINKS_FOUND"},
        {[](SHpEvaDrGroup &g) { g.links.front().scellname = "Eva02"; },
         "MSG_ERROR_DR_GROUP_NO_REMOTE_CELL_LINKS_FOUND"},
    };
    for (const auto &c : cases) {
        SHpEvaDrGroup spoiled = goodGroup();
        c.first(spoiled);
        EXPECT_EQ(keyOf(drGroupRefusal(disk, cells, spoiled)), c.second);
    }
}

TEST(SnapshotNameRules, CountersInHexSkippingTakenNamesInsideOrBesideTheFamily)
{
    const SHpEvaVdisk d2 = active("d2");
    std::string name;
    std::string path;
    ASSERT_TRUE(freeSnapshotName(d2, true, "_vsnap", {"\\Virtual Disks\\f\\d2\\ACTIVE"}, name, path));
    EXPECT_EQ(name, "d2_vsnap000");
    EXPECT_EQ(path, "\\Virtual Disks\\f\\d2\\d2_vsnap000");
    ASSERT_TRUE(freeSnapshotName(d2, false, "_clone", {}, name, path));
    EXPECT_EQ(path, "\\Virtual Disks\\f\\d2_clone000") << "a snapclone is a family beside the source's";

    std::vector<std::string> taken;
    for (int i = 0; i < 10; ++i) {
        taken.push_back("\\Virtual Disks\\f\\d2\\d2_snap00" + std::to_string(i));
    }
    freeSnapshotName(d2, true, "_snap", taken, name, path);
    EXPECT_EQ(name, "d2_snap00a");
    freeSnapshotName(d2, true, "_snap", {"\\Virtual Disks\\f\\d2\\D2_SNAP000"}, name, path);
    EXPECT_EQ(name, "d2_snap001") << "the array tells names apart without case";
    freeSnapshotName(d2, false, "_clone", {"\\Virtual Disks\\f\\d2_clone000x\\ACTIVE"}, name, path);
    EXPECT_EQ(name, "d2_clone001") << "a longer name holding the candidate takes it";
    freeSnapshotName(d2, true, "_vsnap", {"\\Virtual Disks\\g\\d2\\d2_vsnap000"}, name, path);
    EXPECT_EQ(name, "d2_vsnap000") << "the same name in another folder is no conflict";

    taken.clear();
    for (int i = 0; i <= 0xfff; ++i) {
        char number[8];
        snprintf(number, sizeof number, "%03x", i);
        taken.push_back(std::string("\\Virtual Disks\\f\\d2\\d2_vsnap") + number);
    }
    freeSnapshotName(d2, true, "_vsnap", taken, name, path);
    EXPECT_EQ(name, "d2_vsnap1000");
}

TEST(SnapshotNameRules, NoNameForASnapshotAndALongNameEndsTheSearch)
{
    SHpEvaVdisk snapshot = active("d2");
    snapshot.objectname = "\\Virtual Disks\\f\\d2\\d2_vsnap000";
    std::string name = "unchanged";
    std::string path;
    EXPECT_FALSE(freeSnapshotName(snapshot, true, "_vsnap", {}, name, path));
    EXPECT_EQ(name, "unchanged");

    const SHpEvaVdisk inactive = active("INACTIVE", "\\Virtual Disks\\ACTIVE\\");
    ASSERT_TRUE(freeSnapshotName(inactive, true, "_snap", {}, name, path));
    EXPECT_EQ(path, "\\Virtual Disks\\ACTIVE\\INACTIVE\\INACTIVE_snap000") << "the marker at the end counts";

    const SHpEvaVdisk longName = active(std::string(250, 'x').c_str());
    ASSERT_TRUE(
        freeSnapshotName(longName, true, "_vsnap", {"\\Virtual Disks\\f\\" + std::string(300, 'x')}, name, path));
    EXPECT_EQ(name.size(), SNAPSHOT_NAME_MAX);
    EXPECT_EQ(path.size(), SNAPSHOT_NAME_MAX);
}

TEST(CopyNames, TheFourSuffixesAndACounterOfThreeOrMoreLowerCaseHexDigits)
{
    EXPECT_TRUE(isCopyName(disk("\\Virtual Disks\\db\\data\\data_vsnap000")));
    EXPECT_TRUE(isCopyName(disk("\\Virtual Disks\\db\\data\\data_snap00f")));
    EXPECT_TRUE(isCopyName(disk("\\Virtual Disks\\db\\data_clone1000\\ACTIVE"))) << "a snapclone is a family";
    EXPECT_TRUE(isCopyName(disk("\\Virtual Disks\\r\\data_drclone0ab\\ACTIVE")));
    EXPECT_TRUE(isCopyName(disk("my_clone_clone002")));

    EXPECT_FALSE(isCopyName(disk("\\Virtual Disks\\db\\data\\ACTIVE")));
    EXPECT_FALSE(isCopyName(disk("\\Virtual Disks\\db\\data\\data_vsnap00")));
    EXPECT_FALSE(isCopyName(disk("\\Virtual Disks\\db\\data\\data_vsnap00A")));
    EXPECT_FALSE(isCopyName(disk("\\Virtual Disks\\db\\data\\data_snapshot000")));
    EXPECT_FALSE(isCopyName(disk("\\Virtual Disks\\db\\_clone000\\ACTIVE"))) << "a name comes before the suffix";
    EXPECT_FALSE(isCopyName(disk("\\Virtual Disks\\db_clone000\\data\\ACTIVE"))) << "only the disk's own name";
}
