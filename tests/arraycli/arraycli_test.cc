// Discovery and the array commands against evasim, each script checked byte for byte as it
// reaches the tool.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <list>
#include <string>
#include <vector>

#include "arraycli_support.h"
#include "cfinetwork.h"
#include "cfistringtool.h"
#include "eva_cells.h"
#include "hpeva_cliexception.h"
#include "hpeva_clitool.h"
#include "qrn_results.h"

using namespace qorin_pdk_4_4;
using arraycli::scriptOf;

namespace {

const char D1[] = "\\Virtual Disks\\d1\\ACTIVE";
const char D2[] = "\\Virtual Disks\\f\\d2\\ACTIVE";
const char D5[] = "\\Virtual Disks\\d5\\ACTIVE";
const char D1_WWN[] = "6005-08b4-0001-0000-0000-0000-00ab-0000";
const char LOGIN_A[] = "cvA user=admin password=secret";
const uint64_t GIGABYTE = 1073741824ull;

// This machine's name as an array would know it.
std::string shortName()
{
    std::string name = CFiNetwork::getComputerName();
    return name.substr(0, name.find('.'));
}

// Two servers share EVA01; EVA03 is small enough to show fractions of a gigabyte. This
// machine is a host two folders deep, with d1 presented to it.
std::string world()
{
    return "server cvA user=admin password=secret\n"
           "server cvB user=admin password=\"two words\"\n"
           "server cvBad user=admin password=right\n"
           "server cvDown user=admin password=secret reachable=no\n"
           "cell EVA01 wwn=5000-1FE1-5000-0001 firmware=6220 total=1TB servers=cvA,cvB,cvBad,cvDown\n"
           "cell EVA02 wwn=5000-1FE1-5000-0002 firmware=6220 total=1TB servers=cvB\n"
           "cell EVA03 wwn=5000-1FE1-5000-0003 firmware=6100 total=1.5GB servers=cvB\n"
           "host EVA01 \"\\Hosts\\h1\" ports=1000-0000-C900-0001\n"
           "host EVA01 \"\\Hosts\\lab\\h2\" ports=1000-0000-C900-0002,1000-0000-C900-0003\n"
           "host EVA01 \"\\Hosts\\lab\\rack\\" +
           shortName() +
           "\" ports=1000-0000-C900-0004\n"
           "vdisk EVA01 \"\\Virtual Disks\\d1\" size=10GB wwlunid=" +
           D1_WWN +
           "\n"
           "vdisk EVA01 \"\\Virtual Disks\\f\\d2\" size=20GB redundancy=vraid0\n"
           "vdisk EVA01 \"\\Virtual Disks\\d5\" size=1GB\n"
           "container EVA01 \"\\Virtual Disks\\f\\c1\" size=1GB\n"
           "present EVA01 \"\\Virtual Disks\\d1\" \"\\Hosts\\h1\" lun=1\n"
           "present EVA01 \"\\Virtual Disks\\d1\" \"\\Hosts\\lab\\h2\" lun=4\n"
           "present EVA01 \"\\Virtual Disks\\d1\" \"\\Hosts\\lab\\rack\\" +
           shortName() +
           "\" lun=2\n"
           "drgroup DRG1 source=EVA01 destination=EVA02\n"
           "member DRG1 \"\\Virtual Disks\\f\\d2\" remote=\"\\Virtual Disks\\r\\d2\"\n";
}

class ArrayCli : public ::testing::Test {
protected:
    ArrayCli() : array(world()), tool(array.tool()), eva01(tamlin_test::cell(L"EVA01", L"cvA"))
    {
        arraycli::processRecorder().clear();
    }
    void SetUp() override { ASSERT_TRUE(array.loaded) << array.evasim("show all"); }

    // The presentations of a disk as evasim holds them: "host:lun,...".
    std::string presentationsOf(const std::string &path)
    {
        for (const auto &row : array.table("disks")) {
            if (row.at("path") == path) {
                return row.at("presentations");
            }
        }
        return "<no disk>";
    }

    arraycli::Array array;
    CHpEvaCliTool tool;
    SHpEvaCell eva01;
};

std::vector<std::wstring> namesOf(const std::vector<SHpEvaCell> &cells)
{
    std::vector<std::wstring> names;
    for (const SHpEvaCell &cell : cells) {
        names.push_back(cell.cellname);
    }
    return names;
}

}  // namespace

