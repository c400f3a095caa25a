#ifndef CFICONFIGPARAMDATA_H
#define CFICONFIGPARAMDATA_H

#include <string>
#include <vector>

#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// The value of one parameter in a configuration: one "ConfigValue" element of a
// "ConfigValueList" document. A value list, when it has items, is written in place of the
// single value.
class QORIN_PDK_API CFiConfigParamData {
public:
    static constexpr const char *LIST_ELEMENT = "ConfigValueList";
    static constexpr const char *ITEM_ELEMENT = "ConfigValue";

    CFiConfigParamData();
    CFiConfigParamData(const char *key, const char *value);

    const std::string &getKey() const { return m_key; }
    void setKey(const std::string &key) { m_key = key; }
    const std::string &getValue() const { return m_value; }
    void setValue(const std::string &value) { m_value = value; }
    const std::vector<std::string> &getValueList() const { return m_values; }
    void addValue(const std::string &value) { m_values.push_back(value); }
    void clear();

    std::string toXML() const;

protected:
    // The element with item as its name.
    std::string toXML(const char *item) const;

private:
    std::string m_key;
    std::string m_value;
    std::vector<std::string> m_values;
};

}  // namespace qorin_pdk_4_4

#endif
