// The whole road through dlopen against evasim: the host names pairs of disks by UDID, the
// provider starts each restore on the array and waits for the copies. What reached the array
// is read back from the simulator's history.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "lock_directory.h"
#include "provider_install.h"
#include "provider_test.h"
#include "qrn_results.h"
#include "result_lists.h"

using tamlin_test::lastErrorKey;

namespace {

const char kData[] = "\\Virtual Disks\\db\\data\\ACTIVE";
const char kDataClone[] = "\\Virtual Disks\\db\\data_clone000\\ACTIVE";
const char kLogs[] = "\\Virtual Disks\\db\\logs\\ACTIVE";
const char kLogsClone[] = "\\Virtual Disks\\db\\logs_clone000\\ACTIVE";
const char kVsnap[] = "\\Virtual Disks\\x\\tmp\\tmp_vsnap000";
const char kTmp[] = "\\Virtual Disks\\x\\tmp\\ACTIVE";

const ::testing::Environment *const kLocks = ::testing::AddGlobalTestEnvironment(new tamlin_test::LockDirectory);

// One provider install against tests/restore/restore.scn, started for the test.
class Restore : public ProviderTest {
protected:
    Restore() : site({{"cv1", "admin", "secret"}}, ProviderInstall::sourceDir() + "/tests/restore/restore.scn") {}
    void SetUp() override
    {
        ASSERT_TRUE(site.ok()) << site.loadReport();
        ASSERT_EQ(start(), 0);
        // The delayed start-up's runs come before any restore.
        qrn_enclosure_node_list *cells = nullptr;
        int32_t count = 0;
        ASSERT_EQ(provider()->enumerate_enclosures(&cells, &count, nullptr), 0);
        ASSERT_EQ(count, 1);
        result_lists::freeList(cells);
    }

    // Restores pairs of paths (an empty path stands for a null entry); status starts at -1.
    int restore(const std::vector<std::pair<std::string, std::string>> &pairs, int32_t flags,
                std::vector<int32_t> &status)
    {
        std::vector<std::wstring> texts;
        for (const auto &pair : pairs) {
            for (const std::string &path : {pair.first, pair.second}) {
                texts.push_back(path.empty() ? L"" : fromUtf8(tamlin_test::udidOf(kCell, site.disk(path, "wwlunid"))));
            }
        }
        std::vector<qorin_objid> ids(texts.size());
        std::vector<qorin_objid *> primaries, secondaries;
        for (size_t i = 0; i < texts.size(); ++i) {
            ids[i] = {&texts[i][0], 0, 0};
            qorin_objid *id = texts[i].empty() ? nullptr : &ids[i];
            (i % 2 == 0 ? primaries : secondaries).push_back(id);
        }
        status.assign(pairs.size(), -1);
        before = runs(true).size();
        messages.clear();
        return provider()->restore(primaries.data(), secondaries.data(), static_cast<int32_t>(pairs.size()), nullptr,
                                   nullptr, flags, status.data());
    }

    // The commands of each SSSU run since the last restore (or of every run kept), in order,
    // without the script's fixed head (options, login, cell) and its exit.
    std::vector<std::vector<std::string>> runs(bool all = false)
    {
        std::map<int, std::vector<std::string>> byRun;
        for (const tamlin_test::TsvRow &row : ProviderInstall::history()) {
            const std::string &command = row.at("command");
            if (command.rfind("set option ", 0) != 0 && command.rfind("select ", 0) != 0 && command != "exit") {
                byRun[atoi(row.at("run").c_str())].push_back(command);
            }
        }
        std::vector<std::vector<std::string>> out;
        for (auto &run : byRun) {
            out.push_back(run.second);
        }
        return all ? out : std::vector<std::vector<std::string>>(out.begin() + static_cast<long>(before), out.end());
    }

    static constexpr const char *kCell = "5000-1FE1-5000-0001";
    ProviderInstall site;
    size_t before = 0;
};

std::vector<std::string> find(const std::string &wwn)
{
    return {"REFRESH", "FIND VDISK LUNWWID=" + wwn + " XML"};
}

}  // namespace

TEST_F(Restore, TheScriptWithAndWithoutRestoreSettingsAfterTheRunThatRemovesThePresentations)
{
    std::vector<int32_t> status;
    ASSERT_EQ(restore({{kData, kDataClone}}, 0, status), QRN_OK) << lastErrorKey();
    EXPECT_EQ(status, std::vector<int32_t>{16});
    std::vector<std::string> script = {
        "SET OPTION COMMAND_DELAY=5",
        "REFRESH",
        "SET VDISK \"data\" CHANGE_INTO_CONTAINER",
        "SET VDISK \"data_clone000\" writecache=writethrough",
        "REFRESH",
        "ADD COPY \"data\" VDISK=\"data_clone000\" CONTAINER=\"data\"",
        "SET VDISK \"data_clone000\" writecache=writeback",
        "ADD LUN 7 HOST=\"\\Hosts\\h1\"  VDISK=\"data\" ",
        "ADD LUN 4 HOST=\"\\Hosts\\h2\"  VDISK=\"data\" ",
    };
    const std::vector<std::string> read = {std::string("LS VDISK \"") + kDataClone + "\" XML"};
    std::vector<std::string> deletes = {"DELETE LUN \"\\Hosts\\h1\\7\"", "DELETE LUN \"\\Hosts\\h2\\4\""};
    EXPECT_EQ(runs(),
              (std::vector<std::vector<std::string>>{find("6005-08b4-0001-0000-0000-0000-00aa-0000"),
                                                     find(site.disk(kDataClone, "wwlunid")), deletes, script, read}))
        << "the copy ended at the first read";
    EXPECT_EQ(site.disk(kData, "presentations"), "\\Hosts\\h1:7,\\Hosts\\h2:4");
    EXPECT_EQ(site.disk(kDataClone, "writecache"), "writeback");

    site.root().writeFile("ConfigFiles/tamlin.conf",
                          site.root().readFile("ConfigFiles/tamlin.conf") +
                              "\n[RESTORE_INFO]\n\"COMMAND_DELAY\"=\"12\"\n\"REDISCOVER\"=dword:00000001\n");
    ASSERT_EQ(restore({{kData, kDataClone}}, 0, status), QRN_OK) << lastErrorKey();
    script[0] = "SET OPTION COMMAND_DELAY=12";
    script.insert(script.begin() + 4, "REDISCOVER");
    const std::vector<std::vector<std::string>> again = runs();
    ASSERT_EQ(again.size(), 5u);
    EXPECT_EQ(again[2], deletes) << "the presentations the first restore gave back";
    EXPECT_EQ(again[3], script);
}

