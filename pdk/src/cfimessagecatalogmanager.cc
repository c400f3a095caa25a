#include "cfimessagecatalogmanager.h"

#include <ace/Guard_T.h>

#include "cfiicumessage.h"
#include "cfistringtool.h"

namespace qorin_pdk_4_4 {

namespace {

std::wstring angleKey(const std::string &key)
{
    return L"<" + CFiStringTool::str2wstr(key) + L">";
}

}  // namespace

CFiMessageCatalogManager::CFiMessageCatalogManager() : m_factory(nullptr) {}

CFiMessageCatalogManager::~CFiMessageCatalogManager() = default;

void CFiMessageCatalogManager::registerFactory(CFiMessageCatalogFactory *factory)
{
    {
        ACE_Guard<ACE_Thread_Mutex> guard(m_lock);
        m_factory = factory;
    }
    if (factory != nullptr) {
        activateCatalog(factory->getDefaultLanguage());
    }
}

void CFiMessageCatalogManager::unregisterFactory(CFiMessageCatalogFactory *factory)
{
    std::map<std::string, CFiMessageCatalogPtr> made;
    {
        ACE_Guard<ACE_Thread_Mutex> guard(m_lock);
        if (factory == nullptr || m_factory != factory) {
            return;
        }
        m_factory = nullptr;
        // The factory's catalogs go with it, released outside the lock.
        made.swap(m_catalogs);
    }
}

void CFiMessageCatalogManager::activateCatalog(std::string language)
{
    CFiMessageCatalogFactory *factory = nullptr;
    {
        ACE_Guard<ACE_Thread_Mutex> guard(m_lock);
        if (m_factory == nullptr || m_catalogs.count(language) != 0) {
            return;
        }
        factory = m_factory;
    }
    // Opening a bundle reads files: done outside the lock. Two threads may both open one
    // language; the first to insert wins and the other copy is dropped.
    CFiMessageCatalogPtr catalog = factory->createCatalog(language.c_str());
    if (catalog.isNull() || catalog->init() != 0) {
        return;
    }
    ACE_Guard<ACE_Thread_Mutex> guard(m_lock);
    m_catalogs.emplace(language, catalog);
}

CFiMessageCatalogPtr CFiMessageCatalogManager::catalogOf(const std::string &language) const
{
    ACE_Guard<ACE_Thread_Mutex> guard(m_lock);
    auto it = m_catalogs.find(language);
    return it != m_catalogs.end() ? it->second : CFiMessageCatalogPtr();
}

std::wstring CFiMessageCatalogManager::getMessage(const std::string &key, const wchar_t *defaultText,
                                                  std::string language)
{
    std::string defaultLanguage;
    bool haveFactory = false;
    {
        ACE_Guard<ACE_Thread_Mutex> guard(m_lock);
        if (m_factory != nullptr) {
            haveFactory = true;
            defaultLanguage = m_factory->getDefaultLanguage();
        }
    }
    if (haveFactory) {
        if (language.empty()) {
            language = defaultLanguage;
        }
        activateCatalog(language);
    }
    // A missing key doesn't send the lookup to another catalog: ICU falls back to root inside.
    CFiMessageCatalogPtr catalog = catalogOf(language);
    if (catalog.isNull() && haveFactory && language != defaultLanguage) {
        catalog = catalogOf(defaultLanguage);
    }
    if (!catalog.isNull()) {
        return catalog->getMessage(key, defaultText);
    }
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
    // The same text again leaves a pointer handed out earlier valid.
    if (slot != text) {
        slot = text;
    }
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

void CFiMessageCatalogManager::getLocalizedMessage(const qrn_msg_info *info, const char *language, wchar_t **out)
{
    std::string lang = resolveLanguage(language);
    CFiMessageCatalogFactory *factory = nullptr;
    {
        ACE_Guard<ACE_Thread_Mutex> guard(m_lock);
        factory = m_factory;
    }
    // Without a factory the kit's own message kind still reads the key back.
    CFiMessagePtr message = factory != nullptr ? factory->createMessage(info) : CFiMessagePtr(new CFiIcuMessage(info));
    // A text without a message in it has nothing to look up.
    std::wstring text;
    if (!message.isNull() && !message->getMessageKey().empty()) {
        text = getLocalizedMessage(message, lang.c_str());
    }
    std::string serialised = info != nullptr && info->text != nullptr ? std::string(info->text, info->length) : "";
    const wchar_t *stored = storeText(serialised, text);
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
    // Copied under the lock: *text usually points into the map itself.
    std::wstring wanted = *text;
    for (auto it = m_texts.begin(); it != m_texts.end(); ++it) {
        if (it->second == wanted) {
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
