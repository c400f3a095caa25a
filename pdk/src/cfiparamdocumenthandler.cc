#include "cfiparamdocumenthandler.h"

#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/XMLUni.hpp>

XERCES_CPP_NAMESPACE_USE

namespace qorin_pdk_4_4 {

CFiParamDocumentHandler::CFiParamDocumentHandler() : m_locator(nullptr), m_depth(0) {}

CFiParamDocumentHandler::~CFiParamDocumentHandler() = default;

void CFiParamDocumentHandler::setDocumentLocator(const Locator *const locator)
{
    m_locator = locator;
}

void CFiParamDocumentHandler::startDTD(const XMLCh *const, const XMLCh *const, const XMLCh *const)
{
    refuse(u"A parameter document may not have a document type declaration");
}

void CFiParamDocumentHandler::enterElement()
{
    if (++m_depth > MAX_DEPTH) {
        refuse(u"Elements are nested deeper than a parameter document allows (64 levels)");
    }
}

void CFiParamDocumentHandler::refuse(const char16_t *message)
{
    static const XMLCh bufferId[] = u"qorin_sax_parser";
    SAXParseException exception = m_locator != nullptr
                                      ? SAXParseException(message, *m_locator)
                                      : SAXParseException(message, XMLUni::fgZeroLenString, bufferId, 0, 0);
    fatalError(exception);
    // Thrown through the reader, which has no other way to stop; the SAX frame catches it.
    throw exception;
}

}  // namespace qorin_pdk_4_4
