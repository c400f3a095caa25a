#ifndef CFIGETCONFIGPARAMLISTHANDLER_H
#define CFIGETCONFIGPARAMLISTHANDLER_H

#include "cficonfigparaminfo.h"
#include "cficonfigparaminfolist.h"
#include "cfiexport.h"
#include "cfiparamdocumenthandler.h"

namespace qorin_pdk_4_4 {

// Reader of a "ConfigParamList" document. A child that is missing leaves its field as
// after CFiConfigParamInfo::clear(); other elements are ignored.
class QORIN_PDK_API CFiGetConfigParamListHandler : public CFiParamDocumentHandler {
public:
    CFiGetConfigParamListHandler();
    ~CFiGetConfigParamListHandler() override;

    void startElement(const XMLCh *const uri, const XMLCh *const localname, const XMLCh *const qname,
                      const xercesc::Attributes &attrs) override;
    void endElement(const XMLCh *const uri, const XMLCh *const localname, const XMLCh *const qname) override;

    // The list read so far; throws the parser's message first if there is one.
    CFiConfigParamInfoList &getList();
    // True once the root element has closed.
    bool isFinished() const { return m_finished; }

private:
    CFiConfigParamInfoList m_list;
    CFiConfigParamInfo m_current;
    bool m_finished;
};

}  // namespace qorin_pdk_4_4

#endif
