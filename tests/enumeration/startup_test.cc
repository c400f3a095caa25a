// The plug-in's first contact with the arrays, with SSSU answered in process: its SSSU runs
// and their sleeps go through the plug-in's env, so a test counts the sleeps of a retry
// without waiting for them.
#include <gtest/gtest.h>

#include <stdlib.h>

#include <string>

#include "eva_cells.h"
#include "hpeva_plugin.h"
#include "qrn_results.h"
#include "scratch_files.h"
#include "test_env.h"

namespace {

// The plug-in with the logins init would have read.
class Plugin : public CHpEvaPlugin {
public:
    explicit Plugin(const qorin_pdk_4_4::SFiCredential &login) { credentials = {login}; }
    const std::vector<SHpEvaCell> &discovered() const { return cells; }
};

class Startup : public ::testing::Test {
protected:
    Startup() : sssu(&clock)
    {
        tmp = tamlin_test::makeTempDir("startup");
        setenv("TMPDIR", tmp.c_str(), 1);
    }
    ~Startup() override { tamlin_test::removeTree(tmp); }

    tamlin_test::RecordingClock clock;
    tamlin_test::CannedSssu sssu;
    qorin_pdk_4_4::SFiCredential login = tamlin_test::login();
    std::string tmp;
};

}  // namespace

TEST_F(Startup, DelayedInitRunsSssuAndItsRetriesOnThePluginsEnv)
{
    sssu.answer(1, "SSSU for HP StorageWorks Command View EVA\nVersion: 8.0\n");
    sssu.answer(2, "Error opening https connection\n");
    sssu.answer(3, "Systems available on this Manager:\nEVA01\nNoSystemSelected> exit\n");
    sssu.answer(4, "EVA01 information:\n<object>\n<objectname>EVA01</objectname>\n"
                   "<objectwwn>5000-1FE1-5000-0001</objectwwn>\n</object>\nNoSystemSelected> exit\n");
    Plugin plugin(login);
    plugin.setEnv(&sssu);
    EXPECT_EQ(plugin.delayedInit(), QRN_OK);
    EXPECT_EQ(sssu.runs(), 4);
    EXPECT_EQ(clock.sleeps(), std::vector<uint32_t>{1}) << "the retry of LS CELL";
    ASSERT_EQ(plugin.discovered().size(), 1u);
    EXPECT_EQ(plugin.discovered()[0].objectwwn, "5000-1FE1-5000-0001");
    EXPECT_EQ(plugin.discovered()[0].hostname, L"cv1");
}

TEST_F(Startup, AnUnsupportedVersionEndsBeforeAnyLogin)
{
    sssu.answerAll("SSSU for HP StorageWorks Command View EVA\nVersion: 9.2\n");
    Plugin plugin(login);
    plugin.setEnv(&sssu);
    EXPECT_EQ(plugin.delayedInit(), QRN_ERR_VERSION_CHECK);
    EXPECT_EQ(sssu.runs(), 1);
    EXPECT_EQ(sssu.script(1).find("select manager"), std::string::npos);
}
