#ifndef HPEVA_NODEFILTER_H
#define HPEVA_NODEFILTER_H

#include <map>
#include <string>

// A host's filter text parsed: "key=value" items separated by commas or line feeds. An
// item without "=" is skipped; an item with more than one "=" (or a bare "=") ends the
// parse, keeping what came before. A key that is absent passes every test that is not
// strict.
class CHpEvaNodeFilter {
public:
    explicit CHpEvaNodeFilter(const wchar_t *text);

    // Present: the values are equal ignoring letter case. Absent: !strict.
    bool matches(const std::string &key, const std::string &value, bool strict = false) const;
    // Present: the filter's value occurs in value, with case. Absent: !strict.
    bool containedIn(const std::string &key, const std::string &value, bool strict = false) const;
    bool has(const std::string &key) const;
    // The value, or the empty text for an absent key.
    std::string get(const std::string &key) const;
    size_t size() const { return m_items.size(); }

private:
    std::map<std::string, std::string> m_items;
};

#endif
