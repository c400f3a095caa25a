#include "cliutil_args.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace cliutil {

bool wantsHelp(const std::vector<std::string> &args)
{
    for (const std::string &a : args) {
        if (a == "-h" || a == "--help") {
            return true;
        }
    }
    return false;
}

Args::Args(std::vector<std::string> args) : m_args(std::move(args)), m_used(m_args.size(), false) {}

bool Args::fail(std::string message)
{
    if (m_error.empty()) {
        m_error = std::move(message);
    }
    return false;
}

std::vector<std::string> Args::values(const std::string &name)
{
    std::vector<std::string> found;
    const std::string prefix = name + "=";
    for (size_t i = 0; i < m_args.size(); ++i) {
        if (m_used[i]) {
            continue;
        }
        if (m_args[i] == name) {
            m_used[i] = true;
            if (i + 1 >= m_args.size()) {
                fail(name + " needs a value");
                break;
            }
            m_used[i + 1] = true;
            found.push_back(m_args[++i]);
        } else if (m_args[i].compare(0, prefix.size(), prefix) == 0) {
            m_used[i] = true;
            found.push_back(m_args[i].substr(prefix.size()));
        }
    }
    return found;
}

std::optional<std::string> Args::value(const std::string &name)
{
    std::vector<std::string> all = values(name);
    if (all.empty()) {
        return std::nullopt;
    }
    return all.back();
}

bool Args::integer(const std::string &name, long long &out, long long min, long long max)
{
    const std::optional<std::string> text = value(name);
    if (!text) {
        return ok();
    }
    char *end = nullptr;
    errno = 0;
    const long long v = std::strtoll(text->c_str(), &end, 10);
    if (text->empty() || *end || errno == ERANGE || v < min || v > max) {
        return fail(name + " needs a whole number from " + std::to_string(min) + " to " + std::to_string(max) +
                    ", not '" + *text + "'");
    }
    out = v;
    return true;
}

bool Args::number(const std::string &name, double &out, double min, double max)
{
    const std::optional<std::string> text = value(name);
    if (!text) {
        return ok();
    }
    char *end = nullptr;
    const double v = std::strtod(text->c_str(), &end);
    if (text->empty() || *end || !(v >= min && v <= max)) {
        char range[64];
        std::snprintf(range, sizeof range, "%g to %g", min, max);
        return fail(name + " needs a number from " + range + ", not '" + *text + "'");
    }
    out = v;
    return true;
}

int Args::count(const std::string &name)
{
    int seen = 0;
    for (size_t i = 0; i < m_args.size(); ++i) {
        if (!m_used[i] && m_args[i] == name) {
            m_used[i] = true;
            ++seen;
        }
    }
    return seen;
}

std::optional<std::string> Args::leading()
{
    if (m_args.empty() || m_used[0] || (!m_args[0].empty() && m_args[0][0] == '-')) {
        return std::nullopt;
    }
    m_used[0] = true;
    return m_args[0];
}

std::vector<std::string> Args::positional()
{
    std::vector<std::string> words;
    for (size_t i = 0; i < m_args.size(); ++i) {
        const std::string &a = m_args[i];
        const bool word = a.empty() || a[0] != '-' || a == "-" || std::isdigit(static_cast<unsigned char>(a[1]));
        if (!m_used[i] && word) {
            m_used[i] = true;
            words.push_back(a);
        }
    }
    return words;
}

bool Args::finish()
{
    for (size_t i = 0; i < m_args.size() && ok(); ++i) {
        if (m_used[i]) {
            continue;
        }
        const std::string &a = m_args[i];
        if (a.size() > 1 && a[0] == '-' && !std::isdigit(static_cast<unsigned char>(a[1]))) {
            fail("unknown option " + a.substr(0, a.find('=')));
        } else {
            fail("unexpected argument '" + a + "'");
        }
    }
    return ok();
}

}  // namespace cliutil
