#include "hpeva_lsdrgrouphandler.h"

#include <string_view>

// Literal views: comparing with one costs a length check and a memcmp.
using namespace std::string_view_literals;

CHpEvaLsDrGroupHandler::CHpEvaLsDrGroupHandler() : m_inMember(false), m_inLink(false) {}

CHpEvaLsDrGroupHandler::~CHpEvaLsDrGroupHandler() = default;

void CHpEvaLsDrGroupHandler::characters(const XMLCh *const chars, const XMLSize_t length)
{
    appendText(chars, length);
}

void CHpEvaLsDrGroupHandler::startElement(const XMLCh *const, const XMLCh *const, const XMLCh *const qname,
                                          const xercesc::Attributes &)
{
    const std::u16string_view name = nameOf(qname);
    if (name == u"object"sv) {
        m_inMember = false;
        m_inLink = false;
    } else if (name == u"member"sv) {
        m_inMember = true;
    } else if (name == u"link"sv) {
        m_inLink = true;
    }
    m_text.clear();
}

void CHpEvaLsDrGroupHandler::endElement(const XMLCh *const, const XMLCh *const, const XMLCh *const qname)
{
    const std::u16string_view name = nameOf(qname);
    if (name == u"link"sv) {
        m_inLink = false;
        m_group.links.push_back(m_link);
    } else if (m_inLink) {
        // Inside a link only its own four fields count.
        if (name == u"linkstate"sv) {
            m_link.linkstate = m_text;
        } else if (name == u"scellname"sv) {
            m_link.scellname = m_text;
        } else if (name == u"scellid"sv) {
            m_link.scellid = m_text;
        } else if (name == u"suspendstate"sv) {
            m_link.suspendstate = m_text;
        }
    } else if (name == u"member"sv) {
        m_inMember = false;
    } else if (name == u"objectname"sv) {
        if (m_inMember) {
            m_group.members.push_back(m_text);
        } else {
            m_group.objectname = m_text;
        }
    } else if (name == u"operationalstate"sv) {
        m_group.operationalstate = m_text;
    } else if (name == u"membercondition"sv) {
        m_group.membercondition = m_text;
    } else if (name == u"parentstoragecellname"sv) {
        m_group.parentstoragecellname = m_text;
    } else if (name == u"drmmode"sv) {
        m_group.drmmode = m_text;
    }
    m_text.clear();
}

SHpEvaDrGroup CHpEvaLsDrGroupHandler::getDrGroup()
{
    throwLastError();
    return m_group;
}
