// SSSU's XML form: a series of <object> blocks, no declaration, no root, one element a line,
// children indented by two blanks.
#pragma once

#include "object_writer.h"

namespace evasim {

class Output;

class XmlObjectWriter : public ObjectWriter {
public:
    // 'infoLines': print the real tool's "<name> information:" line before each object.
    // 'malformed': break the first object, as a damaged listing would be.
    XmlObjectWriter(Output &out, bool infoLines, bool malformed);

    void begin(std::string const &objectname) override;
    void open(char const *tag, char const *label) override;
    void leaf(char const *tag, std::string const &value, char const *label) override;
    void close(char const *tag) override;
    void end() override;

    static std::string escape(std::string const &text);

private:
    std::string indent() const;

    Output &m_out;
    bool m_infoLines;
    bool m_malformed;
    int m_depth = 0;
    std::string m_line;
};

} // namespace evasim
