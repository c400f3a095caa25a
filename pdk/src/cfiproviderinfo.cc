#include "cfiproviderinfo.h"

#include "cfistringtool.h"

namespace qorin_pdk_4_4 {

CFiProviderInfo::CFiProviderInfo(uint64_t word1, uint64_t word2) :
    m_word1(word1),
    m_word2(word2),
    m_patternArray(nullptr)
{
}

CFiProviderInfo::~CFiProviderInfo()
{
    CFiStringTool::tstrfreelist(m_patternArray);
}

void CFiProviderInfo::addClaimPattern(const std::string &pattern)
{
    CFiStringTool::tstrfreelist(m_patternArray);
    m_patterns.push_back(CFiStringTool::str2tstr(pattern));
    m_patternArray = CFiStringTool::tstrduplist(m_patterns);
}

}  // namespace qorin_pdk_4_4
