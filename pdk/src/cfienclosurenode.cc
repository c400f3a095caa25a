#include "cfienclosurenode.h"

namespace qorin_pdk_4_4 {

namespace {

std::wstring orEmpty(const wchar_t *text)
{
    return text != nullptr ? std::wstring(text) : std::wstring();
}

}  // namespace

CFiEnclosureNode::CFiEnclosureNode(const wchar_t *name, const wchar_t *provider, const wchar_t *enclosureId,
                                   const wchar_t *vendor, const wchar_t *product, uint64_t available, uint64_t total,
                                   uint32_t lastWord) :
    m_name(orEmpty(name)),
    m_provider(orEmpty(provider)),
    m_enclosureId(orEmpty(enclosureId)),
    m_vendor(orEmpty(vendor)),
    m_product(orEmpty(product)),
    m_available(available),
    m_total(total),
    m_lastWord(lastWord)
{
}

}  // namespace qorin_pdk_4_4
