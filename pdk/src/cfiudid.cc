#include "cfiudid.h"

#include "cfistringtool.h"

namespace qorin_pdk_4_4 {

namespace {

const char kHead[] = "UDID##";
const char kSeparator[] = "##";
const size_t kSeparatorLength = 2;

}  // namespace

CFiUdid::CFiUdid(const std::string &text)
{
    parse(text);
}

CFiUdid::CFiUdid(const std::wstring &text)
{
    parse(text);
}

CFiUdid::CFiUdid(const wchar_t *text)
{
    parse(text != nullptr ? std::wstring(text) : std::wstring());
}

void CFiUdid::parse(const std::wstring &text)
{
    parse(CFiStringTool::wstr2str(text));
}

void CFiUdid::parse(const std::string &text)
{
    m_vendor.clear();
    m_product.clear();
    m_enclosure.clear();
    m_disk.clear();

    // Whatever stands ahead of the head is ignored: hosts put their own marks in front.
    size_t head = text.find(kHead);
    if (head == std::string::npos) {
        throw CFiUdidException(text, CFiUdidException::NO_HEAD);
    }
    std::string rest = text.substr(head + sizeof kHead - 1);

    size_t end = rest.find(kSeparator);
    if (end == std::string::npos) {
        throw CFiUdidException(text, CFiUdidException::NO_VENDOR_END);
    }
    m_vendor = rest.substr(0, end);
    rest.erase(0, end + kSeparatorLength);

    end = rest.find(kSeparator);
    if (end == std::string::npos) {
        throw CFiUdidException(text, CFiUdidException::NO_PRODUCT_END);
    }
    m_product = rest.substr(0, end);
    rest.erase(0, end + kSeparatorLength);

    if (rest.empty()) {
        throw CFiUdidException(text, CFiUdidException::NOTHING_AFTER_PRODUCT);
    }
    // The enclosure ends at the first separator; the disk keeps any further ones.
    end = rest.find(kSeparator);
    if (end == std::string::npos) {
        m_disk = rest;
    } else {
        m_enclosure = rest.substr(0, end);
        m_disk = rest.substr(end + kSeparatorLength);
    }
}

std::string CFiUdid::getPrefix() const
{
    return CFiStringTool::tostrupper(kHead + m_vendor + kSeparator + m_product + kSeparator);
}

std::string CFiUdid::toString() const
{
    return CFiStringTool::tostrupper(getPrefix() + m_enclosure + kSeparator + m_disk);
}

ACE_WString CFiUdid::toTString() const
{
    return CFiStringTool::str2tstr(toString());
}

}  // namespace qorin_pdk_4_4
