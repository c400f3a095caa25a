// The rules of import and deport on presentations made in the test: which hosts lose the
// disk, where the walk stops, when the host keeps what it has, and the LUNs a shared disk tries.
#include <gtest/gtest.h>

#include "hpeva_rules.h"

using namespace hpeva_rules;
using Walk = SHpEvaPresentationWalk;
using Hosts = std::vector<std::string>;

namespace {

// Three hosts in the map's order; the host asked for stands in the middle, so that the walk
// shows what it does before and after it.
const std::map<std::string, int32_t> kThree = {{"\\Hosts\\a", 4}, {"\\Hosts\\b", 5}, {"\\Hosts\\c", 6}};
const std::map<std::string, int32_t> kOthers = {{"\\Hosts\\a", 4}, {"\\Hosts\\c", 6}};
const char kHost[] = "\\Hosts\\b";

Walk plain(const std::map<std::string, int32_t> &presentations, bool singleHost, bool deport)
{
    return walkPresentations(presentations, kHost, singleHost, deport, false, -1);
}

Walk shared(int32_t recordedLun)
{
    return walkPresentations(kThree, kHost, true, false, true, recordedLun);
}

}  // namespace

TEST(PresentationWalk, EachRowOfDeportAndSingleHost)
{
    // Present, leaving the others: a host that has the disk keeps it and nothing changes.
    Walk w = plain(kThree, false, false);
    EXPECT_EQ(w.outcome, Walk::ALREADY_MAPPED);
    EXPECT_TRUE(w.deletions.empty());
    w = plain(kOthers, false, false);
    EXPECT_EQ(w.outcome, Walk::WALKED);
    EXPECT_TRUE(w.deletions.empty());
    EXPECT_FALSE(w.mapped);

    // Present to this host alone: the others go, the host keeps its presentation.
    w = plain(kThree, true, false);
    EXPECT_EQ(w.outcome, Walk::WALKED);
    EXPECT_EQ(w.deletions, (Hosts{"\\Hosts\\a", "\\Hosts\\c"}));
    EXPECT_TRUE(w.mapped);
    w = plain(kOthers, true, false);
    EXPECT_EQ(w.deletions, (Hosts{"\\Hosts\\a", "\\Hosts\\c"}));
    EXPECT_FALSE(w.mapped);

    // Take it from this host: only its presentation goes, and the walk stops there.
    w = plain(kThree, true, true);
    EXPECT_EQ(w.outcome, Walk::DEPORTED);
    EXPECT_EQ(w.deletions, Hosts{kHost});
    w = plain(kOthers, true, true);
    EXPECT_EQ(w.outcome, Walk::WALKED);
    EXPECT_TRUE(w.deletions.empty());

    // Take it from everyone, also when the host itself has none.
    w = plain(kThree, false, true);
    EXPECT_EQ(w.outcome, Walk::WALKED);
    EXPECT_EQ(w.deletions, (Hosts{"\\Hosts\\a", kHost, "\\Hosts\\c"}));
    EXPECT_EQ(plain(kOthers, false, true).deletions, (Hosts{"\\Hosts\\a", "\\Hosts\\c"}));
}

TEST(PresentationWalk, ASharedDiskKeepsOnlyTheLunOnRecord)
{
    Walk w = shared(5);
    EXPECT_EQ(w.outcome, Walk::WALKED);
    EXPECT_TRUE(w.mapped);
    EXPECT_EQ(w.deletions, (Hosts{"\\Hosts\\a", "\\Hosts\\c"}));

    // Presented from outside on another number: the hosts before it are gone already, and
    // those after it are left.
    w = shared(9);
    EXPECT_EQ(w.outcome, Walk::LUN_MISMATCH);
    EXPECT_EQ(w.deletions, Hosts{"\\Hosts\\a"});

    // No record: the host's own presentation goes too, so that the map's number replaces it.
    w = shared(-1);
    EXPECT_EQ(w.outcome, Walk::WALKED);
    EXPECT_FALSE(w.mapped);
    EXPECT_EQ(w.deletions, (Hosts{"\\Hosts\\a", kHost, "\\Hosts\\c"}));

    // Presenting to several hosts never asks the record.
    EXPECT_EQ(walkPresentations(kThree, kHost, false, false, true, 9).outcome, Walk::ALREADY_MAPPED);
}

TEST(LunChoice, TheRecordFirstThenTheFreeNumbersAndWhatIsNoLunStaysToBeSkipped)
{
    EXPECT_EQ(lunCandidates({"7"}, {"1", "2", "8"}), (std::vector<int32_t>{7, 1, 2, 8}));
    EXPECT_EQ(lunCandidates({"300"}, {"", "3"}), (std::vector<int32_t>{300, 3}));
    EXPECT_EQ(lunCandidates({}, {}), std::vector<int32_t>{});
    EXPECT_FALSE(isLunNumber(300));
    EXPECT_FALSE(isLunNumber(-1));

    EXPECT_EQ(lunOfText("255"), 255);
    EXPECT_EQ(lunOfText("256"), -1);
    EXPECT_EQ(lunOfText("-3"), -1);
    EXPECT_EQ(lunOfText("12abc"), 12) << "read as atoi reads it";
}
