// The whole road through dlopen: the provider starts from an install root, finds SSSU (the
// simulator under an SSSU name), logs in to the Command View servers of its credentials
// and lists the disks, enclosures and hosts of the simulated arrays.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "lock_directory.h"
#include "provider_install.h"
#include "provider_test.h"
#include "qrn_results.h"
#include "result_lists.h"

using result_lists::freeList;
using tamlin_test::lastErrorKey;

namespace {

std::string narrow(const wchar_t *text)
{
    return text == nullptr ? std::string("<null>") : toUtf8(std::wstring(text));
}

ProviderInstall::Outcome evasim(const std::string &arguments)
{
    return ProviderInstall::evasim(arguments);
}

using Login = ProviderInstall::Login;

// The world of these tests: three cells behind three servers (tests/enumeration/site.scn).
class Site : public ProviderInstall {
public:
    explicit Site(const std::vector<Login> &logins) :
        ProviderInstall(logins, sourceDir() + "/tests/enumeration/site.scn")
    {
        EXPECT_TRUE(ok()) << loadReport();
    }
};

const ::testing::Environment *const kLocks = ::testing::AddGlobalTestEnvironment(new tamlin_test::LockDirectory);

const Login kCv1{"cv1", "admin", "secret"};
const Login kCv2{"cv2", "admin", "other"};

class Provider : public ProviderTest {
protected:
    struct Disk {
        std::string name, udid, provider;
        uint64_t size;
    };

    int disks(std::vector<Disk> &out, int flags = 0, const wchar_t *filter = nullptr)
    {
        qrn_node_list *list = nullptr;
        int32_t count = 0;
        std::wstring text = filter != nullptr ? filter : L"";
        int rc = provider()->enumerate_nodes(&list, &count, flags, filter != nullptr ? &text[0] : nullptr);
        out.clear();
        for (qrn_node_list *n = list; n != nullptr; n = n->next) {
            out.push_back(
                {narrow(n->displayName), n->id != nullptr ? narrow(n->id->text) : "", narrow(n->provider), n->size});
        }
        EXPECT_EQ(static_cast<size_t>(count), out.size());
        freeList(list);
        return rc;
    }

    std::vector<std::string> diskNames(int flags = 0, const wchar_t *filter = nullptr, int expect = 0)
    {
        std::vector<Disk> found;
        EXPECT_EQ(disks(found, flags, filter), expect) << narrow(filter);
        std::vector<std::string> names;
        for (const Disk &d : found) {
            names.push_back(d.name);
        }
        return names;
    }
};

// "\Virtual Disks\db\data\ACTIVE" -> "db\data"; a snapshot keeps its own name.
std::string shownPath(std::string path)
{
    const std::string head = "\\Virtual Disks\\";
    const std::string tail = "\\ACTIVE";
    if (path.rfind(head, 0) == 0) {
        path.erase(0, head.size());
    }
    if (path.size() > tail.size() && path.compare(path.size() - tail.size(), tail.size(), tail) == 0) {
        path.erase(path.size() - tail.size());
    }
    return path;
}

}  // namespace

TEST_F(Provider, ANullFilterListsEveryDiskOfEveryCellWithItsIdentity)
{
    Site site({kCv1, kCv2});
    ASSERT_EQ(start(), 0);
    std::vector<Disk> found;
    ASSERT_EQ(disks(found), 0);

    std::map<std::string, std::string> cellWwn;
    for (const auto &cell : ProviderInstall::table("cells")) {
        cellWwn[cell.at("name")] = cell.at("wwn");
    }
    std::set<std::string> expected;
    for (const auto &disk : ProviderInstall::table("disks")) {
        expected.insert("HP##HSV##" + disk.at("cell") + "##" + shownPath(disk.at("path")) + " " +
                        tamlin_test::udidOf(cellWwn.at(disk.at("cell")), disk.at("wwlunid")));
    }
    std::set<std::string> listed;
    for (const Disk &d : found) {
        listed.insert(d.name + " " + d.udid);
        EXPECT_EQ(d.provider, "tamlin");
    }
    EXPECT_EQ(found.size(), expected.size()) << "each disk once, the shared cell too";
    EXPECT_EQ(listed, expected);
    for (const Disk &d : found) {
        if (d.name == "HP##HSV##EVA01##db\\data") {
            EXPECT_EQ(d.size, 20ull * 1024 * 1024 * 1024);
        }
    }
    EXPECT_EQ(site.log().find("secret"), std::string::npos) << "no password in the trace log";
}

