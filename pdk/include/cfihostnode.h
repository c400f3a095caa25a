#ifndef CFIHOSTNODE_H
#define CFIHOSTNODE_H

#include <cstdint>
#include <string>
#include <vector>

#include <ace/SString.h>

#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// One host of the host list before it is built, with its ports (WWNs).
class QORIN_PDK_API CFiHostNode {
public:
    // A null text gives an empty one.
    CFiHostNode(const wchar_t *hostName, const wchar_t *enclosureId);
    ~CFiHostNode();

    // Adds each port in order, with every "-" and ":" removed. Gives the port array.
    wchar_t *const *addPorts(const std::vector<std::string> &ports);

    const std::wstring &getHostName() const { return m_hostName; }
    const std::wstring &getEnclosureId() const { return m_enclosureId; }
    // Null-terminated; owned by the item. Null before the first port.
    wchar_t *const *getPorts() const { return m_portArray; }
    uint32_t getPortCount() const { return static_cast<uint32_t>(m_ports.size()); }

    CFiHostNode(const CFiHostNode &) = delete;
    CFiHostNode &operator=(const CFiHostNode &) = delete;

private:
    std::vector<ACE_WString> m_ports;
    wchar_t **m_portArray;
    std::wstring m_hostName;
    std::wstring m_enclosureId;
};

}  // namespace qorin_pdk_4_4

#endif
