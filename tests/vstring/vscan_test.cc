// V_sscanf against the C library where the two should agree, and its own rules where they don't.
// Arbitrary input against exact-sized destinations: tests/fuzz/fuzz_vsscanf.cc.
#include "vstring.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr unsigned char kFill = 0xA5;

// Four destinations, pre-filled so that any byte written (or not) shows in a comparison.
struct Slots {
    alignas(16) unsigned char b[4][64];
    Slots() { std::memset(b, kFill, sizeof b); }
};

int scanOurs(const char *text, const char *format, Slots &s)
{
    return V_sscanf(text, format, s.b[0], 64, s.b[1], 64, s.b[2], 64, s.b[3], 64);
}

// Bytes of a destination past `used` are untouched.
bool intactFrom(const unsigned char *p, size_t used, size_t total = 64)
{
    for (size_t i = used; i < total; ++i) {
        if (p[i] != kFill) {
            return false;
        }
    }
    return true;
}

template <typename T>
T as(const Slots &s, int slot)
{
    T v;
    std::memcpy(&v, s.b[slot], sizeof v);
    return v;
}

const char *str(const Slots &s, int slot)
{
    return reinterpret_cast<const char *>(s.b[slot]);
}

struct Case {
    const char *format;
    const char *text;
};

// Only conversions whose stored width is the same for both (no l, L, q, I64 on integers).
const Case kAgree[] = {
    {"%d", "42"},
    {"%d", "  -17 rest"},
    {"%d", "+7"},
    {"%d", "- 7"},
    {"%d", "x"},
    {"%d", ""},
    {"%d", "   "},
    {"%d%d", "1 2"},
    {"%d %d", "1 \n\t 2"},
    {"%d %d", "1-2"},
    {"%d%s", "0x10"},
    {"%3d%d", "12345"},
    {"%*d %d", "1 2"},
    {"%d %s", "5"},
    {"%i %i %i", "0x1F 017 -9"},
    {"%i%d", "08"},
    {"%x %X %x", "ff 0XAB -0x10"},
    {"%o%d", "07558"},
    {"%u", "4000000000"},
    {"%u", "-1"},
    {"%hhd %hd", "-5 -300"},
    {"%hhu", "257"},
    {"%lld", "-9223372036854775808"},
    {"%llu", "18446744073709551615"},
    {"%p", "0x7fff1234"},
    {"%s", "hello world"},
    {"%s%s", "ab\tcd"},
    {"%5s%s", "abcdefgh"},
    {"%[a-z]%s", "abc123"},
    {"%[^,],%d", "key name,5"},
    {"%[]a]%s", "]a]b"},
    {"%[a-]%s", "a-a-b"},
    {"%[^]]", "xy]z"},
    {"%[0-9]", "abc"},
    {"%c%c", "xy"},
    {" %c", "  z"},
    {"%c", " z"},
    {"%*c%c", "ab"},
    {"%d%n %d", "12 34"},
    {"%n", "abc"},
    {"%f", "3.25"},
    {"%lf", "-1.5e3"},
    {"%e %g %E", "1e-2 .5 2.5E+1"},
    {"%f%s", "7.x"},
    {"%d%%", "5%"},
    {"abc%d", "abc7"},
    {"abc%d", "abd7"},
    {"ab", "a"},
    {"%dab", "5a"},
    {"<SERIALIZED_MESSAGE MSGID=%s SEVERITY=%d>", "<SERIALIZED_MESSAGE MSGID=MSG_ERROR_VERSION_CHECK SEVERITY=3>"},
    {"<ARGVALUE INDEX=%d TYPE=%d>", "<ARGVALUE INDEX=2 TYPE=3>abc</ARGVALUE>"},
    {"<ARGVALUE INDEX=%d TYPE=%d>", "<ARGVALUE INDEX=2"},
    {"<ARGVALUE INDEX=%d TYPE=%d>", "<ARGVALUE INDEX="},
};

TEST(VScan, AgreesWithTheCLibrary)
{
    for (const Case &c : kAgree) {
        Slots libc, ours;
        const int expected = std::sscanf(c.text, c.format, libc.b[0], libc.b[1], libc.b[2], libc.b[3]);
        const int got = scanOurs(c.text, c.format, ours);
        EXPECT_EQ(got, expected) << c.format << " on \"" << c.text << '"';
        EXPECT_EQ(std::memcmp(libc.b, ours.b, sizeof libc.b), 0) << c.format << " on \"" << c.text << '"';
    }
}

