// SSSU's text form of an object: "<name> information:", then "label : value" lines, indented.
#ifndef EVASIM_TEXT_OBJECT_WRITER_H
#define EVASIM_TEXT_OBJECT_WRITER_H

#include "object_writer.h"

namespace evasim {

class Output;

class TextObjectWriter : public ObjectWriter {
public:
    explicit TextObjectWriter(Output &out);

    void begin(const std::string &objectname) override;
    void open(const char *tag, const char *label) override;
    void leaf(const char *tag, const std::string &value, const char *label) override;
    void close(const char *tag) override;
    void end() override;

private:
    Output &m_out;
    int m_depth = 0;
};

}  // namespace evasim

#endif
