#ifndef CFIPARAMDOCUMENTHANDLER_H
#define CFIPARAMDOCUMENTHANDLER_H

#include <xercesc/sax/Locator.hpp>

#include "cfiexport.h"
#include "cfisaxparsehandler.h"

namespace qorin_pdk_4_4 {

// Base of the readers of parameter documents, which come from hosts and users rather than
// from a tool of ours: a document type declaration (the road to entity expansion and outside
// files) and nesting deeper than MAX_DEPTH end the parse with a message at their place.
class QORIN_PDK_API CFiParamDocumentHandler : public CFiSaxParseHandler {
public:
    // The documents nest four deep; the margin is for hosts that wrap them.
    static const int MAX_DEPTH = 64;

    ~CFiParamDocumentHandler() override;

    void setDocumentLocator(const xercesc::Locator *const locator) override;
    void startDTD(const XMLCh *const name, const XMLCh *const publicId, const XMLCh *const systemId) override;

protected:
    CFiParamDocumentHandler();

    // At each element's start and end.
    void enterElement();
    void leaveElement() { --m_depth; }

private:
    // Keeps the message at the parser's place and ends the parse.
    [[noreturn]] void refuse(const char16_t *message);

    const xercesc::Locator *m_locator;
    int m_depth;
};

}  // namespace qorin_pdk_4_4

#endif
