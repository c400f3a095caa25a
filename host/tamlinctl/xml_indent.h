#ifndef TAMLINCTL_XML_INDENT_H
#define TAMLINCTL_XML_INDENT_H

#include <string>

// A document as the provider writes it, for people: each element on a line of its own,
// indented by two blanks per level; the declaration first. Text inside an element is kept
// exactly as it stands, line breaks included; only the blank space between tags changes.
std::string indentXml(const std::string &xml);

#endif
