#include "cfihostnode.h"

#include "cfistringtool.h"

namespace qorin_pdk_4_4 {

CFiHostNode::CFiHostNode(const wchar_t *hostName, const wchar_t *enclosureId) :
    m_portArray(nullptr),
    m_hostName(hostName != nullptr ? hostName : L""),
    m_enclosureId(enclosureId != nullptr ? enclosureId : L"")
{
}

CFiHostNode::~CFiHostNode()
{
    CFiStringTool::tstrfreelist(m_portArray);
}

wchar_t *const *CFiHostNode::addPorts(const std::vector<std::string> &ports)
{
    for (const std::string &port : ports) {
        std::string bare = CFiStringTool::searchreplace(CFiStringTool::searchreplace(port, "-", ""), ":", "");
        m_ports.push_back(CFiStringTool::str2tstr(bare));
        CFiStringTool::tstrfreelist(m_portArray);
        m_portArray = CFiStringTool::tstrduplist(m_ports);
    }
    return m_portArray;
}

}  // namespace qorin_pdk_4_4
