// tamlinctl as an administrator runs it: the program the test was built with (its ENV gives
// TAMLINCTL), its exit status and what it printed.
#ifndef TAMLINCTL_RUN_H
#define TAMLINCTL_RUN_H

#include <string>

#include "scratch_files.h"
#include "test_paths.h"

namespace tamlin_test {

inline std::string tamlinctlProgram()
{
    return envOr("TAMLINCTL", TAMLINCTL_DEFAULT);
}

// args: a shell word list. Standard error joins the output and standard input is no terminal,
// unless args redirect them.
inline CommandRun tamlinctl(const std::string &args)
{
    return runCommand(tamlinctlProgram() + " 2>&1 </dev/null " + args);
}

// Whether the output holds text, runs of blanks counting as one (a table's widths don't matter).
inline bool holds(const CommandRun &run, const std::string &text)
{
    auto collapsed = [](const std::string &in) {
        std::string out;
        for (const char c : in) {
            if (c != ' ' || out.empty() || out.back() != ' ') {
                out += c;
            }
        }
        return out;
    };
    return collapsed(run.output).find(collapsed(text)) != std::string::npos;
}

}  // namespace tamlin_test

#endif
