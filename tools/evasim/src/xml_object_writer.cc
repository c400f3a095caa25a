#include "xml_object_writer.h"

#include "output.h"

#include <cstring>

namespace evasim {

XmlObjectWriter::XmlObjectWriter(Output &out, bool infoLines, bool malformed) :
    m_out(out),
    m_infoLines(infoLines),
    m_malformed(malformed)
{
}

std::string XmlObjectWriter::escape(const std::string &text)
{
    if (text.find_first_of("&<>") == std::string::npos) {
        return text;
    }
    std::string out;
    for (char c : text) {
        if (c == '&') {
            out += "&amp;";
        } else if (c == '<') {
            out += "&lt;";
        } else if (c == '>') {
            out += "&gt;";
        } else {
            out += c;
        }
    }
    return out;
}

std::string XmlObjectWriter::indent() const
{
    return std::string(static_cast<size_t>(m_depth) * 2, ' ');
}

void XmlObjectWriter::begin(const std::string &objectname)
{
    if (m_infoLines) {
        m_out.line(objectname + " information:");
    }
    m_out.line("<object>");
    m_depth = 1;
}

void XmlObjectWriter::open(const char *tag, const char *)
{
    m_out.line(indent() + "<" + tag + ">");
    ++m_depth;
}

void XmlObjectWriter::leaf(const char *tag, const std::string &value, const char *)
{
    m_line.assign(static_cast<size_t>(m_depth) * 2, ' ');
    m_line += '<';
    m_line += tag;
    m_line += '>';
    m_line += escape(value);
    m_line += "</";
    if (m_malformed && std::strcmp(tag, "objectname") == 0) {
        // An end tag that matches nothing: no parser takes this document.
        m_line += "objectnam";
        m_malformed = false;
    } else {
        m_line += tag;
    }
    m_line += '>';
    m_out.line(m_line);
}

void XmlObjectWriter::close(const char *tag)
{
    --m_depth;
    m_out.line(indent() + "</" + tag + ">");
}

void XmlObjectWriter::end()
{
    m_out.line("</object>");
    m_depth = 0;
}

}  // namespace evasim
