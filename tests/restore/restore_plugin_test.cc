// The plug-in's wait for the copies, with SSSU answered in process and the four-second sleeps
// recorded: how many reads and sleeps a copy costs, and how a wait ends when it can't go on.
// And the restore settings as the administrator writes them.
#include <gtest/gtest.h>

#include <stdlib.h>

#include <string>
#include <vector>

#include "cfierrormanager.h"
#include "cfistringtool.h"
#include "cfitracelog.h"
#include "eva_cells.h"
#include "hpeva_configuration.h"
#include "hpeva_plugin.h"
#include "message_recorder.h"
#include "qrn_results.h"
#include "scratch_files.h"
#include "temp_install_root.h"
#include "test_env.h"

using namespace qorin_pdk_4_4;

namespace {

const wchar_t kPrimary[] = L"UDID##HP##HSV##5000-1FE1-5000-0001##6005-08B4-0001-0000-0000-0000-0001-0000";
const wchar_t kSecondary[] = L"UDID##HP##HSV##5000-1FE1-5000-0001##6005-08B4-0001-0000-0000-0000-0002-0000";
const char kClone[] = "\\Virtual Disks\\data_clone000\\ACTIVE";

// One disk as an XML listing prints it.
std::string listing(const std::string &path, const std::string &sharing)
{
    return "Vdisk information:\n<object>\n  <objectname>" + path +
           "</objectname>\n  <familyname>f</familyname>\n  <sharingrelationship>" + sharing +
           "</sharingrelationship>\n</object>\nEVA01> exit\n";
}

// The plug-in as delayedInit would have left it, with one cell, on SSSU answered in process:
// runs 1 to 4 find both disks, delete the primary's presentations and run the script; the
// reads of the wait come after.
class Scene : public CHpEvaPlugin {
public:
    explicit Scene(const std::string &logDir) : sssu(&clock), errors(new CFiErrorManager), log(new CFiTraceLog)
    {
        // Trace lines reach the recorder only from an initialised log.
        log->initialize(L"tamlin", CFiStringTool::str2tstr(logDir), L"trace", 6, false);
        log->registerErrorManager(errors);
        setTraceLog(log);
        cells = {tamlin_test::cell(L"EVA01", L"cv1", L"secret", "5000-1FE1-5000-0001")};
        errors->registerHandler(&recorder);
        registerErrorManager(errors);
        setEnv(&sssu);
        sssu.answer(1, listing("\\Virtual Disks\\data\\ACTIVE", "none"));
        sssu.answer(2, listing(kClone, "none"));
        sssu.answer(3, "EVA01> exit");
        sssu.answer(4, "EVA01> exit");
    }

    // The copy shows running for `running` reads and has ended at the next.
    void copyRunsFor(int running)
    {
        for (int read = 0; read < running; ++read) {
            sssu.answer(5 + read, listing(kClone, "parent"));
        }
        sssu.answer(5 + running, listing(kClone, "none"));
    }

    int restorePair(int32_t *status)
    {
        qorin_objid primary{const_cast<wchar_t *>(kPrimary), 0, 0};
        qorin_objid secondary{const_cast<wchar_t *>(kSecondary), 0, 0};
        qorin_objid *primaries[] = {&primary};
        qorin_objid *secondaries[] = {&secondary};
        return restore(primaries, secondaries, 1, nullptr, nullptr, 0, status);
    }

    tamlin_test::RecordingClock clock;
    tamlin_test::CannedSssu sssu;
    tamlin_test::MessageRecorder recorder;
    CFiErrorManagerPtr errors;
    CFiTraceLogPtr log;
};

// Scripts go below one directory for the whole process, made before any install root.
const std::string &scriptDirectory()
{
    static const std::string dir = [] {
        static std::string made = tamlin_test::makeTempDir("restore-wait");
        setenv("TMPDIR", made.c_str(), 1);
        atexit([] { tamlin_test::removeTree(made); });
        return made;
    }();
    return dir;
}

class RestoreWait : public ::testing::Test {
protected:
    RestoreWait() : tmp(scriptDirectory())
    {
        root.writeFile("ConfigFiles/tamlin.conf", "[DEBUG_TRACE_INFO]\n\"TRACELEVEL\"=dword:00000006\n");
    }

    std::string tmp;
    TempInstallRoot root;
};

}  // namespace

