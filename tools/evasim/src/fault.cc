#include "fault.h"

#include "world_change.h"

#include <cstdio>

namespace evasim {

std::string Fault::describe() const
{
    char seconds_[32];
    std::snprintf(seconds_, sizeof seconds_, "%g", seconds);
    std::string where;
    if (!pattern.empty()) {
        where = (kind == "banner" || kind == "no-output" || kind == "ignore-signals" ? " in runs with \"" : " at \"") +
                pattern + "\"" + (skip ? " after " + std::to_string(skip) + " passed in the run" : "");
    }
    if (!cell.empty()) {
        where += " in cell " + cell;
    }
    std::string what;
    if (kind == "https") {
        what = server.empty() ? "logins fail with \"Error opening https connection\""
                              : "logins to " + server + " fail with \"Error opening https connection\"";
    } else if (kind == "silence") {
        what = !pattern.empty() ? std::string("silent for ") + seconds_ + " s after the echo"
               : line           ? std::string("silent for ") + seconds_ + " s after output line " + std::to_string(line)
                                : std::string("silent for ") + seconds_ + " s before any output";
    } else if (kind == "ignore-signals") {
        what = "ignores SIGINT and SIGTERM";
    } else if (kind == "exit-after") {
        what = "exits with status " + std::to_string(status) +
               (pattern.empty() ? " after " + std::to_string(line) + " lines" : " before the command runs");
    } else if (kind == "no-output") {
        what = "prints nothing, exits with status " + std::to_string(status);
    } else if (kind == "malformed-xml") {
        what = "next XML listing is malformed";
    } else if (kind == "error" || kind == "busy") {
        what = std::string(kind == "busy" ? "answers busy" : "fails") + ": \"Error: " + text + "\"";
    } else if (kind == "change") {
        WorldChange change;
        change.fromText(text);
        what = "changes " + change.describe() + " before the command runs";
    } else if (kind == "banner") {
        what = "banner version line reads \"" + text + "\"";
    } else if (kind == "delay") {
        what = std::string("waits ") + seconds_ + " s before " + (pattern.empty() ? "each command" : "the command");
    } else {
        what = kind;
    }
    return what + where;
}

}  // namespace evasim
