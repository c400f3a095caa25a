// A benchmark's options, read the way tamlinctl and evasim read theirs (cliutil::Args).
#ifndef BENCH_OPTIONS_H
#define BENCH_OPTIONS_H

#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <vector>

#include "cliutil_args.h"

namespace bench {

struct Integer {
    const char *name;  // "--disks"
    long long *value;  // keeps its default when the option isn't given
    long long min, max;
};

struct Flag {
    const char *name;
    bool *given;
};

// --help prints usage and ends the program with 0; a word nobody asked for or a number out of
// range ends it with 2 and the reason.
inline void readOptions(int argc, char **argv, const char *program, const std::string &usage,
                        std::initializer_list<Integer> integers, std::initializer_list<Flag> flags = {})
{
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (cliutil::wantsHelp(words)) {
        std::fputs(usage.c_str(), stdout);
        std::exit(0);
    }
    cliutil::Args args(words);
    for (const Integer &option : integers) {
        args.integer(option.name, *option.value, option.min, option.max);
    }
    for (const Flag &flag : flags) {
        *flag.given = args.flag(flag.name);
    }
    if (!args.finish()) {
        std::fprintf(stderr, "%s: %s; try --help\n", program, args.error().c_str());
        std::exit(2);
    }
}

}  // namespace bench

#endif
