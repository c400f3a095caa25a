#ifndef CFISTRINGTOOL_H
#define CFISTRINGTOOL_H

#include <cstdint>
#include <string>
#include <vector>

#include <ace/SString.h>
#include <unicode/unistr.h>

#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// Stateless text helpers. The library's four kinds of text and how they convert here:
//
//   narrow  std::string          UTF-8, always; the process locale is never consulted, so a
//                                host that never calls setlocale still gets its names right
//   wide    std::wstring         UTF-32 (wchar_t is 32 bits)
//   tstr    ACE_WString          UTF-32, as wide; used by the configuration store
//   ustr    icu::UnicodeString   UTF-16, used by the message layer
//
// narrow <-> wide/tstr replaces ill-formed input by U+FFFD; narrow <-> ustr gives an empty
// result for ill-formed input. Most other operations treat narrow text as single bytes.
class QORIN_PDK_API CFiStringTool {
public:
    // Text conversions.
    static std::wstring str2wstr(const std::string &text);
    static std::string wstr2str(const std::wstring &text);
    static std::wstring mbs2wcs(const std::string &text);
    static std::string wcs2mbs(const std::wstring &text);
    // Identity overloads, so that templates over either text kind compile.
    static std::wstring str2wstr(const std::wstring &text);
    static std::string wstr2str(const std::string &text);
    static ACE_WString str2tstr(const std::string &text);
    static std::string tstr2str(const ACE_WString &text);
    static std::string tstr2str(const char *text);
    static std::wstring tstr2wstr(const ACE_WString &text);
    static ACE_WString wstr2tstr(const std::wstring &text);
    static icu::UnicodeString str2ustr(const std::string &text);
    static std::string ustr2str(const icu::UnicodeString &text);
    static icu::UnicodeString tstr2ustr(const ACE_WString &text);
    static icu::UnicodeString tstr2ustr(const std::wstring &text);
    static ACE_WString ustr2tstr(const icu::UnicodeString &text);

    // Numbers to text.
    static std::string double2str(double value);  // "%g"
    static std::string float2str(float value);    // "%f"
    static std::string int2str(int32_t value);
    static std::string int2str(int64_t value);
    static std::wstring int2wstr(int32_t value);
    static std::wstring int2wstr(int64_t value);
    static std::string uint2str(uint32_t value);
    static std::string uint2str(uint64_t value);
    static std::wstring uint2wstr(uint32_t value);
    static std::wstring uint2wstr(uint64_t value);
    static std::string bool2str(bool value);

    // Text to numbers, atoi style: trailing characters are ignored and text without digits
    // reads as 0. The two-argument forms give -1 for an empty text and leave the target.
    static int str2int(const std::string &text, int32_t &value);
    static int str2uint(const std::string &text, uint32_t &value);
    static int str2double(const std::string &text, double &value);
    static int str2uint64(const std::string &text, uint64_t &value);
    static int32_t str2int(const std::string &text);
    static uint32_t str2uint(const std::string &text);
    static double str2double(const std::string &text);

    // Binary data and identifiers, as lower-case hex.
    static std::string binary2str(const unsigned char *data, int length);
    static std::wstring binary2wstr(const unsigned char *data, int length);
    static std::wstring binary2uid(uint32_t id, const unsigned char *data, int length);
    // Each character widens as a signed value: a byte of 0x80 or above gives "ffffff" and its two digits.
    static std::string str2uid(uint32_t id, const std::string &text);
    static std::string wstr2uid(uint32_t id, const std::wstring &text);
    // Hex pairs into out. -1 without writing if *size bytes aren't enough; else *size becomes
    // the byte count and the result is 0. A last odd character is ignored.
    static int str2binary(unsigned char *out, int *size, const std::string &text);
    static int wstr2binary(unsigned char *out, int *size, const std::wstring &text, bool unused);

    // Trimming and searching. A null chars leaves the text as it is.
    static std::string ltrim(const std::string &text, const char *chars);
    static std::string rtrim(const std::string &text, const char *chars);
    static std::string trim(const std::string &text, const char *chars);
    // All non-overlapping matches, left to right, in one pass. An empty search changes nothing.
    static std::string searchreplace(const std::string &text, const std::string &search, const std::string &replace);
    // delims is a set of characters; runs of them give no empty tokens.
    static std::vector<std::string> tokenize(const std::string &text, const char *delims);
    // Position of text in the first line from index start that holds it (start is moved to that
    // line), or npos with start at lines.size(). With trim each line is first rtrimmed.
    static size_t find(const std::vector<std::string> &lines, const char *text, size_t &start, bool trim);
    // Each item followed by separator and "\n".
    static std::string vec2str(const std::vector<std::string> &items, std::string separator);
    // True for the empty text.
    static bool isDigit(const std::string &text);
    // Four dot-separated groups of digits; no range check (see CFiNetwork::validateIPAddress).
    static bool isIpAddress(const std::string &text);
    static bool CompareNoCase(const std::string &a, const std::string &b);
    static bool CompareNoCase(const std::wstring &a, const std::wstring &b);
    // Narrow forms change ASCII letters only, so UTF-8 sequences stay intact; wide forms use
    // Unicode's simple case mapping.
    static std::string tostrupper(const std::string &text);
    static std::string tostrlower(const std::string &text);
    static std::wstring tostrupper(const std::wstring &text);
    static std::wstring tostrlower(const std::wstring &text);

    // Buffers for the host, from qorin_alloc_buf; the host frees them. Null if allocation fails.
    static char *strdup(const std::string &text);
    static wchar_t *wstrdup(const std::wstring &text);
    static wchar_t *tstrdup(const ACE_WString &text);
    // A null-terminated array of copies.
    static wchar_t **tstrduplist(const std::vector<ACE_WString> &texts);
    static wchar_t **tstrduplist(const std::vector<std::wstring> &texts);
    // Frees each entry and the array of a tstrduplist, and nulls the pointer.
    static void tstrfreelist(wchar_t **&list);

    // XML helpers.
    static std::string convertToXmlSpecialCharacters(const std::string &text);
    static std::string convertFromXmlSpecialCharacters(const std::string &text);
    static std::string xmlBracket(std::string tag, bool opening, bool newline);
    // "\t<tag>escaped value</tag>\n"
    static std::string xmlBracketValue(std::string tag, std::string value);
};

}  // namespace qorin_pdk_4_4

#endif
