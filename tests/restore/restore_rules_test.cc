// The restore's rules on records made in the test: the command list as it follows from the
// disk and the settings, and which flags start a pair. The exact scripts as they reach the
// array are shown against evasim (restore_array_test, restore_e2e_test).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cfistringtool.h"
#include "hpeva_restorescript.h"
#include "hpeva_rules.h"

using namespace hpeva_rules;

namespace {

SHpEvaVdisk disk(const std::string &path, const std::string &family, const std::string &wwn)
{
    SHpEvaVdisk d;
    d.objectname = path;
    d.familyname = family;
    d.wwlunid = wwn;
    return d;
}

// Each command as a line, a traced one marked with "+".
std::vector<std::string> lines(const std::vector<SHpEvaScriptCommand> &commands)
{
    std::vector<std::string> out;
    for (const SHpEvaScriptCommand &c : commands) {
        out.push_back((c.traced ? "+ " : "  ") + qorin_pdk_4_4::CFiStringTool::tstr2str(c.text));
    }
    return out;
}

class RestoreScript : public ::testing::Test {
protected:
    RestoreScript() :
        primary(disk("\\Virtual Disks\\db\\data\\ACTIVE", "data", "6005-08b4-0001-0000-0000-0000-00ab-0000")),
        secondary(disk("\\Virtual Disks\\db\\data_clone000\\ACTIVE", "data_clone000",
                       "6005-08b4-0001-0000-0000-0000-00cd-0001"))
    {
    }
    SHpEvaVdisk primary, secondary;
};

}  // namespace

TEST_F(RestoreScript, ContainerCopyTakesTheSettingsAndPresentsAgainInTheMapsOrder)
{
    primary.presentations = {{"\\Hosts\\z", 7}, {"\\Hosts\\a\\b", 2}, {"\\Hosts\\m", 11}};
    SHpEvaRestoreSettings settings;
    settings.commandDelay = L" 12 x";  // as it stands, whatever it holds
    settings.rediscover = true;
    const std::vector<std::string> got = lines(hpeva_restore::containerCopyCommands(primary, secondary, settings));
    ASSERT_EQ(got.size(), 11u);
    EXPECT_EQ(got[0], "  SET OPTION COMMAND_DELAY= 12 x");
    EXPECT_EQ(got[4], "  REDISCOVER") << "untraced, between the write-through and the second refresh";
    EXPECT_EQ(got[5], "+ REFRESH");
    EXPECT_EQ(std::vector<std::string>(got.begin() + 8, got.end()),
              (std::vector<std::string>{
                  "+ ADD LUN 2 HOST=\"\\Hosts\\a\\b\"  VDISK=\"data\" ",
                  "+ ADD LUN 11 HOST=\"\\Hosts\\m\"  VDISK=\"data\" ",
                  "+ ADD LUN 7 HOST=\"\\Hosts\\z\"  VDISK=\"data\" ",
              }));
}

TEST(RestoreRules, FlagsThatStartAPair)
{
    for (int32_t flags : {0, 0x1, 0x100, 0x101, 0x3, 0x102}) {
        EXPECT_TRUE(restoreStarts(flags)) << flags;
    }
    for (int32_t flags : {0x2, 0x10, 0x200, -0x102}) {
        EXPECT_FALSE(restoreStarts(flags)) << flags;
    }
}
