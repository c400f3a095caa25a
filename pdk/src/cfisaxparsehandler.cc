#include "cfisaxparsehandler.h"

#include <unicode/unistr.h>
#include <unicode/ustring.h>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>
#include <xercesc/util/XMLUniDefs.hpp>

#include "cfisaxparser.h"
#include "cfistringtool.h"

XERCES_CPP_NAMESPACE_USE

namespace qorin_pdk_4_4 {

CFiSaxParseHandler::XercesUse::XercesUse()
{
    CFiSaxParser::useXerces();
}

CFiSaxParseHandler::CFiSaxParseHandler() :
    m_lastError(XMLUni::fgZeroLenString, XMLUni::fgZeroLenString, XMLUni::fgZeroLenString, 0, 0),
    m_hasError(false)
{
}

CFiSaxParseHandler::~CFiSaxParseHandler() = default;

void CFiSaxParseHandler::characters(const XMLCh *const chars, const XMLSize_t length)
{
    m_text += toString(chars, length);
}

void CFiSaxParseHandler::appendText(const XMLCh *chars, XMLSize_t length)
{
    if (chars == nullptr || length == 0) {
        return;
    }
    const size_t before = m_text.size();
    // A UTF-16 unit never needs more than three bytes of UTF-8.
    m_text.resize(before + static_cast<size_t>(length) * 3);
    UErrorCode status = U_ZERO_ERROR;
    int32_t written = 0;
    u_strToUTF8(&m_text[before], static_cast<int32_t>(m_text.size() - before), &written, chars,
                static_cast<int32_t>(length), &status);
    if (U_FAILURE(status)) {
        // As CFiStringTool does for ill-formed text.
        written = 0;
    }
    m_text.resize(before + static_cast<size_t>(written));
}

void CFiSaxParseHandler::startElement(const XMLCh *const, const XMLCh *const, const XMLCh *const, const Attributes &) {}

void CFiSaxParseHandler::endElement(const XMLCh *const, const XMLCh *const, const XMLCh *const) {}

void CFiSaxParseHandler::warning(const SAXParseException &exc)
{
    m_hasError = true;
    m_lastError = exc;
}

void CFiSaxParseHandler::error(const SAXParseException &exc)
{
    m_hasError = true;
    m_lastError = exc;
}

void CFiSaxParseHandler::fatalError(const SAXParseException &exc)
{
    m_hasError = true;
    m_lastError = exc;
}

void CFiSaxParseHandler::throwLastError()
{
    const XMLCh *message = m_lastError.getMessage();
    if (m_hasError && message != nullptr && *message != 0) {
        throw SAXParseException(m_lastError);
    }
}

std::string CFiSaxParseHandler::getLastErrorText() const
{
    return m_hasError ? toString(m_lastError.getMessage()) : std::string();
}

std::string CFiSaxParseHandler::toString(const XMLCh *text)
{
    if (text == nullptr) {
        return std::string();
    }
    return toString(text, XMLString::stringLen(text));
}

std::string CFiSaxParseHandler::toString(const XMLCh *text, XMLSize_t length)
{
    if (text == nullptr || length == 0) {
        return std::string();
    }
    // Read-only alias: the characters aren't copied before conversion.
    const icu::UnicodeString alias(false, text, static_cast<int32_t>(length));
    return CFiStringTool::ustr2str(alias);
}

std::wstring CFiSaxParseHandler::toWString(const XMLCh *text)
{
    return CFiStringTool::str2wstr(toString(text));
}

}  // namespace qorin_pdk_4_4
