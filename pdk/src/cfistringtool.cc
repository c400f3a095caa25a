#include "cfistringtool.h"

#include <cctype>
#include <cinttypes>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include "qorinutil.h"
#include "vstring.h"

namespace qorin_pdk_4_4 {

namespace {

// wchar_t is 32 bits here, so wide text is a UChar32 sequence as far as ICU is concerned.
static_assert(sizeof(wchar_t) == sizeof(UChar32), "wide text must be UTF-32");

icu::UnicodeString fromUtf32(const wchar_t *text, size_t length)
{
    return icu::UnicodeString::fromUTF32(reinterpret_cast<const UChar32 *>(text), static_cast<int32_t>(length));
}

std::wstring toUtf32(const icu::UnicodeString &text)
{
    UErrorCode status = U_ZERO_ERROR;
    int32_t n = text.toUTF32(nullptr, 0, status);
    if (n <= 0) {
        return std::wstring();
    }
    std::wstring out(static_cast<size_t>(n), L'\0');
    status = U_ZERO_ERROR;
    text.toUTF32(reinterpret_cast<UChar32 *>(&out[0]), n, status);
    return U_FAILURE(status) && status != U_STRING_NOT_TERMINATED_WARNING ? std::wstring() : out;
}

template <class... Args>
std::string formatted(const char *format, Args... args)
{
    char buffer[128];
    int n = V_snprintf(buffer, sizeof buffer, format, args...);
    return n > 0 ? std::string(buffer, static_cast<size_t>(n)) : std::string();
}

bool asciiLetter(unsigned char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

char asciiUpper(char c)
{
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}

char asciiLower(char c)
{
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

wchar_t *dupWide(const wchar_t *text, size_t length)
{
    auto *copy = static_cast<wchar_t *>(qorin_alloc_buf((length + 1) * sizeof(wchar_t)));
    if (copy != nullptr) {
        wmemcpy(copy, text, length);
        copy[length] = L'\0';
    }
    return copy;
}

template <class Texts>
wchar_t **dupList(const Texts &texts)
{
    auto **list = static_cast<wchar_t **>(qorin_alloc_buf((texts.size() + 1) * sizeof(wchar_t *)));
    if (list == nullptr) {
        return nullptr;
    }
    size_t i = 0;
    for (const auto &text : texts) {
        list[i++] = dupWide(text.c_str(), text.length());
    }
    list[i] = nullptr;
    return list;
}

}  // namespace

std::wstring CFiStringTool::str2wstr(const std::string &text)
{
    if (text.empty()) {
        return std::wstring();
    }
    return toUtf32(icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size()))));
}

std::string CFiStringTool::wstr2str(const std::wstring &text)
{
    std::string out;
    if (!text.empty()) {
        fromUtf32(text.data(), text.size()).toUTF8String(out);
    }
    return out;
}

std::wstring CFiStringTool::mbs2wcs(const std::string &text)
{
    return str2wstr(text);
}

std::string CFiStringTool::wcs2mbs(const std::wstring &text)
{
    return wstr2str(text);
}

std::wstring CFiStringTool::str2wstr(const std::wstring &text)
{
    return text;
}

std::string CFiStringTool::wstr2str(const std::string &text)
{
    return text;
}

ACE_WString CFiStringTool::str2tstr(const std::string &text)
{
    return wstr2tstr(str2wstr(text));
}

std::string CFiStringTool::tstr2str(const ACE_WString &text)
{
    return wstr2str(tstr2wstr(text));
}

std::string CFiStringTool::tstr2str(const char *text)
{
    return text != nullptr ? std::string(text) : std::string();
}

std::wstring CFiStringTool::tstr2wstr(const ACE_WString &text)
{
    return std::wstring(text.fast_rep(), text.length());
}

ACE_WString CFiStringTool::wstr2tstr(const std::wstring &text)
{
    return ACE_WString(text.data(), text.size());
}

icu::UnicodeString CFiStringTool::str2ustr(const std::string &text)
{
    UErrorCode status = U_ZERO_ERROR;
    int32_t n = 0;
    u_strFromUTF8(nullptr, 0, &n, text.c_str(), -1, &status);
    if (status != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(status)) {
        return icu::UnicodeString();
    }
    std::unique_ptr<UChar[]> buffer(new UChar[static_cast<size_t>(n) + 1]);
    status = U_ZERO_ERROR;
    u_strFromUTF8(buffer.get(), n + 1, &n, text.c_str(), -1, &status);
    if (U_FAILURE(status)) {
        return icu::UnicodeString();
    }
    return icu::UnicodeString(buffer.get(), n);
}

