#ifndef CFIFORMATOPTIONLIST_H
#define CFIFORMATOPTIONLIST_H

#include "cfiexport.h"
#include "cfiformatoption.h"
#include "cfiparamvaluelist.h"

namespace qorin_pdk_4_4 {

class CFiFormatOptionListHandler;

extern template class QORIN_PDK_API CFiParamValueList<CFiFormatOption, CFiFormatOptionListHandler>;

// The options of a format call, by key: a "FormatOptionValueList" document.
class QORIN_PDK_API CFiFormatOptionList : public CFiParamValueList<CFiFormatOption, CFiFormatOptionListHandler> {
public:
    CFiFormatOptionList();
    CFiFormatOptionList(const CFiFormatOptionList &other);
    explicit CFiFormatOptionList(const wchar_t *xml);
    CFiFormatOptionList &operator=(const CFiFormatOptionList &other);
    ~CFiFormatOptionList() override;
};

}  // namespace qorin_pdk_4_4

#endif
