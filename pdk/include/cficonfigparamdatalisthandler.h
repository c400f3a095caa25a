#ifndef CFICONFIGPARAMDATALISTHANDLER_H
#define CFICONFIGPARAMDATALISTHANDLER_H

#include "cficonfigparamdatalist.h"
#include "cfiexport.h"
#include "cfiparamvaluelisthandler.h"

namespace qorin_pdk_4_4 {

extern template class QORIN_PDK_API CFiParamValueListHandler<CFiConfigParamDataList>;

// Reader of a "ConfigValueList" document.
class QORIN_PDK_API CFiConfigParamDataListHandler : public CFiParamValueListHandler<CFiConfigParamDataList> {
public:
    CFiConfigParamDataListHandler();
    ~CFiConfigParamDataListHandler() override;
};

}  // namespace qorin_pdk_4_4

#endif
