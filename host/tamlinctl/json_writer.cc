#include "json_writer.h"

#include <cstdio>

#include "text.h"

void JsonWriter::separate()
{
    if (m_afterKey) {
        m_afterKey = false;
        return;
    }
    if (!m_hasElement.empty()) {
        if (m_hasElement.back()) {
            m_out += ",";
        }
        m_hasElement.back() = true;
    }
}

JsonWriter &JsonWriter::beginObject()
{
    separate();
    m_out += "{";
    m_hasElement.push_back(false);
    return *this;
}

JsonWriter &JsonWriter::endObject()
{
    m_hasElement.pop_back();
    m_out += "}";
    return *this;
}

JsonWriter &JsonWriter::beginArray()
{
    separate();
    m_out += "[";
    m_hasElement.push_back(false);
    return *this;
}

JsonWriter &JsonWriter::endArray()
{
    m_hasElement.pop_back();
    m_out += "]";
    return *this;
}

JsonWriter &JsonWriter::key(const std::string &name)
{
    separate();
    m_out += "\"" + escape(name) + "\":";
    m_afterKey = true;
    return *this;
}

JsonWriter &JsonWriter::value(const std::string &text)
{
    separate();
    m_out += "\"" + escape(text) + "\"";
    return *this;
}

JsonWriter &JsonWriter::value(const std::wstring &text)
{
    return value(toUtf8(text));
}

JsonWriter &JsonWriter::value(int64_t number)
{
    separate();
    m_out += std::to_string(number);
    return *this;
}

JsonWriter &JsonWriter::value(uint64_t number)
{
    separate();
    m_out += std::to_string(number);
    return *this;
}

JsonWriter &JsonWriter::value(bool flag)
{
    separate();
    m_out += flag ? "true" : "false";
    return *this;
}

JsonWriter &JsonWriter::null()
{
    separate();
    m_out += "null";
    return *this;
}

std::string JsonWriter::escape(const std::string &text)
{
    std::string out;
    out.reserve(text.size());
    for (unsigned char c : text) {
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            if (c < 0x20) {
                char buffer[8];
                snprintf(buffer, sizeof buffer, "\\u%04x", c);
                out += buffer;
            } else {
                out.push_back(static_cast<char>(c));
            }
        }
    }
    return out;
}
