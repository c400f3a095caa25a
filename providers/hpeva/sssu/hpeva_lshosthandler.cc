#include "hpeva_lshosthandler.h"

#include <string_view>

// Literal views: comparing with one costs a length check and a memcmp.
using namespace std::string_view_literals;

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
        appendText(chars, length);
    }
}

void CHpEvaLsHostHandler::startElement(const XMLCh *const, const XMLCh *const, const XMLCh *const qname,
                                       const xercesc::Attributes &)
{
    const std::u16string_view name = nameOf(qname);
    m_collecting = name == u"portwwn"sv || name == u"objectname"sv;
    m_text.clear();
}

void CHpEvaLsHostHandler::endElement(const XMLCh *const, const XMLCh *const, const XMLCh *const qname)
{
    const std::u16string_view name = nameOf(qname);
    if (name == u"objectname"sv) {
        // The head is skipped by position, wherever in the text it was found.
        if (m_text.find(HOSTS_HEAD) != std::string::npos) {
            m_host.name = m_text.substr(HOSTS_HEAD_LENGTH);
        }
    } else if (name == u"portwwn"sv) {
        m_host.ports.push_back(m_text);
    } else if (name == u"object"sv) {
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
