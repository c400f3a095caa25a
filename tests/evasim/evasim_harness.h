// Runs the evasim program the way the provider does (a script file behind "FILE "), in a state
// directory of its own, and takes its output apart for the checks.
#ifndef TESTS_EVASIM_EVASIM_HARNESS_H
#define TESTS_EVASIM_EVASIM_HARNESS_H

#include <sys/types.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace evasim_test {

struct Outcome {
    int status = -1;                         // exit status, or 128 + signal
    std::string out, err;                    // standard output and error as written
    std::vector<double> lineTimes;           // seconds from the start to each line feed of the output
    double seconds = 0;                      // the whole run
    std::vector<std::string> lines() const;  // out split at line feeds
    bool has(const std::string &text) const { return out.find(text) != std::string::npos; }
};

class Harness {
public:
    Harness();
    ~Harness();
    Harness(const Harness &) = delete;
    Harness &operator=(const Harness &) = delete;

    static std::string binary();
    static std::string scenario(const std::string &name);  // path of tools/evasim/scenarios/<name>
    const std::string &home() const { return m_home; }

    // evasim with these arguments, EVASIM_HOME set to this harness's directory. 'meanwhile' runs
    // on a thread of its own with the child's process id while the child runs. With 'killAtLine'
    // the child gets SIGKILL as soon as that many lines of its output have arrived.
    Outcome evasim(const std::vector<std::string> &args, const std::function<void(pid_t)> &meanwhile = {},
                   size_t killAtLine = 0) const;
    // `evasim init --scenario small.scn` (or the given one); fails the test if it fails.
    void init(const std::string &scenarioName = "small.scn") const;
    // Writes a script file and gives its path.
    std::string script(const std::vector<std::string> &lines) const;
    // The provider's script: the three option lines, the login, the cell, the commands, exit.
    std::string sssuScript(const std::vector<std::string> &commands, const std::string &cell = "EVA01",
                           const std::string &login = "select manager cv1 user=admin password=secret") const;
    // That script run.
    Outcome sssu(const std::vector<std::string> &commands, const std::string &cell = "EVA01",
                 const std::string &login = "select manager cv1 user=admin password=secret") const;
    // `evasim show WHAT --format tsv` as rows of column name to value.
    std::vector<std::map<std::string, std::string>> table(const std::string &what) const;
    // One row of the disks table, by path; empty if there is none.
    std::map<std::string, std::string> disk(const std::string &path) const;

private:
    std::string m_home;
    mutable int m_scripts = 0;
};

// The text of the first <tag> element of an output, "(missing)" when there is none.
std::string element(const std::string &out, const std::string &tag);

// The provider's cut of an XML listing: the lines from the first "<object>" to the last
// "</object>", "information:" lines blanked, wrapped in one root.
std::string xmlDocument(const std::vector<std::string> &lines);

}  // namespace evasim_test

#endif
