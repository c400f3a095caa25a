#ifndef CFIMESSAGECATALOG_H
#define CFIMESSAGECATALOG_H

#include <string>

#include "cfiexport.h"
#include "cfirefcount.h"
#include "cfismartptr.h"

namespace qorin_pdk_4_4 {

// The texts of one language. A catalog that fails init is never used.
class QORIN_PDK_API CFiMessageCatalog : public virtual CFiRefCount {
public:
    CFiMessageCatalog(const std::string &language, const std::wstring &catalogName);
    ~CFiMessageCatalog() override;

    // 0 when the language's texts can be read.
    virtual int init() = 0;
    // "<catalog>: <text>"; for a key it lacks, defaultText if set, else "<catalog>: <KEY>".
    virtual std::wstring getMessage(const std::string &key, const wchar_t *defaultText) const = 0;

    const std::string &getLanguage() const { return m_language; }
    const std::wstring &getCatalogName() const { return m_catalogName; }
    const std::wstring &getBundlePath() const { return m_bundlePath; }

protected:
    std::string m_language;
    std::wstring m_bundlePath;
    std::wstring m_catalogName;
};

using CFiMessageCatalogPtr = CFiSmartPtr<CFiMessageCatalog, CFiNullAllocator<CFiMessageCatalog>>;

}  // namespace qorin_pdk_4_4

#endif
