#include "fault.h"

#include <cstdio>

namespace evasim {

std::string Fault::describe() const
{
    char seconds_[32];
    std::snprintf(seconds_, sizeof seconds_, "%g", seconds);
    if (kind == "https") {
        return server.empty() ? "logins fail with \"Error opening https connection\""
                              : "logins to " + server + " fail with \"Error opening https connection\"";
    }
    if (kind == "silence") {
        return line ? std::string("silent for ") + seconds_ + " s after output line " + std::to_string(line)
                    : std::string("silent for ") + seconds_ + " s before any output";
    }
    if (kind == "ignore-signals") {
        return "ignores SIGINT and SIGTERM";
    }
    if (kind == "exit-after") {
        return "exits with status " + std::to_string(status) + " after " + std::to_string(line) + " lines";
    }
    if (kind == "no-output") {
        return "prints nothing, exits with status " + std::to_string(status);
    }
    if (kind == "malformed-xml") {
        return "next XML listing is malformed";
    }
    if (kind == "error") {
        return "commands containing \"" + pattern + "\"" + (cell.empty() ? "" : " in cell " + cell) +
               " fail with \"Error: " + text + "\"";
    }
    if (kind == "banner") {
        return "banner version line reads \"" + text + "\"";
    }
    if (kind == "delay") {
        return std::string("waits ") + seconds_ + " s before each command";
    }
    return kind;
}

}  // namespace evasim
