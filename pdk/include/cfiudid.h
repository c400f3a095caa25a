#ifndef CFIUDID_H
#define CFIUDID_H

#include <string>

#include <ace/SString.h>

#include "cfiexport.h"
#include "cfiudidexception.h"

namespace qorin_pdk_4_4 {

// The text identity of a disk: "UDID##" vendor "##" product "##" enclosure "##" disk.
// Parsing keeps the case it finds; building upper-cases. Parsing a text that doesn't have
// the form throws CFiUdidException.
class QORIN_PDK_API CFiUdid {
public:
    CFiUdid() = default;
    explicit CFiUdid(const std::string &text);
    explicit CFiUdid(const std::wstring &text);
    // A null text parses as the empty text.
    explicit CFiUdid(const wchar_t *text);

    // Clears every component, then fills them from text.
    void parse(const std::string &text);
    void parse(const std::wstring &text);

    const std::string &getVendor() const { return m_vendor; }
    const std::string &getProduct() const { return m_product; }
    const std::string &getEnclosure() const { return m_enclosure; }
    const std::string &getDisk() const { return m_disk; }
    void setEnclosure(const std::string &enclosure) { m_enclosure = enclosure; }
    void setDisk(const std::string &disk) { m_disk = disk; }

    // "UDID##<VENDOR>##<PRODUCT>##"
    std::string getPrefix() const;
    // The prefix, enclosure, "##" and disk, upper case. An empty enclosure still gets its
    // separator.
    std::string toString() const;
    ACE_WString toTString() const;

private:
    std::string m_vendor;
    std::string m_product;
    std::string m_enclosure;
    std::string m_disk;
};

}  // namespace qorin_pdk_4_4

#endif
