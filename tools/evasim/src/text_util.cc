#include "text_util.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace evasim {

std::string lower(std::string text)
{
    for (char &c : text) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return text;
}

std::string upper(std::string text)
{
    for (char &c : text) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return text;
}

bool iequals(const std::string &a, const std::string &b)
{
    if (a.size() != b.size()) {
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i]))) {
            return false;
        }
    }
    return true;
}

bool istartsWith(const std::string &text, const std::string &head)
{
    return text.size() >= head.size() && iequals(text.substr(0, head.size()), head);
}

bool icontains(const std::string &text, const std::string &part)
{
    return lower(text).find(lower(part)) != std::string::npos;
}

std::string trim(const std::string &text)
{
    const size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) {
        return {};
    }
    const size_t last = text.find_last_not_of(" \t\r\n");
    return text.substr(first, last - first + 1);
}

std::vector<std::string> split(const std::string &text, char separator)
{
    std::vector<std::string> parts;
    std::string current;
    for (char c : text) {
        if (c == separator) {
            parts.push_back(current);
            current.clear();
        } else {
            current += c;
        }
    }
    parts.push_back(current);
    return parts;
}

std::string join(const std::vector<std::string> &parts, const std::string &separator)
{
    std::string out;
    for (size_t i = 0; i < parts.size(); ++i) {
        if (i) {
            out += separator;
        }
        out += parts[i];
    }
    return out;
}

bool parseInt(const std::string &text, long long &value)
{
    const std::string t = trim(text);
    if (t.empty()) {
        return false;
    }
    size_t i = (t[0] == '-' || t[0] == '+') ? 1 : 0;
    if (i == t.size()) {
        return false;
    }
    for (size_t j = i; j < t.size(); ++j) {
        if (!std::isdigit(static_cast<unsigned char>(t[j]))) {
            return false;
        }
    }
    if (t.size() - i > 18) {
        return false;
    }
    value = std::strtoll(t.c_str(), nullptr, 10);
    return true;
}

bool parseBool(const std::string &text, bool &value)
{
    const std::string t = lower(trim(text));
    if (t == "yes" || t == "on" || t == "true" || t == "1") {
        value = true;
        return true;
    }
    if (t == "no" || t == "off" || t == "false" || t == "0") {
        value = false;
        return true;
    }
    return false;
}

bool parseSize(const std::string &text, uint64_t &bytes)
{
    std::string t = lower(trim(text));
    size_t unitAt = 0;
    while (unitAt < t.size() && (std::isdigit(static_cast<unsigned char>(t[unitAt])) || t[unitAt] == '.')) {
        ++unitAt;
    }
    const std::string number = t.substr(0, unitAt);
    const std::string unit = trim(t.substr(unitAt));
    if (number.empty() || number.find('.') != number.rfind('.') || number == ".") {
        return false;
    }
    const double amount = std::strtod(number.c_str(), nullptr);
    double scale = 0;
    if (unit == "b" || unit == "bytes") {
        scale = 1;
    } else if (unit == "blocks") {
        scale = 512;
    } else if (unit == "kb") {
        scale = 1024.0;
    } else if (unit == "mb") {
        scale = 1024.0 * 1024;
    } else if (unit == "gb" || unit.empty()) {
        scale = 1024.0 * 1024 * 1024;
    } else if (unit == "tb") {
        scale = 1024.0 * 1024 * 1024 * 1024;
    } else {
        return false;
    }
    const double value = amount * scale;
    if (value <= 0 || value > 9.0e18) {
        return false;
    }
    const double whole = std::floor(value);
    if (whole != value) {
        return false;
    }
    bytes = static_cast<uint64_t>(whole);
    return bytes % 512 == 0;
}

std::string gigabytes(uint64_t bytes)
{
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.2f", static_cast<double>(bytes) / 1073741824.0);
    return buf;
}

std::string humanSize(uint64_t bytes)
{
    static const char *const units[] = {"B", "KB", "MB", "GB", "TB", "PB"};
    double value = static_cast<double>(bytes);
    size_t unit = 0;
    while (value >= 1024 && unit + 1 < sizeof units / sizeof units[0]) {
        value /= 1024;
        ++unit;
    }
    char buf[64];
    if (value == std::floor(value)) {
        std::snprintf(buf, sizeof buf, "%.0f %s", value, units[unit]);
    } else {
        std::snprintf(buf, sizeof buf, "%.2f %s", value, units[unit]);
    }
    return buf;
}

bool normaliseWwn(const std::string &text, size_t groups, std::string &out, bool upperCase)
{
    std::string digits;
    for (char c : trim(text)) {
        if (c == '-') {
            continue;
        }
        if (!std::isxdigit(static_cast<unsigned char>(c))) {
            return false;
        }
        digits += c;
    }
    if (digits.size() != groups * 4) {
        return false;
    }
    out.clear();
    for (size_t g = 0; g < groups; ++g) {
        if (g) {
            out += '-';
        }
        out += digits.substr(g * 4, 4);
    }
    out = upperCase ? upper(out) : lower(out);
    return true;
}

}  // namespace evasim
