#ifndef CFIPROVIDERINFO_H
#define CFIPROVIDERINFO_H

#include <cstdint>
#include <string>
#include <vector>

#include <ace/SString.h>

#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// One element of the provider list before it is built: two words for the host and the
// patterns of the identifiers that the provider claims.
class QORIN_PDK_API CFiProviderInfo {
public:
    CFiProviderInfo(uint64_t word1, uint64_t word2);
    ~CFiProviderInfo();

    void addClaimPattern(const std::string &pattern);

    uint64_t getWord1() const { return m_word1; }
    uint64_t getWord2() const { return m_word2; }
    // Null-terminated; owned by the item.
    wchar_t *const *getClaimPatterns() const { return m_patternArray; }

    CFiProviderInfo(const CFiProviderInfo &) = delete;
    CFiProviderInfo &operator=(const CFiProviderInfo &) = delete;

private:
    uint64_t m_word1;
    uint64_t m_word2;
    std::vector<ACE_WString> m_patterns;
    wchar_t **m_patternArray;
};

}  // namespace qorin_pdk_4_4

#endif
