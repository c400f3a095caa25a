#include "cfiicumessagecatalogfactory.h"

#include "cfiicumessage.h"
#include "cfiicumessagecatalog.h"

namespace qorin_pdk_4_4 {

CFiIcuMessageCatalogFactory::CFiIcuMessageCatalogFactory(const std::wstring &catalogName,
                                                         const std::string &defaultLanguage) :
    CFiMessageCatalogFactory(catalogName, defaultLanguage)
{
}

CFiIcuMessageCatalogFactory::~CFiIcuMessageCatalogFactory() = default;

CFiMessageCatalogPtr CFiIcuMessageCatalogFactory::createCatalog(const char *language)
{
    return CFiMessageCatalogPtr(
        new CFiIcuMessageCatalog(language != nullptr ? std::string(language) : m_defaultLanguage, m_catalogName));
}

CFiMessagePtr CFiIcuMessageCatalogFactory::createMessage(const qrn_msg_info *info)
{
    return CFiMessagePtr(new CFiIcuMessage(info));
}

}  // namespace qorin_pdk_4_4
