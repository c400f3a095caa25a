#include "cfierrorhandler.h"

#include "cfistringtool.h"

namespace qorin_pdk_4_4 {

CFiErrorHandler::CFiErrorHandler(qrn_host_context *host, const CFiMessageCatalogManagerPtr &catalogs) :
    m_host(host),
    m_catalogs(catalogs)
{
    if (host != nullptr && host->language != nullptr && host->language->name != nullptr) {
        m_hostLanguage = host->language->name;
    }
}

CFiErrorHandler::~CFiErrorHandler() = default;

int CFiErrorHandler::handleText(char *text, qrn_eseverity severity)
{
    if (m_host == nullptr || m_host->callback == nullptr) {
        return 0;
    }
    std::wstring line = CFiStringTool::str2wstr(text != nullptr ? text : "");
    m_host->callback(m_host, L"", line.c_str(), severity);
    return 0;
}

int CFiErrorHandler::handleMessage(CFiMessagePtr message)
{
    if (m_host == nullptr || m_host->callback == nullptr || message.isNull() || m_catalogs.isNull()) {
        return 0;
    }
    std::wstring defaultText = m_catalogs->getLocalizedMessage(message, "");
    std::wstring hostText = m_catalogs->getLocalizedMessage(message, m_hostLanguage.c_str());
    m_host->callback(m_host, hostText.c_str(), defaultText.c_str(), message->getSeverity());
    return 0;
}

}  // namespace qorin_pdk_4_4
