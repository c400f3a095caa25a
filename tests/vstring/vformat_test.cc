// Bounded formatting and wide copies: results, terminators and the bytes past `size`.
#include "vstring.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr char kFill = '#';
constexpr wchar_t kWideFill = L'#';

TEST(VSnprintf, ResultIsTheLengthOrSizeMinusOneWhenCut)
{
    struct Row {
        size_t size;
        const char *text;  // formatted from "%s-%d" with "abc", 42: "abc-42"
        int result;
    } const rows[] = {
        {16, "abc-42", 6}, {7, "abc-42", 6}, {6, "abc-4", 5}, {3, "ab", 2}, {1, "", 0},
    };
    for (const Row &r : rows) {
        char buf[24];
        std::memset(buf, kFill, sizeof buf);
        EXPECT_EQ(V_snprintf(buf, r.size, "%s-%d", "abc", 42), r.result) << r.size;
        EXPECT_STREQ(buf, r.text) << r.size;
        for (size_t i = r.size; i < sizeof buf; ++i) {
            ASSERT_EQ(buf[i], kFill) << r.size;
        }
    }

    char buf[4] = {kFill, kFill, kFill, kFill};
    EXPECT_EQ(V_snprintf(nullptr, 10, "x"), -1);
    EXPECT_EQ(V_snprintf(buf, 0, "x"), -1);
    EXPECT_EQ(buf[0], kFill);
}

// The trace log grows its buffer while the result fills it; that must end with the whole text.
TEST(VSnprintf, DoublingWhileTheResultFillsTheBufferReachesTheWholeText)
{
    std::string const want(3000, 'q');
    std::vector<char> buf(16);
    int n;
    while ((n = V_snprintf(buf.data(), buf.size(), "%s", want.c_str())) == int(buf.size()) - 1 && buf.size() < 8192) {
        buf.resize(buf.size() * 2);
    }
    EXPECT_EQ(n, 3000);
    EXPECT_EQ(std::string(buf.data()), want);
}

TEST(VSwprintf, NegativeWhenCutAndNeverPastSize)
{
    wchar_t buf[16];
    std::wmemset(buf, kWideFill, 16);
    EXPECT_EQ(V_swprintf(buf, 8, L"%ls=%d", L"key", 7), 5);
    EXPECT_EQ(std::wstring(buf), L"key=7");

    for (size_t size : {6u, 5u, 1u}) {  // "key=77" needs 7 with its terminator
        std::wmemset(buf, kWideFill, 16);
        EXPECT_LT(V_swprintf(buf, size, L"%ls=%d", L"key", 77), 0) << size;
        EXPECT_EQ(std::wstring(buf), std::wstring(L"key=77").substr(0, size - 1)) << size;
        for (size_t i = size; i < 16; ++i) {
            ASSERT_EQ(buf[i], kWideFill) << size;
        }
    }

    std::wmemset(buf, kWideFill, 16);
    EXPECT_EQ(V_swprintf(buf, 0, L"x"), -1);
    EXPECT_EQ(buf[0], kWideFill);
    EXPECT_EQ(V_swprintf(nullptr, 8, L"%d", 5), 1);  // formats, copies nowhere
}

TEST(VWcslcpy, CopiesAtMostSizeMinusOneAndTerminates)
{
    struct Row {
        const wchar_t *source;
        size_t size, result;
        const wchar_t *copied;
    } const rows[] = {
        {L"abc", 8, 3, L"abc"}, {L"abc", 4, 3, L"abc"}, {L"abcdef", 4, 3, L"abc"},
        {L"abc", 1, 0, L""},    {L"", 4, 0, L""},
    };
    for (const Row &r : rows) {
        wchar_t buf[12];
        std::wmemset(buf, kWideFill, 12);
        EXPECT_EQ(V_wcslcpy(buf, r.source, r.size), r.result) << r.source << " " << r.size;
        EXPECT_EQ(std::wstring(buf), r.copied) << r.source << " " << r.size;
        for (size_t i = r.size; i < 12; ++i) {
            ASSERT_EQ(buf[i], kWideFill);
        }
    }
    wchar_t buf[2] = {kWideFill, kWideFill};
    EXPECT_EQ(V_wcslcpy(buf, L"abc", 0), 0u);
    EXPECT_EQ(V_wcslcpy(buf, nullptr, 2), 0u);
    EXPECT_EQ(V_wcslcpy(nullptr, L"abc", 2), 0u);
    EXPECT_EQ(buf[0], kWideFill);
}

TEST(VWcsncpy, CountAndSizeDecideFillTerminatorAndResult)
{
    struct Row {
        const wchar_t *source;
        size_t count, size, result;
        const wchar_t *image;  // the buffer afterwards: # untouched, 0 a zero
    } const rows[] = {
        {L"ab", 5, 8, 5, L"ab0000##"},      // n = count: zero-filled to n, then target[n] = 0
        {L"abcdef", 3, 8, 3, L"abc0####"},  // n = count on a longer source
        {L"abcdef", 8, 4, 3, L"abc0#"},     // n = size: the last character becomes 0
        {L"ab", 4, 4, 3, L"ab00#"},         // n = size with zero fill
        {L"abcdef", 0, 4, 0, L"0####"},     // n = 0 still terminates
    };
    for (const Row &r : rows) {
        wchar_t buf[12];
        std::wmemset(buf, kWideFill, 12);
        EXPECT_EQ(V_wcsncpy(buf, r.source, r.count, r.size), r.result) << r.source << " " << r.count;
        std::wstring image;
        for (size_t i = 0; i < std::wcslen(r.image); ++i) {
            image += buf[i] == 0 ? L'0' : buf[i];
        }
        EXPECT_EQ(image, r.image) << r.source << " " << r.count << " " << r.size;
    }
    wchar_t buf[2] = {kWideFill, kWideFill};
    EXPECT_EQ(V_wcsncpy(buf, L"abc", 3, 0), 0u);
    EXPECT_EQ(V_wcsncpy(nullptr, L"abc", 3, 2), 0u);
    EXPECT_EQ(V_wcsncpy(buf, nullptr, 3, 2), 0u);
    EXPECT_EQ(buf[0], kWideFill);
}

}  // namespace
