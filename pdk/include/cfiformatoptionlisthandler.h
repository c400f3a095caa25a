#ifndef CFIFORMATOPTIONLISTHANDLER_H
#define CFIFORMATOPTIONLISTHANDLER_H

#include "cfiexport.h"
#include "cfiformatoptionlist.h"
#include "cfiparamvaluelisthandler.h"

namespace qorin_pdk_4_4 {

extern template class QORIN_PDK_API CFiParamValueListHandler<CFiFormatOptionList>;

// Reader of a "FormatOptionValueList" document.
class QORIN_PDK_API CFiFormatOptionListHandler : public CFiParamValueListHandler<CFiFormatOptionList> {
public:
    CFiFormatOptionListHandler();
    ~CFiFormatOptionListHandler() override;
};

}  // namespace qorin_pdk_4_4

#endif
