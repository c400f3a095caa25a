// The administration side of evasim: init, show, fault, set, reset, where, and their help.
#ifndef EVASIM_ADMIN_CLI_H
#define EVASIM_ADMIN_CLI_H

#include <ostream>
#include <string>
#include <vector>

namespace cliutil {
class Args;
}

namespace evasim {

class AdminCli {
public:
    AdminCli(std::string database, std::ostream &out, std::ostream &err);
    // args: the words after the program name. Gives the exit status: 0, 1 for a failure, 2 for bad usage.
    int run(const std::vector<std::string> &args);

    static std::string usage();

private:
    int init(cliutil::Args &args);
    int show(cliutil::Args &args);
    int fault(cliutil::Args &args);
    int set(cliutil::Args &args);
    int history(cliutil::Args &args);
    int change(cliutil::Args &args);
    int clock(cliutil::Args &args);
    int reset(cliutil::Args &args);
    int where(cliutil::Args &args);
    int bad(const std::string &command, const std::string &message);
    bool stateExists() const;
    void ensureStateDirectory() const;

    std::string m_database;
    std::ostream &m_out;
    std::ostream &m_err;
};

}  // namespace evasim

#endif
