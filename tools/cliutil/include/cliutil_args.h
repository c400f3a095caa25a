#ifndef CLIUTIL_ARGS_H
#define CLIUTIL_ARGS_H

#include <optional>
#include <string>
#include <vector>

namespace cliutil {

// True when the words hold -h or --help.
bool wantsHelp(const std::vector<std::string> &args);

// A command's own arguments, read by asking for what the command knows. Each accessor takes what
// it recognises; finish() then names the first word nobody asked for. Options are "--name VALUE"
// or "--name=VALUE". The first problem is kept in error(), for the program to print its own way.
class Args {
public:
    explicit Args(std::vector<std::string> args);

    // Every value of --name, in order.
    std::vector<std::string> values(const std::string &name);
    // The last value of --name; nothing when it isn't given.
    std::optional<std::string> value(const std::string &name);
    // The last value of --name as a whole number from min to max. False (with error set) when it
    // isn't one; 'out' is left alone when the option isn't given.
    bool integer(const std::string &name, long long &out, long long min, long long max);
    // The same for a decimal number.
    bool number(const std::string &name, double &out, double min, double max);
    // How often the flag stands in the words.
    int count(const std::string &name);
    bool flag(const std::string &name) { return count(name) > 0; }
    // The first word, when it is no option: the subcommand of "prog COMMAND [options]".
    std::optional<std::string> leading();
    // The words left that aren't options ("-" and negative numbers count as words).
    std::vector<std::string> positional();
    // True when everything was taken and no accessor found a problem.
    bool finish();

    bool ok() const { return m_error.empty(); }
    const std::string &error() const { return m_error; }
    // Records a problem the command found itself; the first one stays.
    bool fail(std::string message);

private:
    std::vector<std::string> m_args;
    std::vector<bool> m_used;
    std::string m_error;
};

}  // namespace cliutil

#endif
