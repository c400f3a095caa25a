#include "cfimessagecatalog.h"

namespace qorin_pdk_4_4 {

CFiMessageCatalog::CFiMessageCatalog(const std::string &language, const std::wstring &catalogName) :
    m_language(language),
    m_catalogName(catalogName)
{
}

CFiMessageCatalog::~CFiMessageCatalog() = default;

}  // namespace qorin_pdk_4_4
