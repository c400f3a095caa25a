// Runs the evasim program the way the provider does (a script file behind "FILE "), in a state
// directory of its own, and takes its output apart for the checks.
#pragma once

#include <sys/types.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace evasim_test {

struct Outcome {
    int status = -1;       // exit status, or 128 + signal
    std::string out, err;  // standard output and error as written
    std::vector<double> lineTimes; // seconds from the start to each line feed of the output
    double seconds = 0;            // the whole run
    std::vector<std::string> lines() const; // out split at line feeds
    bool has(std::string const &text) const { return out.find(text) != std::string::npos; }
};

class Harness {
public:
    Harness();
    ~Harness();
    Harness(Harness const &) = delete;
    Harness &operator=(Harness const &) = delete;

    static std::string binary();
    static std::string scenario(std::string const &name); // path of tools/evasim/scenarios/<name>
    std::string const &home() const { return m_home; }

    // evasim with these arguments, EVASIM_HOME set to this harness's directory. 'meanwhile' runs
    // on a thread of its own with the child's process id while the child runs.
    Outcome evasim(std::vector<std::string> const &args, std::function<void(pid_t)> const &meanwhile = {}) const;
    // `evasim init --scenario small.scn` (or the given one); fails the test if it fails.
    void init(std::string const &scenarioName = "small.scn") const;
    // Writes a script file and gives its path.
    std::string script(std::vector<std::string> const &lines) const;
    // The provider's script: the three option lines, the login, the cell, the commands, exit.
    Outcome sssu(std::vector<std::string> const &commands, std::string const &cell = "EVA01",
             std::string const &login = "select manager cv1 user=admin password=secret") const;
    // `evasim show WHAT --format tsv` as rows of column name to value.
    std::vector<std::map<std::string, std::string>> table(std::string const &what) const;
    // One row of the disks table, by path; empty if there is none.
    std::map<std::string, std::string> disk(std::string const &path) const;

private:
    std::string m_home;
    mutable int m_scripts = 0;
};

// The provider's cut of an XML listing: the lines from the first "<object>" to the last
// "</object>", "information:" lines blanked, wrapped in one root.
std::string xmlDocument(std::vector<std::string> const &lines);

} // namespace evasim_test
