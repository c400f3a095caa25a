#ifndef CFIMESSAGECATALOGMANAGER_H
#define CFIMESSAGECATALOGMANAGER_H

#include <map>
#include <string>

#include <ace/Thread_Mutex.h>

#include "cfiexport.h"
#include "cfimessage.h"
#include "cfimessagecatalog.h"
#include "cfimessagecatalogfactory.h"
#include "cfirefcount.h"
#include "cfismartptr.h"
#include "qrn_records.h"

namespace qorin_pdk_4_4 {

// Turns message keys into localized text, one catalog per language, made on first use by the
// registered factory. Until a factory is registered every lookup answers with the key in
// angle brackets. A key missing from a language's catalog is no failure: the answer is
// "<catalog>: <KEY>". A language whose catalog can't be opened is answered by the default
// language, and tried again at its next use.
//
// Host threads come here concurrently: both maps are locked for insertion and lookup, never
// across a catalog's or a message's own work.
class QORIN_PDK_API CFiMessageCatalogManager : public virtual CFiRefCount {
public:
    CFiMessageCatalogManager();
    ~CFiMessageCatalogManager() override;

    // Not owned: the factory must outlive the manager's use of it. Activates the factory's
    // default language.
    void registerFactory(CFiMessageCatalogFactory *factory);
    // Forgets factory if it is the registered one; its owner calls this before it goes, since
    // the manager may outlive it. Lookups then answer as before any registration.
    void unregisterFactory(CFiMessageCatalogFactory *factory);
    void activateCatalog(std::string language);

    // An empty language means the default one.
    std::wstring getMessage(const std::string &key, const wchar_t *defaultText, std::string language);
    // The message's text with its arguments filled in.
    std::wstring getLocalizedMessage(CFiMessagePtr &message, const char *language);
    // Texts for the host: *out points at a copy kept here until deleteLocalizedMessage, or
    // until another text is stored under the same key (the key, or the serialised text).
    // A null language is the default language, "native" the host's.
    void getLocalizedMessage(const char *key, const char *language, wchar_t **out);
    void getLocalizedMessage(const qrn_msg_info *info, const char *language, wchar_t **out);
    // Drops the first kept text equal to *text; *text itself is left as it is.
    void deleteLocalizedMessage(wchar_t **text);

    std::string getNativeLanguage() const;
    void setNativeLanguage(const char *language);

private:
    std::string resolveLanguage(const char *language) const;
    CFiMessageCatalogPtr catalogOf(const std::string &language) const;
    const wchar_t *storeText(const std::string &key, const std::wstring &text);

    std::map<std::string, CFiMessageCatalogPtr> m_catalogs;
    CFiMessageCatalogFactory *m_factory;
    // Texts handed to the host stay alive here until deleteLocalizedMessage.
    std::map<std::string, std::wstring> m_texts;
    std::string m_nativeLanguage;
    mutable ACE_Thread_Mutex m_lock;
};

using CFiMessageCatalogManagerPtr =
    CFiSmartPtr<CFiMessageCatalogManager, CFiContextSingletonAllocator<CFiMessageCatalogManager>>;

}  // namespace qorin_pdk_4_4

#endif
