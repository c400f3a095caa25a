#include "cfistringtool.h"

#include <cstdint>

namespace qorin_pdk_4_4 {

std::wstring CFiStringTool::str2wstr(const std::string &text)
{
    std::wstring out;
    out.reserve(text.size());
    const size_t n = text.size();
    size_t i = 0;
    while (i < n) {
        auto c = static_cast<unsigned char>(text[i]);
        size_t extra;
        uint32_t cp;
        if (c < 0x80) {
            extra = 0, cp = c;
        } else if ((c >> 5) == 0x6) {
            extra = 1, cp = c & 0x1F;
        } else if ((c >> 4) == 0xE) {
            extra = 2, cp = c & 0x0F;
        } else if ((c >> 3) == 0x1E) {
            extra = 3, cp = c & 0x07;
        } else {
            out.push_back(0xFFFD);
            ++i;
            continue;
        }
        bool ok = i + extra < n;
        for (size_t k = 1; ok && k <= extra; ++k) {
            auto cc = static_cast<unsigned char>(text[i + k]);
            ok = (cc & 0xC0) == 0x80;
            cp = (cp << 6) | (cc & 0x3F);
        }
        if (!ok || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
            out.push_back(0xFFFD);
            ++i;
            continue;
        }
        out.push_back(static_cast<wchar_t>(cp));
        i += extra + 1;
    }
    return out;
}

std::string CFiStringTool::wstr2str(const std::wstring &text)
{
    std::string out;
    out.reserve(text.size());
    for (wchar_t wc : text) {
        auto cp = static_cast<uint32_t>(wc);
        if (cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
            cp = 0xFFFD;
        }
        if (cp < 0x80) {
            out.push_back(static_cast<char>(cp));
        } else if (cp < 0x800) {
            out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else if (cp < 0x10000) {
            out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else {
            out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        }
    }
    return out;
}

}  // namespace qorin_pdk_4_4
