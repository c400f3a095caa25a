#include "cfigetconfigparamlisthandler.h"

#include <string_view>

#include "cfistringtool.h"

using namespace std::string_view_literals;

namespace qorin_pdk_4_4 {

CFiGetConfigParamListHandler::CFiGetConfigParamListHandler() : m_finished(false) {}

CFiGetConfigParamListHandler::~CFiGetConfigParamListHandler() = default;

void CFiGetConfigParamListHandler::startElement(const XMLCh *const, const XMLCh *const, const XMLCh *const,
                                                const xercesc::Attributes &)
{
    enterElement();
    m_text.clear();
}

void CFiGetConfigParamListHandler::endElement(const XMLCh *const, const XMLCh *const, const XMLCh *const qname)
{
    leaveElement();
    const std::u16string_view name = nameOf(qname);
    if (name == u"ConfigParamList"sv) {
        m_finished = true;
    } else if (name == u"ConfigParam"sv) {
        m_list.m_params[m_current.getKey()] = m_current;
        m_current.clear();
    } else if (name == u"key"sv) {
        m_current.setKey(m_text);
    } else if (name == u"messageId"sv) {
        m_current.setMessageId(m_text);
    } else if (name == u"selectionItem"sv) {
        m_current.addSelectionItem(m_text);
    } else if (name == u"defaultValue"sv) {
        m_current.setValueDefault(m_text);
    } else if (name == u"rangeMin"sv || name == u"rangeMax"sv) {
        // An empty text keeps the field as it was.
        int32_t value = name == u"rangeMin"sv ? m_current.getRangeMin() : m_current.getRangeMax();
        CFiStringTool::str2int(m_text, value);
        if (name == u"rangeMin"sv) {
            m_current.setRangeMin(value);
        } else {
            m_current.setRangeMax(value);
        }
    } else if (name == u"usageType"sv) {
        m_current.setParamType(CFiConfigParamInfo::usageTypeOf(m_text));
    } else if (name == u"dataType"sv) {
        m_current.setValueType(CFiConfigParamInfo::valueTypeOf(m_text));
    } else if (name == u"isSharedParam"sv) {
        m_current.setIsSharedParam(m_text == "true" || m_text == "yes" || m_text == "1");
    }
}

CFiConfigParamInfoList &CFiGetConfigParamListHandler::getList()
{
    throwLastError();
    return m_list;
}

}  // namespace qorin_pdk_4_4
