#ifndef CFIUDIDEXCEPTION_H
#define CFIUDIDEXCEPTION_H

#include <cstdint>
#include <string>

#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// A disk identity that can't be parsed: the whole text and why. Thrown by value.
class QORIN_PDK_API CFiUdidException {
public:
    enum Reason : int32_t {
        NOTHING_AFTER_PRODUCT = 1,  // nothing follows the second component's separator
        NO_HEAD = 2,                // "UDID##" doesn't occur
        NO_VENDOR_END = 3,          // no "##" behind the first component
        NO_PRODUCT_END = 4,         // no "##" behind the second component
        NOT_A_LUN_NAME = 5          // the disk part is no world wide LUN name (a provider's check)
    };

    CFiUdidException(const std::string &text, int32_t number) : m_text(text), m_number(number) {}

    const std::string &getText() const { return m_text; }
    int32_t getNumber() const { return m_number; }

private:
    std::string m_text;
    int32_t m_number;
};

}  // namespace qorin_pdk_4_4

#endif