TEST(VScan, SizeBoundsStringsAndTheFieldIsStillConsumed)
{
    Slots s;
    EXPECT_EQ(V_sscanf("abcdefghijklmnopqrst tail", "%s %s", s.b[0], 8, s.b[1], 64), 2);
    EXPECT_STREQ(str(s, 0), "abcdefg");
    EXPECT_TRUE(intactFrom(s.b[0], 8));
    EXPECT_STREQ(str(s, 1), "tail");

    Slots t;
    EXPECT_EQ(V_sscanf("aaaaaaaaaa9", "%[a]%d", t.b[0], 4, t.b[1], 4), 2);
    EXPECT_STREQ(str(t, 0), "aaa");
    EXPECT_TRUE(intactFrom(t.b[0], 4));
    EXPECT_EQ(as<int>(t, 1), 9);

    // Size 1 holds only the terminator; size 0 can't even hold that, so nothing is written.
    Slots u;
    EXPECT_EQ(V_sscanf("word 5", "%s%d", u.b[0], 1, u.b[1], 4), 2);
    EXPECT_EQ(u.b[0][0], 0);
    EXPECT_TRUE(intactFrom(u.b[0], 1));
    Slots v;
    EXPECT_EQ(V_sscanf("word 5", "%s%d", v.b[0], 0, v.b[1], 4), 2);
    EXPECT_TRUE(intactFrom(v.b[0], 0));
    EXPECT_EQ(as<int>(v, 1), 5);

    // A key longer than the message buffer doesn't lose the severity behind it.
    std::string const key(1500, 'K');
    std::string const text = "<SERIALIZED_MESSAGE MSGID=" + key + " SEVERITY=2>";
    char keyBuf[1024 + 8];
    std::memset(keyBuf, kFill, sizeof keyBuf);
    int severity = 0;
    EXPECT_EQ(V_sscanf(text.c_str(), "<SERIALIZED_MESSAGE MSGID=%s SEVERITY=%d>", keyBuf, 1024, &severity, 4), 2);
    EXPECT_EQ(std::string(keyBuf), key.substr(0, 1023));
    EXPECT_TRUE(intactFrom(reinterpret_cast<unsigned char *>(keyBuf), 1024, sizeof keyBuf));
    EXPECT_EQ(severity, 2);
}

TEST(VScan, CharStoresOneAndReadsOneWhateverTheWidth)
{
    Slots s;
    EXPECT_EQ(V_sscanf("abcdef", "%5c%s", s.b[0], 5, s.b[1], 64), 2);
    EXPECT_EQ(s.b[0][0], 'a');
    EXPECT_TRUE(intactFrom(s.b[0], 1));
    EXPECT_STREQ(str(s, 1), "bcdef");
}

TEST(VScan, ModifiersAloneDecideTheStoredWidth)
{
    struct Row {
        const char *format, *text;
        size_t bytes;
        int64_t value;
    } const rows[] = {
        {"%ld", "-2", 4, -2},
        {"%lu", "7", 4, 7},
        {"%I64d", "-2", 8, -2},
        {"%lld", "5000000000", 8, 5000000000LL},
        {"%qd", "-3", 8, -3},
        {"%zu", "9", 8, 9},
        {"%td", "-4", 8, -4},
        {"%jd", "6", 8, 6},
        {"%Ld", "-5", 8, -5},
        {"%I64x", "ffffffffff", 8, 0xffffffffffLL},
        {"%hhd", "-1", 1, -1},
        {"%hd", "-1", 2, -1},
        {"%D", "-8", 4, -8},
        {"%hD", "70000", 4, 70000},
        {"%O", "17", 4, 15},
        {"%k", "-12", 4, -12},
        {"%K", "12", 4, 12},
        {"%F", "3.5", 4, 3},
        {"%p", "ffffffffff", 8, 0xffffffffffLL},
        {"%I32d", "3", 4, 3},
    };
    for (const Row &r : rows) {
        Slots s;
        // The size passed for numbers is ignored, however small.
        const int n = V_sscanf(r.text, r.format, s.b[0], 1, s.b[1], 1);
        EXPECT_GE(n, 1) << r.format;
        EXPECT_EQ(std::memcmp(s.b[0], &r.value, r.bytes), 0) << r.format;  // the low bytes
        EXPECT_TRUE(intactFrom(s.b[0], r.bytes)) << r.format;
    }

    Slots f;
    EXPECT_EQ(V_sscanf("1.5 2.5 3.5", "%f %lf %Lf", f.b[0], 4, f.b[1], 8, f.b[2], 16), 3);
    EXPECT_EQ(as<float>(f, 0), 1.5f);
    EXPECT_EQ(as<double>(f, 1), 2.5);
    EXPECT_EQ(as<double>(f, 2), 3.5);  // L is a double here, not a long double
    EXPECT_TRUE(intactFrom(f.b[0], 4) && intactFrom(f.b[1], 8) && intactFrom(f.b[2], 8));
}

