#include "cfiparamvaluelist.h"

#include "cficonfigparamdatalist.h"
#include "cficonfigparamdatalisthandler.h"
#include "cfiformatoptionlist.h"
#include "cfiformatoptionlisthandler.h"
#include "cfiparamdocument.h"
#include "cfistringtool.h"
#include "qrn_results.h"

namespace qorin_pdk_4_4 {

template <class Element, class Handler>
CFiParamValueList<Element, Handler>::CFiParamValueList() = default;

template <class Element, class Handler>
CFiParamValueList<Element, Handler>::CFiParamValueList(const CFiParamValueList &other) :
    CFiRefCount(),
    m_elements(other.m_elements),
    m_xml(other.m_xml),
    m_parseError(other.m_parseError)
{
}

template <class Element, class Handler>
CFiParamValueList<Element, Handler>::CFiParamValueList(const wchar_t *xml)
{
    parse(xml);
}

template <class Element, class Handler>
CFiParamValueList<Element, Handler> &CFiParamValueList<Element, Handler>::operator=(const CFiParamValueList &other)
{
    if (this != &other) {
        m_elements = other.m_elements;
        m_xml = other.m_xml;
        m_parseError = other.m_parseError;
    }
    return *this;
}

template <class Element, class Handler>
CFiParamValueList<Element, Handler>::~CFiParamValueList() = default;

template <class Element, class Handler>
int CFiParamValueList<Element, Handler>::parse(const wchar_t *xml)
{
    m_xml = xml != nullptr ? xml : L"";
    return param_document::parse<Handler>(xml, m_parseError, [this](CFiParamValueList &parsed) {
        m_elements.swap(parsed.m_elements);
        updateXML();
    });
}

template <class Element, class Handler>
void CFiParamValueList<Element, Handler>::updateXML()
{
    std::string body;
    for (const auto &kv : m_elements) {
        body += kv.second.toXML();
    }
    m_xml = param_document::write(Element::LIST_ELEMENT, body);
}

template <class Element, class Handler>
void CFiParamValueList<Element, Handler>::addParamData(const Element &element)
{
    m_elements[element.getKey()] = element;
    updateXML();
}

template <class Element, class Handler>
const Element *CFiParamValueList<Element, Handler>::find(const char *key) const
{
    auto it = m_elements.find(key != nullptr ? key : "");
    return it != m_elements.end() ? &it->second : nullptr;
}

template <class Element, class Handler>
const Element &CFiParamValueList<Element, Handler>::getParamData(const char *key) const
{
    const Element *element = find(key);
    return element != nullptr ? *element : m_missing;
}

template <class Element, class Handler>
void CFiParamValueList<Element, Handler>::setValue(const char *key, const char *value)
{
    addParamData(Element(key, value));
}

template <class Element, class Handler>
std::string CFiParamValueList<Element, Handler>::getValue(const char *key) const
{
    return getParamData(key).getValue();
}

template <class Element, class Handler>
int CFiParamValueList<Element, Handler>::getValue(const char *key, std::string &value) const
{
    const Element *element = find(key);
    if (element == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    value = element->getValue();
    return QRN_OK;
}

template <class Element, class Handler>
int CFiParamValueList<Element, Handler>::getValue(const char *key, std::vector<std::string> &values) const
{
    const Element *element = find(key);
    if (element == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    values = element->getValueList();
    return QRN_OK;
}

template <class Element, class Handler>
int CFiParamValueList<Element, Handler>::getValue(const char *key, int32_t &value) const
{
    const Element *element = find(key);
    if (element == nullptr || CFiStringTool::str2int(element->getValue(), value) != 0) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    return QRN_OK;
}

template <class Element, class Handler>
std::vector<std::string> CFiParamValueList<Element, Handler>::getKeys() const
{
    std::vector<std::string> keys;
    keys.reserve(m_elements.size());
    for (const auto &kv : m_elements) {
        keys.push_back(kv.first);
    }
    return keys;
}

template <class Element, class Handler>
void CFiParamValueList<Element, Handler>::clear()
{
    m_elements.clear();
    m_xml.clear();
}

template class CFiParamValueList<CFiConfigParamData, CFiConfigParamDataListHandler>;
template class CFiParamValueList<CFiFormatOption, CFiFormatOptionListHandler>;

}  // namespace qorin_pdk_4_4
