#ifndef CFIICUMESSAGECATALOGFACTORY_H
#define CFIICUMESSAGECATALOGFACTORY_H

#include "cfiexport.h"
#include "cfimessagecatalogfactory.h"

namespace qorin_pdk_4_4 {

// Catalogs from the ICU bundle lib<catalogName> and messages of the kind CFiIcuMessage.
// A provider registers one, as in
//     m_catalogFactory.reset(new CFiIcuMessageCatalogFactory(L"tamlin", "root"));
//     m_catalogManager->registerFactory(m_catalogFactory.get());
// and keeps it alive as long as the catalog manager may use it.
class QORIN_PDK_API CFiIcuMessageCatalogFactory : public CFiMessageCatalogFactory {
public:
    CFiIcuMessageCatalogFactory(const std::wstring &catalogName, const std::string &defaultLanguage);
    ~CFiIcuMessageCatalogFactory() override;

    CFiMessageCatalogPtr createCatalog(const char *language) override;
    CFiMessagePtr createMessage(const qrn_msg_info *info) override;
};

}  // namespace qorin_pdk_4_4

#endif