std::string CFiStringTool::ustr2str(const icu::UnicodeString &text)
{
    UErrorCode status = U_ZERO_ERROR;
    int32_t n = 0;
    u_strToUTF8(nullptr, 0, &n, text.getBuffer(), text.length(), &status);
    if (status != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(status)) {
        return std::string();
    }
    std::string out(static_cast<size_t>(n) + 1, '\0');
    status = U_ZERO_ERROR;
    u_strToUTF8(&out[0], n + 1, &n, text.getBuffer(), text.length(), &status);
    if (U_FAILURE(status)) {
        return std::string();
    }
    out.resize(static_cast<size_t>(n));
    return out;
}

icu::UnicodeString CFiStringTool::tstr2ustr(const ACE_WString &text)
{
    return fromUtf32(text.fast_rep(), text.length());
}

icu::UnicodeString CFiStringTool::tstr2ustr(const std::wstring &text)
{
    return fromUtf32(text.data(), text.size());
}

ACE_WString CFiStringTool::ustr2tstr(const icu::UnicodeString &text)
{
    return wstr2tstr(toUtf32(text));
}

std::string CFiStringTool::double2str(double value)
{
    return formatted("%g", value);
}

std::string CFiStringTool::float2str(float value)
{
    // "%f" of a huge float is longer than the buffer; std::to_string has no limit.
    return std::to_string(value);
}

std::string CFiStringTool::int2str(int32_t value)
{
    return formatted("%d", value);
}

std::string CFiStringTool::int2str(int64_t value)
{
    return formatted("%" PRId64, value);
}

std::wstring CFiStringTool::int2wstr(int32_t value)
{
    return str2wstr(int2str(value));
}

std::wstring CFiStringTool::int2wstr(int64_t value)
{
    return str2wstr(int2str(value));
}

std::string CFiStringTool::uint2str(uint32_t value)
{
    return formatted("%u", value);
}

std::string CFiStringTool::uint2str(uint64_t value)
{
    return formatted("%" PRIu64, value);
}

std::wstring CFiStringTool::uint2wstr(uint32_t value)
{
    return str2wstr(uint2str(value));
}

std::wstring CFiStringTool::uint2wstr(uint64_t value)
{
    return str2wstr(uint2str(value));
}

std::string CFiStringTool::bool2str(bool value)
{
    return value ? "true" : "false";
}

int CFiStringTool::str2int(const std::string &text, int32_t &value)
{
    if (text.empty()) {
        return -1;
    }
    value = str2int(text);
    return 0;
}

int CFiStringTool::str2uint(const std::string &text, uint32_t &value)
{
    if (text.empty()) {
        return -1;
    }
    value = str2uint(text);
    return 0;
}

int CFiStringTool::str2double(const std::string &text, double &value)
{
    if (text.empty()) {
        return -1;
    }
    value = str2double(text);
    return 0;
}

int CFiStringTool::str2uint64(const std::string &text, uint64_t &value)
{
    if (text.empty()) {
        return -1;
    }
    value = std::strtoull(text.c_str(), nullptr, 10);
    return 0;
}

int32_t CFiStringTool::str2int(const std::string &text)
{
    // atoi's result, without atoi's undefined behaviour outside the int range.
    return static_cast<int32_t>(std::strtol(text.c_str(), nullptr, 10));
}

uint32_t CFiStringTool::str2uint(const std::string &text)
{
    // Read as a signed number on purpose: "-1" gives 4294967295.
    return static_cast<uint32_t>(str2int(text));
}

double CFiStringTool::str2double(const std::string &text)
{
    return std::strtod(text.c_str(), nullptr);
}

std::string CFiStringTool::binary2str(const unsigned char *data, int length)
{
    static const char digits[] = "0123456789abcdef";
    std::string out;
    for (int i = 0; data != nullptr && i < length; ++i) {
        out.push_back(digits[data[i] >> 4]);
        out.push_back(digits[data[i] & 0x0F]);
    }
    return out;
}