// Which key passes which cell or disk is tested on the rules (tests/rules); here, that the
// listing asks them per cell and per disk.
TEST_F(Provider, FilterKeysAndFlagsSelectCellsAndDisks)
{
    Site site({kCv1, kCv2});
    ASSERT_EQ(start(), 0);
    ASSERT_EQ(diskNames().size(), 6u);

    EXPECT_EQ(diskNames(0, L"enclosure_id=5000-1fe1-5000-00c3"), std::vector<std::string>{"HP##HSV##EVA 03##x\\y"});
    EXPECT_EQ(diskNames(0, L"node_prefix=\\db\\"),
              (std::vector<std::string>{"HP##HSV##EVA01##db\\data", "HP##HSV##EVA01##db\\data\\data_snap",
                                        "HP##HSV##EVA01##db\\logs", "HP##HSV##EVA02##db\\remote"}));
    EXPECT_TRUE(diskNames(0, L"node_prefix=\\DB\\").empty());
    EXPECT_TRUE(site.log().find("Due to aggressive filtering ZERO disks are returned.") != std::string::npos);
    EXPECT_EQ(diskNames(0x10 | 0x80, L"enclosure_name=EVA01"),
              std::vector<std::string>{"HP##HSV##EVA01##db\\data\\data_snap"});
    EXPECT_TRUE(diskNames(0x40, L"enclosure_name=EVA01", 6).empty()) << "64 without 16 is refused";

    // Any login from here on would use up the armed fault.
    ASSERT_EQ(evasim("fault https --count 5").status, 0);
    std::vector<Disk> none;
    EXPECT_EQ(disks(none, 0, L"enclosure_name=NOWHERE"), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_TRUE(none.empty());
    EXPECT_EQ(ProviderInstall::table("faults").at(0).at("remaining"), "5")
        << "an enclosure that no cell is asks no array";
}

TEST_F(Provider, AnotherProviderOrVendorAsksNoArray)
{
    Site site({kCv1});
    // Every login would fail from here on: a call that reached an array would show it.
    ASSERT_EQ(evasim("fault https --count 50").status, 0);
    ASSERT_EQ(start(), 0);
    EXPECT_TRUE(diskNames(0, L"provider_name=other").empty());
    EXPECT_TRUE(diskNames(0, L"vendor_id=IBM").empty());

    qrn_enclosure_node_list *untouched = reinterpret_cast<qrn_enclosure_node_list *>(0x1);
    int32_t count = 0;
    std::wstring filter = L"vendor_id=EMC";
    EXPECT_EQ(provider()->enumerate_enclosures(&untouched, &count, &filter[0]), 0);
    EXPECT_EQ(untouched, reinterpret_cast<qrn_enclosure_node_list *>(0x1)) << "the list is left as passed";
    qrn_host_node_list *hosts = reinterpret_cast<qrn_host_node_list *>(0x1);
    EXPECT_EQ(provider()->enumerate_host_nodes(&hosts, &count, &filter[0]), 0);
    EXPECT_EQ(hosts, nullptr) << "the host list is built first, and so emptied";
    EXPECT_EQ(ProviderInstall::table("faults").at(0).at("remaining"), "50");
}

TEST_F(Provider, ASingleDiskByItsUdid)
{
    Site site({kCv1});
    ASSERT_EQ(start(), 0);
    std::vector<Disk> all;
    ASSERT_EQ(disks(all, 0, L"enclosure_name=EVA01"), 0);
    ASSERT_FALSE(all.empty());
    const Disk &wanted = all.back();

    std::string lower = wanted.udid;
    for (char &c : lower) {
        c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
    }
    lower.replace(0, 15, "UDID##HP##HSV##");  // only the vendor test is exact
    for (const std::string &udid : {wanted.udid, lower}) {
        std::vector<Disk> one;
        std::wstring filter = fromUtf8("udid=" + udid + ",enclosure_name=ignored,node_prefix=ignored");
        ASSERT_EQ(disks(one, 0x10 | 0x40 | 0x80, filter.c_str()), 0) << udid;
        ASSERT_EQ(one.size(), 1u) << udid;
        EXPECT_EQ(one[0].name, wanted.name);
        EXPECT_EQ(one[0].udid, wanted.udid);
        EXPECT_EQ(one[0].size, wanted.size);
    }
    std::string otherVendor = wanted.udid;
    otherVendor.replace(6, 2, "hp");
    std::wstring filter = fromUtf8("udid=" + otherVendor);
    EXPECT_TRUE(diskNames(0, filter.c_str()).empty()) << "the vendor part is compared exactly";

    std::vector<Disk> bad;
    EXPECT_EQ(disks(bad, 0, L"udid="), QRN_ERR_FAILED);
    EXPECT_EQ(lastErrorKey(), "MSG_ERROR_UDID_PARSING_EXCEPTION");
}

TEST_F(Provider, ACellThatFailsFourTimesEndsTheListingAndKeepsEarlierCells)
{
    Site site({kCv1, kCv2});
    ASSERT_EQ(start(), 0);
    ASSERT_EQ(diskNames().size(), 6u);  // discovery done; cells in the order found

    ASSERT_EQ(evasim("fault error --match \"LS VDISK\" --cell EVA02 --count 3").status, 0);
    EXPECT_EQ(diskNames().size(), 6u) << "the fourth attempt succeeds";

    ASSERT_EQ(evasim("fault error --match \"LS VDISK\" --cell EVA02 --count 4").status, 0);
    std::vector<Disk> partial;
    EXPECT_EQ(disks(partial), QRN_ERR_FAILED);
    std::set<std::string> cells;
    for (const Disk &d : partial) {
        cells.insert(d.name.substr(0, d.name.find("##", 9)));
    }
    EXPECT_TRUE(cells.count("HP##HSV##EVA01")) << "entries of cells before the failing one stay";
    EXPECT_FALSE(cells.count("HP##HSV##EVA02"));
    EXPECT_NE(site.log().find("HP EVA failed to get the virtual disk information after [4] retry attempts."),
              std::string::npos);
}

TEST_F(Provider, EnclosuresOnceEachThoughServersShareACellAndTheirHosts)
{
    Site site({kCv1, kCv2});
    ASSERT_EQ(start(), 0);
    qrn_enclosure_node_list *list = nullptr;
    int32_t count = 0;
    ASSERT_EQ(provider()->enumerate_enclosures(&list, &count, nullptr), 0);
    std::map<std::string, const qrn_enclosure_node_list *> byName;
    for (const qrn_enclosure_node_list *e = list; e != nullptr; e = e->next) {
        EXPECT_EQ(byName.count(narrow(e->name)), 0u) << narrow(e->name) << " twice";
        byName[narrow(e->name)] = e;
    }
    EXPECT_EQ(count, 3);
    ASSERT_EQ(byName.size(), 3u);
    const qrn_enclosure_node_list *eva01 = byName.at("EVA01");
    EXPECT_EQ(narrow(eva01->enclosureId), "5000-1FE1-5000-00A1");
    EXPECT_EQ(narrow(eva01->vendor), "HP");
    EXPECT_EQ(narrow(eva01->product), "HSV");
    EXPECT_EQ(narrow(eva01->provider), "tamlin");
    EXPECT_EQ(eva01->total, 2048ull * 1024 * 1024 * 1024);
    EXPECT_GT(eva01->available, 0u);
    EXPECT_LT(eva01->available, eva01->total);
    freeList(list);

    list = nullptr;
    count = 0;
    std::wstring filter = L"enclosure_id=5000-1fe1-5000-00b2";
    ASSERT_EQ(provider()->enumerate_enclosures(&list, &count, &filter[0]), 0);
    ASSERT_EQ(count, 1);
    EXPECT_EQ(narrow(list->name), "EVA02");
    freeList(list);

    // Hosts by the last component of their path, with plain ports.
    qrn_host_node_list *hosts = nullptr;
    count = 0;
    ASSERT_EQ(provider()->enumerate_host_nodes(&hosts, &count, nullptr), 0);
    std::multiset<std::string> rows;
    for (const qrn_host_node_list *h = hosts; h != nullptr; h = h->next) {
        std::string row = narrow(h->enclosureId) + " " + narrow(h->hostName) + ":";
        for (uint32_t i = 0; i < h->portCount; ++i) {
            row += " " + narrow(h->ports[i]);
        }
        EXPECT_EQ(h->ports[h->portCount], nullptr);
        rows.insert(row);
    }
    EXPECT_EQ(count, 5);
    EXPECT_EQ(rows, (std::multiset<std::string>{
                        "5000-1FE1-5000-00C3 h9: 10000000C9000009",
                        "5000-1FE1-5000-00A1 bare:",
                        "5000-1FE1-5000-00A1 h1: 10000000C9000001",
                        "5000-1FE1-5000-00A1 h2: 10000000C9000002 10000000C9000003",
                        "5000-1FE1-5000-00B2 h1: 10000000C9000001",
                    }));
    freeList(hosts);
}

TEST_F(Provider, NoServerThatAnswersFailsTheFirstEntryAndTheNextGoesOn)
{
    Site site({{"cvdown", "admin", "secret"}});
    ASSERT_EQ(start(), 0) << "init needs no array";
    std::vector<Disk> none;
    EXPECT_EQ(disks(none), QRN_ERR_DELAYED_INIT);
    EXPECT_EQ(lastErrorKey(), "MSG_ERROR_NO_ARRAYS_DISCOVERED");
    qrn_enclosure_node_list *list = nullptr;
    int32_t count = 0;
    EXPECT_EQ(provider()->enumerate_enclosures(&list, &count, nullptr), 0) << "no second start";
    EXPECT_EQ(count, 0);
}

TEST_F(Provider, AnUnknownSssuVersionFailsTheFirstEntryOnlyAndCanBeAccepted)
{
    {
        Site site({kCv1});
        ASSERT_EQ(evasim("set version=9.2.0").status, 0);
        ASSERT_EQ(start(), 0);
        std::vector<Disk> none;
        EXPECT_EQ(disks(none), QRN_ERR_DELAYED_INIT);
        EXPECT_EQ(lastErrorKey(), "MSG_ERROR_VERSION_CHECK");
        EXPECT_NE(said().find("reports \"Version: 9.2.0\""), std::string::npos) << said();
        EXPECT_NE(said().find("ACCEPTED_VERSIONS in the section CLI_TOOL_INFO of " +
                              site.root().path("ConfigFiles/tamlin.conf")),
                  std::string::npos)
            << said();
        qrn_enclosure_node_list *list = nullptr;
        int32_t count = 0;
        EXPECT_EQ(provider()->enumerate_enclosures(&list, &count, nullptr), 0) << "the next entry goes on";
        EXPECT_EQ(count, 0);
        EXPECT_EQ(disks(none), QRN_ERR_INVALID_ARGUMENT) << "with no cell found, no enclosure passes";
        provider()->fini();
        started = false;
    }
    // The administrator accepts releases 9 and 10; the built-in table still holds.
    Site site({kCv1});
    ASSERT_EQ(evasim("set version=9.2.0").status, 0);
    site.writeConfig("[CLI_TOOL_INFO]\n\"FILEPATH\"=\"" + site.sssuDir() +
                     "\"\n\"FILENAME\"=\"sssu_linux_x64\"\n\"ACCEPTED_VERSIONS\"=\"Version: 10.; Version: 9.\"\n");
    ASSERT_EQ(start(), 0);
    EXPECT_EQ(diskNames(0, L"enclosure_name=EVA01").size(), 4u);
}

// A run that fails tells why: here a program that can't be started.
TEST_F(Provider, ASssuThatCannotRunIsNamed)
{
    Site site({kCv1});
    site.root().writeFile("sssu/plain", "#!/bin/sh\necho hi\n");
    ASSERT_EQ(chmod(site.root().path("sssu/plain").c_str(), 0644), 0);
    site.writeConfig("[CLI_TOOL_INFO]\n\"FILEPATH\"=\"" + site.sssuDir() + "\"\n\"FILENAME\"=\"plain\"\n");
    ASSERT_EQ(start(), 0);
    std::vector<Disk> none;
    EXPECT_EQ(disks(none), QRN_ERR_DELAYED_INIT);
    EXPECT_NE(said().find("SSSU could not be started (Permission denied): check that " + site.sssuDir() +
                          "plain is an executable program"),
              std::string::npos)
        << said();
}

// A missing SSSU directory: the catalog's dlopen test and tamlinctl's failed start.
TEST_F(Provider, StartFailsWhenSssuOrCredentialsAreMissing)
{
    {
        Site site({kCv1});
        site.writeConfig("[CLI_TOOL_INFO]\n\"FILEPATH\"=\"" + site.sssuDir() + "\"\n\"FILENAME\"=\"sssu.exe\"\n");
        EXPECT_EQ(start(), QRN_ERR_INIT_FAILED);
        EXPECT_EQ(lastErrorKey(), "MSG_ERROR_CLI_NOT_FOUND");
        provider()->fini();
    }
    {
        Site site({});
        EXPECT_EQ(start(), QRN_ERR_INIT_FAILED);
        EXPECT_EQ(lastErrorKey(), "MSG_ERROR_NO_CREDENTIALS");
        EXPECT_NE(said().find("ConfigFiles/tamlin.conf"), std::string::npos) << "the file to fix: " << said();
    }
}

// One typo must not cost the administrator his file: the provider refuses to start, names the
// file and the line, and leaves the file byte for byte; a file it can't read is not taken for
// a missing SSSU.
TEST_F(Provider, ABrokenConfigurationIsNamedAndLeftAsItWas)
{
    Site site({kCv1});
    const std::string conf = "[BROKEN_SECTION\n" + site.root().readFile("ConfigFiles/tamlin.conf");
    site.root().writeFile("ConfigFiles/tamlin.conf", conf);
    EXPECT_EQ(start(), QRN_ERR_INIT_FAILED);
    EXPECT_EQ(lastErrorKey(), "MSG_ERROR_CONFIG_FILE_INVALID");
    EXPECT_NE(said().find(site.root().path("ConfigFiles/tamlin.conf") + " was not used because of its line 1: a "
                                                                        "section header has no closing ]"),
              std::string::npos)
        << said();
    EXPECT_EQ(site.root().readFile("ConfigFiles/tamlin.conf"), conf);
    provider()->fini();
    started = false;

    messages.clear();
    std::filesystem::remove(site.root().path("ConfigFiles/tamlin.conf"));
    std::filesystem::create_directory(site.root().path("ConfigFiles/tamlin.conf"));
    EXPECT_EQ(start(), QRN_ERR_INIT_FAILED);
    EXPECT_EQ(lastErrorKey(), "MSG_ERROR_CONFIG_FILE_UNREADABLE");
    EXPECT_NE(said().find("cannot be read: it is a directory"), std::string::npos) << said();
    EXPECT_EQ(said().find("SSSU is not installed"), std::string::npos) << said();
    EXPECT_TRUE(std::filesystem::is_directory(site.root().path("ConfigFiles/tamlin.conf")));
}

// Names that XML escapes reach the host whole, and a cell without disks or hosts is an empty
// list: the other cells are listed and the call succeeds.
TEST_F(Provider, NamesWithMarkupCharactersAndAnEmptyCell)
{
    ProviderInstall site({kCv1}, ProviderInstall::sourceDir() + "/tests/enumeration/names.scn");
    ASSERT_TRUE(site.ok()) << site.loadReport();
    ASSERT_EQ(start(), 0);

    qrn_enclosure_node_list *enclosures = nullptr;
    int32_t count = 0;
    ASSERT_EQ(provider()->enumerate_enclosures(&enclosures, &count, nullptr), 0);
    std::set<std::string> cells;
    for (const qrn_enclosure_node_list *e = enclosures; e != nullptr; e = e->next) {
        cells.insert(narrow(e->name));
    }
    freeList(enclosures);
    EXPECT_EQ(cells, (std::set<std::string>{"Lab's R&D <1>", "Empty", "EVA01"}));

    const std::vector<std::string> names = diskNames();
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()),
              (std::set<std::string>{"HP##HSV##Lab's R&D <1>##test&db", "HP##HSV##Lab's R&D <1>##x<y>z",
                                     "HP##HSV##Lab's R&D <1>##it's q", "HP##HSV##EVA01##plain"}));
    EXPECT_NE(site.log().find("No disks are found for current enclosure."), std::string::npos);
    EXPECT_EQ(diskNames(0, L"enclosure_name=Empty").size(), 0u);

    qrn_host_node_list *hosts = nullptr;
    count = 0;
    ASSERT_EQ(provider()->enumerate_host_nodes(&hosts, &count, nullptr), 0);
    std::set<std::string> hostNames;
    for (const qrn_host_node_list *h = hosts; h != nullptr; h = h->next) {
        hostNames.insert(narrow(h->hostName) + " " + (h->portCount > 0 ? narrow(h->ports[0]) : "-"));
    }
    freeList(hosts);
    EXPECT_EQ(hostNames, (std::set<std::string>{"R&D 10000000C9000001", "say'hi' 10000000C9000002", "a<b>c -"}));
}

