// The host's filter text: how items are split, trimmed, overridden and where parsing stops,
// and the three tests the enumerations apply.
#include <gtest/gtest.h>

#include "hpeva_nodefilter.h"

TEST(NodeFilter, ItemsAreSplitAtCommasAndLineFeedsAndTrimmed)
{
    CHpEvaNodeFilter filter(L" vendor_id = hp ,,\n\n enclosure_name=\tCell One\r\nnode_prefix=db");
    EXPECT_EQ(filter.size(), 3u);
    EXPECT_EQ(filter.get("vendor_id"), "hp");
    EXPECT_EQ(filter.get("enclosure_name"), "Cell One");
    EXPECT_EQ(filter.get("node_prefix"), "db");
    EXPECT_EQ(CHpEvaNodeFilter(nullptr).size(), 0u);
    EXPECT_EQ(CHpEvaNodeFilter(L"").size(), 0u);
}

TEST(NodeFilter, SkippedItemsEmptyValuesOverridesAndWhereTheParseStops)
{
    CHpEvaNodeFilter bare(L"udid,x=1");
    EXPECT_FALSE(bare.has("udid")) << "an item without = is skipped";
    EXPECT_EQ(bare.get("x"), "1");

    CHpEvaNodeFilter empty(L"udid=,=lonely");
    EXPECT_TRUE(empty.has("udid"));
    EXPECT_EQ(empty.get("udid"), "");
    EXPECT_TRUE(empty.has("lonely")) << "one part is a key, whichever side it stood on";

    EXPECT_EQ(CHpEvaNodeFilter(L"x=1,x=2").get("x"), "2");

    EXPECT_EQ(CHpEvaNodeFilter(L"a=b=c,x=y").size(), 0u) << "stops at the first bad item";
    CHpEvaNodeFilter kept(L"x=y,a=b=c,z=w");
    EXPECT_EQ(kept.size(), 1u);
    EXPECT_EQ(kept.get("x"), "y");
    CHpEvaNodeFilter bareEquals(L"x=y,=,z=w");
    EXPECT_EQ(bareEquals.size(), 1u) << "a bare = has no part and also stops the parse";
}

TEST(NodeFilter, MatchesIgnoresCaseContainedInDoesNotAndAbsentKeysPass)
{
    CHpEvaNodeFilter filter(L"vendor_id=hp,enclosure_id=5000ABCD,node_prefix=Data");
    EXPECT_TRUE(filter.matches("vendor_id", "HP"));
    EXPECT_FALSE(filter.matches("vendor_id", "HPE")) << "equal, not a prefix";
    EXPECT_TRUE(filter.matches("enclosure_id", "5000abcd"));
    EXPECT_TRUE(filter.matches("product_id", "anything"));
    EXPECT_FALSE(filter.matches("product_id", "anything", true));

    EXPECT_TRUE(filter.containedIn("node_prefix", "\\Virtual Disks\\DataBase\\ACTIVE"));
    EXPECT_FALSE(filter.containedIn("node_prefix", "\\Virtual Disks\\database\\ACTIVE"));
    EXPECT_TRUE(filter.containedIn("udid", "x"));
    EXPECT_FALSE(filter.containedIn("udid", "x", true));
}