TEST(VScan, NumbersAreCutToTheDestinationAndOverflowSaturates)
{
    Slots s;
    errno = 0;
    EXPECT_EQ(V_sscanf("99999999999999999999 -99999999999999999999 99999999999999999999 -1", "%lld %lld %llu %llu",
                       s.b[0], 8, s.b[1], 8, s.b[2], 8, s.b[3], 8),
              4);
    EXPECT_EQ(errno, 34);
    EXPECT_EQ(as<int64_t>(s, 0), INT64_MAX);
    EXPECT_EQ(as<int64_t>(s, 1), INT64_MIN);
    EXPECT_EQ(as<uint64_t>(s, 2), UINT64_MAX);
    EXPECT_EQ(as<uint64_t>(s, 3), UINT64_MAX);

    Slots t;
    EXPECT_EQ(V_sscanf("4294967297 99999999999999999999 300", "%d %d %hhd", t.b[0], 4, t.b[1], 4, t.b[2], 1), 3);
    EXPECT_EQ(as<int32_t>(t, 0), 1);
    EXPECT_EQ(as<int32_t>(t, 1), -1);  // the low half of INT64_MAX
    EXPECT_EQ(as<int8_t>(t, 2), 44);
}

TEST(VScan, NumberFieldsEndAt512Characters)
{
    std::string digits(600, '1');
    for (const char *format : {"%lld%s", "%513lld%s", "%9999lld%s", "%0lld%s"}) {
        int64_t value = 0;
        char rest[128];
        errno = 0;
        EXPECT_EQ(V_sscanf(digits.c_str(), format, &value, 8, rest, 128), 2) << format;
        EXPECT_EQ(value, INT64_MAX);
        EXPECT_EQ(errno, 34);
        EXPECT_EQ(std::string(rest), digits.substr(512)) << format;
    }
    Slots w;
    EXPECT_EQ(V_sscanf("123456", "%4d%d", w.b[0], 4, w.b[1], 4), 2);
    EXPECT_EQ(as<int>(w, 0), 1234);
    EXPECT_EQ(as<int>(w, 1), 56);
}

TEST(VScan, LoneHexPrefixAndBadExponentAreGivenBack)
{
    struct Row {
        const char *format, *text, *rest;
    } const rows[] = {
        {"%x%s", "0xg", "xg"}, {"%i%s", "0Xz", "Xz"},     {"%x%s", "-0x;", "x;"}, {"%2x%s", "0x5", "x5"},
        {"%f%s", "1e;", "e;"}, {"%f%s", "2.5E+;", "E+;"}, {"%f%s", "-3e-", "e-"},
    };
    for (const Row &r : rows) {
        Slots s;
        EXPECT_EQ(V_sscanf(r.text, r.format, s.b[0], 8, s.b[1], 64), 2) << r.format << " " << r.text;
        EXPECT_STREQ(str(s, 1), r.rest) << r.format << " " << r.text;
    }
    Slots x;
    EXPECT_EQ(V_sscanf("x5", "%x", x.b[0], 4), 0);  // an x without its 0 is no prefix
}

TEST(VScan, CountOnlyStoringConversionsAndPassArgumentsOnlyForThem)
{
    Slots s;
    EXPECT_EQ(V_sscanf("ab cd 9 e", "%s%n %*s%*n %*d %hhn%c", s.b[0], 64, s.b[1], 4, s.b[2], 1, s.b[3], 1), 2);
    EXPECT_STREQ(str(s, 0), "ab");
    EXPECT_EQ(as<int>(s, 1), 2);
    EXPECT_EQ(s.b[2][0], 8);
    EXPECT_TRUE(intactFrom(s.b[2], 1));
    EXPECT_EQ(s.b[3][0], 'e');

    Slots t;
    EXPECT_EQ(V_sscanf("7 x", "%*[0-9] %*c%n", t.b[0], 4), 0);
    EXPECT_EQ(as<int>(t, 0), 3);
}

TEST(VScan, ResultAtMismatchesAndEnds)
{
    struct Row {
        const char *format, *text;
        int result;
    } const rows[] = {
        // End of input where a character is needed: the count, or -1 when it is 0.
        {"%d", "", -1},
        {"%d", " \t", -1},
        {"%c", "", -1},
        {"%[a]", "", -1},
        {"x", "", -1},
        {"%d %d", "5 ", 1},
        {"%d x", "5", 1},
        {"", "", 0},
        {" ", "", 0},
        {"%n", "", 0},
        // Literals, %% included, don't skip white space (the C library skips before %%).
        {"%d%%%d", "5 %7", 1},
        {"%d,%d", "1 ,2", 1},
        {"x%d", " x5", 0},
        {" x%d", " x5", 1},
        // A field without digits is a mismatch, not an end of input.
        {"%d", "-", 0},
        {"%f", ".", 0},
        {"%f", "+e5", 0},
        // The format ending inside a conversion gives -1 even after assignments.
        {"%", "1", -1},
        {"%d %", "1 2", -1},
        {"%5", "1", -1},
        {"%ll", "1", -1},
        {"%*", "1", -1},
        {"%I64", "1", -1},
    };
    for (const Row &r : rows) {
        Slots s;
        EXPECT_EQ(scanOurs(r.text, r.format, s), r.result) << r.format << " on \"" << r.text << '"';
    }
}

