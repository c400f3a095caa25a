#ifndef CFICONFIGPARAMDATALIST_H
#define CFICONFIGPARAMDATALIST_H

#include "cficonfigparamdata.h"
#include "cfiexport.h"
#include "cfiparamvaluelist.h"

namespace qorin_pdk_4_4 {

class CFiConfigParamDataListHandler;

extern template class QORIN_PDK_API CFiParamValueList<CFiConfigParamData, CFiConfigParamDataListHandler>;

// The values of a configuration, by key: a "ConfigValueList" document.
class QORIN_PDK_API CFiConfigParamDataList
    : public CFiParamValueList<CFiConfigParamData, CFiConfigParamDataListHandler> {
public:
    CFiConfigParamDataList();
    CFiConfigParamDataList(const CFiConfigParamDataList &other);
    explicit CFiConfigParamDataList(const wchar_t *xml);
    CFiConfigParamDataList &operator=(const CFiConfigParamDataList &other);
    ~CFiConfigParamDataList() override;
};

}  // namespace qorin_pdk_4_4

#endif
