#ifndef CFISAXPARSER_H
#define CFISAXPARSER_H

#include <string>
#include <vector>

#include <xercesc/sax/InputSource.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/util/SecurityManager.hpp>

#include "cfiexport.h"
#include "cfioutputlines.h"

namespace qorin_pdk_4_4 {

// Runs Xerces' SAX2 reader over a text in memory. Errors go to the handler (as content and
// error handler) and never out of parse: the caller asks the handler afterwards. One object
// parses one document, on the stack of one thread.
class QORIN_PDK_API CFiSaxParser {
public:
    // handler isn't owned; a null schema parses without validation.
    CFiSaxParser(xercesc::DefaultHandler *handler, const char *schema);
    ~CFiSaxParser();

    void init();
    void setHandler(xercesc::DefaultHandler *handler);
    void setInputSchema(const char *path);

    // Xerces is initialised by the first parser or handler of the process and stays so until
    // releaseXerces, which the library calls as it unloads: initialising and ending it for
    // every document cost more than parsing a small one. Harmless when nothing initialised it.
    static void releaseXerces();
    // What the parsers and handlers call before they use Xerces; one lock orders them.
    static void useXerces();

    void parse(const std::string &text);
    // The lines as if joined with nothing between them (they are read in place, not copied).
    void parse(const std::vector<std::string> &lines);
    void parse(const CFiOutputLines &lines);

    CFiSaxParser(const CFiSaxParser &) = delete;
    CFiSaxParser &operator=(const CFiSaxParser &) = delete;

private:
    void run(xercesc::InputSource &source);
    void reportNoReader();
    // Hands a failure that Xerces threw instead of reporting to the handler's error slot.
    void reportToHandler(const XMLCh *message);

    xercesc::DefaultHandler *m_handler;
    xercesc::SAX2XMLReader *m_reader;
    // Limits entity expansion; the reader holds a pointer to it.
    xercesc::SecurityManager m_security;
};

}  // namespace qorin_pdk_4_4

#endif
