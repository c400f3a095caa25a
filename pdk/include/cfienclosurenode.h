#ifndef CFIENCLOSURENODE_H
#define CFIENCLOSURENODE_H

#include <cstdint>
#include <string>

#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// One enclosure (array) of the enclosure list before it is built.
class QORIN_PDK_API CFiEnclosureNode {
public:
    // A null text gives an empty one.
    CFiEnclosureNode(const wchar_t *name, const wchar_t *provider, const wchar_t *enclosureId, const wchar_t *vendor,
                     const wchar_t *product, uint64_t available, uint64_t total, uint32_t lastWord);

    const std::wstring &getName() const { return m_name; }
    const std::wstring &getProvider() const { return m_provider; }
    const std::wstring &getEnclosureId() const { return m_enclosureId; }
    const std::wstring &getVendor() const { return m_vendor; }
    const std::wstring &getProduct() const { return m_product; }
    uint64_t getAvailable() const { return m_available; }
    uint64_t getTotal() const { return m_total; }
    uint32_t getLastWord() const { return m_lastWord; }

private:
    std::wstring m_name;
    std::wstring m_provider;
    std::wstring m_enclosureId;
    std::wstring m_vendor;
    std::wstring m_product;
    uint64_t m_available;
    uint64_t m_total;
    uint32_t m_lastWord;
};

}  // namespace qorin_pdk_4_4

#endif
