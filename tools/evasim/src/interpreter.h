// Runs the lines of an SSSU script the way the real tool does: prompt and echo, options,
// manager and system selection, the listing and change commands, and the error rules.
#ifndef EVASIM_INTERPRETER_H
#define EVASIM_INTERPRETER_H

#include "fault.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace evasim {

class ObjectDescriber;
class RunStore;
class ObjectWriter;
class Output;
class Settings;
class World;
struct Token;

class Interpreter {
public:
    // 'store' is null when there is no state yet: then no server answers. 'delay' is waited
    // before each command. 'runFaults' are this run's faults; those bound to a script line act there.
    Interpreter(Output &out, RunStore *store, const Settings &settings, double delay,
                std::vector<Fault> runFaults = {});

    // Gives the exit status: 0, or 1 when ON_ERROR=EXIT_ON_ERROR stopped at an error.
    int run(const std::vector<std::string> &lines);

    struct ListRequest;

private:
    enum class Result { Ok, Error, Stop, Exit };

    std::string prompt() const;
    // One line of the script: echo, the command in its own transaction, its answer in the history.
    Result command(const std::string &raw);
    static bool isLogin(const std::string &body);
    Result loginLine(const std::string &line);
    Result execute(const std::string &line);
    Result error(const std::string &message);
    Result syntaxError(const std::string &line, size_t column, const char *message = "Syntax error at or near here");
    bool needManager();
    bool needSystem();

    // One handler per command; each checks its words, then its selection, then asks the array.
    Result setCommand(const std::string &line, const std::vector<Token> &t);
    Result setOptions(const std::string &line, const std::vector<Token> &t);
    Result setVdisk(const std::string &line, const std::vector<Token> &t);
    Result setDrGroup(const std::string &line, const std::vector<Token> &t);
    Result selectCommand(const std::string &line, const std::vector<Token> &t);
    Result lsCommand(const std::string &line, const std::vector<Token> &t);
    Result lsCells(const std::string &line, const ListRequest &req);
    Result lsVdisks(const std::string &line, const ListRequest &req);
    Result lsHosts(const std::string &line, const ListRequest &req);
    Result lsDrGroups(const std::string &line, const ListRequest &req);
    Result lsDiskGroups(const std::string &line, const ListRequest &req);
    Result findCommand(const std::string &line, const std::vector<Token> &t);
    Result addCommand(const std::string &line, const std::vector<Token> &t);
    Result addLun(const std::string &line, const std::vector<Token> &t);
    Result addDisk(const std::string &line, const std::vector<Token> &t);
    Result deleteCommand(const std::string &line, const std::vector<Token> &t);
    Result refresh(const std::string &line, const std::vector<Token> &t);

    // A listing: the names under their marker line, or the objects in text or XML.
    template <class Rec, class NameOf, class Describe>
    Result report(const std::string &line, const ListRequest &req, const char *marker,
                  const std::vector<const Rec *> &list, NameOf nameOf, Describe describe);
    std::unique_ptr<ObjectWriter> objectWriter(bool xml, const std::string &line);
    // The end of a change: its refusal, or the empty result line.
    Result done(const std::string &refused);
    Result notFound(const std::string &name, bool ambiguous);

    // Text listing: the marker line, then one name a line.
    void nameList(const std::string &header, const std::vector<std::string> &names);
    bool takeFault(const char *kind, const std::string &line, Fault *taken = nullptr);
    Result quirk(const char *setting, const std::string &message);

    Output &m_out;
    RunStore *m_store;
    World *m_world;
    const Settings &m_settings;
    std::vector<Fault> m_noFaults;
    std::vector<Fault> *m_faults;
    std::vector<Fault> m_runFaults;
    std::map<int64_t, int64_t> m_passed;  // per fault: the matching commands of this run so far
    std::string m_loginHost;
    double m_delay;

    long long m_server = 0;  // selected manager
    long long m_cell = 0;    // selected system
    std::string m_cellName;
    bool m_exitOnError = false;
    long long m_commandDelay = 0;
    long long m_displayWidth = 80;
};

}  // namespace evasim

#endif
