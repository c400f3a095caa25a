#ifndef CLI_OPTIONS_H
#define CLI_OPTIONS_H

#include <cstdio>
#include <string>
#include <vector>

#include "cliutil_args.h"

// What the command line of tamlinctl says, before the command's own arguments are read.
struct CliOptions {
    std::string provider;
    std::string language;
    bool json = false;
    int verbosity = 0;
    std::vector<std::string> args;
    // Where results go. The provider's own output on standard output is sent to standard
    // error, so that results (JSON above all) stay clean.
    FILE *out = stdout;
};

// Ends the reading of a command's arguments: true when all were understood, otherwise prints
// the first problem with a pointer to the command's help.
bool finishArgs(cliutil::Args &args, const char *command);

#endif
