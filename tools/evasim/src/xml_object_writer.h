// SSSU's XML form: a series of <object> blocks, no declaration, no root, one element a line,
// children indented by two blanks.
#ifndef EVASIM_XML_OBJECT_WRITER_H
#define EVASIM_XML_OBJECT_WRITER_H

#include "object_writer.h"

namespace evasim {

class Output;

class XmlObjectWriter : public ObjectWriter {
public:
    // 'infoLines': print the real tool's "<name> information:" line before each object.
    // 'malformed': break the first object, as a damaged listing would be.
    XmlObjectWriter(Output &out, bool infoLines, bool malformed);

    void begin(const std::string &objectname) override;
    void open(const char *tag, const char *label) override;
    void leaf(const char *tag, const std::string &value, const char *label) override;
    void close(const char *tag) override;
    void end() override;

    static std::string escape(const std::string &text);

private:
    std::string indent() const;

    Output &m_out;
    bool m_infoLines;
    bool m_malformed;
    int m_depth = 0;
    std::string m_line;
};

}  // namespace evasim

#endif
