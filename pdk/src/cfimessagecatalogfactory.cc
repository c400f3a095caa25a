#include "cfimessagecatalogfactory.h"

namespace qorin_pdk_4_4 {

CFiMessageCatalogFactory::CFiMessageCatalogFactory(const std::wstring &catalogName,
                                                   const std::string &defaultLanguage) :
    m_defaultLanguage(defaultLanguage),
    m_catalogName(catalogName)
{
}

CFiMessageCatalogFactory::~CFiMessageCatalogFactory() = default;

std::string CFiMessageCatalogFactory::getDefaultLanguage() const
{
    return m_defaultLanguage;
}

}  // namespace qorin_pdk_4_4
