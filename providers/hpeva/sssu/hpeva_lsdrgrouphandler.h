#ifndef HPEVA_LSDRGROUPHANDLER_H
#define HPEVA_LSDRGROUPHANDLER_H

#include "cfisaxparsehandler.h"
#include "hpeva_drgroup.h"
#include "hpeva_drgrouplink.h"

// Reads the DR group object of `LS DR_GROUP "<group>" XML`: the group's own fields, its
// members' paths and its links. remoteCell is left empty.
class CHpEvaLsDrGroupHandler : public qorin_pdk_4_4::CFiSaxParseHandler {
public:
    CHpEvaLsDrGroupHandler();
    ~CHpEvaLsDrGroupHandler() override;

    void characters(const XMLCh *const chars, const XMLSize_t length) override;
    void startElement(const XMLCh *const uri, const XMLCh *const localname, const XMLCh *const qname,
                      const xercesc::Attributes &attrs) override;
    void endElement(const XMLCh *const uri, const XMLCh *const localname, const XMLCh *const qname) override;

    // Throws the parser's message if there is one.
    SHpEvaDrGroup getDrGroup();

private:
    SHpEvaDrGroup m_group;
    // Not cleared between links: a field missing in a later link keeps the earlier value.
    SHpEvaDrGroupLink m_link;
    bool m_inMember;
    bool m_inLink;
};

#endif
