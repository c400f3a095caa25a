#include "cli_options.h"

#include <cstdio>

CommandArgs::CommandArgs(const std::string &command, const std::vector<std::string> &args) :
    m_command(command),
    m_args(args),
    m_used(args.size(), false)
{
}

std::vector<std::string> CommandArgs::values(const std::string &name)
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
                fprintf(stderr, "tamlinctl %s: %s needs a value\n", m_command.c_str(), name.c_str());
                m_malformed = true;
                break;
            }
            m_used[i + 1] = true;
            found.push_back(m_args[++i]);
        } else if (m_args[i].rfind(prefix, 0) == 0) {
            m_used[i] = true;
            found.push_back(m_args[i].substr(prefix.size()));
        }
    }
    return found;
}

std::string CommandArgs::value(const std::string &name)
{
    std::vector<std::string> all = values(name);
    return all.empty() ? std::string() : all.back();
}

bool CommandArgs::flag(const std::string &name)
{
    bool seen = false;
    for (size_t i = 0; i < m_args.size(); ++i) {
        if (!m_used[i] && m_args[i] == name) {
            m_used[i] = true;
            seen = true;
        }
    }
    return seen;
}

std::vector<std::string> CommandArgs::positional()
{
    std::vector<std::string> words;
    for (size_t i = 0; i < m_args.size(); ++i) {
        if (!m_used[i] && (m_args[i].empty() || m_args[i][0] != '-' || m_args[i] == "-" ||
                           (m_args[i].size() > 1 && isdigit(static_cast<unsigned char>(m_args[i][1]))))) {
            m_used[i] = true;
            words.push_back(m_args[i]);
        }
    }
    return words;
}

bool CommandArgs::finish()
{
    if (m_malformed) {
        return false;
    }
    for (size_t i = 0; i < m_args.size(); ++i) {
        if (!m_used[i]) {
            fprintf(stderr, "tamlinctl %s: unexpected argument '%s' (try tamlinctl %s --help)\n", m_command.c_str(),
                    m_args[i].c_str(), m_command.c_str());
            return false;
        }
    }
    return true;
}
