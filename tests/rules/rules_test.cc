// The enumerations' rules on records made in the test: which flags are refused, which
// filters pass the provider, a cell and a disk, and how a host is named.
#include <gtest/gtest.h>

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

TEST(EnumerationRules, AHostByTheLastComponentOfItsPath)
{
    EXPECT_EQ(hostDisplayName("\\Hosts\\lab\\rack\\db01"), L"db01");
    EXPECT_EQ(hostDisplayName("\\Hosts\\h1"), L"h1");
    EXPECT_EQ(hostDisplayName("plain"), L"plain");
}
