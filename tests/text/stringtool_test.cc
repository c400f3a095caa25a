// The string tool: conversions between the four kinds of text, numbers, hex identifiers,
// searching, the buffers handed to the host and the lines of a run kept as one text.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "cfioutputlines.h"
#include "cfistringtool.h"

using namespace qorin_pdk_4_4;
using T = CFiStringTool;

// U+00FC, U+00DF, U+1F600: two, two and four bytes of UTF-8; one wchar_t each.
static const std::string kUtf8 = "gr\xC3\xBC\xC3\x9F"
                                 "e \xF0\x9F\x98\x80";
static const std::wstring kWide = L"gr\u00FC\u00DFe \U0001F600";

TEST(TextConversion, Utf8AndUtf32RoundTripOneWideCharacterPerCodePoint)
{
    EXPECT_EQ(T::str2wstr(kUtf8), kWide);
    EXPECT_EQ(T::str2wstr(kUtf8).size(), 7u);
    EXPECT_EQ(T::wstr2str(kWide), kUtf8);
    EXPECT_EQ(T::mbs2wcs(kUtf8), kWide);
    EXPECT_EQ(T::wcs2mbs(kWide), kUtf8);
    EXPECT_EQ(T::tstr2str(T::str2tstr(kUtf8)), kUtf8);
    EXPECT_EQ(T::str2wstr(std::string()), L"");
    EXPECT_EQ(T::wstr2str(std::wstring()), "");
}

