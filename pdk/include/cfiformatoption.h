#ifndef CFIFORMATOPTION_H
#define CFIFORMATOPTION_H

#include "cficonfigparamdata.h"
#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// The value of one option of a format call: one "FormatOptionValue" element of a
// "FormatOptionValueList" document. Added to a configuration's data list it is a plain value.
class QORIN_PDK_API CFiFormatOption : public CFiConfigParamData {
public:
    static constexpr const char *LIST_ELEMENT = "FormatOptionValueList";
    static constexpr const char *ITEM_ELEMENT = "FormatOptionValue";

    CFiFormatOption();
    CFiFormatOption(const char *key, const char *value);

    std::string toXML() const;
};

}  // namespace qorin_pdk_4_4

#endif
