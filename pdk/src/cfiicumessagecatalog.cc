#include "cfiicumessagecatalog.h"

#include <unicode/locid.h>

#include "cficonfigurationpathtool.h"
#include "cfistringtool.h"
#include "qrn_results.h"

namespace qorin_pdk_4_4 {

CFiIcuMessageCatalog::CFiIcuMessageCatalog(const std::string &language, const std::wstring &catalogName) :
    CFiMessageCatalog(language, catalogName),
    m_open(false)
{
}

CFiIcuMessageCatalog::~CFiIcuMessageCatalog() = default;

int CFiIcuMessageCatalog::init()
{
    ACE_WString directory;
    ACE_WString file;
    CFiConfigurationPathTool::getMessageFileInfo(CFiStringTool::wstr2tstr(m_catalogName), directory, file);
    if (directory.length() == 0) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    m_bundlePath = CFiStringTool::tstr2wstr(directory + file);
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale locale(m_language.c_str());
    m_bundle.reset(new icu::ResourceBundle(CFiStringTool::tstr2ustr(m_bundlePath), locale, status));
    m_open = status == U_ZERO_ERROR || status == U_USING_DEFAULT_WARNING;
    return m_open ? 0 : 3;
}

std::wstring CFiIcuMessageCatalog::getMessage(const std::string &key, const wchar_t *defaultText) const
{
    if (m_open && m_bundle != nullptr) {
        UErrorCode status = U_ZERO_ERROR;
        icu::UnicodeString text = m_bundle->getStringEx(key.c_str(), status);
        if (U_SUCCESS(status)) {
            return m_catalogName + L": " + CFiStringTool::tstr2wstr(CFiStringTool::ustr2tstr(text));
        }
    }
    if (defaultText != nullptr) {
        return defaultText;
    }
    return m_catalogName + L": <" + CFiStringTool::str2wstr(key) + L">";
}

}  // namespace qorin_pdk_4_4
