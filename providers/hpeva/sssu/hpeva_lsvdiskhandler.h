#ifndef HPEVA_LSVDISKHANDLER_H
#define HPEVA_LSVDISKHANDLER_H

#include <list>
#include <string>

#include "cfisaxparsehandler.h"
#include "hpeva_cell.h"
#include "hpeva_vdisk.h"

// Reads the virtual disk objects of `LS VDISK ... XML` and `FIND VDISK ... XML`. Each disk
// gets the cell given here as its cell part. Containers give no record, and nothing of one
// object carries over into the next.
class CHpEvaLsVdiskHandler : public qorin_pdk_4_4::CFiSaxParseHandler {
public:
    explicit CHpEvaLsVdiskHandler(const SHpEvaCell &cell);
    ~CHpEvaLsVdiskHandler() override;

    void characters(const XMLCh *const chars, const XMLSize_t length) override;
    void startElement(const XMLCh *const uri, const XMLCh *const localname, const XMLCh *const qname,
                      const xercesc::Attributes &attrs) override;
    void endElement(const XMLCh *const uri, const XMLCh *const localname, const XMLCh *const qname) override;

    // The first disk, or the empty record (without a cell part) if there is none. Both
    // getters throw the parser's message if there is one.
    SHpEvaVdisk getVdisk();
    // The disks in document order; the caller may move them out.
    std::list<SHpEvaVdisk> &getVdiskList();

private:
    SHpEvaVdisk m_vdisk;
    std::string m_hostName;
    int32_t m_lunNumber;
    SHpEvaCell m_cell;
    std::list<SHpEvaVdisk> m_vdisks;
    bool m_collecting;
};

#endif
