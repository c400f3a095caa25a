// The process-wide objects behind the entry table: one of each, rebuilt after fini,
// except the sessions, which live as long as the library.
#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

#include "hpeva_singletons.h"
#include "provider_install.h"
#include "qrn_results.h"
#include "tamlin_entries.h"

using namespace qorin_pdk_4_4;

TEST(Singletons, ConcurrentFirstAccessCreatesOneObject)
{
    std::vector<std::thread> threads;
    std::vector<void *> plugins(16), logs(16), sessions(16);
    for (int i = 0; i < 16; ++i) {
        threads.emplace_back([&, i] {
            CFiPluginPtr p;
            getPluginSingleton(p, false);
            CFiTraceLogPtr log;
            getTraceLogSingleton(log, false);
            CFiSessionManagerPtr sm;
            getSessionManagerSingleton(sm, false);
            plugins[i] = p.get();
            logs[i] = log.get();
            sessions[i] = sm.get();
        });
    }
    for (auto &t : threads) {
        t.join();
    }
    EXPECT_EQ(std::set<void *>(plugins.begin(), plugins.end()).size(), 1u);
    EXPECT_EQ(std::set<void *>(logs.begin(), logs.end()).size(), 1u);
    EXPECT_EQ(std::set<void *>(sessions.begin(), sessions.end()).size(), 1u);
    EXPECT_NE(plugins[0], nullptr);
}

TEST(Singletons, DestroyEmptiesTheSlotAndTheNextAccessBuildsAnew)
{
    CFiErrorManagerPtr first;
    getErrorManagerSingleton(first, false);
    ASSERT_FALSE(first.isNull());
    CFiErrorManagerPtr afterDestroy;
    getErrorManagerSingleton(afterDestroy, true);
    EXPECT_TRUE(afterDestroy.isNull());
    EXPECT_EQ(first->refCount(), 1) << "only this test still holds the old object";
    CFiErrorManagerPtr second;
    getErrorManagerSingleton(second, false);
    EXPECT_NE(first.get(), second.get());
}

namespace {

// Every slot as it is at one moment.
struct Slots {
    Slots()
    {
        getPluginSingleton(plugin, false);
        getCatalogManagerSingleton(catalogs, false);
        getTraceLogSingleton(log, false);
        getErrorManagerSingleton(errors, false);
        getPrivateDataManagerSingleton(privateData, false);
        getSessionManagerSingleton(sessions, false);
    }
    CFiPluginPtr plugin;
    CFiCatalogManagerPtr catalogs;
    CFiTraceLogPtr log;
    CFiErrorManagerPtr errors;
    CFiPrivateDataManagerPtr privateData;
    CFiSessionManagerPtr sessions;
};

}  // namespace

TEST(Singletons, FiniThenInitGivesFreshObjectsWhileSessionsSurvive)
{
    ProviderInstall site;
    ASSERT_TRUE(site.ok()) << site.loadReport();
    uint16_t version[4] = {0, 0, 0, 0};
    ASSERT_EQ(tamlin_fi_pgn_init(nullptr, version), 0);
    EXPECT_EQ(version[0], 7);
    Slots before;
    CFiSessionPtr session = before.sessions->getSession("backup-42");

    tamlin_fi_pgn_fini();
    // fini dropped the process's reference: the plug-in lives on only through this test.
    EXPECT_EQ(before.plugin->refCount(), 1);

    ASSERT_EQ(tamlin_fi_pgn_init(nullptr, version), 0);
    Slots after;
    EXPECT_NE(after.plugin.get(), before.plugin.get());
    EXPECT_NE(after.catalogs.get(), before.catalogs.get());
    EXPECT_NE(after.log.get(), before.log.get());
    EXPECT_NE(after.errors.get(), before.errors.get());
    EXPECT_NE(after.privateData.get(), before.privateData.get());
    EXPECT_EQ(after.sessions.get(), before.sessions.get());
    EXPECT_EQ(after.sessions->getSession("backup-42").get(), session.get());
    EXPECT_EQ(after.plugin->getProviderName(), L"tamlin");
    tamlin_fi_pgn_fini();
}

TEST(Singletons, ACatalogManagerHeldAcrossFiniNoLongerReachesThePluginsFactory)
{
    ProviderInstall site;
    ASSERT_TRUE(site.ok()) << site.loadReport();
    uint16_t version[4] = {0, 0, 0, 0};
    ASSERT_EQ(tamlin_fi_pgn_init(nullptr, version), 0);
    CFiCatalogManagerPtr catalogs;
    getCatalogManagerSingleton(catalogs, false);
    const std::wstring key = L"<MSG_ERROR_VERSION_CHECK>";
    EXPECT_NE(catalogs->getMessage("MSG_ERROR_VERSION_CHECK", nullptr, ""), key) << "the catalog answers while running";
    tamlin_fi_pgn_fini();
    // The plug-in and its catalog factory are gone; a holder of the manager gets the key.
    EXPECT_EQ(catalogs->getMessage("MSG_ERROR_VERSION_CHECK", nullptr, ""), key);
}
