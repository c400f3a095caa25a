#include "cficonfigparamdatalist.h"

namespace qorin_pdk_4_4 {

CFiConfigParamDataList::CFiConfigParamDataList() = default;

// The count of references is the object's own, never copied.
CFiConfigParamDataList::CFiConfigParamDataList(const CFiConfigParamDataList &other) :
    CFiRefCount(),
    CFiParamValueList(other)
{
}

CFiConfigParamDataList::CFiConfigParamDataList(const wchar_t *xml) : CFiParamValueList(xml) {}

CFiConfigParamDataList &CFiConfigParamDataList::operator=(const CFiConfigParamDataList &other)
{
    CFiParamValueList::operator=(other);
    return *this;
}

CFiConfigParamDataList::~CFiConfigParamDataList() = default;

}  // namespace qorin_pdk_4_4
