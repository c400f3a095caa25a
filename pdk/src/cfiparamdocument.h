#ifndef CFIPARAMDOCUMENT_H
#define CFIPARAMDOCUMENT_H

// What the three parameter documents share: the frame the writer puts around the elements,
// and the road from wide text through the SAX frame to a handler's list. Internal to the kit.

#include <string>

#include <xercesc/sax/SAXParseException.hpp>

#include "cfisaxparser.h"
#include "cfistringtool.h"
#include "qrn_results.h"
#include "sfixmlparseerror.h"

namespace qorin_pdk_4_4 {
namespace param_document {

// A leaf line: a tab, the element with value escaped, a line feed. A carriage return is
// written as a reference too, since a parser turns a literal one into a line feed.
std::string leaf(const char *tag, const std::string &value);

// The declaration line and the root's tags around body.
std::wstring write(const char *root, const std::string &body);

// False, with error set at the place of the first one, if the text holds a code point that
// is no Unicode character (a surrogate, or beyond U+10FFFF). Narrowing would turn it into
// U+FFFD and so change a value without anyone noticing.
bool checkCharacters(const wchar_t *xml, SFiXmlParseError &error);

SFiXmlParseError describe(const xercesc::SAXParseException &exception);

// Parses xml with a fresh Handler and gives the handler's list to take(). 0, or 3 with
// error set; take() isn't called then.
template <class Handler, class Take>
int parse(const wchar_t *xml, SFiXmlParseError &error, Take &&take)
{
    error = SFiXmlParseError();
    if (!checkCharacters(xml, error)) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    const std::string narrow = CFiStringTool::wstr2str(std::wstring(xml != nullptr ? xml : L""));
    // The handler keeps Xerces alive, so it must outlive the exception that it throws.
    Handler handler;
    try {
        {
            CFiSaxParser parser(&handler, nullptr);
            parser.parse(narrow);
        }
        take(handler.getList());
        return QRN_OK;
    } catch (const xercesc::SAXParseException &e) {
        error = describe(e);
        return QRN_ERR_INVALID_ARGUMENT;
    }
}

}  // namespace param_document
}  // namespace qorin_pdk_4_4

#endif
