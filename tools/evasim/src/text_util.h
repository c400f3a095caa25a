// Small text helpers shared by the script interpreter, the scenario reader and the tables.
#ifndef EVASIM_TEXT_UTIL_H
#define EVASIM_TEXT_UTIL_H

#include <cstdint>
#include <string>
#include <vector>

namespace evasim {

std::string lower(std::string text);
std::string upper(std::string text);
bool iequals(const std::string &a, const std::string &b);
bool istartsWith(const std::string &text, const std::string &head);
bool icontains(const std::string &text, const std::string &part);
std::string trim(const std::string &text);
std::vector<std::string> split(const std::string &text, char separator);
std::string join(const std::vector<std::string> &parts, const std::string &separator);

// Whole decimal number, optionally signed; false for anything else.
bool parseInt(const std::string &text, long long &value);
// "yes/no", "on/off", "true/false", "1/0".
bool parseBool(const std::string &text, bool &value);
// A size such as "100GB", "512 MB", "2TB", "1.5GB" or "4096 blocks", in bytes; a multiple of 512.
bool parseSize(const std::string &text, uint64_t &bytes);
// Gigabytes of 1073741824 bytes, as SSSU prints space: "1.50", "4096.00".
std::string gigabytes(uint64_t bytes);
// A capacity the way a person reads it: "100 GB", "1.5 TB", "512 MB".
std::string humanSize(uint64_t bytes);

// A world wide name of 'groups' groups of four hexadecimal digits: takes the digits with or
// without hyphens and gives them hyphenated; false if the digit count is wrong.
bool normaliseWwn(const std::string &text, size_t groups, std::string &out, bool upperCase);

}  // namespace evasim

#endif
