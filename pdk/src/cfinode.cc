#include "cfinode.h"

#include "cfistringtool.h"
#include "qorinutil.h"

namespace qorin_pdk_4_4 {

CFiNode::CFiNode(const wchar_t *provider, const char *displayName, const char *udid, uint64_t size, uint32_t word1,
                 uint32_t word2, uint64_t word3) :
    m_words{word1, word2, word3, size},
    m_name{nullptr, nullptr},
    m_displayName(CFiStringTool::str2wstr(displayName != nullptr ? displayName : "")),
    m_udid(CFiStringTool::str2wstr(udid != nullptr ? udid : "")),
    m_provider(provider != nullptr ? provider : L"")
{
}

const qrn_node_name *CFiNode::nameBlock()
{
    m_name.displayName = m_displayName.c_str();
    m_name.id = qorin_get_objid(m_udid.c_str(), static_cast<uint32_t>((m_udid.size() + 1) * sizeof(wchar_t)), 3);
    return &m_name;
}

}  // namespace qorin_pdk_4_4
