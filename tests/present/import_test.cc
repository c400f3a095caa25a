// importNode with SSSU answered in process: the host steps and their messages, which the
// simulator can't reach (a machine without a name, a host that goes away in the middle of an
// import), and the wait after an unmask, counted on a recording clock instead of slept.
#include <gtest/gtest.h>

#include <stdlib.h>

#include <string>

#include "cfierrormanager.h"
#include "eva_cells.h"
#include "hpeva_plugin.h"
#include "message_recorder.h"
#include "qrn_results.h"
#include "scratch_files.h"
#include "test_env.h"

namespace {

const wchar_t kNode[] = L"UDID##HP##HSV##5000-1FE1-5000-0001##6005-08B4-0001-0000-0000-0000-0002-0000";
// What a run that only changes something prints at its end.
const char kDone[] = "EVA01> exit\n";
const char kCellList[] = "Hosts available on this Cell:\n\\Hosts\\h1\n\\Hosts\\lab\\backup01\nEVA01> exit\n";

// The disk as FIND VDISK lists it, presented as given ("host=lun,...").
std::string diskXml(const std::string &presentations = "")
{
    std::string xml = "<object>\n<objectname>\\Virtual Disks\\db\\data\\data_vsnap000</objectname>\n"
                      "<wwlunid>6005-08b4-0001-0000-0000-0000-0002-0000</wwlunid>\n<presentations>\n";
    size_t at = 0;
    while (at < presentations.size()) {
        size_t comma = presentations.find(',', at);
        const std::string item = presentations.substr(at, comma - at);
        const size_t eq = item.find('=');
        xml += "<presentation>\n<hostname>" + item.substr(0, eq) + "</hostname>\n<lunnumber>" + item.substr(eq + 1) +
               "</lunnumber>\n</presentation>\n";
        at = comma == std::string::npos ? presentations.size() : comma + 1;
    }
    return xml + "</presentations>\n</object>\nEVA01> exit\n";
}

// This machine under another name, or none.
class NamedMachine : public qorin_pdk_4_4::CFiEnvWrapper {
public:
    NamedMachine(qorin_pdk_4_4::CFiEnv *target, std::string name) : CFiEnvWrapper(target), m_name(std::move(name)) {}
    std::string computerName() override { return m_name; }

private:
    std::string m_name;
};

// The plug-in as start-up leaves it: one cell, a wait after each unmask.
class Plugin : public CHpEvaPlugin {
public:
    Plugin()
    {
        cells = {tamlin_test::cell(L"EVA01", L"cv1", L"secret", "5000-1FE1-5000-0001")};
        postUnmaskWait = 4;
    }
};

class Import : public ::testing::Test {
protected:
    Import() : sssu(&clock), machine(&sssu, "backup01"), errors(new qorin_pdk_4_4::CFiErrorManager)
    {
        tmp = tamlin_test::makeTempDir("import");
        setenv("TMPDIR", tmp.c_str(), 1);
        errors->registerHandler(&recorder);
        plugin.registerErrorManager(errors);
        plugin.setEnv(&machine);
        plugin.getPblmOps().setCacheRoot(tmp + "/cache/");
        plugin.getPblmOps().setLunNumRange(1, 254);
    }
    ~Import() override { tamlin_test::removeTree(tmp); }

    int import(std::vector<std::wstring> hosts, bool singleHost, bool deport, int mode)
    {
        return plugin.importNode(kNode, std::move(hosts), false, singleHost, deport, mode);
    }

    tamlin_test::RecordingClock clock;
    tamlin_test::CannedSssu sssu;
    NamedMachine machine;
    qorin_pdk_4_4::CFiErrorManagerPtr errors;
    tamlin_test::MessageRecorder recorder;
    Plugin plugin;
    std::string tmp;
};

}  // namespace

TEST_F(Import, AHostTheCellDoesNotKnowIsRefusedWithTheMessageOfItsStep)
{
    // This machine, when it has no name.
    NamedMachine nameless(&sssu, "");
    plugin.setEnv(&nameless);
    sssu.answer(1, diskXml());
    sssu.answer(2, kCellList);
    EXPECT_EQ(import({}, false, false, 1), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(recorder.keys, std::vector<std::string>{"MSG_ERROR_IMPORT_LOCAL_HOST_INVALID"});

    // The host that went away between the array's choice of LUN and the reading of it: the
    // second host step has its own key.
    plugin.setEnv(&machine);
    plugin.getPblmOps().setLunNumRange(1, 0);
    recorder.clear();
    sssu.answer(3, diskXml());
    sssu.answer(4, kCellList);
    sssu.answer(5, kDone);
    sssu.answer(6, diskXml("\\Hosts\\lab\\backup01=9"));
    sssu.answer(7, "Hosts available on this Cell:\n\\Hosts\\h1\nEVA01> exit\n");
    EXPECT_EQ(import({}, false, false, 2), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_NE(sssu.script(5).find("ADD LUN 0 HOST=\"\\Hosts\\lab\\backup01\"  VDISK="), std::string::npos)
        << sssu.script(5);
    EXPECT_EQ(recorder.keys, std::vector<std::string>{"MSG_ERROR_IMPORT_HOST_INVALID"});
    EXPECT_EQ(clock.sleeps(), std::vector<uint32_t>{}) << "no wait without a presentation to wait for";
}

TEST_F(Import, TheWaitFollowsEachNewPresentationOnTheEnvsClockAndNoRemoval)
{
    sssu.answer(1, diskXml());
    sssu.answer(2, kCellList);
    sssu.answer(3, kDone);
    sssu.answer(4, diskXml("\\Hosts\\lab\\backup01=1"));
    EXPECT_EQ(import({}, false, false, 1), QRN_OK);
    EXPECT_EQ(clock.sleeps(), std::vector<uint32_t>{4});

    // Taken away: nothing to wait for.
    sssu.answer(5, diskXml("\\Hosts\\lab\\backup01=1"));
    sssu.answer(6, kCellList);
    sssu.answer(7, kDone);
    EXPECT_EQ(import({}, true, true, 1), QRN_OK);
    EXPECT_NE(sssu.script(7).find("DELETE LUN \"\\Hosts\\lab\\backup01\\1\""), std::string::npos) << sssu.script(7);
    EXPECT_EQ(clock.sleeps(), std::vector<uint32_t>{4});
}
