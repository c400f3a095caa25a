#include "text_object_writer.h"

#include "output.h"

namespace evasim {

TextObjectWriter::TextObjectWriter(Output &out) : m_out(out) {}

void TextObjectWriter::begin(const std::string &objectname)
{
    m_out.line(objectname + " information:");
    m_depth = 1;
}

void TextObjectWriter::open(const char *tag, const char *label)
{
    m_out.line(std::string(static_cast<size_t>(m_depth) * 2, ' ') + (label ? label : tag) + ":");
    ++m_depth;
}

void TextObjectWriter::leaf(const char *tag, const std::string &value, const char *label)
{
    m_out.line(std::string(static_cast<size_t>(m_depth) * 2, ' ') + (label ? label : tag) + " : " + value);
}

void TextObjectWriter::close(const char *)
{
    --m_depth;
}

void TextObjectWriter::end()
{
    m_out.line("");
    m_depth = 0;
}

}  // namespace evasim