// A listing that SSSU stops after some complete objects, exiting 0, is a failed command: the
// cell's disks are read again, and never reported short.
TEST_F(Provider, AListingCutShortIsNeverAShortList)
{
    Site site({kCv1});
    ASSERT_EQ(start(), 0);
    ASSERT_EQ(diskNames(0, L"enclosure_name=EVA01").size(), 4u);

    // Where the listing's objects end, in the lines of a run of the provider's own script.
    const std::string script = site.root().path("listing.sssu");
    site.root().writeFile("listing.sssu", "set option NOCOMMAND_DELAY\nset option DISPLAY_WIDTH=200\n"
                                          "set option ON_ERROR=EXIT_ON_ERROR\n"
                                          "select manager cv1 user=admin password=secret\n"
                                          "select cell \"EVA01\"\nLS VDISK FULL XML\nexit\n");
    const std::string output = evasim("'FILE " + script + "'").output;
    std::vector<int> ends;
    std::istringstream lines(output);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        if (line.find("</object>") != std::string::npos) {
            ends.push_back(number);
        }
    }
    ASSERT_EQ(ends.size(), 4u) << output;
    for (int cut : ends) {
        ASSERT_EQ(evasim("fault exit-after --lines " + std::to_string(cut) + " --status 0 --count 4").status, 0);
        std::vector<Disk> partial;
        EXPECT_EQ(disks(partial, 0, L"enclosure_name=EVA01"), QRN_ERR_FAILED) << cut;
        EXPECT_TRUE(partial.empty()) << "cut after line " << cut << " gave " << partial.size() << " disks";
        ASSERT_EQ(evasim("fault clear").status, 0);
    }
    ASSERT_EQ(evasim("fault exit-after --lines " + std::to_string(ends[1]) + " --status 0 --count 3").status, 0);
    EXPECT_EQ(diskNames(0, L"enclosure_name=EVA01").size(), 4u) << "the fourth attempt reads them all";
}