TEST_F(RestoreWait, OneTwoAndThreeReadsWithFourSecondsBetweenTwo)
{
    const std::vector<std::vector<uint32_t>> sleeps = {{}, {4}, {4, 4}};
    for (int running = 0; running < 3; ++running) {
        Scene scene(tmp);
        scene.copyRunsFor(running);
        int32_t status = 0;
        ASSERT_EQ(scene.restorePair(&status), QRN_OK) << running;
        EXPECT_EQ(status, 16);
        EXPECT_EQ(scene.sssu.runs(), 5 + running) << running;
        EXPECT_EQ(scene.clock.sleeps(), sleeps[running]);
        for (int read = 5; read <= scene.sssu.runs(); ++read) {
            EXPECT_NE(scene.sssu.script(read).find(std::string("LS VDISK \"") + kClone + "\" XML"), std::string::npos);
        }
        EXPECT_EQ(scene.recorder.count(std::string("[parent], sleeping 4 seconds [") + kClone + "]"),
                  static_cast<size_t>(running));
    }
}

TEST_F(RestoreWait, AReadThatFailsOrShowsNoDiskEndsTheWaitAndTheCopyGoesOnUnawaited)
{
    {
        Scene scene(tmp);
        scene.sssu.answer(5, listing(kClone, "parent"));
        scene.sssu.answer(6, "Error: Vdisk not found\n", 1);
        int32_t status = 0;
        EXPECT_EQ(scene.restorePair(&status), QRN_ERR_FAILED);
        EXPECT_EQ(status, 16) << "the pair was started";
        EXPECT_EQ(scene.clock.sleeps(), std::vector<uint32_t>{4});
        EXPECT_EQ(scene.recorder.keys, std::vector<std::string>{"MSG_ERROR_CLI_COMMAND_FAILED"});
    }
    {
        // The listing holds no disk (a container is none): no sharing relationship to wait on.
        Scene scene(tmp);
        scene.sssu.answer(5, "<object>\n  <objectname>" + std::string(kClone) +
                                 "</objectname>\n  <objecttype>container</objecttype>\n</object>\nEVA01> exit\n");
        int32_t status = 0;
        EXPECT_EQ(scene.restorePair(&status), QRN_ERR_FAILED);
        EXPECT_TRUE(scene.clock.sleeps().empty());
        EXPECT_EQ(scene.sssu.runs(), 5);
    }
}

TEST_F(RestoreWait, NoPairOrNoArraysCostsNoRun)
{
    Scene scene(tmp);
    EXPECT_EQ(scene.restore(nullptr, nullptr, 0, nullptr, nullptr, 0, nullptr), QRN_OK);
    EXPECT_EQ(scene.restore(nullptr, nullptr, 3, nullptr, nullptr, 0, nullptr), QRN_OK);
    EXPECT_EQ(scene.sssu.runs(), 0);
    EXPECT_TRUE(scene.recorder.traced("restore(): flags [0x0000], pri [], sec []"));
}

TEST_F(RestoreWait, SettingsOfEachTypeAndATimeOutThatWouldStopTheScriptAtOnce)
{
    auto settingsFrom = [this](const std::string &section) {
        root.writeFile("ConfigFiles/tamlin.conf", "[RESTORE_INFO]\n" + section);
        return CHpEvaConfiguration().importRestoreSettings();
    };
    SHpEvaRestoreSettings read = settingsFrom("\"COMMAND_DELAY\"=\"0\"\n\"TIMEOUT\"=dword:0000001e\n");
    EXPECT_EQ(read.commandDelay, ACE_WString(L"0"));
    EXPECT_EQ(read.timeout, 30);
    EXPECT_FALSE(read.rediscover);

    read = settingsFrom("\"COMMAND_DELAY\"=dword:00000003\n\"REDISCOVER\"=\"1\"\n\"TIMEOUT\"=dword:00000000\n");
    EXPECT_EQ(read.commandDelay, ACE_WString(L"5")) << "a number is no text";
    EXPECT_FALSE(read.rediscover) << "a text is no number";
    EXPECT_EQ(read.timeout, 120) << "0 would stop SSSU before its first answer";
    EXPECT_EQ(settingsFrom("\"TIMEOUT\"=dword:80000000\n").timeout, 120);
}
