// One armed fault: what goes wrong, and how many more times.
#ifndef EVASIM_FAULT_H
#define EVASIM_FAULT_H

#include <cstdint>
#include <string>

namespace evasim {

struct Fault {
    int64_t id = 0;
    std::string kind;  // https, silence, ignore-signals, exit-after, no-output, malformed-xml, error, banner, delay
    int64_t remaining = 1;  // uses left
    std::string server;     // https: only logins to this server fail; empty for any
    double seconds = 0;     // silence, delay
    int64_t line = 0;       // silence: after this output line (0: before any); exit-after: line count
    std::string pattern;    // error: commands that contain this text, ignoring case
    std::string text;       // error: message after "Error: "; banner: the version line
    std::string cell;       // error: only while this cell is selected; empty for any
    int64_t status = 0;     // exit-after, no-output: exit status

    // Faults of these kinds are taken when a run starts; the others when they hit.
    bool perRun() const
    {
        return kind == "silence" || kind == "ignore-signals" || kind == "exit-after" || kind == "no-output" ||
               kind == "banner" || kind == "delay";
    }
    // A line for listings and tables.
    std::string describe() const;
};

}  // namespace evasim

#endif
