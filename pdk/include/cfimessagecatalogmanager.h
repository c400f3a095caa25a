#ifndef CFIMESSAGECATALOGMANAGER_H
#define CFIMESSAGECATALOGMANAGER_H

#include <map>
#include <string>

#include <ace/Thread_Mutex.h>

#include "cfiexport.h"
#include "cfimessage.h"
#include "cfirefcount.h"
#include "qrn_records.h"

namespace qorin_pdk_4_4 {

// Turns message keys into localized text. Until a catalog factory is registered every
// lookup answers with the key in angle brackets.
class QORIN_PDK_API CFiMessageCatalogManager : public virtual CFiRefCount {
public:
    CFiMessageCatalogManager();
    ~CFiMessageCatalogManager() override;

    std::wstring getMessage(const std::string &key, const wchar_t *defaultText, std::string language);
    std::wstring getLocalizedMessage(CFiMessagePtr &message, const char *language);
    void getLocalizedMessage(const char *key, const char *language, wchar_t **out);
    void deleteLocalizedMessage(wchar_t **text);

    std::string getNativeLanguage() const;
    void setNativeLanguage(const char *language);

private:
    std::string resolveLanguage(const char *language) const;
    const wchar_t *storeText(const std::string &key, const std::wstring &text);

    // Texts handed to the host stay alive here until deleteLocalizedMessage.
    std::map<std::string, std::wstring> m_texts;
    std::string m_nativeLanguage;
    mutable ACE_Thread_Mutex m_lock;
};

}  // namespace qorin_pdk_4_4

#endif
