#ifndef CFIERRORHANDLER_H
#define CFIERRORHANDLER_H

#include <string>

#include "cfierrorhandlerbase.h"
#include "cfiexport.h"
#include "cfimessagecatalogmanager.h"
#include "cfismartptr.h"
#include "qrn_records.h"

namespace qorin_pdk_4_4 {

// Hands each pushed message to the host's callback, in the host's language and in the
// default language.
class QORIN_PDK_API CFiErrorHandler : public CFiErrorHandlerBase {
public:
    CFiErrorHandler(qrn_host_context *host, const CFiMessageCatalogManagerPtr &catalogs);
    ~CFiErrorHandler() override;

    int handleText(char *text, qrn_eseverity severity) override;
    int handleMessage(CFiMessagePtr message) override;

private:
    qrn_host_context *m_host;
    std::string m_hostLanguage;
    CFiMessageCatalogManagerPtr m_catalogs;
};

}  // namespace qorin_pdk_4_4

#endif