TEST(VScan, ScanSets)
{
    struct Row {
        const char *format, *text, *stored;
    } const rows[] = {
        {"%[a-c-e]", "abcdef", "abcde"}, {"%[z-a]", "za-b", "za-"}, {"%[a-a]", "aab", "aa"},
        {"%[-a]", "-a-b", "-a-"},        {"%[^-]", "ab-c", "ab"},   {"%[abc", "abcd", "abc"},
        {"%[^", "any text", "any text"}, {"%[]-Z]", "]-Z^", "]-Z"}, {"%[\x80-\xff]", "\xc3\xa9z", "\xc3\xa9"},
    };
    for (const Row &r : rows) {
        Slots s;
        EXPECT_EQ(V_sscanf(r.text, r.format, s.b[0], 64), 1) << r.format;
        EXPECT_STREQ(str(s, 0), r.stored) << r.format;
    }
    Slots e;
    EXPECT_EQ(V_sscanf("abc", "%[", e.b[0], 64), 0);  // empty set matches nothing
    EXPECT_TRUE(intactFrom(e.b[0], 0));
}

TEST(VScan, MemoryInputReportsWhereTheScanStopped)
{
    const char text[] = "12 34 rest";
    V_input in = {text, 5, 0};  // "12 34": the scanner must not look past the length
    auto scan = [](V_input *input, const char *format, ...) {
        va_list args;
        va_start(args, format);
        int const r = V_vfscanf(input, format, args);
        va_end(args);
        return r;
    };
    int a = 0, b = 0, c = 0;
    EXPECT_EQ(scan(&in, "%d %d %d", &a, 4, &b, 4, &c, 4), 2);
    EXPECT_EQ(a * 100 + b, 1234);
    EXPECT_EQ(in.position, 5u);
}

// The number readers behave as strtoll/strtoull, including where they stop and errno.
TEST(VStrto, AgreeWithStrtollAndStrtoull)
{
    struct Row {
        const char *text;
        int base;
    } const rows[] = {
        {"  42", 10},
        {"-42x", 10},
        {"+7", 0},
        {"0x1fG", 0},
        {"0X1F", 16},
        {"1f", 16},
        {"0x", 16},
        {"0x", 0},
        {"0xg", 0},
        {"017", 0},
        {"09", 0},
        {"0", 0},
        {"", 10},
        {"-", 10},
        {" +-1", 10},
        {"zZ", 36},
        {"102", 2},
        {"777", 8},
        {"9223372036854775807", 10},
        {"9223372036854775808", 10},
        {"-9223372036854775808", 10},
        {"-9223372036854775809", 10},
        {"18446744073709551615", 10},
        {"18446744073709551616", 10},
        {"-18446744073709551615", 10},
        {"-1", 10},
        {"99999999999999999999999999 tail", 10},
        {"-0x8000000000000000", 0},
        {"ffffffffffffffffff", 16},
    };
    for (const Row &r : rows) {
        char *endC = nullptr, *endV = nullptr;
        errno = 0;
        const long long sc = std::strtoll(r.text, &endC, r.base);
        const int errC = errno;
        errno = 0;
        const intmax_t sv = V_strtoimax(r.text, &endV, r.base);
        EXPECT_EQ(sv, sc) << r.text << " base " << r.base;
        EXPECT_EQ(endV - r.text, endC - r.text) << r.text << " base " << r.base;
        EXPECT_EQ(errno, errC) << r.text << " base " << r.base;

        errno = 0;
        const unsigned long long uc = std::strtoull(r.text, &endC, r.base);
        const int uerrC = errno;
        errno = 0;
        const uintmax_t uv = V_strtoumax(r.text, &endV, r.base);
        EXPECT_EQ(uv, uc) << r.text << " base " << r.base;
        EXPECT_EQ(endV - r.text, endC - r.text) << r.text << " base " << r.base;
        EXPECT_EQ(errno, uerrC) << r.text << " base " << r.base;
    }

    // Where the C library leaves the end unspecified: a base it can't use.
    for (int base : {-1, 1, 37}) {
        const char text[] = "12";
        char *end = nullptr;
        errno = 0;
        EXPECT_EQ(V_strtoimax(text, &end, base), 0);
        EXPECT_EQ(errno, EINVAL);
        EXPECT_EQ(end, text);
    }
}

}  // namespace
