#ifndef TAMLINCTL_TEXT_H
#define TAMLINCTL_TEXT_H

#include <string>

// UTF-8 <-> UTF-32 for what the host prints and passes; malformed input becomes U+FFFD.
std::string toUtf8(const std::wstring &text);
std::wstring fromUtf8(const std::string &text);

// A provider message as one printed line: without its trailing line ends, and without the
// catalog's own "tamlin: " lead, since the line printed before it already names the provider.
std::string messageLine(const std::wstring &text);

#endif
