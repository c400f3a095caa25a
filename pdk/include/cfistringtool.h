#ifndef CFISTRINGTOOL_H
#define CFISTRINGTOOL_H

#include <string>

#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// Conversions between the kinds of text the library uses. Narrow text is UTF-8 on this
// system; wide text is UTF-32.
class QORIN_PDK_API CFiStringTool {
public:
    static std::wstring str2wstr(const std::string &text);
    static std::string wstr2str(const std::wstring &text);
};

}  // namespace qorin_pdk_4_4

#endif