TEST_F(ArrayCli, VersionFromTheBannerAlone)
{
    EXPECT_EQ(tool.checkVersion(), 0);
    EXPECT_EQ(array.script(1), scriptOf("", "", {}));

    array.evasim("fault banner --text 'Version: 9.2.0 '");
    EXPECT_EQ(tool.checkVersion(), QRN_ERR_INIT_FAILED);
    array.evasim("fault banner --text 'SSSU v5.0'");
    EXPECT_EQ(tool.checkVersion(), 0);
}

TEST_F(ArrayCli, DiscoveryGivesEachCellOnceAndSkipsServersThatFail)
{
    // EVA02's detail fails; EVA03 behind it on the same server still counts.
    array.evasim("fault error --match 'LS CELL \"EVA02\"'");
    std::vector<SFiCredential> credentials(5);
    credentials[0] = tamlin_test::login(L"cvA", L"admin", L"");  // no password: never run
    credentials[1] = tamlin_test::login(L"cvBad", L"admin", L"wrong");
    credentials[2] = tamlin_test::login(L"cvDown");
    credentials[3] = tamlin_test::login(L"cvA");
    credentials[3].port = 2372;
    credentials[4] = tamlin_test::login(L"cvB", L"admin", L"two words");

    const std::vector<SHpEvaCell> cells = tool.enumerateCells(credentials);

    EXPECT_EQ(namesOf(cells), (std::vector<std::wstring>{L"EVA01", L"EVA03"}));
    ASSERT_EQ(cells.size(), 2u);
    EXPECT_EQ(cells[0].hostname, L"cvA");
    EXPECT_EQ(cells[0].port, 2372);
    EXPECT_EQ(cells[0].objectwwn, "5000-1FE1-5000-0001");
    EXPECT_EQ(cells[1].hostname, L"cvB");
    EXPECT_EQ(cells[1].password, L"two words");
    // The two failing logins (three runs each, for the connection), LS CELL and a detail per
    // cell name of cvA and cvB.
    ASSERT_EQ(array.runs(), 3 + 3 + 2 + 4);
    EXPECT_EQ(array.script(7), scriptOf(LOGIN_A, "", {"LS CELL"}));
    EXPECT_EQ(array.script(8), scriptOf(LOGIN_A, "", {"LS CELL \"EVA01\" XML"}));
    EXPECT_EQ(array.script(10), scriptOf("cvB user=admin password=two words", "", {"LS CELL \"EVA01\" XML"}));
    // No marker from either failing server, and the failed detail: three reports, no throw.
    const std::vector<std::string> &keys = arraycli::processRecorder().keys;
    EXPECT_EQ(std::count(keys.begin(), keys.end(), "MSG_ERROR_CLI_COMMAND_FAILED"), 3);
}

TEST_F(ArrayCli, CellDetailInBytesAndTheCellFound)
{
    SHpEvaCell small = tamlin_test::cell(L"EVA03", L"cvB", L"two words");
    tool.getCellDetail(small);
    EXPECT_EQ(small.totalstoragespace, 1610612736ull);
    EXPECT_EQ(small.availablestoragespace, 1610612736ull);
    EXPECT_EQ(small.hostname, L"cvB");

    tool.getCellDetail(eva01);
    EXPECT_EQ(eva01.totalstoragespace, 1024 * GIGABYTE);
    for (const auto &row : array.table("cells")) {
        if (row.at("name") == "EVA01") {
            // "981.50 GB": evasim's two decimals, in bytes.
            EXPECT_EQ(eva01.availablestoragespace,
                      static_cast<uint64_t>(std::strtod(row.at("free").c_str(), nullptr) * GIGABYTE));
        }
    }

    const std::vector<SHpEvaCell> cells = {small, eva01};
    SHpEvaCell found;
    EXPECT_EQ(CHpEvaCliTool::findCell("5000-1fe1-5000-0001", cells, found), 0);
    EXPECT_EQ(found.cellname, L"EVA01");
    SHpEvaCell untouched = small;
    EXPECT_EQ(CHpEvaCliTool::findCell("5000-1FE1-5000-0009", cells, untouched), QRN_ERR_NO_SUCH_CELL);
    EXPECT_EQ(untouched.cellname, L"EVA03");
}

