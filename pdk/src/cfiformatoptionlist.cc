#include "cfiformatoptionlist.h"

namespace qorin_pdk_4_4 {

CFiFormatOptionList::CFiFormatOptionList() = default;

// The count of references is the object's own, never copied.
CFiFormatOptionList::CFiFormatOptionList(const CFiFormatOptionList &other) : CFiRefCount(), CFiParamValueList(other) {}

CFiFormatOptionList::CFiFormatOptionList(const wchar_t *xml) : CFiParamValueList(xml) {}

CFiFormatOptionList &CFiFormatOptionList::operator=(const CFiFormatOptionList &other)
{
    CFiParamValueList::operator=(other);
    return *this;
}

CFiFormatOptionList::~CFiFormatOptionList() = default;

}  // namespace qorin_pdk_4_4
