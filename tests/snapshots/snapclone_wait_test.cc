// The wait for new snapclones, with the plug-in in this process on a clock that records its
// sleeps: SSSU runs for real (the simulator, whose copies progress by reads), the sleeps don't.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cfiprivatedatamanager.h"
#include "cfisession.h"
#include "host_node.h"
#include "hpeva_plugin.h"
#include "hpeva_process.h"
#include "lock_directory.h"
#include "provider_install.h"
#include "qrn_results.h"
#include "test_env.h"

using namespace qorin_pdk_4_4;

namespace {

const wchar_t kConf[] = L"<tamlin>UDID##HP##HSV##5000-1FE1-5000-0001##6005-08B4-0001-0000-0000-0000-0000-0013";

const ::testing::Environment *const kLocks = ::testing::AddGlobalTestEnvironment(new tamlin_test::LockDirectory);

// One snapclone of the scenario's conf disk, made by a plug-in started on the recording clock
// with the simulator's copies running for the given number of reads.
class SnapcloneWait : public ::testing::Test {
protected:
    SnapcloneWait() :
        site({{"cv1", "admin", "secret"}}, ProviderInstall::sourceDir() + "/tests/snapshots/snapshots.scn")
    {
    }
    ~SnapcloneWait() override { plugin.deInitNode(&node.domain); }

    int makeClone(int reads)
    {
        EXPECT_TRUE(site.ok()) << site.loadReport();
        EXPECT_EQ(site.evasim("set snapclone_reads=" + std::to_string(reads)).status, 0);
        plugin.setProviderName(L"tamlin");
        plugin.registerPrivateDataManager(CFiPrivateDataManagerPtr(new CFiPrivateDataManager));
        plugin.registerErrorManager(processErrorManager());
        EXPECT_EQ(plugin.init(), QRN_OK);
        plugin.setEnv(&clock);
        EXPECT_EQ(plugin.delayedInit(), QRN_OK);
        EXPECT_EQ(plugin.initNode(&node.domain, nullptr, 0, nullptr), QRN_OK);
        char method[] = "HPEVA_Snapclone";
        qrn_splitnode split{method, &node.domain, nullptr};
        qrn_splitnode *list[] = {&split};
        EXPECT_EQ(plugin.select(nullptr, list, 1), QRN_OK);
        CFiSessionPtr session(new CFiSession("wait"));
        session->addNodes(list, 1);
        return plugin.makeSnapshots(session);
    }

    // The clone's sharing column: snapclone_in_progress while its copy runs.
    std::string sharing() { return site.disk("\\Virtual Disks\\app\\conf_clone000\\ACTIVE", "sharing"); }

    ProviderInstall site;
    tamlin_test::RecordingClock clock;
    CHpEvaPlugin plugin;
    HostNode node{kConf};
};

}  // namespace

TEST_F(SnapcloneWait, AClonePastItsSecondReadCostsOneSleep)
{
    EXPECT_EQ(makeClone(2), QRN_OK);
    EXPECT_EQ(clock.sleeps(), std::vector<uint32_t>{4});
    EXPECT_EQ(sharing(), "none");
}

TEST_F(SnapcloneWait, AStillRunningCloneEndsTheWaitAfterTwoSleepsWithoutFailing)
{
    EXPECT_EQ(makeClone(5), QRN_OK);
    EXPECT_EQ(clock.sleeps(), (std::vector<uint32_t>{4, 4}));
    EXPECT_EQ(sharing(), "snapclone_in_progress");
}
