#include "cficonfigparaminfo.h"

#include "cfiparamdocument.h"
#include "cfistringtool.h"

namespace qorin_pdk_4_4 {

namespace {

const char *const VALUE_TYPE_NAMES[] = {"string", "int", "boolean", "string_list", "int_list", "boolean_list"};
const char *const USAGE_TYPE_NAMES[] = {"SELECT", "AUTO", "NO_MODIFY"};

std::string orEmpty(const char *text)
{
    return text != nullptr ? text : "";
}

}  // namespace

CFiConfigParamInfo::CFiConfigParamInfo()
{
    clear();
}

CFiConfigParamInfo::CFiConfigParamInfo(const char *key, int defaultValue, int usage, int rangeMin, int rangeMax,
                                       const char *messageId, bool list, bool shared)
{
    clear();
    m_key = orEmpty(key);
    m_default = CFiStringTool::int2str(static_cast<int32_t>(defaultValue));
    m_usageType = usage;
    m_rangeMin = rangeMin;
    m_rangeMax = rangeMax;
    m_messageId = orEmpty(messageId);
    m_valueType = list ? INT_LIST : INT;
    m_shared = shared;
}

CFiConfigParamInfo::CFiConfigParamInfo(const char *key, bool defaultValue, int usage, const char *messageId, bool list,
                                       bool shared)
{
    clear();
    m_key = orEmpty(key);
    m_default = CFiStringTool::bool2str(defaultValue);
    m_usageType = usage;
    m_messageId = orEmpty(messageId);
    m_valueType = list ? BOOLEAN_LIST : BOOLEAN;
    m_shared = shared;
}

CFiConfigParamInfo::CFiConfigParamInfo(const char *key, const char *defaultValue, int usage, const char *messageId,
                                       bool list, bool shared)
{
    clear();
    m_key = orEmpty(key);
    m_default = orEmpty(defaultValue);
    m_usageType = usage;
    m_messageId = orEmpty(messageId);
    m_valueType = list ? STRING_LIST : STRING;
    m_shared = shared;
}

CFiConfigParamInfo::CFiConfigParamInfo(const char *key, const wchar_t *defaultValue, int usage, const char *messageId,
                                       bool list, bool shared) :
    CFiConfigParamInfo(key, CFiStringTool::wstr2str(std::wstring(defaultValue != nullptr ? defaultValue : L"")).c_str(),
                       usage, messageId, list, shared)
{
}

void CFiConfigParamInfo::clear()
{
    m_key.clear();
    m_messageId.clear();
    m_valueType = UNKNOWN_VALUE;
    m_usageType = UNKNOWN_USAGE;
    m_shared = false;
    m_selection.clear();
    m_default.clear();
    m_rangeMin = -1;
    m_rangeMax = -1;
}

std::string CFiConfigParamInfo::toXML() const
{
    using T = CFiStringTool;
    std::string xml = T::xmlBracket("ConfigParam", true, true);
    xml += param_document::leaf("key", m_key);
    xml += param_document::leaf("usageType", usageTypeName(m_usageType));
    xml += param_document::leaf("messageId", m_messageId);
    xml += param_document::leaf("isSharedParam", T::bool2str(m_shared));
    xml += param_document::leaf("dataType", valueTypeName(m_valueType));
    if ((m_valueType == INT || m_valueType == INT_LIST) && !(m_rangeMin == -1 && m_rangeMax == -1)) {
        xml += T::xmlBracket("dataRange", true, true);
        xml += param_document::leaf("rangeMin", T::int2str(m_rangeMin));
        xml += param_document::leaf("rangeMax", T::int2str(m_rangeMax));
        xml += T::xmlBracket("dataRange", false, true);
    }
    if (m_valueType == STRING_LIST) {
        xml += T::xmlBracket("selectionList", true, true);
        for (const std::string &item : m_selection) {
            xml += param_document::leaf("selectionItem", item);
        }
        xml += T::xmlBracket("selectionList", false, true);
    }
    xml += param_document::leaf("defaultValue", m_default);
    xml += T::xmlBracket("ConfigParam", false, true);
    return xml;
}

const char *CFiConfigParamInfo::valueTypeName(int type)
{
    return type >= STRING && type < UNKNOWN_VALUE ? VALUE_TYPE_NAMES[type] : "unknown";
}

int CFiConfigParamInfo::valueTypeOf(const std::string &name)
{
    for (int type = STRING; type < UNKNOWN_VALUE; ++type) {
        if (name == VALUE_TYPE_NAMES[type]) {
            return type;
        }
    }
    return UNKNOWN_VALUE;
}

const char *CFiConfigParamInfo::usageTypeName(int type)
{
    return type >= SELECT && type < UNKNOWN_USAGE ? USAGE_TYPE_NAMES[type] : "UNKNOWN";
}

int CFiConfigParamInfo::usageTypeOf(const std::string &name)
{
    for (int type = SELECT; type < UNKNOWN_USAGE; ++type) {
        if (name == USAGE_TYPE_NAMES[type]) {
            return type;
        }
    }
    return UNKNOWN_USAGE;
}

}  // namespace qorin_pdk_4_4
