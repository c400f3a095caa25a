// One run of the simulated SSSU: the banner, the script (each command kept as it completes) and
// the armed faults of this run.
#ifndef EVASIM_SSSU_RUN_H
#define EVASIM_SSSU_RUN_H

#include <string>

namespace evasim {

class SssuRun {
public:
    SssuRun(std::string database, std::string script);
    // Gives the process's exit status.
    int run();

private:
    std::string m_database;
    std::string m_script;
};

}  // namespace evasim

#endif
