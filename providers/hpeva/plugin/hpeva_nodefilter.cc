#include "hpeva_nodefilter.h"

#include <vector>

#include "cfistringtool.h"

using namespace qorin_pdk_4_4;

namespace {

const char *const kBlanks = " \n\t\r";

}  // namespace

CHpEvaNodeFilter::CHpEvaNodeFilter(const wchar_t *text)
{
    if (text == nullptr) {
        return;
    }
    const std::vector<std::string> items = CFiStringTool::tokenize(CFiStringTool::wstr2str(std::wstring(text)), ",\n");
    for (const std::string &item : items) {
        if (item.find('=') == std::string::npos) {
            continue;
        }
        const std::vector<std::string> parts = CFiStringTool::tokenize(item, "=");
        if (parts.size() == 1) {
            m_items[CFiStringTool::trim(parts[0], kBlanks)] = std::string();
        } else if (parts.size() == 2) {
            m_items[CFiStringTool::trim(parts[0], kBlanks)] = CFiStringTool::trim(parts[1], kBlanks);
        } else {
            // A value can't hold "=": the rest of the text is not trusted.
            return;
        }
    }
}

bool CHpEvaNodeFilter::matches(const std::string &key, const std::string &value, bool strict) const
{
    auto it = m_items.find(key);
    if (it == m_items.end()) {
        return !strict;
    }
    return CFiStringTool::CompareNoCase(it->second, value);
}

bool CHpEvaNodeFilter::containedIn(const std::string &key, const std::string &value, bool strict) const
{
    auto it = m_items.find(key);
    if (it == m_items.end()) {
        return !strict;
    }
    return value.find(it->second) != std::string::npos;
}

bool CHpEvaNodeFilter::has(const std::string &key) const
{
    return m_items.count(key) != 0;
}

std::string CHpEvaNodeFilter::get(const std::string &key) const
{
    auto it = m_items.find(key);
    return it == m_items.end() ? std::string() : it->second;
}
