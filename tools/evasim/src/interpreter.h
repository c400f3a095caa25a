// Runs the lines of an SSSU script the way the real tool does: prompt and echo, options,
// manager and system selection, the listing and change commands, and the error rules.
#ifndef EVASIM_INTERPRETER_H
#define EVASIM_INTERPRETER_H

#include "fault.h"

#include <string>
#include <vector>

namespace evasim {

class ObjectDescriber;
class ObjectWriter;
class Output;
class Settings;
class World;
struct Token;

class Interpreter {
public:
    // 'world' is null when there is no state yet: then no server answers.
    // 'faults' are the armed faults that hit single commands; their uses are counted in place.
    Interpreter(Output &out, World *world, const Settings &settings, std::vector<Fault> &faults, double delay);

    // Gives the exit status: 0, or 1 when ON_ERROR=EXIT_ON_ERROR stopped at an error.
    int run(const std::vector<std::string> &lines);

private:
    enum class Result { Ok, Error, Stop, Exit };

    std::string prompt() const;
    Result loginLine(const std::string &line);
    Result execute(const std::string &line);
    Result error(const std::string &message);
    Result syntaxError(const std::string &line, size_t column);
    bool needManager();
    bool needSystem();

    Result setCommand(const std::string &line, const std::vector<Token> &t);
    Result selectCommand(const std::string &line, const std::vector<Token> &t);
    Result lsCommand(const std::string &line, const std::vector<Token> &t);
    Result findCommand(const std::string &line, const std::vector<Token> &t);
    Result addCommand(const std::string &line, const std::vector<Token> &t);
    Result deleteCommand(const std::string &line, const std::vector<Token> &t);

    // Text listing: the marker line, then one name a line.
    void nameList(const std::string &header, const std::vector<std::string> &names);
    bool takeFault(const char *kind, const std::string &line, Fault *taken = nullptr);
    Result quirk(const char *setting, const std::string &message);

    Output &m_out;
    World *m_world;
    const Settings &m_settings;
    std::vector<Fault> &m_faults;
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
