// Presenting copies, taking them away and disposing of them, as a host does it: the provider
// loaded with dlopen, its entries called with node records the test owns, the arrays played
// by the simulator. Each row of deport x singleHost through the forms that reach it, the LUN
// map's roads, the host steps, and disposal with what it leaves when the array refuses.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "present_support.h"
#include "provider_test.h"
#include "qrn_results.h"

using namespace present_test;
using tamlin_test::lastErrorKey;

namespace {

const ::testing::Environment *const kLocks = ::testing::AddGlobalTestEnvironment(new tamlin_test::LockDirectory);

const int kImportShared = 0x1;
const int kImportSharedAlone = 0x2;
const int kDeportFromHost = 0x10;
const int kDeportFromAll = 0x20;

std::string presented(int copy, const std::string &host, int lun)
{
    return copyPath(copy) + "|\\Hosts\\" + host + "|" + std::to_string(lun);
}

// The commands among list that begin with head.
std::vector<std::string> only(const std::vector<std::string> &list, const std::string &head)
{
    std::vector<std::string> found;
    for (const std::string &command : list) {
        if (command.rfind(head, 0) == 0) {
            found.push_back(command);
        }
    }
    return found;
}

class Present : public ProviderTest {
protected:
    int importResource(const std::wstring &disk, const wchar_t *hostName, int flags)
    {
        std::wstring resource = disk;
        std::wstring name = hostName != nullptr ? hostName : L"";
        return provider()->import_resource(nullptr, &resource[0], hostName != nullptr ? &name[0] : nullptr, nullptr,
                                           flags, nullptr, nullptr);
    }
    int deportResource(const std::wstring &disk, const wchar_t *hostName, int flags)
    {
        std::wstring resource = disk;
        std::wstring name = hostName != nullptr ? hostName : L"";
        return provider()->deport_resource(&resource[0], hostName != nullptr ? &name[0] : nullptr, nullptr, nullptr,
                                           flags);
    }
    int dispose(const std::wstring &disk, int disposition)
    {
        HostNode node(disk);
        return provider()->dispose(nullptr, &node.domain, nullptr, disposition);
    }
};

}  // namespace

// Presenting, other hosts untouched: the alternate node (the array picks the LUN, nothing is
// recorded) and the shared resource road (the LUN map picks it). Presenting to one host alone
// removes the others first, and the host's own unrecorded presentation too, for the map's
// number. (The tree road and taking from all: tests/present/present_tamlinctl_test.cc.)
TEST_F(Present, PresentingLeavesTheOtherHostsOrToOneHostAloneRemovesThem)
{
    Site site(scenario(3, presentLine(0, "backup01", 1) + presentLine(1, "lab\\h1", 1) + presentLine(2, "backup01", 2) +
                              presentLine(2, "lab\\h1", 3) + presentLine(2, "lab\\h2", 7)));
    ASSERT_EQ(start(), 0);
    HostNode source(udid(1));
    HostNode target(udid(16));
    ASSERT_EQ(provider()->init_node(&source.domain, nullptr, 0, nullptr), 0);
    std::wstring h2 = L"h2";
    qrn_host_infn hosts{&h2[0], nullptr};
    qrn_splitnode split{nullptr, &source.domain, nullptr};
    provider()->set_import_options(&split, nullptr, 0, &hosts, 0, nullptr);
    EXPECT_EQ(provider()->init_altnode(&source.domain, nullptr, &target.domain), QRN_OK);
    provider()->deinit_node(&target.domain);
    provider()->deinit_node(&source.domain);
    EXPECT_EQ(importResource(udid(17), L"backup01", kImportShared), QRN_OK);
    EXPECT_EQ(site.lunRecord(16), "") << "the array's choice for an unshared disk is not recorded";
    EXPECT_EQ(site.lunRecord(17), "3") << "1 and 2 are taken on backup01, so the map's next number";

    const size_t before = site.commands().size();
    EXPECT_EQ(importResource(udid(18), L"h2", kImportSharedAlone), QRN_OK);
    EXPECT_EQ(only(site.commandsSince(before), "DELETE LUN"),
              (std::vector<std::string>{"DELETE LUN \"\\Hosts\\backup01\\2\"", "DELETE LUN \"\\Hosts\\lab\\h1\\3\"",
                                        "DELETE LUN \"\\Hosts\\lab\\h2\\7\""}));
    EXPECT_EQ(site.presentations(), (std::set<std::string>{presented(0, "backup01", 1), presented(0, "lab\\h2", 1),
                                                           presented(1, "lab\\h1", 1), presented(1, "backup01", 3),
                                                           presented(2, "lab\\h2", 2)}));
    EXPECT_EQ(site.lunRecord(18), "2") << "1 is taken on h2 now";
}

