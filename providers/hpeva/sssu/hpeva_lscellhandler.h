#ifndef HPEVA_LSCELLHANDLER_H
#define HPEVA_LSCELLHANDLER_H

#include "cfisaxparsehandler.h"
#include "hpeva_cell.h"

// Reads the cell object of `LS CELL "<name>" XML` into one record. The credential part is
// left to the caller.
class CHpEvaLsCellHandler : public qorin_pdk_4_4::CFiSaxParseHandler {
public:
    CHpEvaLsCellHandler();
    ~CHpEvaLsCellHandler() override;

    void characters(const XMLCh *const chars, const XMLSize_t length) override;
    void startElement(const XMLCh *const uri, const XMLCh *const localname, const XMLCh *const qname,
                      const xercesc::Attributes &attrs) override;
    void endElement(const XMLCh *const uri, const XMLCh *const localname, const XMLCh *const qname) override;

    // Throws the parser's message if there is one.
    SHpEvaCell getCell();

private:
    SHpEvaCell m_cell;
};

#endif
