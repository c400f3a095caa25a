// Keys made from error codes, and the recorded-error mix-in.
#include <gtest/gtest.h>

#include "cfierror.h"
#include "cfilasterror.h"

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

TEST(LastError, HoldsACopyOfTheRecordedError)
{
    CFiLastError holder;
    EXPECT_EQ(holder.getLastError().getCode(), 0);
    {
        CFiError error(3, L"Configuration path verification failed", L"pdk/src/cficonfiguration", 41, L"open");
        holder.setLastError(error);
    }
    EXPECT_EQ(holder.getLastError().getCode(), 3);
    EXPECT_STREQ(holder.getLastError().getText(), L"Configuration path verification failed");
    EXPECT_EQ(holder.getLastError().getFile(), L"pdk/src/cficonfiguration");
    EXPECT_EQ(holder.getLastError().getLine(), 41);
    EXPECT_EQ(holder.getLastError().getFunction(), L"open");
}
