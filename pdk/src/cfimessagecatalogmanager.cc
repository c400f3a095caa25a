#include "cfimessagecatalogmanager.h"

#include <ace/Guard_T.h>

namespace qorin_pdk_4_4 {

namespace {

std::wstring angleKey(const std::string &key)
{
    return L"<" + std::wstring(key.begin(), key.end()) + L">";
}

}  // namespace

CFiMessageCatalogManager::CFiMessageCatalogManager() = default;

CFiMessageCatalogManager::~CFiMessageCatalogManager() = default;

std::wstring CFiMessageCatalogManager::getMessage(const std::string &key, const wchar_t *defaultText,
                                                  std::string language)
{
    (void)language;
    return defaultText != nullptr ? std::wstring(defaultText) : angleKey(key);
}

std::wstring CFiMessageCatalogManager::getLocalizedMessage(CFiMessagePtr &message, const char *language)
{
    if (message.isNull()) {
        return std::wstring();
    }
    std::wstring pattern = getMessage(message->getMessageKey(), nullptr, language != nullptr ? language : "");
    return message->formatMessage(pattern);
}

std::string CFiMessageCatalogManager::resolveLanguage(const char *language) const
{
    if (language == nullptr) {
        return std::string();
    }
    if (std::string(language) == "native") {
        return getNativeLanguage();
    }
    return language;
}

const wchar_t *CFiMessageCatalogManager::storeText(const std::string &key, const std::wstring &text)
{
    ACE_Guard<ACE_Thread_Mutex> guard(m_lock);
    std::wstring &slot = m_texts[key];
    slot = text;
    return slot.c_str();
}

void CFiMessageCatalogManager::getLocalizedMessage(const char *key, const char *language, wchar_t **out)
{
    std::string k = key != nullptr ? key : "";
    std::wstring text = getMessage(k, nullptr, resolveLanguage(language));
    const wchar_t *stored = storeText(k, text);
    if (out != nullptr) {
        *out = const_cast<wchar_t *>(stored);
    }
}

void CFiMessageCatalogManager::deleteLocalizedMessage(wchar_t **text)
{
    if (text == nullptr || *text == nullptr) {
        return;
    }
    ACE_Guard<ACE_Thread_Mutex> guard(m_lock);
    for (auto it = m_texts.begin(); it != m_texts.end(); ++it) {
        if (it->second == *text) {
            m_texts.erase(it);
            return;
        }
    }
}

std::string CFiMessageCatalogManager::getNativeLanguage() const
{
    ACE_Guard<ACE_Thread_Mutex> guard(m_lock);
    return m_nativeLanguage;
}

void CFiMessageCatalogManager::setNativeLanguage(const char *language)
{
    ACE_Guard<ACE_Thread_Mutex> guard(m_lock);
    m_nativeLanguage = language != nullptr ? language : "";
}

}  // namespace qorin_pdk_4_4
