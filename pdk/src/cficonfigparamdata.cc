#include "cficonfigparamdata.h"

#include "cfiparamdocument.h"
#include "cfistringtool.h"

namespace qorin_pdk_4_4 {

CFiConfigParamData::CFiConfigParamData() = default;

CFiConfigParamData::CFiConfigParamData(const char *key, const char *value) :
    m_key(key != nullptr ? key : ""),
    m_value(value != nullptr ? value : "")
{
}

void CFiConfigParamData::clear()
{
    m_key.clear();
    m_value.clear();
    m_values.clear();
}

std::string CFiConfigParamData::toXML() const
{
    return toXML(ITEM_ELEMENT);
}

std::string CFiConfigParamData::toXML(const char *item) const
{
    using T = CFiStringTool;
    std::string xml = T::xmlBracket(item, true, true);
    // Read by no one; the element is there for hosts that expect it.
    xml += param_document::leaf("dataType", "");
    xml += param_document::leaf("key", m_key);
    if (m_values.empty()) {
        xml += param_document::leaf("value", m_value);
    } else {
        xml += T::xmlBracket("valueList", true, true);
        for (const std::string &value : m_values) {
            xml += param_document::leaf("value", value);
        }
        xml += T::xmlBracket("valueList", false, true);
    }
    xml += T::xmlBracket(item, false, true);
    return xml;
}

}  // namespace qorin_pdk_4_4
