// What runs did to the arrays: every SSSU run with its commands, their answers and its exit
// status, kept in the state file beside the world.
#ifndef EVASIM_HISTORY_H
#define EVASIM_HISTORY_H

#include <cstdint>
#include <string>
#include <vector>

namespace evasim {

class Database;

struct HistoryCommand {
    int64_t seq = 0;
    std::string command;  // as the script gave it, a password masked
    std::string outcome;  // "ok", "error" or "stopped"
    std::vector<std::string> answer;
    int64_t lines = 0;  // all lines of the answer; 'answer' keeps the first ones only
};

struct HistoryRun {
    int64_t id = 0;
    double started = 0, ended = 0;  // seconds since the epoch; ended 0 while unfinished
    int64_t pid = 0;
    int64_t status = -1;  // exit status; -1 when the run never ended (killed or still running)
    std::string script;
    std::string note;
    std::vector<HistoryCommand> commands;
};

class History {
public:
    // Lines of one answer that are kept.
    static constexpr size_t kAnswerLines = 40;

    // Records a run's start and gives its id. Runs beyond the newest 'keep' are forgotten.
    static int64_t start(Database &db, const std::string &script, int64_t keep);
    static void command(Database &db, int64_t run, const HistoryCommand &c);
    static void answer(Database &db, int64_t run, const HistoryCommand &c);
    static void end(Database &db, int64_t run, int status, const std::string &note);

    // The newest 'last' runs (0: all), oldest first, or the one run 'only'.
    static std::vector<HistoryRun> list(Database &db, int64_t last, int64_t only);
    static void clear(Database &db);

    // "select manager ... password=secret" with the password masked.
    static std::string masked(const std::string &command);
};

}  // namespace evasim

#endif
