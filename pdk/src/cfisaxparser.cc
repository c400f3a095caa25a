#include "cfisaxparser.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <string_view>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/InputSource.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/BinInputStream.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

XERCES_CPP_NAMESPACE_USE

namespace qorin_pdk_4_4 {

namespace {

const char BUFFER_ID[] = "qorin_sax_parser";

// Xerces counts its initialisations without a lock of its own.
std::mutex xercesLock;
bool xercesKept = false;

// The lines read one after the other, as if joined: a listing of many megabytes is parsed
// without a second copy of it.
template <class Lines>
class LinesInputStream : public BinInputStream {
public:
    explicit LinesInputStream(const Lines &lines) : m_lines(lines) {}

    XMLFilePos curPos() const override { return m_position; }

    XMLSize_t readBytes(XMLByte *const toFill, const XMLSize_t maxToRead) override
    {
        XMLSize_t filled = 0;
        while (filled < maxToRead && m_line < m_lines.size()) {
            const std::string_view line = m_lines[m_line];
            const size_t count = std::min<size_t>(maxToRead - filled, line.size() - m_offset);
            // An empty line may have no storage at all, and memcpy takes no null pointer.
            if (count > 0) {
                std::memcpy(toFill + filled, line.data() + m_offset, count);
            }
            filled += count;
            m_offset += count;
            if (m_offset == line.size()) {
                ++m_line;
                m_offset = 0;
            }
        }
        m_position += filled;
        return filled;
    }

    const XMLCh *getContentType() const override { return nullptr; }

private:
    const Lines &m_lines;
    size_t m_line = 0;
    size_t m_offset = 0;
    XMLFilePos m_position = 0;
};

template <class Lines>
class LinesInputSource : public InputSource {
public:
    explicit LinesInputSource(const Lines &lines) : InputSource(BUFFER_ID), m_lines(lines) {}

    BinInputStream *makeStream() const override { return new LinesInputStream<Lines>(m_lines); }

private:
    const Lines &m_lines;
};

}  // namespace

CFiSaxParser::CFiSaxParser(DefaultHandler *handler, const char *schema) : m_handler(nullptr), m_reader(nullptr)
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
}

void CFiSaxParser::useXerces()
{
    std::lock_guard<std::mutex> hold(xercesLock);
    if (!xercesKept) {
        XMLPlatformUtils::Initialize(XMLUni::fgXercescDefaultLocale);
        xercesKept = true;
    }
}

void CFiSaxParser::releaseXerces()
{
    std::lock_guard<std::mutex> hold(xercesLock);
    if (xercesKept) {
        XMLPlatformUtils::Terminate();
        xercesKept = false;
    }
}

void CFiSaxParser::init()
{
    try {
        useXerces();
        m_reader = XMLReaderFactory::createXMLReader();
        m_reader->setFeature(XMLUni::fgSAX2CoreValidation, false);
        m_reader->setFeature(XMLUni::fgSAX2CoreNameSpaces, false);
        m_reader->setFeature(XMLUni::fgXercesSchema, false);
        m_reader->setFeature(XMLUni::fgXercesSchemaFullChecking, false);
        m_reader->setFeature(XMLUni::fgSAX2CoreNameSpacePrefixes, false);
        // Output of an outside tool: an entity must never make the parser fetch a file or URL.
        m_reader->setFeature(XMLUni::fgXercesDisableDefaultEntityResolution, true);
        // Nor may a declared entity expand without end (the "billion laughs").
        m_reader->setProperty(XMLUni::fgXercesSecurityManager, &m_security);
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
        // So that a handler can see a document type declaration and refuse it.
        m_reader->setLexicalHandler(handler);
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
        reportNoReader();
        return;
    }
    MemBufInputSource source(reinterpret_cast<const XMLByte *>(text.data()), text.size(), BUFFER_ID, false);
    run(source);
}

void CFiSaxParser::parse(const std::vector<std::string> &lines)
{
    if (m_reader == nullptr) {
        reportNoReader();
        return;
    }
    LinesInputSource<std::vector<std::string>> source(lines);
    run(source);
}

void CFiSaxParser::parse(const CFiOutputLines &lines)
{
    if (m_reader == nullptr) {
        reportNoReader();
        return;
    }
    LinesInputSource<CFiOutputLines> source(lines);
    run(source);
}

void CFiSaxParser::run(InputSource &source)
{
    try {
        m_reader->parse(source);
    } catch (const SAXParseException &e) {
        // Thrown by a handler to stop the parse: its place in the text stays with it.
        if (m_handler != nullptr) {
            m_handler->fatalError(e);
        }
    } catch (const SAXException &e) {
        reportToHandler(e.getMessage());
    } catch (const XMLException &e) {
        reportToHandler(e.getMessage());
    } catch (const OutOfMemoryException &) {
        static const XMLCh outOfMemory[] = u"Out of memory while parsing";
        reportToHandler(outOfMemory);
    }
}

void CFiSaxParser::reportNoReader()
{
    static const XMLCh noReader[] = u"The XML parser could not be initialised";
    reportToHandler(noReader);
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
