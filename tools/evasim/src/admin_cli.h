// The administration side of evasim: init, show, fault, set, reset, where, and their help.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace evasim {

class AdminCli {
public:
    AdminCli(std::string database, std::ostream &out, std::ostream &err);
    // args: the words after the program name. Gives the exit status: 0, 1 for a failure, 2 for bad usage.
    int run(std::vector<std::string> const &args);

    static std::string usage();

private:
    int init(std::vector<std::string> const &args);
    int show(std::vector<std::string> const &args);
    int fault(std::vector<std::string> const &args);
    int set(std::vector<std::string> const &args);
    int reset(std::vector<std::string> const &args);
    int where(std::vector<std::string> const &args);
    int bad(std::string const &command, std::string const &message);
    bool stateExists() const;

    std::string m_database;
    std::ostream &m_out;
    std::ostream &m_err;
};

} // namespace evasim
