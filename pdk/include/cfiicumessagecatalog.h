#ifndef CFIICUMESSAGECATALOG_H
#define CFIICUMESSAGECATALOG_H

#include <memory>
#include <string>

#include <unicode/resbund.h>

#include "cfiexport.h"
#include "cfimessagecatalog.h"

namespace qorin_pdk_4_4 {

// One language of the ICU resource bundle <install>/Messages/lib<catalog>, as genrb builds
// it (<install>/Messages/lib<catalog>/<language>.res). A key the language lacks comes from
// the bundle's root, by ICU's own fallback.
class QORIN_PDK_API CFiIcuMessageCatalog : public CFiMessageCatalog {
public:
    CFiIcuMessageCatalog(const std::string &language, const std::wstring &catalogName);
    ~CFiIcuMessageCatalog() override;

    // 0 when the language itself, or the default ICU picks for an unknown one, is there;
    // 3 without an install directory or for any other state of the bundle, a language that
    // ICU can only serve through a parent ("de_AT" from "de") among them.
    int init() override;
    std::wstring getMessage(const std::string &key, const wchar_t *defaultText) const override;

private:
    std::unique_ptr<icu::ResourceBundle> m_bundle;
    bool m_open;
};

}  // namespace qorin_pdk_4_4

#endif
