#include "hpeva_lsdrgrouphandler.h"

CHpEvaLsDrGroupHandler::CHpEvaLsDrGroupHandler() : m_inMember(false), m_inLink(false)
{
}

CHpEvaLsDrGroupHandler::~CHpEvaLsDrGroupHandler() = default;

void CHpEvaLsDrGroupHandler::characters(const XMLCh *const chars, const XMLSize_t length)
{
    m_text = toString(chars, length);
}

void CHpEvaLsDrGroupHandler::startElement(const XMLCh *const, const XMLCh *const, const XMLCh *const qname,
                                          const xercesc::Attributes &)
{
    if (nameIs(qname, u"object")) {
        m_inMember = false;
        m_inLink = false;
    } else if (nameIs(qname, u"member")) {
        m_inMember = true;
    } else if (nameIs(qname, u"link")) {
        m_inLink = true;
    }
    m_text.clear();
}

void CHpEvaLsDrGroupHandler::endElement(const XMLCh *const, const XMLCh *const, const XMLCh *const qname)
{
    if (nameIs(qname, u"link")) {
        m_inLink = false;
        m_group.links.push_back(m_link);
    } else if (m_inLink) {
        // Inside a link only its own four fields count.
        if (nameIs(qname, u"linkstate")) {
            m_link.linkstate = m_text;
        } else if (nameIs(qname, u"scellname")) {
            m_link.scellname = m_text;
        } else if (nameIs(qname, u"scellid")) {
            m_link.scellid = m_text;
        } else if (nameIs(qname, u"suspendstate")) {
            m_link.suspendstate = m_text;
        }
    } else if (nameIs(qname, u"member")) {
        m_inMember = false;
    } else if (nameIs(qname, u"objectname")) {
        if (m_inMember) {
            m_group.members.push_back(m_text);
        } else {
            m_group.objectname = m_text;
        }
    } else if (nameIs(qname, u"operationalstate")) {
        m_group.operationalstate = m_text;
    } else if (nameIs(qname, u"membercondition")) {
        m_group.membercondition = m_text;
    } else if (nameIs(qname, u"parentstoragecellname")) {
        m_group.parentstoragecellname = m_text;
    } else if (nameIs(qname, u"drmmode")) {
        m_group.drmmode = m_text;
    }
    m_text.clear();
}

SHpEvaDrGroup CHpEvaLsDrGroupHandler::getDrGroup()
{
    throwLastError();
    return m_group;
}
