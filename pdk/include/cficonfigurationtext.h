#ifndef CFICONFIGURATIONTEXT_H
#define CFICONFIGURATIONTEXT_H

#include <cstdint>
#include <string>
#include <vector>

#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// The text of a configuration or registry file, line by line, in the format that
// ACE_Registry_ImpExp writes:
//
//   ; a comment (also "#"), or a blank line
//   [SECTION\SUB]                       a section; "\" or "/" joins the levels
//   "NAME"="text"                       a text value: up to the line's last double quote
//   "NAME"=dword:0000000a               a number, one to eight hexadecimal digits
//   "NAME"=hex:01,ff                    bytes
//
// Blanks may stand around a line, around "=", and before a ";" or "#" comment that ends a
// header or value line. Names are one name in any letter case, as in ACE's tree and the
// registry: the first spelling of a section or of a value in its section is the one kept. Everything else is refused with the number of the first bad line and
// a reason that never quotes the line, since a line may hold a password. The text is read
// here rather than by ACE's importer, which overruns its buffer on some malformed files.
class QORIN_PDK_API CFiConfigurationText {
public:
    // Longest file read: a provider's file holds a handful of sections, a registry a few
    // thousand; anything near this is not a configuration file.
    static const size_t MAX_BYTES = 16 * 1024 * 1024;
    // Longest name of a section level or a value, as ACE's tree accepts it.
    static const size_t MAX_NAME = 255;
    // Deepest section path; nobody nests settings deeper, and the tree is walked recursively.
    static const size_t MAX_LEVELS = 64;

    enum Kind { OTHER, SECTION, VALUE };  // OTHER: blank or comment
    enum Type { TEXT, NUMBER, BYTES };

    struct SValue {
        Type type = TEXT;
        std::string text;
        uint32_t number = 0;
        std::vector<unsigned char> bytes;

        bool operator==(const SValue &other) const;
    };

    struct SLine {
        Kind kind = OTHER;
        std::string raw;      // the line as read, without its line end
        std::string section;  // levels joined by "\" in their first spelling (SECTION: its own;
                              // VALUE: the one above it)
        std::string name;     // VALUE, in its first spelling
        SValue value;         // VALUE
        std::string comment;  // VALUE: what follows the value (blanks and comment), kept on a rewrite
    };

    // Parses text; false at the first line that isn't in the format, with errorLine (from 1)
    // and errorReason set. The lines before it are kept.
    bool parse(const std::string &text);

    const std::vector<SLine> &lines() const { return m_lines; }
    size_t errorLine() const { return m_errorLine; }
    const std::string &errorReason() const { return m_errorReason; }
    // Line ends of the text: "\r\n" when its first line ended so, else "\n".
    const std::string &lineEnd() const { return m_lineEnd; }

    // The levels of a section path, split at "\" and "/" as ACE splits them; false (with a
    // reason) for an empty level, one longer than MAX_NAME, one with "[" or "]", or one that
    // begins or ends with a blank.
    static bool splitSection(const std::string &path, std::vector<std::string> &levels, std::string &reason);
    // A value line as the writer puts it; false (with a reason) when the name or value can't
    // be read back the same (a line break, a double quote in the name, a name too long).
    static bool formatValue(const std::string &name, const SValue &value, std::string &line, std::string &reason);
    // A section header line of levels; false when a level can't be read back the same.
    static bool formatSection(const std::vector<std::string> &levels, std::string &line, std::string &reason);

private:
    bool fail(size_t line, const std::string &reason);
    bool parseLine(const std::string &raw, const std::string &section, SLine &line, std::string &reason);

    std::vector<SLine> m_lines;
    size_t m_errorLine = 0;
    std::string m_errorReason;
    std::string m_lineEnd = "\n";
};

}  // namespace qorin_pdk_4_4

#endif
