#ifndef CFIMESSAGECATALOGFACTORY_H
#define CFIMESSAGECATALOGFACTORY_H

#include <string>

#include "cfiexport.h"
#include "cfimessage.h"
#include "cfimessagecatalog.h"
#include "qrn_records.h"

namespace qorin_pdk_4_4 {

// What a provider registers with the catalog manager: it makes the catalog of a language
// and reads a serialised message back into an object.
class QORIN_PDK_API CFiMessageCatalogFactory {
public:
    CFiMessageCatalogFactory(const std::wstring &catalogName, const std::string &defaultLanguage);
    virtual ~CFiMessageCatalogFactory();

    // A new catalog, not yet initialised; a null language means the default one.
    virtual CFiMessageCatalogPtr createCatalog(const char *language) = 0;
    virtual CFiMessagePtr createMessage(const qrn_msg_info *info) = 0;
    virtual std::string getDefaultLanguage() const;

    const std::wstring &getCatalogName() const { return m_catalogName; }

protected:
    std::string m_defaultLanguage;
    std::wstring m_catalogName;
};

}  // namespace qorin_pdk_4_4

#endif
