#include "cfiparamvaluelisthandler.h"

#include <string_view>

#include "cficonfigparamdatalist.h"
#include "cficonfigparamdatalisthandler.h"
#include "cfiformatoptionlist.h"
#include "cfiformatoptionlisthandler.h"

using namespace std::string_view_literals;

namespace qorin_pdk_4_4 {

namespace {

std::u16string utf16(const char *ascii)
{
    return std::u16string(ascii, ascii + std::char_traits<char>::length(ascii));
}

}  // namespace

template <class List>
CFiParamValueListHandler<List>::CFiParamValueListHandler() :
    m_listName(utf16(List::ElementType::LIST_ELEMENT)),
    m_itemName(utf16(List::ElementType::ITEM_ELEMENT)),
    m_inValueList(false),
    m_finished(false)
{
}

template <class List>
CFiParamValueListHandler<List>::~CFiParamValueListHandler() = default;

template <class List>
void CFiParamValueListHandler<List>::startElement(const XMLCh *const, const XMLCh *const, const XMLCh *const qname,
                                                  const xercesc::Attributes &)
{
    enterElement();
    m_text.clear();
    if (nameOf(qname) == u"valueList"sv) {
        m_inValueList = true;
    }
}

template <class List>
void CFiParamValueListHandler<List>::endElement(const XMLCh *const, const XMLCh *const, const XMLCh *const qname)
{
    leaveElement();
    const std::u16string_view name = nameOf(qname);
    if (name == u"valueList"sv) {
        m_inValueList = false;
    } else if (name == m_listName) {
        m_finished = true;
    } else if (name == m_itemName) {
        m_list.m_elements[m_current.getKey()] = m_current;
        m_current.clear();
    } else if (name == u"key"sv) {
        m_current.setKey(m_text);
    } else if (name == u"value"sv) {
        if (m_inValueList) {
            m_current.addValue(m_text);
        } else {
            m_current.setValue(m_text);
        }
    }
}

template <class List>
List &CFiParamValueListHandler<List>::getList()
{
    throwLastError();
    return m_list;
}

template class CFiParamValueListHandler<CFiConfigParamDataList>;
template class CFiParamValueListHandler<CFiFormatOptionList>;

}  // namespace qorin_pdk_4_4
