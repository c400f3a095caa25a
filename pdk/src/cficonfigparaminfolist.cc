#include "cficonfigparaminfolist.h"

namespace qorin_pdk_4_4 {

CFiConfigParamInfoList::CFiConfigParamInfoList() = default;

CFiConfigParamInfoList::~CFiConfigParamInfoList() = default;

void CFiConfigParamInfoList::add(const CFiConfigParamInfo &info)
{
    m_params[info.getKey()] = info;
}

const CFiConfigParamInfo &CFiConfigParamInfoList::get(const std::string &key) const
{
    auto it = m_params.find(key);
    return it != m_params.end() ? it->second : m_missing;
}

}  // namespace qorin_pdk_4_4
