#include "cficonfigparaminfo.h"

namespace qorin_pdk_4_4 {

CFiConfigParamInfo::CFiConfigParamInfo()
{
    clear();
}

CFiConfigParamInfo::CFiConfigParamInfo(const char *key, int defaultValue, int usage, int rangeMin, int rangeMax,
                                       const char *messageId, bool list, bool shared)
{
    clear();
    m_key = key != nullptr ? key : "";
    m_default = std::to_string(defaultValue);
    m_usageType = usage;
    m_rangeMin = rangeMin;
    m_rangeMax = rangeMax;
    m_messageId = messageId != nullptr ? messageId : "";
    m_valueType = list ? INT_LIST : INT;
    m_shared = shared;
}

CFiConfigParamInfo::CFiConfigParamInfo(const char *key, bool defaultValue, int usage, const char *messageId, bool list,
                                       bool shared)
{
    clear();
    m_key = key != nullptr ? key : "";
    m_default = defaultValue ? "true" : "false";
    m_usageType = usage;
    m_messageId = messageId != nullptr ? messageId : "";
    m_valueType = list ? BOOLEAN_LIST : BOOLEAN;
    m_shared = shared;
}

CFiConfigParamInfo::CFiConfigParamInfo(const char *key, const char *defaultValue, int usage, const char *messageId,
                                       bool list, bool shared)
{
    clear();
    m_key = key != nullptr ? key : "";
    m_default = defaultValue != nullptr ? defaultValue : "";
    m_usageType = usage;
    m_messageId = messageId != nullptr ? messageId : "";
    m_valueType = list ? STRING_LIST : STRING;
    m_shared = shared;
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

}  // namespace qorin_pdk_4_4
