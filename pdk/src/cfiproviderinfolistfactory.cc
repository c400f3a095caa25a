#include "cfiproviderinfolistfactory.h"

#include "qorinutil.h"

namespace qorin_pdk_4_4 {

CFiProviderInfoListFactory::CFiProviderInfoListFactory(const wchar_t *providerName, qrn_provider_list **out) :
    CFiList(out, nullptr),
    m_version{7, 0, 0, 0},
    m_providerName(providerName != nullptr ? providerName : L"")
{
}

CFiProviderInfoListFactory::~CFiProviderInfoListFactory() = default;

qrn_provider_list *CFiProviderInfoListFactory::buildNode(CFiProviderInfo &item)
{
    return qorin_build_providerlist_node(m_providerName.c_str(), item.getWord1(), item.getWord2(), m_version,
                                         item.getClaimPatterns());
}

}  // namespace qorin_pdk_4_4
