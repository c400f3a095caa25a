#include "cfifim.h"

namespace qorin_pdk_4_4 {

namespace {

std::wstring orEmpty(const wchar_t *text)
{
    return text != nullptr ? std::wstring(text) : std::wstring();
}

}  // namespace

CFiFim::CFiFim(const wchar_t *name, uint32_t word1, uint32_t word2, uint32_t word3, uint32_t word4, uint32_t word5,
               uint32_t word6, const wchar_t *description, const wchar_t *version) :
    m_words{{word1, word2, word3, word4, word5, word6}, nullptr, nullptr},
    m_description(orEmpty(description)),
    m_version(orEmpty(version)),
    m_name(orEmpty(name))
{
}

const qrn_fim_words *CFiFim::words()
{
    // Set here rather than in the constructor, so that a copied item points at its own texts.
    m_words.description = m_description.c_str();
    m_words.version = m_version.c_str();
    return &m_words;
}

}  // namespace qorin_pdk_4_4
