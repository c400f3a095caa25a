#include "cfifimlistfactory.h"

#include "qorinutil.h"

namespace qorin_pdk_4_4 {

CFiFimListFactory::CFiFimListFactory(const std::wstring &providerName, qrn_fim_list **out) :
    CFiList(out, nullptr),
    m_providerName(providerName)
{
}

CFiFimListFactory::~CFiFimListFactory() = default;

qrn_fim_list *CFiFimListFactory::buildNode(CFiFim &item)
{
    return qorin_build_fim_list_node(item.getName().c_str(), item.words(), item.getExtra().c_str(),
                                     m_providerName.c_str());
}

}  // namespace qorin_pdk_4_4