TEST(TextConversion, IllFormedTextBecomesReplacementCharactersNotGarbage)
{
    // A lone continuation byte, a truncated sequence and an overlong encoding of '/'.
    std::wstring wide = T::str2wstr(std::string("a\x80"
                                                "b\xE2\x82"
                                                "c\xC0\xAF",
                                                8));
    ASSERT_FALSE(wide.empty());
    EXPECT_EQ(wide.front(), L'a');
    EXPECT_EQ(wide.back(), L'\uFFFD');
    EXPECT_NE(wide.find(L'b'), std::wstring::npos);
    EXPECT_NE(wide.find(L'c'), std::wstring::npos);
    EXPECT_EQ(wide.find(L'/'), std::wstring::npos) << "an overlong form must not decode";
    // Wide values that are no code points: a surrogate and a value beyond U+10FFFF.
    std::wstring bad = L"x";
    bad.push_back(static_cast<wchar_t>(0xD800));
    bad.push_back(static_cast<wchar_t>(0x110000));
    EXPECT_EQ(T::wstr2str(bad), "x\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(TextConversion, UnicodeStringIsUtf16WithSurrogatePairs)
{
    icu::UnicodeString u = T::tstr2ustr(kWide);
    EXPECT_EQ(u.length(), 8) << "U+1F600 takes two UTF-16 units";
    EXPECT_EQ(T::tstr2wstr(T::ustr2tstr(u)), kWide);
    EXPECT_EQ(T::ustr2str(T::str2ustr(kUtf8)), kUtf8);
    EXPECT_EQ(T::tstr2ustr(T::wstr2tstr(kWide)), u);
}

TEST(TextConversion, Utf8ToUnicodeStringFailsWholeOnBadInput)
{
    EXPECT_TRUE(T::str2ustr("ok\xFF").isEmpty());
    icu::UnicodeString loneSurrogate;
    loneSurrogate.append(static_cast<UChar>(0xDC00));
    EXPECT_EQ(T::ustr2str(loneSurrogate), "");
    EXPECT_EQ(T::tstr2str(static_cast<const char *>(nullptr)), "");
}

TEST(Numbers, WidestValuesKeepEveryDigit)
{
    EXPECT_EQ(T::int2str(INT32_MIN), "-2147483648");
    EXPECT_EQ(T::int2str(INT64_MIN), "-9223372036854775808");
    EXPECT_EQ(T::uint2str(UINT64_MAX), "18446744073709551615");
    EXPECT_EQ(T::int2wstr(INT64_MAX), L"9223372036854775807");
    EXPECT_EQ(T::float2str(3e38f).size(), 46u) << "a huge float is not cut";
}

TEST(Numbers, ReadingLooksOnlyAtTheLeadingDigits)
{
    int32_t i = 77;
    EXPECT_EQ(T::str2int("", i), -1);
    EXPECT_EQ(i, 77) << "an empty text leaves the target";
    EXPECT_EQ(T::str2int("12abc", i), 0);
    EXPECT_EQ(i, 12);
    EXPECT_EQ(T::str2int("abc", i), 0);
    EXPECT_EQ(i, 0);
    uint32_t u = 0;
    EXPECT_EQ(T::str2uint("-1", u), 0);
    EXPECT_EQ(u, 4294967295u);
    uint64_t big = 0;
    EXPECT_EQ(T::str2uint64("18446744073709551615", big), 0);
    EXPECT_EQ(big, UINT64_MAX);
    double d = 0;
    EXPECT_EQ(T::str2double("2.5e3x", d), 0);
    EXPECT_DOUBLE_EQ(d, 2500.0);
}

TEST(HexIdentifiers, IdThenBytes)
{
    EXPECT_EQ(T::str2uid(1, "AB"), "00014142");
    EXPECT_EQ(T::str2uid(0x12345, "\x80"), "12345ffffff80") << "bytes widen as signed values";
    EXPECT_EQ(T::wstr2uid(1, L"\u00FC"), "0001ffffffc3ffffffbc");
    EXPECT_EQ(T::binary2uid(1, nullptr, 0), L"0001");
    const unsigned char bytes[] = {0x00, 0x0F, 0xA0, 0xFF};
    EXPECT_EQ(T::binary2str(bytes, 4), "000fa0ff");
    EXPECT_EQ(T::binary2uid(0xBEEF, bytes, 4), L"beef000fa0ff");
}

TEST(HexIdentifiers, HexTextBackToBytes)
{
    unsigned char out[4] = {0xEE, 0xEE, 0xEE, 0xEE};
    int size = 4;
    EXPECT_EQ(T::str2binary(out, &size, "000fa0FF7"), 0);
    EXPECT_EQ(size, 4) << "the odd last character is ignored";
    EXPECT_EQ(T::binary2str(out, size), "000fa0ff");

    unsigned char small[2] = {0xEE, 0xEE};
    size = 2;
    EXPECT_EQ(T::str2binary(small, &size, "010203"), -1);
    EXPECT_EQ(small[0], 0xEE) << "nothing is written when the buffer is short";
    EXPECT_EQ(size, 2);
    size = 2;
    EXPECT_EQ(T::wstr2binary(small, &size, L"a1", true), 0);
    EXPECT_EQ(small[0], 0xA1);
    EXPECT_EQ(size, 1);
}

TEST(Searching, ReplaceIsOnePassLeftToRight)
{
    EXPECT_EQ(T::searchreplace("a:b:c", ":", "_"), "a_b_c");
    EXPECT_EQ(T::searchreplace("aa", "a", "aa"), "aaaa") << "a replacement is never searched again";
    EXPECT_EQ(T::searchreplace("aaa", "aa", "b"), "ba");
    EXPECT_EQ(T::searchreplace("abc", "", "x"), "abc");
    EXPECT_EQ(T::searchreplace("", "a", "b"), "");
}

TEST(Searching, TokensAndTrims)
{
    EXPECT_EQ(T::tokenize(",,a,,b,", ","), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(T::tokenize("10.0.0.1\nhost", ".\n"), (std::vector<std::string>{"10", "0", "0", "1", "host"}));
    EXPECT_TRUE(T::tokenize(",,,", ",").empty());
    EXPECT_EQ(T::tokenize("abc", nullptr), std::vector<std::string>{"abc"});
    EXPECT_EQ(T::trim(" \t x y \r\n", " \t\r\n"), "x y");
    EXPECT_EQ(T::ltrim("xxa", "x"), "a");
    EXPECT_EQ(T::rtrim("axx", "x"), "a");
    EXPECT_EQ(T::trim("xxx", "x"), "");
    EXPECT_EQ(T::trim(" a ", nullptr), " a ");
}

TEST(Searching, FindMovesStartToTheLineFound)
{
    std::vector<std::string> lines = {"alpha", "beta\r\n", "gamma beta"};
    size_t start = 0;
    EXPECT_EQ(T::find(lines, "beta", start, false), 0u);
    EXPECT_EQ(start, 1u);
    start = 2;
    EXPECT_EQ(T::find(lines, "beta", start, false), 6u);
    EXPECT_EQ(start, 2u);

    start = 0;
    EXPECT_EQ(T::find(lines, "beta\r", start, false), 0u);
    start = 0;
    EXPECT_EQ(T::find(lines, "beta\r", start, true), std::string::npos) << "trim cuts the carriage return";
    EXPECT_EQ(start, lines.size());

    start = 5;
    EXPECT_EQ(T::find(lines, "alpha", start, false), std::string::npos);
    EXPECT_EQ(start, 5u) << "a start past the end stays where it is";
}

TEST(Searching, DigitsAddressesAndCase)
{
    EXPECT_TRUE(T::isDigit(""));
    EXPECT_FALSE(T::isDigit("12a"));
    EXPECT_FALSE(T::isIpAddress("1.2.3"));
    EXPECT_TRUE(T::isIpAddress("1.2.3.256")) << "no range check here";
    EXPECT_FALSE(T::isIpAddress("1.2.3.-4"));
    EXPECT_TRUE(T::CompareNoCase(std::string("Host-01"), std::string("hOST-01")));
    EXPECT_FALSE(T::CompareNoCase(std::string("a-1"), std::string("A_1")));
    EXPECT_FALSE(T::CompareNoCase(std::string("ab"), std::string("abc")));
    EXPECT_TRUE(T::CompareNoCase(std::wstring(L"\u00E9mile"), std::wstring(L"\u00C9MILE")));
    EXPECT_EQ(T::tostrupper(kUtf8), "GR\xC3\xBC\xC3\x9F"
                                    "E \xF0\x9F\x98\x80")
        << "UTF-8 bytes stay intact";
    EXPECT_EQ(T::tostrupper(std::wstring(L"\u00FCx")), L"\u00DCX");
    EXPECT_EQ(T::tostrlower(std::wstring(L"\u00C9A")), L"\u00E9a");
}

TEST(Xml, EscapingRoundTripsAndAmpersandGoesFirst)
{
    EXPECT_EQ(T::convertToXmlSpecialCharacters("&lt;"), "&amp;lt;");
    EXPECT_EQ(T::convertFromXmlSpecialCharacters("&amp;lt;"), "&lt;");
    const std::string all = "<a href=\"x\">'&'</a>";
    std::string escaped = T::convertToXmlSpecialCharacters(all);
    EXPECT_EQ(escaped, "&lt;a href=&quot;x&quot;&gt;&#39;&amp;&#39;&lt;/a&gt;");
    EXPECT_EQ(T::convertFromXmlSpecialCharacters(escaped), all);
    EXPECT_EQ(T::xmlBracketValue("k", "a<b"), "\t<k>a&lt;b</k>\n");
}

TEST(HostBuffers, CopiesAreTerminatedAndListsEndInNull)
{
    char *narrow = T::strdup(std::string("ab\0c", 4));
    ASSERT_NE(narrow, nullptr);
    EXPECT_EQ(std::string(narrow, 5), std::string("ab\0c\0", 5));
    free(narrow);
    wchar_t *wide = T::wstrdup(kWide);
    ASSERT_NE(wide, nullptr);
    EXPECT_EQ(std::wstring(wide), kWide);
    free(wide);
    wchar_t *empty = T::tstrdup(ACE_WString());
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(empty[0], L'\0');
    free(empty);

    wchar_t **list = T::tstrduplist(std::vector<ACE_WString>{ACE_WString(L"one"), ACE_WString(L"two")});
    ASSERT_NE(list, nullptr);
    EXPECT_STREQ(list[0], L"one");
    EXPECT_STREQ(list[1], L"two");
    EXPECT_EQ(list[2], nullptr);
    T::tstrfreelist(list);
    EXPECT_EQ(list, nullptr);
    T::tstrfreelist(list);  // a second free of the nulled pointer is harmless

    wchar_t **none = T::tstrduplist(std::vector<std::wstring>{});
    ASSERT_NE(none, nullptr);
    EXPECT_EQ(none[0], nullptr);
    T::tstrfreelist(none);
}

TEST(OutputLines, KeepEveryLineAcrossBlocksAndMovesAndEdits)
{
    // Lines of every length from empty to longer than the largest block, enough of them to
    // fill many blocks, so that no view points where a block ended or moved.
    std::vector<std::string> expected;
    for (size_t i = 0; i < 60000; ++i) {
        expected.push_back(std::string(i % 97, static_cast<char>('a' + i % 26)));
    }
    expected.push_back(std::string(5000, 'L'));
    expected.push_back(std::string(3 << 20, 'H'));
    expected.push_back("after the long ones");
    CFiOutputLines lines;
    for (const std::string &line : expected) {
        lines.push_back(line);
    }
    CFiOutputLines moved(std::move(lines));
    EXPECT_TRUE(lines.empty());
    CFiOutputLines assigned;
    assigned = std::move(moved);
    ASSERT_EQ(assigned.strings(), expected);

    assigned.replace(1, "longer than it was");
    assigned.replace(2, "");
    assigned.insert(0, "first");
    assigned.push_back("last");
    EXPECT_EQ(assigned.strings(3), (std::vector<std::string>{"first", "", "longer than it was"}));
    EXPECT_EQ(assigned[3], "");
    EXPECT_EQ(assigned[4], expected[3]);
    EXPECT_EQ(assigned.back(), "last");
    EXPECT_EQ(CFiOutputLines(expected).strings(), expected);
    assigned.clear();
    EXPECT_TRUE(assigned.strings().empty());
}
