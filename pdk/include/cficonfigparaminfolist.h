#ifndef CFICONFIGPARAMINFOLIST_H
#define CFICONFIGPARAMINFOLIST_H

#include <map>
#include <string>

#include "cficonfigparaminfo.h"
#include "cfiexport.h"
#include "cfirefcount.h"

namespace qorin_pdk_4_4 {

// The parameters a provider describes to the host, sorted by key.
class QORIN_PDK_API CFiConfigParamInfoList : public virtual CFiRefCount {
public:
    CFiConfigParamInfoList();
    ~CFiConfigParamInfoList() override;

    void add(const CFiConfigParamInfo &info);
    bool isEmpty() const { return m_params.empty(); }
    size_t size() const { return m_params.size(); }
    // The element for key, or an empty element when it is missing.
    const CFiConfigParamInfo &get(const std::string &key) const;
    const std::map<std::string, CFiConfigParamInfo> &params() const { return m_params; }

private:
    std::map<std::string, CFiConfigParamInfo> m_params;
    CFiConfigParamInfo m_missing;
};

}  // namespace qorin_pdk_4_4

#endif