TEST_F(Restore, FlagsThatStartAPairAndFlagsThatStartNone)
{
    std::vector<int32_t> status;
    for (int32_t flags : {0x1, 0x100}) {
        ASSERT_EQ(restore({{kLogs, kLogsClone}}, flags, status), QRN_OK) << flags << " " << lastErrorKey();
        EXPECT_EQ(status, std::vector<int32_t>{16}) << flags;
        ASSERT_EQ(runs().size(), 5u) << flags;
        EXPECT_EQ(runs()[3][5], "ADD COPY \"logs\" VDISK=\"logs_clone000\" CONTAINER=\"logs\"") << flags;
    }
    EXPECT_EQ(restore({{kLogs, kLogsClone}}, 0x2, status), QRN_OK);
    EXPECT_EQ(status, std::vector<int32_t>{-1});
    EXPECT_TRUE(runs().empty()) << "no SSSU run at all";
}

TEST_F(Restore, ANullPairIsSkippedAndTheNextOneRestored)
{
    std::vector<int32_t> status;
    ASSERT_EQ(restore({{"", kDataClone}, {kLogs, ""}, {kLogs, kLogsClone}}, 0, status), QRN_OK) << lastErrorKey();
    EXPECT_EQ(status, (std::vector<int32_t>{-1, -1, 16}));
    const std::vector<std::vector<std::string>> done = runs();
    ASSERT_EQ(done.size(), 5u);
    EXPECT_EQ(done[0], find("6005-08b4-0001-0000-0000-0000-00bb-0000")) << "the third pair is the first asked for";
}

TEST_F(Restore, ARefusedSideSendsNothingForThePairAndSaysWhy)
{
    struct Case {
        const char *primary, *secondary, *key, *text;
    };
    const Case cases[] = {
        {kVsnap, kDataClone, "MSG_ERROR_RESTORE_TO_VSNAP_NOT_SUPPORTED",
         "Cannot restore \\Virtual Disks\\x\\tmp\\tmp_vsnap000: it is a snapshot, and only an active disk can be "
         "restored (from \\Virtual Disks\\db\\data_clone000\\ACTIVE)."},
        {kTmp, kVsnap, "MSG_ERROR_RESTORE_FROM_VSNAP_NOT_SUPPORTED",
         "Cannot restore from \\Virtual Disks\\x\\tmp\\tmp_vsnap000: it is a snapshot, and only a snapclone can "
         "restore \\Virtual Disks\\x\\tmp\\ACTIVE."},
        {kVsnap, kVsnap, "MSG_ERROR_RESTORE_TO_VSNAP_NOT_SUPPORTED", nullptr},
    };
    for (const Case &c : cases) {
        std::vector<int32_t> status;
        EXPECT_EQ(restore({{c.primary, c.secondary}}, 0, status), QRN_ERR_FAILED);
        EXPECT_EQ(lastErrorKey(), c.key);
        ASSERT_EQ(messages.size(), 1u);
        if (c.text != nullptr) {
            EXPECT_EQ(messages[0], std::string("tamlin: ") + c.text);
        }
        EXPECT_EQ(status, std::vector<int32_t>{-1});
        EXPECT_EQ(runs().size(), 2u) << "the two disks are read, nothing else";
    }
}

TEST_F(Restore, PairsStartedBeforeAFailingOneStayStartedAndUnawaited)
{
    ASSERT_EQ(ProviderInstall::evasim("set restore_reads=5").status, 0);
    std::vector<int32_t> status;
    EXPECT_EQ(restore({{kData, kDataClone}, {kLogs, kLogsClone}, {kTmp, kVsnap}}, 0, status), QRN_ERR_FAILED);
    EXPECT_EQ(lastErrorKey(), "MSG_ERROR_RESTORE_FROM_VSNAP_NOT_SUPPORTED");
    EXPECT_EQ(status, (std::vector<int32_t>{16, 16, -1}));
    EXPECT_EQ(site.disk(kData, "sharing"), "snapclone_in_progress");
    EXPECT_EQ(site.disk(kLogs, "sharing"), "snapclone_in_progress");
    for (const std::vector<std::string> &run : runs()) {
        EXPECT_NE(run[0].rfind("LS VDISK", 0), 0u) << "no copy was awaited";
    }
}