TEST_F(ArrayCli, HostsAndDisksOfACell)
{
    const std::string me = shortName();
    EXPECT_EQ(tool.listHosts(eva01),
              (std::vector<std::string>{"\\Hosts\\h1", "\\Hosts\\lab\\h2", "\\Hosts\\lab\\rack\\" + me}));
    EXPECT_EQ(array.script(1), scriptOf(LOGIN_A, "EVA01", {"LS HOST"}));

    std::vector<std::string> paths = tool.listVirtualDisks(eva01);
    EXPECT_EQ(array.script(2), scriptOf(LOGIN_A, "EVA01", {"LS VDISK"}));
    EXPECT_NE(std::find(paths.begin(), paths.end(), D1), paths.end());

    std::vector<SHpEvaHost> hosts;
    tool.getHostInfoList(eva01, hosts);
    EXPECT_EQ(array.script(3), scriptOf(LOGIN_A, "EVA01", {"LS HOST FULL XML"}));
    ASSERT_EQ(hosts.size(), 3u);
    EXPECT_EQ(hosts[1].name, "lab\\h2");
    EXPECT_EQ(hosts[2].name, "lab\\rack\\" + me);

    std::list<SHpEvaVdisk> disks;
    tool.getVirtualDiskList(eva01, disks);
    EXPECT_EQ(array.script(4), scriptOf(LOGIN_A, "EVA01", {"LS VDISK FULL XML"}));
    std::vector<std::string> listed;
    for (const SHpEvaVdisk &disk : disks) {
        listed.push_back(disk.objectname);
        EXPECT_EQ(disk.cellname, L"EVA01");
        EXPECT_EQ(disk.objecttype, "virtualdisk");
    }
    // Every disk evasim holds for the cell, bar the container.
    std::vector<std::string> expected;
    for (const auto &row : array.table("disks")) {
        if (row.at("cell") == "EVA01" && row.at("type") != "container") {
            expected.push_back(row.at("path"));
        }
    }
    std::sort(listed.begin(), listed.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(listed, expected);
    EXPECT_EQ(disks.front().objectname, D1);
    EXPECT_EQ(disks.front().capacity, 10 * GIGABYTE);
    EXPECT_EQ(disks.front().presentations.size(), 3u);

    // The disks presented to this machine, by its host path, unquoted.
    const std::vector<SHpEvaVdisk> local = tool.getLocalVdiskList(eva01, nullptr);
    ASSERT_EQ(local.size(), 1u);
    EXPECT_EQ(local[0].objectname, D1);
    EXPECT_EQ(local[0].wwlunid, D1_WWN);
    EXPECT_EQ(array.script(6), scriptOf(LOGIN_A, "EVA01", {"LS HOST \\Hosts\\lab\\rack\\" + me}));
    EXPECT_EQ(array.script(7), scriptOf(LOGIN_A, "EVA01", {std::string("LS VDISK \"") + D1 + "\" XML"}));
}

TEST_F(ArrayCli, MachineNameOnTheArray)
{
    const std::string me = shortName();
    std::string name;
    // By the computer's own name, two folders deep; the whole path comes back.
    EXPECT_EQ(tool.getSSSUHostName(eva01, name, nullptr), 0);
    EXPECT_EQ(name, "\\Hosts\\lab\\rack\\" + me);

    // A name with a domain that no name service knows compares by its first label.
    name.clear();
    const std::string withDomain = me + ".tamlin-test.invalid";
    EXPECT_EQ(tool.getSSSUHostName(eva01, name, withDomain.c_str()), 0);
    EXPECT_EQ(name, "\\Hosts\\lab\\rack\\" + me);

    name = "kept";
    EXPECT_EQ(tool.getSSSUHostName(eva01, name, "tamlin-nomatch.invalid"), QRN_ERR_FAILED);
    EXPECT_EQ(name, "kept");
    EXPECT_EQ(array.script(3), scriptOf(LOGIN_A, "EVA01", {"LS HOST"}));
}

TEST_F(ArrayCli, HostEntryEqualToTheMachinesAddressMatches)
{
    const CFiHostInfo self = CFiNetwork::resolve();
    if (self.address.empty()) {
        GTEST_SKIP() << "this machine's name has no address";
    }
    arraycli::Array byAddress("server cvA user=admin password=secret\n"
                              "cell EVA01 wwn=5000-1FE1-5000-0001 servers=cvA\n"
                              "host EVA01 \"\\Hosts\\tamlin-other\"\n"
                              "host EVA01 \"\\Hosts\\byaddress\\" +
                              self.address + "\"\n");
    ASSERT_TRUE(byAddress.loaded);
    std::string name;
    EXPECT_EQ(byAddress.tool().getSSSUHostName(eva01, name, nullptr), 0);
    EXPECT_EQ(name, "\\Hosts\\byaddress\\" + self.address);
}

TEST_F(ArrayCli, DiskFoundByWwnInAnyCase)
{
    tool.getCellDetail(eva01);
    const std::vector<SHpEvaCell> cells = {tamlin_test::cell(L"EVA02", L"cvB", L"two words"), eva01};
    std::string upper = CFiStringTool::tostrupper(D1_WWN);
    std::string mixed = upper;
    mixed[7] = 'b';
    for (const std::string &wwn : {upper, mixed, std::string(D1_WWN)}) {
        const int before = array.runs();
        const SHpEvaVdisk disk = tool.findVirtualDisk(cells, "5000-1fe1-5000-0001", wwn);
        EXPECT_EQ(disk.objectname, D1) << wwn;
        EXPECT_EQ(disk.wwlunid, D1_WWN);
        EXPECT_EQ(disk.objectwwn, "5000-1FE1-5000-0001");
        EXPECT_EQ(disk.hostname, L"cvA");
        EXPECT_EQ(disk.presentations.size(), 3u);
        // A refresh first, in the same script; the WWN goes in lower case.
        EXPECT_EQ(array.script(before + 1),
                  scriptOf(LOGIN_A, "EVA01", {"REFRESH", std::string("FIND VDISK LUNWWID=") + D1_WWN + " XML"}));
    }

    tool.refresh(eva01);
    EXPECT_EQ(array.script(array.runs()), scriptOf(LOGIN_A, "EVA01", {"REFRESH"}));

    // A WWN the array doesn't have is SSSU's error, not an empty disk.
    try {
        tool.findVirtualDisk(eva01, "6005-08B4-0001-0000-0000-0000-0099-0000");
        ADD_FAILURE();
    } catch (const CHpEvaCliException &e) {
        EXPECT_EQ(e.getKind(), CHpEvaCliException::CLI_COMMAND_FAILED);
    }
}

TEST_F(ArrayCli, PresentationsReadBackAfterAddLunAndGoneAfterDeleteLuns)
{
    array.evasim("set quirk_present_failed=on quirk_deletion_completed=on");
    tool.addLun(eva01, D5, "\\Hosts\\h1", 5);
    EXPECT_EQ(array.script(1),
              scriptOf(LOGIN_A, "EVA01", {std::string("ADD LUN 5 HOST=\"\\Hosts\\h1\"  VDISK=\"") + D5 + "\" "}));
    // LUN 0: the array takes h2's lowest free number.
    tool.addLun(eva01, D5, "\\Hosts\\lab\\h2", 0);
    EXPECT_EQ(array.script(2),
              scriptOf(LOGIN_A, "EVA01", {std::string("ADD LUN 0 HOST=\"\\Hosts\\lab\\h2\"  VDISK=\"") + D5 + "\" "}));

    SHpEvaVdisk disk = tool.getVirtualDiskDetail(eva01, D5);
    EXPECT_EQ(array.script(3), scriptOf(LOGIN_A, "EVA01", {std::string("LS VDISK \"") + D5 + "\" XML"}));
    EXPECT_EQ(disk.presentations, (std::map<std::string, int32_t>{{"\\Hosts\\h1", 5}, {"\\Hosts\\lab\\h2", 1}}));
    EXPECT_EQ(disk.cellname, L"EVA01");

    // A host that isn't presented: the script still runs, without a delete.
    tool.deleteLuns(disk, "\\Hosts\\lab\\rack\\nothere");
    EXPECT_EQ(array.script(4), scriptOf(LOGIN_A, "EVA01", {}));
    tool.deleteLuns(disk, "\\Hosts\\lab\\h2");
    EXPECT_EQ(array.script(5), scriptOf(LOGIN_A, "EVA01", {"DELETE LUN \"\\Hosts\\lab\\h2\\1\""}));
    EXPECT_EQ(presentationsOf(D5), "\\Hosts\\h1:5");

    tool.addLun(eva01, D5, "\\Hosts\\lab\\h2", 9);
    disk = tool.getVirtualDiskDetail(eva01, D5);
    // The quirk line stops a script under EXIT_ON_ERROR: only single commands may meet it.
    array.evasim("set quirk_deletion_completed=off");
    tool.deleteLuns(disk, nullptr);
    EXPECT_EQ(array.script(8),
              scriptOf(LOGIN_A, "EVA01", {"DELETE LUN \"\\Hosts\\h1\\5\"", "DELETE LUN \"\\Hosts\\lab\\h2\\9\""}));
    EXPECT_TRUE(tool.getVirtualDiskDetail(eva01, D5).presentations.empty());
    EXPECT_EQ(presentationsOf(D5), "");
}

TEST_F(ArrayCli, DeletingAPresentedDiskRemovesItsLunsFirst)
{
    const SHpEvaVdisk presented = tool.getVirtualDiskDetail(eva01, D1);
    ASSERT_EQ(presented.presentations.size(), 3u);
    tool.deleteVirtualDisk(presented);
    ASSERT_EQ(array.runs(), 3);
    const std::string me = shortName();
    EXPECT_EQ(array.script(2), scriptOf(LOGIN_A, "EVA01",
                                        {"DELETE LUN \"\\Hosts\\h1\\1\"", "DELETE LUN \"\\Hosts\\lab\\h2\\4\"",
                                         "DELETE LUN \"\\Hosts\\lab\\rack\\" + me + "\\2\""}));
    EXPECT_EQ(array.script(3), scriptOf(LOGIN_A, "EVA01", {std::string("DELETE VDISK \"") + D1 + "\""}));
    EXPECT_EQ(presentationsOf(D1), "<no disk>");

    // Without presentations: one run, and SSSU's "Error: Deletion completed" is no failure.
    array.evasim("set quirk_deletion_completed=on");
    tool.deleteVirtualDisk(tool.getVirtualDiskDetail(eva01, D5));
    EXPECT_EQ(array.runs(), 5);
    EXPECT_EQ(presentationsOf(D5), "<no disk>");
}

TEST_F(ArrayCli, DrGroupWithItsLinksSuspendedAndResumed)
{
    SHpEvaDrGroup group = tool.getDRGroupDetail(eva01, "DRG1");
    EXPECT_EQ(array.script(1), scriptOf(LOGIN_A, "EVA01", {"LS DR_GROUP \"DRG1\" XML"}));
    EXPECT_EQ(group.objectname, "\\Data Replication\\DRG1");
    EXPECT_EQ(group.members, (std::vector<std::string>{D2}));
    ASSERT_EQ(group.links.size(), 1u);
    EXPECT_EQ(group.links[0].scellname, "EVA02");
    const std::string running = group.links[0].suspendstate;

    tool.suspendDrGroup(eva01, "DRG1");
    EXPECT_EQ(array.script(2), scriptOf(LOGIN_A, "EVA01", {"SET DR_GROUP \"DRG1\" SUSPEND"}));
    group = tool.getDRGroupDetail(eva01, "DRG1");
    EXPECT_NE(group.links.at(0).suspendstate, running);
    EXPECT_EQ(array.table("drgroups").at(0).at("suspended"), "yes");

    tool.resumeDrGroup(eva01, "DRG1");
    EXPECT_EQ(array.script(4), scriptOf(LOGIN_A, "EVA01", {"SET DR_GROUP \"DRG1\" NOSUSPEND"}));
    EXPECT_EQ(tool.getDRGroupDetail(eva01, "DRG1").links.at(0).suspendstate, running);
}

TEST_F(ArrayCli, UnreadableListingsAndRefusedNamesThrow)
{
    array.evasim("fault malformed-xml");
    std::list<SHpEvaVdisk> disks(1);
    try {
        tool.getVirtualDiskList(eva01, disks);
        ADD_FAILURE();
    } catch (const CHpEvaCliException &e) {
        EXPECT_EQ(e.getKind(), CHpEvaCliException::CLI_COMMAND_FAILED);
        EXPECT_EQ(std::wstring(e.getCommand().c_str()), L"LS VDISK FULL XML");
        EXPECT_FALSE(e.getErrorText().empty());
        ASSERT_FALSE(e.getOutput().empty());
        EXPECT_EQ(e.getOutput().front().rfind("<?xml", 0), 0u);
    }

    EXPECT_THROW(tool.getVirtualDiskDetail(eva01, "\\Virtual Disks\\nothere\\ACTIVE"), CHpEvaCliException);
}
