#include "cfiformatoption.h"

namespace qorin_pdk_4_4 {

CFiFormatOption::CFiFormatOption() = default;

CFiFormatOption::CFiFormatOption(const char *key, const char *value) : CFiConfigParamData(key, value) {}

std::string CFiFormatOption::toXML() const
{
    return CFiConfigParamData::toXML(ITEM_ELEMENT);
}

}  // namespace qorin_pdk_4_4
