// SSSU's text form of an object: "<name> information:", then "label : value" lines, indented.
#pragma once

#include "object_writer.h"

namespace evasim {

class Output;

class TextObjectWriter : public ObjectWriter {
public:
    explicit TextObjectWriter(Output &out);

    void begin(std::string const &objectname) override;
    void open(char const *tag, char const *label) override;
    void leaf(char const *tag, std::string const &value, char const *label) override;
    void close(char const *tag) override;
    void end() override;

private:
    Output &m_out;
    int m_depth = 0;
};

} // namespace evasim
