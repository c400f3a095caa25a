#include "cficonfigurationtext.h"

#include <cstdio>
#include <unordered_map>

namespace qorin_pdk_4_4 {

namespace {

const char kBom[] = "\xEF\xBB\xBF";

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

bool isHex(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

unsigned hexValue(char c)
{
    return c <= '9' ? static_cast<unsigned>(c - '0') : static_cast<unsigned>((c | 0x20) - 'a' + 10);
}

size_t skipBlanks(const std::string &text, size_t at)
{
    while (at < text.size() && isBlank(text[at])) {
        ++at;
    }
    return at;
}

// Nothing, blanks, or blanks and a comment.
bool isCommentTail(const std::string &text, size_t at)
{
    at = skipBlanks(text, at);
    return at == text.size() || text[at] == ';' || text[at] == '#';
}

// Well-formed UTF-8: no stray continuation byte, no truncated or overlong sequence, nothing
// beyond U+10FFFF and no surrogate.
bool isUtf8(const std::string &text)
{
    const auto *p = reinterpret_cast<const unsigned char *>(text.data());
    const unsigned char *end = p + text.size();
    while (p < end) {
        const unsigned char c = *p;
        if (c < 0x80) {
            ++p;
            continue;
        }
        size_t length;
        uint32_t code;
        if ((c & 0xE0) == 0xC0) {
            length = 2;
            code = c & 0x1F;
        } else if ((c & 0xF0) == 0xE0) {
            length = 3;
            code = c & 0x0F;
        } else if ((c & 0xF8) == 0xF0) {
            length = 4;
            code = c & 0x07;
        } else {
            return false;
        }
        if (static_cast<size_t>(end - p) < length) {
            return false;
        }
        for (size_t i = 1; i < length; ++i) {
            if ((p[i] & 0xC0) != 0x80) {
                return false;
            }
            code = (code << 6) | (p[i] & 0x3F);
        }
        static const uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
        if (code < smallest[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
            return false;
        }
        p += length;
    }
    return true;
}

std::string lower(std::string text)
{
    for (char &c : text) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return text;
}

bool breaksLine(const std::string &text)
{
    return text.find_first_of(std::string("\r\n\0", 3)) != std::string::npos;
}

// Why a value name can't be taken, or null.
const char *badValueName(const std::string &name)
{
    if (name.size() > CFiConfigurationText::MAX_NAME) {
        return "a value name is longer than 255 characters";
    }
    if (name.find_first_of("\\[]") != std::string::npos) {
        return "a value name holds \\, [ or ]";
    }
    return nullptr;
}

}  // namespace

bool CFiConfigurationText::SValue::operator==(const SValue &other) const
{
    if (type != other.type) {
        return false;
    }
    switch (type) {
    case TEXT:
        return text == other.text;
    case NUMBER:
        return number == other.number;
    default:
        return bytes == other.bytes;
    }
}

bool CFiConfigurationText::fail(size_t line, const std::string &reason)
{
    m_errorLine = line;
    m_errorReason = reason;
    return false;
}

bool CFiConfigurationText::splitSection(const std::string &path, std::vector<std::string> &levels, std::string &reason)
{
    levels.clear();
    size_t start = 0;
    for (;;) {
        const size_t end = path.find_first_of("\\/", start);
        const std::string level = path.substr(start, end == std::string::npos ? std::string::npos : end - start);
        if (level.empty()) {
            reason = path.empty() ? "a section header without a name" : "a section path with an empty level";
            return false;
        }
        if (level.size() > MAX_NAME) {
            reason = "a section name is longer than 255 characters";
            return false;
        }
        if (level.find_first_of("[]") != std::string::npos) {
            reason = "a section name holds [ or ]";
            return false;
        }
        if (isBlank(level.front()) || isBlank(level.back())) {
            reason = "a section name begins or ends with a blank";
            return false;
        }
        if (breaksLine(level)) {
            reason = "a section name holds a line break";
            return false;
        }
        levels.push_back(level);
        if (levels.size() > MAX_LEVELS) {
            reason = "a section path deeper than 64 levels";
            return false;
        }
        if (end == std::string::npos) {
            return true;
        }
        start = end + 1;
    }
}

bool CFiConfigurationText::formatSection(const std::vector<std::string> &levels, std::string &line, std::string &reason)
{
    std::string path;
    for (const std::string &level : levels) {
        // A "/" would split the level when it is read back.
        if (level.find_first_of("\\/") != std::string::npos) {
            reason = "a section name holds / or \\";
            return false;
        }
        path += (path.empty() ? "" : "\\") + level;
    }
    std::vector<std::string> check;
    if (!splitSection(path, check, reason)) {
        return false;
    }
    line = "[" + path + "]";
    return true;
}

bool CFiConfigurationText::formatValue(const std::string &name, const SValue &value, std::string &line,
                                       std::string &reason)
{
    if (const char *bad = badValueName(name)) {
        reason = bad;
        return false;
    }
    if (name.find('"') != std::string::npos || breaksLine(name)) {
        reason = "a value name holds a double quote or a line break";
        return false;
    }
    line = "\"" + name + "\"=";
    switch (value.type) {
    case TEXT:
        if (breaksLine(value.text)) {
            reason = "a text value holds a line break";
            return false;
        }
        line += "\"" + value.text + "\"";
        break;
    case NUMBER: {
        char digits[16];
        snprintf(digits, sizeof digits, "%08x", value.number);
        line += "dword:";
        line += digits;
        break;
    }
    case BYTES:
        line += "hex:";
        for (size_t i = 0; i < value.bytes.size(); ++i) {
            char pair[4];
            snprintf(pair, sizeof pair, "%02x", value.bytes[i]);
            if (i != 0) {
                line += ',';
            }
            line += pair;
        }
        break;
    }
    return true;
}

bool CFiConfigurationText::parseLine(const std::string &raw, const std::string &section, SLine &line,
                                     std::string &reason)
{
    const size_t start = skipBlanks(raw, 0);
    if (start == raw.size() || raw[start] == ';' || raw[start] == '#') {
        line.kind = OTHER;
        return true;
    }
    if (raw[start] == '[') {
        // Names can't hold "]", so the first one closes the header and a comment may hold more.
        const size_t close = raw.find(']', start);
        if (close == std::string::npos) {
            reason = "a section header has no closing ]";
            return false;
        }
        if (!isCommentTail(raw, close + 1)) {
            reason = "text after a section header that is not a comment";
            return false;
        }
        std::vector<std::string> levels;
        if (!splitSection(raw.substr(start + 1, close - start - 1), levels, reason)) {
            return false;
        }
        line.kind = SECTION;
        for (size_t i = 0; i < levels.size(); ++i) {
            line.section += (i == 0 ? "" : "\\") + levels[i];
        }
        return true;
    }
    if (raw[start] != '"') {
        reason = "a line that is neither a section header, a value nor a comment (comments begin with ; or #)";
        return false;
    }

    const size_t nameEnd = raw.find('"', start + 1);
    if (nameEnd == std::string::npos) {
        reason = "a value name has no closing double quote";
        return false;
    }
    line.name = raw.substr(start + 1, nameEnd - start - 1);
    if (const char *bad = badValueName(line.name)) {
        reason = bad;
        return false;
    }
    size_t at = skipBlanks(raw, nameEnd + 1);
    if (at == raw.size() || raw[at] != '=') {
        reason = "a value name is not followed by =";
        return false;
    }
    if (section.empty()) {
        reason = "a value before the first section header";
        return false;
    }
    at = skipBlanks(raw, at + 1);
    SValue &value = line.value;
    size_t tail;
    if (raw.compare(at, 1, "\"") == 0) {
        const size_t close = raw.rfind('"');
        if (close == at) {
            reason = "a text value has no closing double quote";
            return false;
        }
        value.type = TEXT;
        value.text = raw.substr(at + 1, close - at - 1);
        tail = close + 1;
    } else if (raw.compare(at, 6, "dword:") == 0) {
        at += 6;
        size_t digits = 0;
        uint32_t number = 0;
        while (at + digits < raw.size() && isHex(raw[at + digits]) && digits < 9) {
            number = (number << 4) | hexValue(raw[at + digits]);
            ++digits;
        }
        if (digits == 0 || digits > 8) {
            reason = "a number is written dword: and one to eight hexadecimal digits";
            return false;
        }
        value.type = NUMBER;
        value.number = number;
        tail = at + digits;
    } else if (raw.compare(at, 4, "hex:") == 0) {
        at += 4;
        value.type = BYTES;
        while (at + 1 < raw.size() && isHex(raw[at]) && isHex(raw[at + 1])) {
            value.bytes.push_back(static_cast<unsigned char>(hexValue(raw[at]) << 4 | hexValue(raw[at + 1])));
            at += 2;
            if (at < raw.size() && raw[at] == ',') {
                ++at;
                if (!(at + 1 < raw.size() && isHex(raw[at]) && isHex(raw[at + 1]))) {
                    reason = "bytes are written hex: and two-digit hexadecimal numbers joined by commas";
                    return false;
                }
            }
        }
        tail = at;
    } else {
        reason = "a value is written \"text\", dword:<hexadecimal digits> or hex:<bytes>";
        return false;
    }
    if (!isCommentTail(raw, tail)) {
        reason = value.type == BYTES ? "bytes are written hex: and two-digit hexadecimal numbers joined by commas"
                                     : "text after a value that is not a comment";
        return false;
    }
    line.kind = VALUE;
    line.section = section;
    line.comment = raw.substr(tail);
    return true;
}

bool CFiConfigurationText::parse(const std::string &text)
{
    m_lines.clear();
    m_errorLine = 0;
    m_errorReason.clear();
    m_lineEnd = "\n";
    if (text.size() > MAX_BYTES) {
        return fail(0, "the file is larger than 16 MB");
    }
    std::string section;
    // ACE's tree takes names in any letter case for one name, as the registry does: the
    // first spelling of a section or value names it, later ones are read as that.
    std::unordered_map<std::string, std::string> sectionSpelling;
    std::unordered_map<std::string, std::string> valueSpelling;
    size_t number = 0;
    size_t begin = text.compare(0, 3, kBom) == 0 ? 3 : 0;
    const size_t bom = begin;
    while (begin < text.size()) {
        ++number;
        size_t end = text.find('\n', begin);
        const bool terminated = end != std::string::npos;
        if (!terminated) {
            end = text.size();
        }
        size_t contentEnd = end;
        // A carriage return ends a line, the last one too: it is part of the line end.
        if (contentEnd > begin && text[contentEnd - 1] == '\r') {
            --contentEnd;
            if (number == 1 && terminated) {
                m_lineEnd = "\r\n";
            }
        }
        SLine line;
        line.raw = text.substr(begin, contentEnd - begin);
        begin = terminated ? end + 1 : end;
        if (line.raw.find('\0') != std::string::npos) {
            return fail(number, "a NUL character");
        }
        if (!isUtf8(line.raw)) {
            return fail(number, "text that is not UTF-8");
        }
        std::string reason;
        if (!parseLine(line.raw, section, line, reason)) {
            return fail(number, reason);
        }
        if (line.kind == SECTION) {
            std::string path;
            size_t start = 0;
            for (;;) {
                const size_t end = line.section.find('\\', start);
                const std::string level = line.section.substr(start, end == std::string::npos ? end : end - start);
                const std::string spelled = path.empty() ? level : path + "\\" + level;
                path = sectionSpelling.emplace(lower(spelled), spelled).first->second;
                if (end == std::string::npos) {
                    break;
                }
                start = end + 1;
            }
            line.section = path;
            section = path;
        } else if (line.kind == VALUE) {
            line.name = valueSpelling.emplace(section + '\n' + lower(line.name), line.name).first->second;
        }
        if (number == 1 && bom != 0) {
            line.raw.insert(0, kBom);
        }
        m_lines.push_back(std::move(line));
    }
    return true;
}

}  // namespace qorin_pdk_4_4
