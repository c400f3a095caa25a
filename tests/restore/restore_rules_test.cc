// Which flags start a restore. The command lists as they reach the array are shown against
// evasim (restore_array_test, restore_e2e_test).
#include <gtest/gtest.h>

#include "hpeva_rules.h"

using namespace hpeva_rules;

TEST(RestoreRules, FlagsThatStartAPair)
{
    for (int32_t flags : {0, 0x1, 0x100, 0x101, 0x3, 0x102}) {
        EXPECT_TRUE(restoreStarts(flags)) << flags;
    }
    for (int32_t flags : {0x2, 0x10, 0x200, -0x102}) {
        EXPECT_FALSE(restoreStarts(flags)) << flags;
    }
}
