#ifndef TAMLINCTL_TEXT_H
#define TAMLINCTL_TEXT_H

#include <string>

// UTF-8 <-> UTF-32 for what the host prints and passes; malformed input becomes U+FFFD.
std::string toUtf8(const std::wstring &text);
std::wstring fromUtf8(const std::string &text);

#endif
