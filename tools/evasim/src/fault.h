// One armed fault: what goes wrong, where, and how many more times.
#ifndef EVASIM_FAULT_H
#define EVASIM_FAULT_H

#include <cstdint>
#include <string>

namespace evasim {

struct Fault {
    int64_t id = 0;
    // https, silence, ignore-signals, exit-after, no-output, malformed-xml, error, busy, change,
    // banner, delay
    std::string kind;
    int64_t remaining = 1;  // uses left
    std::string server;     // https: only logins to this server fail; empty for any
    double seconds = 0;     // silence, delay
    int64_t line = 0;       // silence: after this output line (0: before any); exit-after: line count
    std::string pattern;    // only commands (or script lines) that contain this text, ignoring case
    std::string text;       // error, busy: the message after "Error: "; banner: the version line;
                            // change: the change's words
    std::string cell;       // only while this cell is selected; empty for any
    int64_t status = 0;     // exit-after, no-output: exit status
    int64_t skip = 0;       // matching commands of each run that pass before the fault hits

    // Faults of these kinds act on the process and are taken when a run starts (with a pattern,
    // only by a run whose script has a line that matches); the others when they hit a command.
    bool perRun() const
    {
        return kind == "silence" || kind == "ignore-signals" || kind == "exit-after" || kind == "no-output" ||
               kind == "banner" || kind == "delay";
    }
    // A per-run fault that acts at a script line rather than on the whole run.
    bool atLine() const { return !pattern.empty() && (kind == "silence" || kind == "exit-after" || kind == "delay"); }
    // A line for listings and tables.
    std::string describe() const;
};

}  // namespace evasim

#endif
