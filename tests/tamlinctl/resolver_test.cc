// How a command's DISK words become disks: which forms of a name are taken, which words are
// refused, and that one listing serves every word.
#include <gtest/gtest.h>

#include "disk_resolver.h"

namespace {

const std::vector<KnownDisk> kListing = {
    {"HP##HSV##EVA01##d1", "UDID##HP##HSV##5000-1FE1-5000-0001##6005-08B4-0001", 10, ""},
    {"HP##HSV##EVA01##f\\d3", "UDID##HP##HSV##5000-1FE1-5000-0001##6005-08B4-0003", 10, ""},
    {"HP##HSV##EVA01##f\\d3\\d3_vsnap000", "UDID##HP##HSV##5000-1FE1-5000-0001##6005-08B4-0004", 10, ""},
    {"HP##HSV##EVA02##d1", "UDID##HP##HSV##5000-1FE1-5000-0002##6005-08B4-0101", 10, ""},
    {"HP##HSV##EVA02##Data", "UDID##HP##HSV##5000-1FE1-5000-0002##6005-08B4-0102", 10, ""},
    {"HP##HSV##EVA01##data", "UDID##HP##HSV##5000-1FE1-5000-0001##6005-08B4-0005", 10, ""},
};

// The UDID a word resolves to, or "refused: <reason>".
std::string resolved(const std::string &word)
{
    KnownDisk disk;
    std::string error;
    if (!DiskResolver::match(word, kListing, disk, error)) {
        return "refused: " + error;
    }
    EXPECT_EQ(disk.word, word);
    return disk.udid;
}

}  // namespace

TEST(DiskResolver, EveryFormOfANameAndAUdidInAnyCase)
{
    const std::string d3 = kListing[1].udid;
    EXPECT_EQ(resolved("HP##HSV##EVA01##f\\d3"), d3);
    EXPECT_EQ(resolved("EVA01##f\\d3"), d3);
    EXPECT_EQ(resolved("f\\d3"), d3);
    EXPECT_EQ(resolved("\\Virtual Disks\\f\\d3\\ACTIVE"), d3);
    EXPECT_EQ(resolved("EVA01##\\Virtual Disks\\f\\d3\\ACTIVE"), d3);
    EXPECT_EQ(resolved("f\\d3\\d3_vsnap000"), kListing[2].udid) << "a snapshot keeps its whole path";
    EXPECT_EQ(resolved("udid##hp##hsv##5000-1fe1-5000-0001##6005-08b4-0003"), d3);
}

TEST(DiskResolver, APathOnSeveralCellsNeedsItsCellAndCaseCountsOnlyWithoutAnExactName)
{
    const std::string both = resolved("d1");
    EXPECT_NE(both.find("refused: 'd1' names 2 disks: HP##HSV##EVA01##d1 ("), std::string::npos) << both;
    EXPECT_NE(both.find("HP##HSV##EVA02##d1 (UDID##HP##HSV##5000-1FE1-5000-0002##6005-08B4-0101)"), std::string::npos);
    EXPECT_EQ(resolved("EVA02##d1"), kListing[3].udid);

    EXPECT_EQ(resolved("Data"), kListing[4].udid) << "the exact name wins over one that differs in case";
    EXPECT_EQ(resolved("data"), kListing[5].udid);
    EXPECT_EQ(resolved("DATA").rfind("refused: 'DATA' names 2 disks", 0), 0u);
    EXPECT_EQ(resolved("eva01##F\\D3"), kListing[1].udid) << "arrays don't tell names apart by case";
}

TEST(DiskResolver, WordsThatNameNoDiskAreRefusedWithTheReason)
{
    EXPECT_EQ(resolved("f\\d9"),
              "refused: no disk is named 'f\\d9' on the arrays the provider reaches (see tamlinctl disks)");
    EXPECT_EQ(resolved("d3"), "refused: no disk is named 'd3' on the arrays the provider reaches; did you mean "
                              "HP##HSV##EVA01##f\\d3 (UDID##HP##HSV##5000-1FE1-5000-0001##6005-08B4-0003)?");
    EXPECT_EQ(resolved("EVA02##f\\d3").rfind("refused: no disk is named", 0), 0u) << "the cell is part of the name";
    EXPECT_EQ(resolved("UDID##HP##HSV##5000-1FE1-5000-0001##FFFF"),
              "refused: no disk of the arrays the provider reaches has the UDID "
              "UDID##HP##HSV##5000-1FE1-5000-0001##FFFF (see tamlinctl disks)");
    EXPECT_EQ(resolved("EVA01##").rfind("refused: 'EVA01##' names no disk", 0), 0u);
}

TEST(DiskResolver, OneListingForAllWordsAndTheListersStatusEndsTheCommand)
{
    int listings = 0;
    DiskResolver resolver([&](std::vector<KnownDisk> &disks) {
        ++listings;
        disks = kListing;
        return 0;
    });
    std::vector<KnownDisk> disks;
    EXPECT_EQ(resolver.resolve({"f\\d3", "EVA02##d1"}, disks), 0);
    ASSERT_EQ(disks.size(), 2u);
    EXPECT_EQ(disks[1].udid, kListing[3].udid);
    EXPECT_EQ(resolver.resolve({"d1"}, disks), DiskResolver::kNotFound);
    EXPECT_TRUE(disks.empty());
    EXPECT_NE(resolver.error().find("names 2 disks"), std::string::npos);
    EXPECT_EQ(listings, 1);
    EXPECT_EQ(resolver.known(disks, true), 0);
    EXPECT_EQ(listings, 2) << "fresh lists again";

    DiskResolver failing([](std::vector<KnownDisk> &) { return 1; });
    EXPECT_EQ(failing.resolve({"d1"}, disks), 1);
}
