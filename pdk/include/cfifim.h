#ifndef CFIFIM_H
#define CFIFIM_H

#include <cstdint>
#include <string>

#include "cfiexport.h"
#include "qrn_records.h"

namespace qorin_pdk_4_4 {

// One snapshot method of the FIM list before it is built.
class QORIN_PDK_API CFiFim {
public:
    // A null text gives an empty one.
    CFiFim(const wchar_t *name, uint32_t word1, uint32_t word2, uint32_t word3, uint32_t word4, uint32_t word5,
           uint32_t word6, const wchar_t *description, const wchar_t *version);

    // The six words with pointers to this item's description and version, as the builder
    // takes them; valid while the item lives unchanged.
    const qrn_fim_words *words();
    const std::wstring &getName() const { return m_name; }
    const std::wstring &getDescription() const { return m_description; }
    const std::wstring &getVersion() const { return m_version; }
    // Nobody sets it: the builder gets an empty text.
    const std::wstring &getExtra() const { return m_extra; }

private:
    qrn_fim_words m_words;
    std::wstring m_description;
    std::wstring m_version;
    std::wstring m_name;
    std::wstring m_extra;
};

}  // namespace qorin_pdk_4_4

#endif
