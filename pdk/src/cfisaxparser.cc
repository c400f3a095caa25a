#include "cfisaxparser.h"

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

XERCES_CPP_NAMESPACE_USE

namespace qorin_pdk_4_4 {

namespace {

const char BUFFER_ID[] = "qorin_sax_parser";

}  // namespace

CFiSaxParser::CFiSaxParser(DefaultHandler *handler, const char *schema)
    : m_handler(nullptr), m_reader(nullptr), m_initialized(false)
{
    init();
    if (handler != nullptr) {
        setHandler(handler);
    }
    if (schema != nullptr) {
        setInputSchema(schema);
    }
}

CFiSaxParser::~CFiSaxParser()
{
    delete m_reader;
    if (m_initialized) {
        XMLPlatformUtils::Terminate();
    }
}

void CFiSaxParser::init()
{
    try {
        XMLPlatformUtils::Initialize(XMLUni::fgXercescDefaultLocale);
        m_initialized = true;
        m_reader = XMLReaderFactory::createXMLReader();
        m_reader->setFeature(XMLUni::fgSAX2CoreValidation, false);
        m_reader->setFeature(XMLUni::fgSAX2CoreNameSpaces, false);
        m_reader->setFeature(XMLUni::fgXercesSchema, false);
        m_reader->setFeature(XMLUni::fgXercesSchemaFullChecking, false);
        m_reader->setFeature(XMLUni::fgSAX2CoreNameSpacePrefixes, false);
        // Output of an outside tool: an entity must never make the parser fetch a file or URL.
        m_reader->setFeature(XMLUni::fgXercesDisableDefaultEntityResolution, true);
    } catch (const XMLException &) {
        // Without a reader parse reports the failure to the handler.
    }
}

void CFiSaxParser::setHandler(DefaultHandler *handler)
{
    m_handler = handler;
    if (m_reader != nullptr) {
        m_reader->setContentHandler(handler);
        m_reader->setErrorHandler(handler);
    }
}

void CFiSaxParser::setInputSchema(const char *path)
{
    if (m_reader == nullptr || path == nullptr) {
        return;
    }
    XMLCh *location = nullptr;
    try {
        m_reader->setFeature(XMLUni::fgSAX2CoreValidation, true);
        m_reader->setFeature(XMLUni::fgSAX2CoreNameSpaces, true);
        m_reader->setFeature(XMLUni::fgXercesSchema, true);
        m_reader->setFeature(XMLUni::fgXercesSchemaFullChecking, true);
        m_reader->setFeature(XMLUni::fgXercesUseCachedGrammarInParse, true);
        location = XMLString::transcode(path);
        // The reader keeps its own copy of the location.
        m_reader->setProperty(XMLUni::fgXercesSchemaExternalNoNameSpaceSchemaLocation, location);
    } catch (const XMLException &) {
    } catch (const SAXException &) {
    }
    XMLString::release(&location);
}

void CFiSaxParser::parse(const std::string &text)
{
    if (m_reader == nullptr) {
        static const XMLCh noReader[] = u"The XML parser could not be initialised";
        reportToHandler(noReader);
        return;
    }
    MemBufInputSource source(reinterpret_cast<const XMLByte *>(text.data()), text.size(), BUFFER_ID, false);
    try {
        m_reader->parse(source);
    } catch (const SAXParseException &e) {
        reportToHandler(e.getMessage());
    } catch (const SAXException &e) {
        reportToHandler(e.getMessage());
    } catch (const XMLException &e) {
        reportToHandler(e.getMessage());
    } catch (const OutOfMemoryException &) {
        static const XMLCh outOfMemory[] = u"Out of memory while parsing";
        reportToHandler(outOfMemory);
    }
}

void CFiSaxParser::parse(const std::vector<std::string> &lines)
{
    size_t size = 0;
    for (const std::string &line : lines) {
        size += line.size();
    }
    std::string text;
    text.reserve(size);
    for (const std::string &line : lines) {
        text += line;
    }
    parse(text);
}

void CFiSaxParser::reportToHandler(const XMLCh *message)
{
    // A message needs Xerces' memory manager; without Xerces there is no one to tell.
    if (m_handler == nullptr || XMLPlatformUtils::fgMemoryManager == nullptr) {
        return;
    }
    static const XMLCh bufferId[] = u"qorin_sax_parser";
    m_handler->fatalError(SAXParseException(message, XMLUni::fgZeroLenString, bufferId, 0, 0));
}

}  // namespace qorin_pdk_4_4
