#ifndef CFISAXPARSEHANDLER_H
#define CFISAXPARSEHANDLER_H

#include <string>
#include <string_view>

#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>

#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// Base of every SAX handler of the library: a text buffer and an error slot. Parser messages
// of all three severities are kept, never thrown, so that a parse returns normally and the
// caller decides (hasLastError). Derived handlers override startElement and endElement and
// read and reset the buffer themselves.
//
// A handler initialises Xerces if no parser has yet, so that it may be made before its parser;
// Xerces then stays until the library unloads (CFiSaxParser::releaseXerces).
class QORIN_PDK_API CFiSaxParseHandler : public xercesc::DefaultHandler {
public:
    CFiSaxParseHandler();
    ~CFiSaxParseHandler() override;

    // Appends the characters to the buffer.
    void characters(const XMLCh *const chars, const XMLSize_t length) override;
    void startElement(const XMLCh *const uri, const XMLCh *const localname, const XMLCh *const qname,
                      const xercesc::Attributes &attrs) override;
    void endElement(const XMLCh *const uri, const XMLCh *const localname, const XMLCh *const qname) override;

    // Each keeps the message, replacing an earlier one.
    void warning(const xercesc::SAXParseException &exc) override;
    void error(const xercesc::SAXParseException &exc) override;
    void fatalError(const xercesc::SAXParseException &exc) override;

    bool hasLastError() const { return m_hasError; }
    xercesc::SAXParseException &getLastError() { return m_lastError; }
    // Throws a copy of the kept message, if there is one with a text.
    void throwLastError();
    // The kept message's text, UTF-8; empty without one.
    std::string getLastErrorText() const;

    // XML text to narrow UTF-8 (never the locale's code page, so names stay intact whatever
    // the host's locale) or wide text. A null text gives the empty one.
    static std::string toString(const XMLCh *text);
    static std::string toString(const XMLCh *text, XMLSize_t length);
    static std::wstring toWString(const XMLCh *text);

    CFiSaxParseHandler(const CFiSaxParseHandler &) = delete;
    CFiSaxParseHandler &operator=(const CFiSaxParseHandler &) = delete;

protected:
    // Adds the characters to the buffer as UTF-8. The parser hands one value over in several
    // pieces where an entity such as &amp; stands, so a handler gathers them all between its
    // startElement and endElement; the storage is reused, which matters in a listing of
    // hundreds of thousands of values.
    void appendText(const XMLCh *chars, XMLSize_t length);

    // Element names compare as UTF-16 text, without transcoding each one: take the view once
    // per callback and compare it with literals.
    static std::u16string_view nameOf(const XMLCh *name)
    {
        return name != nullptr ? std::u16string_view(name) : std::u16string_view();
    }

    std::string m_text;

private:
    // Declared before the message, which needs Xerces.
    struct XercesUse {
        XercesUse();
    } m_xercesUse;
    xercesc::SAXParseException m_lastError;
    bool m_hasError;
};

}  // namespace qorin_pdk_4_4

#endif