std::wstring CFiStringTool::binary2wstr(const unsigned char *data, int length)
{
    return str2wstr(binary2str(data, length));
}

std::wstring CFiStringTool::binary2uid(uint32_t id, const unsigned char *data, int length)
{
    return str2wstr(formatted("%04x", id)) + binary2wstr(data, length);
}

std::string CFiStringTool::str2uid(uint32_t id, const std::string &text)
{
    std::string out = formatted("%04x", id);
    for (char c : text) {
        out += formatted("%02x", static_cast<unsigned>(static_cast<int>(static_cast<signed char>(c))));
    }
    return out;
}

std::string CFiStringTool::wstr2uid(uint32_t id, const std::wstring &text)
{
    return str2uid(id, wstr2str(text));
}

int CFiStringTool::str2binary(unsigned char *out, int *size, const std::string &text)
{
    if (out == nullptr || size == nullptr) {
        return -1;
    }
    size_t bytes = text.size() / 2;
    if (*size < 0 || bytes > static_cast<size_t>(*size)) {
        return -1;
    }
    for (size_t i = 0; i < bytes; ++i) {
        char pair[3] = {text[2 * i], text[2 * i + 1], '\0'};
        out[i] = static_cast<unsigned char>(std::strtol(pair, nullptr, 16));
    }
    *size = static_cast<int>(bytes);
    return 0;
}

int CFiStringTool::wstr2binary(unsigned char *out, int *size, const std::wstring &text, bool)
{
    return str2binary(out, size, wstr2str(text));
}

std::string CFiStringTool::ltrim(const std::string &text, const char *chars)
{
    if (chars == nullptr) {
        return text;
    }
    size_t first = text.find_first_not_of(chars);
    return first == std::string::npos ? std::string() : text.substr(first);
}

std::string CFiStringTool::rtrim(const std::string &text, const char *chars)
{
    if (chars == nullptr) {
        return text;
    }
    size_t last = text.find_last_not_of(chars);
    return last == std::string::npos ? std::string() : text.substr(0, last + 1);
}

std::string CFiStringTool::trim(const std::string &text, const char *chars)
{
    return rtrim(ltrim(text, chars), chars);
}

std::string CFiStringTool::searchreplace(const std::string &text, const std::string &search, const std::string &replace)
{
    if (search.empty()) {
        return text;
    }
    std::string out;
    size_t from = 0;
    for (size_t at = text.find(search); at != std::string::npos; at = text.find(search, from)) {
        out.append(text, from, at - from);
        out += replace;
        from = at + search.size();
    }
    out.append(text, from, std::string::npos);
    return out;
}

std::vector<std::string> CFiStringTool::tokenize(const std::string &text, const char *delims)
{
    std::vector<std::string> tokens;
    const char *set = delims != nullptr ? delims : "";
    size_t begin = text.find_first_not_of(set);
    while (begin != std::string::npos) {
        size_t end = text.find_first_of(set, begin);
        tokens.push_back(text.substr(begin, end == std::string::npos ? std::string::npos : end - begin));
        begin = end == std::string::npos ? end : text.find_first_not_of(set, end);
    }
    return tokens;
}

size_t CFiStringTool::find(const std::vector<std::string> &lines, const char *text, size_t &start, bool trim)
{
    for (size_t i = start; text != nullptr && i < lines.size(); ++i) {
        size_t at = trim ? rtrim(lines[i], " \n\t\r").find(text) : lines[i].find(text);
        if (at != std::string::npos) {
            start = i;
            return at;
        }
    }
    if (start < lines.size()) {
        start = lines.size();
    }
    return std::string::npos;
}

std::string CFiStringTool::vec2str(const std::vector<std::string> &items, std::string separator)
{
    std::string out;
    for (const std::string &item : items) {
        out += item;
        out += separator;
        out += "\n";
    }
    return out;
}

bool CFiStringTool::isDigit(const std::string &text)
{
    for (char c : text) {
        if (!std::isdigit(static_cast<unsigned char>(c))) {
            return false;
        }
    }
    return true;
}

bool CFiStringTool::isIpAddress(const std::string &text)
{
    std::vector<std::string> parts = tokenize(text, ".");
    if (parts.size() != 4) {
        return false;
    }
    for (const std::string &part : parts) {
        if (!isDigit(part)) {
            return false;
        }
    }
    return true;
}

