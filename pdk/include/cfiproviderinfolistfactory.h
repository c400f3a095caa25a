#ifndef CFIPROVIDERINFOLISTFACTORY_H
#define CFIPROVIDERINFOLISTFACTORY_H

#include <cstdint>
#include <string>

#include "cfiexport.h"
#include "cfilist.h"
#include "cfiproviderinfo.h"
#include "qrn_records.h"

namespace qorin_pdk_4_4 {

// The provider list; each element announces the interface level 7.0.0.0.
class QORIN_PDK_API CFiProviderInfoListFactory : public CFiList<qrn_provider_list, CFiProviderInfo> {
public:
    CFiProviderInfoListFactory(const wchar_t *providerName, qrn_provider_list **out);
    ~CFiProviderInfoListFactory() override;

    qrn_provider_list *buildNode(CFiProviderInfo &item) override;

private:
    uint16_t m_version[4];
    std::wstring m_providerName;
};

}  // namespace qorin_pdk_4_4

#endif
