#include "text_object_writer.h"

#include "output.h"

namespace evasim {

TextObjectWriter::TextObjectWriter(Output &out) : m_out(out) {}

void TextObjectWriter::begin(std::string const &objectname)
{
    m_out.line(objectname + " information:");
    m_depth = 1;
}

void TextObjectWriter::open(char const *tag, char const *label)
{
    m_out.line(std::string(static_cast<size_t>(m_depth) * 2, ' ') + (label ? label : tag) + ":");
    ++m_depth;
}

void TextObjectWriter::leaf(char const *tag, std::string const &value, char const *label)
{
    m_out.line(std::string(static_cast<size_t>(m_depth) * 2, ' ') + (label ? label : tag) + " : " + value);
}

void TextObjectWriter::close(char const *)
{
    --m_depth;
}

void TextObjectWriter::end()
{
    m_out.line("");
    m_depth = 0;
}

} // namespace evasim
