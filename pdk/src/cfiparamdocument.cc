#include "cfiparamdocument.h"

#include "cfisaxparsehandler.h"

namespace qorin_pdk_4_4 {
namespace param_document {

std::string leaf(const char *tag, const std::string &value)
{
    const std::string escaped = CFiStringTool::convertToXmlSpecialCharacters(value);
    if (escaped.find('\r') == std::string::npos) {
        return CFiStringTool::xmlBracketValue(tag, value);
    }
    return "\t" + CFiStringTool::xmlBracket(tag, true, false) + CFiStringTool::searchreplace(escaped, "\r", "&#13;") +
           CFiStringTool::xmlBracket(tag, false, true);
}

std::wstring write(const char *root, const std::string &body)
{
    std::string xml = "<?xml version=\"1.0\" standalone=\"yes\" ?>\n";
    xml += CFiStringTool::xmlBracket(root, true, true);
    xml += body;
    xml += CFiStringTool::xmlBracket(root, false, true);
    return CFiStringTool::str2wstr(xml);
}

bool checkCharacters(const wchar_t *xml, SFiXmlParseError &error)
{
    if (xml == nullptr) {
        return true;
    }
    int64_t line = 1;
    int64_t column = 1;
    for (const wchar_t *c = xml; *c != 0; ++c) {
        const auto code = static_cast<uint32_t>(*c);
        if (code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
            char hex[16];
            snprintf(hex, sizeof hex, "%X", code);
            error.message = std::string("The document holds the code point ") + hex + ", which is no Unicode character";
            error.line = line;
            error.column = column;
            return false;
        }
        if (code == '\n') {
            ++line;
            column = 1;
        } else {
            ++column;
        }
    }
    return true;
}

SFiXmlParseError describe(const xercesc::SAXParseException &exception)
{
    SFiXmlParseError error;
    error.message = CFiSaxParseHandler::toString(exception.getMessage());
    if (error.message.empty()) {
        error.message = "The document could not be parsed";
    }
    error.line = static_cast<int64_t>(exception.getLineNumber());
    error.column = static_cast<int64_t>(exception.getColumnNumber());
    return error;
}

}  // namespace param_document
}  // namespace qorin_pdk_4_4
