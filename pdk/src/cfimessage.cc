#include "cfimessage.h"

namespace qorin_pdk_4_4 {

CFiMessage::CFiMessage(const char *key, qrn_eseverity severity, const char *file, int line) :
    m_key(key != nullptr ? key : ""),
    m_severity(severity),
    m_file(file != nullptr ? file : ""),
    m_line(line)
{
}

CFiMessage::~CFiMessage() = default;

qrn_eseverity CFiMessage::getSeverity() const
{
    return m_severity;
}

int CFiMessage::getLine() const
{
    return m_line;
}

std::string CFiMessage::getFile() const
{
    return m_file;
}

std::string CFiMessage::getMessageKey() const
{
    return m_key;
}

}  // namespace qorin_pdk_4_4
