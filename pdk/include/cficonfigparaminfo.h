#ifndef CFICONFIGPARAMINFO_H
#define CFICONFIGPARAMINFO_H

#include <cstdint>
#include <string>
#include <vector>

#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// Description of one tunable parameter that a provider offers to the host: one
// "ConfigParam" element of a "ConfigParamList" document.
class QORIN_PDK_API CFiConfigParamInfo {
public:
    enum ValueType {
        STRING = 0,
        INT = 1,
        BOOLEAN = 2,
        STRING_LIST = 3,
        INT_LIST = 4,
        BOOLEAN_LIST = 5,
        UNKNOWN_VALUE = 6
    };
    enum UsageType { SELECT = 0, AUTO = 1, NO_MODIFY = 2, UNKNOWN_USAGE = 3 };

    CFiConfigParamInfo();
    // The last two arguments of each: a list of such values, and a parameter shared by nodes.
    CFiConfigParamInfo(const char *key, int defaultValue, int usage, int rangeMin, int rangeMax, const char *messageId,
                       bool list, bool shared);
    CFiConfigParamInfo(const char *key, bool defaultValue, int usage, const char *messageId, bool list, bool shared);
    CFiConfigParamInfo(const char *key, const char *defaultValue, int usage, const char *messageId, bool list,
                       bool shared);
    CFiConfigParamInfo(const char *key, const wchar_t *defaultValue, int usage, const char *messageId, bool list,
                       bool shared);

    const std::string &getKey() const { return m_key; }
    void setKey(const std::string &key) { m_key = key; }
    const std::string &getMessageId() const { return m_messageId; }
    void setMessageId(const std::string &id) { m_messageId = id; }
    int getValueType() const { return m_valueType; }
    void setValueType(int type) { m_valueType = type; }
    // The usage type.
    int getParamType() const { return m_usageType; }
    void setParamType(int type) { m_usageType = type; }
    int32_t getRangeMin() const { return m_rangeMin; }
    void setRangeMin(int32_t value) { m_rangeMin = value; }
    int32_t getRangeMax() const { return m_rangeMax; }
    void setRangeMax(int32_t value) { m_rangeMax = value; }
    bool getIsSharedParam() const { return m_shared; }
    void setIsSharedParam(bool shared) { m_shared = shared; }
    void addSelectionItem(const std::string &item) { m_selection.push_back(item); }
    const std::vector<std::string> &getSelectionList() const { return m_selection; }
    const std::string &getValueDefault() const { return m_default; }
    void setValueDefault(const std::string &value) { m_default = value; }
    void clear();

    // The "ConfigParam" element, every leaf escaped.
    std::string toXML() const;

    // Texts of the documents: any number outside the table reads as "unknown" or "UNKNOWN",
    // and any text outside it as UNKNOWN_VALUE or UNKNOWN_USAGE.
    static const char *valueTypeName(int type);
    static int valueTypeOf(const std::string &name);
    static const char *usageTypeName(int type);
    static int usageTypeOf(const std::string &name);

private:
    std::string m_key;
    std::string m_messageId;
    int32_t m_valueType;
    int32_t m_usageType;
    bool m_shared;
    std::vector<std::string> m_selection;
    std::string m_default;
    int32_t m_rangeMin;
    int32_t m_rangeMax;
};

}  // namespace qorin_pdk_4_4

#endif
