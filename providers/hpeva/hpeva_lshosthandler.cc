#include "hpeva_lshosthandler.h"

namespace {

const char HOSTS_HEAD[] = "\\Hosts\\";
const size_t HOSTS_HEAD_LENGTH = sizeof(HOSTS_HEAD) - 1;

}  // namespace

CHpEvaLsHostHandler::CHpEvaLsHostHandler() : m_collecting(false)
{
    m_hosts.reserve(50);
}

CHpEvaLsHostHandler::~CHpEvaLsHostHandler() = default;

void CHpEvaLsHostHandler::characters(const XMLCh *const chars, const XMLSize_t length)
{
    if (m_collecting) {
        m_text = toString(chars, length);
    }
}

void CHpEvaLsHostHandler::startElement(const XMLCh *const, const XMLCh *const, const XMLCh *const qname,
                                       const xercesc::Attributes &)
{
    m_collecting = nameIs(qname, u"portwwn") || nameIs(qname, u"objectname");
    m_text.clear();
}

void CHpEvaLsHostHandler::endElement(const XMLCh *const, const XMLCh *const, const XMLCh *const qname)
{
    if (nameIs(qname, u"objectname")) {
        // The head is skipped by position, wherever in the text it was found.
        if (m_text.find(HOSTS_HEAD) != std::string::npos) {
            m_host.name = m_text.substr(HOSTS_HEAD_LENGTH);
        }
    } else if (nameIs(qname, u"portwwn")) {
        m_host.ports.push_back(m_text);
    } else if (nameIs(qname, u"object")) {
        m_hosts.push_back(m_host);
        m_host.ports.clear();
    }
    m_text.clear();
}

std::vector<SHpEvaHost> CHpEvaLsHostHandler::getHostList()
{
    throwLastError();
    return m_hosts;
}
