#ifndef HPEVA_LSHOSTHANDLER_H
#define HPEVA_LSHOSTHANDLER_H

#include <vector>

#include "cfisaxparsehandler.h"
#include "hpeva_host.h"

// Reads the host objects of `LS HOST FULL XML`. A host's name is its path behind "\Hosts\";
// an object without such a path repeats the name of the one before it.
class CHpEvaLsHostHandler : public qorin_pdk_4_4::CFiSaxParseHandler {
public:
    CHpEvaLsHostHandler();
    ~CHpEvaLsHostHandler() override;

    void characters(const XMLCh *const chars, const XMLSize_t length) override;
    void startElement(const XMLCh *const uri, const XMLCh *const localname, const XMLCh *const qname,
                      const xercesc::Attributes &attrs) override;
    void endElement(const XMLCh *const uri, const XMLCh *const localname, const XMLCh *const qname) override;

    // The hosts in document order; throws the parser's message if there is one.
    std::vector<SHpEvaHost> getHostList();

private:
    std::vector<SHpEvaHost> m_hosts;
    SHpEvaHost m_host;
    bool m_collecting;
};

#endif
