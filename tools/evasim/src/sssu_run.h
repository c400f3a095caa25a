// One run of the simulated SSSU: the banner, the script (each command kept as it completes) and
// the armed faults of this run.
#ifndef EVASIM_SSSU_RUN_H
#define EVASIM_SSSU_RUN_H

#include <memory>
#include <string>

namespace evasim {

class RunStore;

class SssuRun {
public:
    SssuRun(std::string database, std::string script);
    ~SssuRun();
    // Gives the process's exit status. The state of the run stays with the object.
    int run();

private:
    std::string m_database;
    std::string m_script;
    std::unique_ptr<RunStore> m_store;
};

}  // namespace evasim

#endif