TEST_F(Present, TakingAwayFromOneHostByResourceOrTreeAndFromAllButNotFromAnUnknownHost)
{
    Site site(scenario(2, presentLine(0, "backup01", 1) + presentLine(0, "lab\\h1", 1) +
                              presentLine(0, machineName(), 4) + presentLine(1, "backup01", 2) +
                              presentLine(1, "lab\\h1", 3)));
    ASSERT_EQ(start(), 0);
    EXPECT_EQ(importResource(udid(16), L"nohost", kImportSharedAlone), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(lastErrorKey(), "MSG_ERROR_DEPORT_HOST_INVALID");
    EXPECT_EQ(deportResource(udid(16), L"nohost", kDeportFromAll), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(lastErrorKey(), "MSG_ERROR_DEPORT_HOST_INVALID");
    EXPECT_TRUE(said().find("nohost") != std::string::npos);
    EXPECT_EQ(site.presentations().size(), 5u) << "an unknown host changes nothing";

    EXPECT_EQ(deportResource(udid(16), L"backup01", kDeportFromHost), QRN_OK);
    HostNode node(udid(16));
    EXPECT_EQ(provider()->deport_tree(nullptr, &node.domain, nullptr), QRN_OK) << "from this machine";
    // From all, also when the host named has none.
    EXPECT_EQ(deportResource(udid(17), L"h2", kDeportFromAll), QRN_OK);
    EXPECT_EQ(site.presentations(), std::set<std::string>{presented(0, "lab\\h1", 1)});

    // Not presented to this machine any more: nothing to do.
    const size_t before = site.commands().size();
    EXPECT_EQ(provider()->deport_tree(nullptr, &node.domain, nullptr), QRN_OK);
    EXPECT_TRUE(only(site.commandsSince(before), "DELETE").empty());
    EXPECT_NE(site.log().find("is already unmapped to the HP EVA vdisk"), std::string::npos);
}

TEST_F(Present, ASharedDiskKeepsItsLunAcrossDeportAndImport)
{
    Site site(scenario(2));
    ASSERT_EQ(start(), 0);
    ASSERT_EQ(importResource(udid(16), L"backup01", kImportShared), QRN_OK);
    ASSERT_EQ(site.lunRecord(16), "1");
    ASSERT_EQ(deportResource(udid(16), L"backup01", kDeportFromHost), QRN_OK);
    EXPECT_EQ(site.lunRecord(16), "1") << "a deport keeps the record";

    // 1 is free on the host now, but the map holds it for the first disk.
    ASSERT_EQ(importResource(udid(17), L"backup01", kImportShared), QRN_OK);
    EXPECT_EQ(site.lunRecord(17), "2");
    const size_t before = site.commands().size();
    ASSERT_EQ(importResource(udid(16), L"backup01", kImportShared), QRN_OK);
    EXPECT_EQ(only(site.commandsSince(before), "ADD LUN"),
              std::vector<std::string>{"ADD LUN 1 HOST=\"\\Hosts\\backup01\"  VDISK=\"" + copyPath(0) + "\" "});
    EXPECT_EQ(site.presentations(), (std::set<std::string>{presented(0, "backup01", 1), presented(1, "backup01", 2)}));
}

TEST_F(Present, AStoredLunTheArrayRefusesThenTheCandidatesThenTheArraysChoiceIsRecorded)
{
    // LUNs 5 to 7 of backup01 are in use by disks the map doesn't know; the map holds every
    // other number for disks of its own, so its only candidates are 5 to 7.
    Site site(
        scenario(4, presentLine(1, "backup01", 5) + presentLine(2, "backup01", 6) + presentLine(3, "backup01", 7)));
    const std::wstring own = udid(16);
    site.root().writeFile(recordPath(16), "5");
    for (int n = 1; n <= 254; ++n) {
        if (n < 5 || n > 7) {
            site.root().writeFile("CacheFiles/luns/" + std::string(kCellWwn) + "/UDID##HP##HSV##" + kCellWwn +
                                      "##OTHER" + std::to_string(n),
                                  std::to_string(n));
        }
    }
    ASSERT_EQ(start(), 0);
    const size_t before = site.commands().size();
    ASSERT_EQ(importResource(own, L"backup01", kImportShared), QRN_OK);

    std::vector<std::string> tried;
    for (const std::string &command : only(site.commandsSince(before), "ADD LUN ")) {
        tried.push_back(command.substr(8, command.find(' ', 8) - 8));
    }
    EXPECT_EQ(tried, (std::vector<std::string>{"5", "5", "6", "7", "0"}))
        << "the record, again, the map's, the array's";
    EXPECT_TRUE(site.presentations().count(presented(0, "backup01", 1)));
    EXPECT_EQ(site.lunRecord(16), "1");
    EXPECT_FALSE(
        site.root().exists("CacheFiles/luns/" + std::string(kCellWwn) + "/UDID##HP##HSV##" + kCellWwn + "##OTHER1"))
        << "the record that held the array's number is gone";
}

TEST_F(Present, ASharedDiskPresentedFromOutsideOnAnotherLunGives1092)
{
    Site site(scenario(1, presentLine(0, "backup01", 8)));
    const std::wstring own = udid(16);
    site.root().writeFile(recordPath(16), "3");
    ASSERT_EQ(start(), 0);
    EXPECT_EQ(importResource(own, L"backup01", kImportSharedAlone), QRN_ERR_PRESENTED_ON_OTHER_LUN);
    EXPECT_EQ(site.presentations(), std::set<std::string>{presented(0, "backup01", 8)});
    EXPECT_EQ(site.lunRecord(16), "3");
}

TEST_F(Present, DisposeRemovesEveryPresentationThenTheDiskAndOtherDispositionsNothing)
{
    Site site(scenario(2, presentLine(0, "backup01", 1) + presentLine(0, "lab\\h1", 2)));
    ASSERT_EQ(start(), 0);
    size_t before = site.commands().size();
    EXPECT_EQ(dispose(udid(16), QRN_DISPOSITION_DELETE), QRN_OK);
    EXPECT_EQ(only(site.commandsSince(before), "DELETE"),
              (std::vector<std::string>{"DELETE LUN \"\\Hosts\\backup01\\1\"", "DELETE LUN \"\\Hosts\\lab\\h1\\2\"",
                                        "DELETE VDISK \"" + copyPath(0) + "\""}));
    EXPECT_EQ(ProviderInstall::evasim("show disks --format tsv").output.find("data_vsnap000"), std::string::npos);

    before = site.commands().size();
    EXPECT_EQ(dispose(udid(17), 2), QRN_OK);
    EXPECT_EQ(dispose(L"no identity", 0), QRN_OK);
    EXPECT_EQ(site.commands().size(), before) << "no SSSU run for another disposition";
    EXPECT_EQ(dispose(L"no identity", QRN_DISPOSITION_DELETE), QRN_ERR_FAILED);
    EXPECT_EQ(lastErrorKey(), "MSG_ERROR_UDID_PARSING_EXCEPTION");
}

// The array deletes the LUNs and then refuses the disk: nothing is put back, and the host is
// told what is left.
TEST_F(Present, ADeleteThatFailsAfterTheLunsWentLeavesALeftover)
{
    Site site(scenario(2, presentLine(0, "lab\\h1", 1) + presentLine(1, "lab\\h1", 2)));
    ASSERT_EQ(ProviderInstall::evasim("fault error --match \"DELETE VDISK\"").status, 0);
    ASSERT_EQ(start(), 0);
    EXPECT_EQ(dispose(udid(16), QRN_DISPOSITION_DELETE), QRN_ERR_FAILED);
    EXPECT_EQ(lastErrorKey(), "MSG_ERROR_CLI_COMMAND_FAILED");
    EXPECT_TRUE(said().find("is no longer presented to any host") != std::string::npos)
        << "what is left, before the failure";
    EXPECT_EQ(site.presentations(), std::set<std::string>{presented(1, "lab\\h1", 2)});

    EXPECT_NE(ProviderInstall::evasim("show disks --format tsv").output.find("data_vsnap000"), std::string::npos)
        << "the copy stays, for tamlinctl leftovers to show";
}
