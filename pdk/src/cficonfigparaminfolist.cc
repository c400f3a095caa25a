#include "cficonfigparaminfolist.h"

#include "cfigetconfigparamlisthandler.h"
#include "cfiparamdocument.h"

namespace qorin_pdk_4_4 {

CFiConfigParamInfoList::CFiConfigParamInfoList() = default;

CFiConfigParamInfoList::CFiConfigParamInfoList(const CFiConfigParamInfoList &other) :
    CFiRefCount(),
    m_params(other.m_params),
    m_xml(other.m_xml),
    m_parseError(other.m_parseError)
{
}

CFiConfigParamInfoList::CFiConfigParamInfoList(const wchar_t *xml)
{
    parse(xml);
}

CFiConfigParamInfoList &CFiConfigParamInfoList::operator=(const CFiConfigParamInfoList &other)
{
    if (this != &other) {
        m_params = other.m_params;
        m_xml = other.m_xml;
        m_parseError = other.m_parseError;
    }
    return *this;
}

CFiConfigParamInfoList::~CFiConfigParamInfoList() = default;

int CFiConfigParamInfoList::parse(const wchar_t *xml)
{
    m_xml = xml != nullptr ? xml : L"";
    return param_document::parse<CFiGetConfigParamListHandler>(xml, m_parseError,
                                                               [this](CFiConfigParamInfoList &parsed) {
                                                                   m_params.swap(parsed.m_params);
                                                                   updateXML();
                                                               });
}

void CFiConfigParamInfoList::updateXML()
{
    std::string body;
    for (const auto &kv : m_params) {
        body += kv.second.toXML();
    }
    m_xml = param_document::write(LIST_ELEMENT, body);
}

void CFiConfigParamInfoList::addParamInfo(const CFiConfigParamInfo &info)
{
    m_params[info.getKey()] = info;
    updateXML();
}

const CFiConfigParamInfo &CFiConfigParamInfoList::getParamInfo(const char *key) const
{
    auto it = m_params.find(key != nullptr ? key : "");
    return it != m_params.end() ? it->second : m_missing;
}

CFiConfigParamDataList CFiConfigParamInfoList::getDefaultDataList() const
{
    CFiConfigParamDataList defaults;
    for (const auto &kv : m_params) {
        defaults.addParamData(CFiConfigParamData(kv.first.c_str(), kv.second.getValueDefault().c_str()));
    }
    return defaults;
}

void CFiConfigParamInfoList::clear()
{
    m_params.clear();
    m_xml.clear();
}

}  // namespace qorin_pdk_4_4
