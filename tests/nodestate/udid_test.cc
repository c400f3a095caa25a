// Disk identities: parsing and building (a parse failure on the catch ladder: the ladder's
// test), and how a virtual disk record reads.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "cfistringtool.h"
#include "cfiudid.h"
#include "hpeva_disknames.h"
#include "qrn_results.h"

using namespace qorin_pdk_4_4;

namespace {

int parseFailure(const std::function<void()> &parse, std::string *text = nullptr)
{
    try {
        parse();
    } catch (const CFiUdidException &e) {
        if (text != nullptr) {
            *text = e.getText();
        }
        return e.getNumber();
    }
    return 0;
}

}  // namespace

TEST(Udid, ParsesFourComponentsFromAnyTextKindIgnoringWhatStandsAhead)
{
    const std::vector<CFiUdid> parsed = {
        CFiUdid(std::string("UDID##HP##HSV##ABC##12")),
        CFiUdid(std::string("<tamlin>UDID##HP##HSV##ABC##12")),
        CFiUdid(std::wstring(L"xUDID##HP##HSV##ABC##12")),
        CFiUdid(L"UDID##HP##HSV##ABC##12"),
    };
    for (const CFiUdid &udid : parsed) {
        EXPECT_EQ(udid.getVendor(), "HP");
        EXPECT_EQ(udid.getProduct(), "HSV");
        EXPECT_EQ(udid.getEnclosure(), "ABC");
        EXPECT_EQ(udid.getDisk(), "12");
    }
}

TEST(Udid, MalformedTextsThrowTheirReasonWithTheWholeText)
{
    struct Case {
        std::string text;
        int number;
    };
    const std::vector<Case> cases = {
        {"udid##HP##HSV##ABC##12", 2},  // the head is case-sensitive
        {"", 2},
        {"UDID##HP", 3},
        {"UDID##HP##HSV", 4},
        {"UDID##HP##HSV##", 1},
    };
    for (const Case &c : cases) {
        std::string thrownText;
        EXPECT_EQ(parseFailure([&] { CFiUdid udid(c.text); }, &thrownText), c.number) << c.text;
        EXPECT_EQ(thrownText, c.text);
    }
    EXPECT_EQ(parseFailure([] { CFiUdid udid(static_cast<const wchar_t *>(nullptr)); }), 2);
}

TEST(Udid, AFailedOrShorterParseLeavesNoOldComponents)
{
    CFiUdid udid(std::string("UDID##HP##HSV##ABC##12"));
    udid.parse(std::string("UDID##HP##HSV##0000"));
    EXPECT_EQ(udid.getEnclosure(), "") << "a three-component text has no enclosure";
    EXPECT_EQ(udid.getDisk(), "0000");

    EXPECT_EQ(parseFailure([&] { udid.parse(std::wstring(L"UDID##HP##HSV")); }), 4);
    EXPECT_EQ(udid.getVendor(), "HP") << "filled before the failure";
    EXPECT_EQ(udid.getProduct(), "");
    EXPECT_EQ(udid.getDisk(), "");
}

TEST(Udid, FurtherSeparatorsBelongToTheDiskAndSurviveARoundTrip)
{
    CFiUdid udid(std::string("UDID##HP##HSV##ABC##1##2"));
    EXPECT_EQ(udid.getEnclosure(), "ABC");
    EXPECT_EQ(udid.getDisk(), "1##2");
    EXPECT_EQ(udid.toString(), "UDID##HP##HSV##ABC##1##2");

    CFiUdid shortForm(std::string("UDID##HP##HSV##0000"));
    EXPECT_EQ(shortForm.toString(), "UDID##HP##HSV####0000") << "an empty enclosure keeps its separator";
}

TEST(Udid, ParsingKeepsCaseAndBuildingUpperCases)
{
    CFiUdid udid(std::string("UDID##hp##hsv##5000abc##0000"));
    EXPECT_EQ(udid.getVendor(), "hp");
    EXPECT_EQ(udid.getEnclosure(), "5000abc");
    udid.setDisk("6005abcdef");
    EXPECT_EQ(udid.getPrefix(), "UDID##HP##HSV##");
    EXPECT_EQ(udid.toString(), "UDID##HP##HSV##5000ABC##6005ABCDEF");
    EXPECT_EQ(CFiStringTool::tstr2str(udid.toTString()), udid.toString());
    udid.setEnclosure("e1");
    EXPECT_EQ(udid.toString(), "UDID##HP##HSV##E1##6005ABCDEF");
}

namespace {

SHpEvaVdisk completeDisk()
{
    SHpEvaVdisk disk;
    disk.wwlunid = "6005-08b4-0001";
    disk.objectname = "\\Virtual Disks\\db\\data\\ACTIVE";
    disk.objectwwn = "5000-1FE1-5000-A9F0";
    disk.cellname = L"cell1";
    return disk;
}

}  // namespace

TEST(DiskRecord, CompleteOnlyWithIdentityPathCellIdentityAndCellName)
{
    EXPECT_TRUE(isCompleteDisk(completeDisk()));
    const std::vector<std::function<void(SHpEvaVdisk &)>> drops = {
        [](SHpEvaVdisk &d) { d.wwlunid.clear(); },
        [](SHpEvaVdisk &d) { d.objectname.clear(); },
        [](SHpEvaVdisk &d) { d.objectwwn.clear(); },
        [](SHpEvaVdisk &d) { d.cellname.clear(); },
    };
    for (size_t i = 0; i < drops.size(); ++i) {
        SHpEvaVdisk disk = completeDisk();
        drops[i](disk);
        EXPECT_FALSE(isCompleteDisk(disk)) << "field " << i;
    }
}

TEST(DiskRecord, SnapshotIsAnyPathThatIsNotAnActiveDisks)
{
    SHpEvaVdisk disk;
    EXPECT_FALSE(isSnapshotDisk(disk)) << "no path, no snapshot";
    disk.objectname = "\\Virtual Disks\\db\\data\\ACTIVE";
    EXPECT_FALSE(isSnapshotDisk(disk));
    disk.objectname = "\\Virtual Disks\\db\\data\\snap-data-1";
    EXPECT_TRUE(isSnapshotDisk(disk));
}

TEST(DiskRecord, DisplayNameDropsTheFolderHeadAndTheActiveTail)
{
    SHpEvaVdisk disk;
    disk.cellname = L"c";
    disk.objectname = "\\Virtual Disks\\a\\b\\ACTIVE";
    EXPECT_EQ(getDiskDisplayName(disk), "HP##HSV##c##a\\b");
    disk.objectname = "\\Virtual Disks\\a\\snap-b";
    EXPECT_EQ(getDiskDisplayName(disk), "HP##HSV##c##a\\snap-b") << "a snapshot keeps its whole path";
    disk.objectname = "\\Other\\a\\ACTIVE";
    EXPECT_EQ(getDiskDisplayName(disk), "HP##HSV##c##\\Other\\a") << "only the active tail goes";
    disk.cellname = L"Zelle-\u00E4";
    disk.objectname = "\\Virtual Disks\\x\\ACTIVE";
    EXPECT_EQ(getDiskDisplayName(disk), "HP##HSV##Zelle-\xC3\xA4##x");
}
