// The state behind one SSSU run. Every command is a transaction of its own, as an array keeps each
// command it completed: a run that is killed keeps the commands before the one in flight, and that
// one is wholly done or not at all. Between two commands other runs may change the world; it is
// read again when they did.
#ifndef EVASIM_RUN_STORE_H
#define EVASIM_RUN_STORE_H

#include "database.h"
#include "fault.h"
#include "history.h"
#include "settings.h"
#include "world.h"

#include <memory>
#include <string>
#include <vector>

namespace evasim {

class RunStore {
public:
    // Opens the state file, takes one use of the faults that act on a whole run and records the
    // run's start in the history, all in a transaction of its own: a run that dies still counts.
    RunStore(const std::string &database, const std::string &script, const std::vector<std::string> &lines);
    ~RunStore();

    World &world() { return m_world; }
    Settings &settings() { return m_settings; }
    const std::vector<Fault> &runFaults() const { return m_runFaults; }
    // The faults that hit single commands; their uses are counted in place and saved with the command.
    std::vector<Fault> &commandFaults() { return m_commandFaults; }

    // Opens the transaction of one command (the history's 'command' as the script gave it).
    void beginCommand(const std::string &command);
    // Makes the command's changes durable, with its entry in the history. Called before the first
    // line of its answer goes out, so an answer that was seen belongs to a command that was kept.
    void commitCommand();
    // The answer of the command committed last, in a short transaction of its own. Until it is
    // saved the history shows the command as cut off: its change was kept, its answer not.
    void answer(const std::string &outcome, std::vector<std::string> lines, int64_t count);
    // Drops the command in flight, if any: the process ends without it.
    void abandonCommand();
    // The run's end, with its exit status.
    void finish(int status, const std::string &note = {});

private:
    std::unique_ptr<Database> m_db;
    World m_world;
    Settings m_settings;
    std::vector<Fault> m_runFaults, m_commandFaults;
    int64_t m_run = 0;
    int64_t m_seq = 0;
    int64_t m_version = 0;
    bool m_open = false;
    HistoryCommand m_current;
    bool m_committed = false;
};

}  // namespace evasim

#endif
