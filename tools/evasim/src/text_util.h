// Small text helpers shared by the script interpreter, the scenario reader and the tables.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace evasim {

std::string lower(std::string text);
std::string upper(std::string text);
bool iequals(std::string const &a, std::string const &b);
bool istartsWith(std::string const &text, std::string const &head);
bool icontains(std::string const &text, std::string const &part);
std::string trim(std::string const &text);
std::vector<std::string> split(std::string const &text, char separator);
std::string join(std::vector<std::string> const &parts, std::string const &separator);

// Whole decimal number, optionally signed; false for anything else.
bool parseInt(std::string const &text, long long &value);
// "yes/no", "on/off", "true/false", "1/0".
bool parseBool(std::string const &text, bool &value);
// A size such as "100GB", "512 MB", "2TB", "1.5GB" or "4096 blocks", in bytes; a multiple of 512.
bool parseSize(std::string const &text, uint64_t &bytes);
// Gigabytes of 1073741824 bytes, as SSSU prints space: "1.50", "4096.00".
std::string gigabytes(uint64_t bytes);
// A capacity the way a person reads it: "100 GB", "1.5 TB", "512 MB".
std::string humanSize(uint64_t bytes);

// A world wide name of 'groups' groups of four hexadecimal digits: takes the digits with or
// without hyphens and gives them hyphenated; false if the digit count is wrong.
bool normaliseWwn(std::string const &text, size_t groups, std::string &out, bool upperCase);

} // namespace evasim