bool CFiStringTool::CompareNoCase(const std::string &a, const std::string &b)
{
    if (a.size() != b.size()) {
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        auto x = static_cast<unsigned char>(a[i]);
        auto y = static_cast<unsigned char>(b[i]);
        if (asciiLetter(x) && asciiLetter(y) ? asciiUpper(a[i]) != asciiUpper(b[i]) : x != y) {
            return false;
        }
    }
    return true;
}

bool CFiStringTool::CompareNoCase(const std::wstring &a, const std::wstring &b)
{
    if (a.size() != b.size()) {
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        auto x = static_cast<UChar32>(a[i]);
        auto y = static_cast<UChar32>(b[i]);
        if (u_isalpha(x) && u_isalpha(y) ? u_toupper(x) != u_toupper(y) : x != y) {
            return false;
        }
    }
    return true;
}

std::string CFiStringTool::tostrupper(const std::string &text)
{
    std::string out(text);
    for (char &c : out) {
        c = asciiUpper(c);
    }
    return out;
}

std::string CFiStringTool::tostrlower(const std::string &text)
{
    std::string out(text);
    for (char &c : out) {
        c = asciiLower(c);
    }
    return out;
}

std::wstring CFiStringTool::tostrupper(const std::wstring &text)
{
    std::wstring out(text);
    for (wchar_t &c : out) {
        c = static_cast<wchar_t>(u_toupper(static_cast<UChar32>(c)));
    }
    return out;
}

std::wstring CFiStringTool::tostrlower(const std::wstring &text)
{
    std::wstring out(text);
    for (wchar_t &c : out) {
        c = static_cast<wchar_t>(u_tolower(static_cast<UChar32>(c)));
    }
    return out;
}

char *CFiStringTool::strdup(const std::string &text)
{
    auto *copy = static_cast<char *>(qorin_alloc_buf(text.size() + 1));
    if (copy != nullptr) {
        memcpy(copy, text.data(), text.size());
        copy[text.size()] = '\0';
    }
    return copy;
}

wchar_t *CFiStringTool::wstrdup(const std::wstring &text)
{
    return dupWide(text.data(), text.size());
}

wchar_t *CFiStringTool::tstrdup(const ACE_WString &text)
{
    return dupWide(text.fast_rep(), text.length());
}

wchar_t **CFiStringTool::tstrduplist(const std::vector<ACE_WString> &texts)
{
    return dupList(texts);
}

wchar_t **CFiStringTool::tstrduplist(const std::vector<std::wstring> &texts)
{
    return dupList(texts);
}

void CFiStringTool::tstrfreelist(wchar_t **&list)
{
    if (list == nullptr) {
        return;
    }
    size_t count = 0;
    for (; list[count] != nullptr; ++count) {
        qorin_free_buf(list[count], (wcslen(list[count]) + 1) * sizeof(wchar_t));
    }
    qorin_free_buf(list, (count + 1) * sizeof(wchar_t *));
    list = nullptr;
}

std::string CFiStringTool::convertToXmlSpecialCharacters(const std::string &text)
{
    // The ampersand first, or the entities made below would be escaped again.
    std::string out = searchreplace(text, "&", "&amp;");
    out = searchreplace(out, "<", "&lt;");
    out = searchreplace(out, ">", "&gt;");
    out = searchreplace(out, "\"", "&quot;");
    return searchreplace(out, "'", "&#39;");
}

std::string CFiStringTool::convertFromXmlSpecialCharacters(const std::string &text)
{
    // The ampersand last, so that an escaped entity such as "&amp;lt;" comes back as "&lt;".
    std::string out = searchreplace(text, "&#39;", "'");
    out = searchreplace(out, "&quot;", "\"");
    out = searchreplace(out, "&gt;", ">");
    out = searchreplace(out, "&lt;", "<");
    return searchreplace(out, "&amp;", "&");
}

std::string CFiStringTool::xmlBracket(std::string tag, bool opening, bool newline)
{
    return std::string(opening ? "<" : "</") + tag + ">" + (newline ? "\n" : "");
}

std::string CFiStringTool::xmlBracketValue(std::string tag, std::string value)
{
    return "\t" + xmlBracket(tag, true, false) + convertToXmlSpecialCharacters(value) + xmlBracket(tag, false, true);
}

}  // namespace qorin_pdk_4_4
