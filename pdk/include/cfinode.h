#ifndef CFINODE_H
#define CFINODE_H

#include <cstdint>
#include <string>

#include "cfiexport.h"
#include "qrn_records.h"

namespace qorin_pdk_4_4 {

// One node (disk) of the node list before it is built.
class QORIN_PDK_API CFiNode {
public:
    // Narrow texts are UTF-8; a null text gives an empty one.
    CFiNode(const wchar_t *provider, const char *displayName, const char *udid, uint64_t size, uint32_t word1,
            uint32_t word2, uint64_t word3);

    // Fills the display-name/identifier pair, with a new identifier (flags 3) made from the
    // UDID; the identifier is the caller's until a builder takes it over. Null identifier if
    // qorin_get_objid fails.
    const qrn_node_name *nameBlock();
    const qrn_node_words *words() const { return &m_words; }
    const std::wstring &getDisplayName() const { return m_displayName; }
    const std::wstring &getUdid() const { return m_udid; }
    const std::wstring &getProvider() const { return m_provider; }

private:
    qrn_node_words m_words;
    qrn_node_name m_name;
    std::wstring m_displayName;
    std::wstring m_udid;
    std::wstring m_provider;
};

}  // namespace qorin_pdk_4_4

#endif
