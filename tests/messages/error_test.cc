// Keys made from error codes.
#include <gtest/gtest.h>

#include "cfierror.h"

using namespace qorin_pdk_4_4;

namespace {

CFiError withCode(int32_t code)
{
    return CFiError(code, L"t", L"f", 1, L"fn");
}

}  // namespace

TEST(MessageKey, OnlyCodesAboveTheOffsetAreReduced)
{
    EXPECT_EQ(withCode(6012).getMessageKey("tamlin", 6000), "MSG_ERROR_TAMLIN_0012");
    EXPECT_EQ(withCode(12).getMessageKey("tamlin", 6000), "MSG_ERROR_TAMLIN_0012");
    EXPECT_EQ(withCode(6000).getMessageKey("tamlin", 6000), "MSG_ERROR_TAMLIN_6000");
    EXPECT_EQ(withCode(6001).getMessageKey("tamlin", 6000), "MSG_ERROR_TAMLIN_0001");
    EXPECT_EQ(withCode(16000).getMessageKey("Tamlin", 6000), "MSG_ERROR_TAMLIN_10000");
    EXPECT_EQ(withCode(7).getMessageKey("", 0), "MSG_ERROR__0007");
}
