#ifndef CLI_OPTIONS_H
#define CLI_OPTIONS_H

#include <cstdio>
#include <string>
#include <vector>

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

// Reads a command's own options from CliOptions::args. Each accessor consumes what it
// recognises; finish() reports whatever is left as a usage error.
class CommandArgs {
public:
    CommandArgs(const std::string &command, const std::vector<std::string> &args);

    // --name VALUE or --name=VALUE, possibly repeated.
    std::vector<std::string> values(const std::string &name);
    // The last value of --name, or empty.
    std::string value(const std::string &name);
    bool flag(const std::string &name);
    // The remaining words that are not options.
    std::vector<std::string> positional();
    // True when everything was recognised; otherwise prints the first leftover.
    bool finish();
    // True when a value option had no value.
    bool malformed() const { return m_malformed; }

private:
    std::string m_command;
    std::vector<std::string> m_args;
    std::vector<bool> m_used;
    bool m_malformed = false;
};

#endif
