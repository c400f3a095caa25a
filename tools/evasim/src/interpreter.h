// Runs the lines of an SSSU script the way the real tool does: prompt and echo, options,
// manager and system selection, the listing and change commands, and the error rules.
#pragma once

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
    Interpreter(Output &out, World *world, Settings const &settings, std::vector<Fault> &faults, double delay);

    // Gives the exit status: 0, or 1 when ON_ERROR=EXIT_ON_ERROR stopped at an error.
    int run(std::vector<std::string> const &lines);

private:
    enum class Result { Ok, Error, Stop, Exit };

    std::string prompt() const;
    Result loginLine(std::string const &line);
    Result execute(std::string const &line);
    Result error(std::string const &message);
    Result syntaxError(std::string const &line, size_t column);
    bool needManager();
    bool needSystem();

    Result setCommand(std::string const &line, std::vector<Token> const &t);
    Result selectCommand(std::string const &line, std::vector<Token> const &t);
    Result lsCommand(std::string const &line, std::vector<Token> const &t);
    Result findCommand(std::string const &line, std::vector<Token> const &t);
    Result addCommand(std::string const &line, std::vector<Token> const &t);
    Result deleteCommand(std::string const &line, std::vector<Token> const &t);

    // Text listing: the marker line, then one name a line.
    void nameList(std::string const &header, std::vector<std::string> const &names);
    bool takeFault(char const *kind, std::string const &line, Fault *taken = nullptr);
    Result quirk(char const *setting, std::string const &message);

    Output &m_out;
    World *m_world;
    Settings const &m_settings;
    std::vector<Fault> &m_faults;
    double m_delay;

    long long m_server = 0; // selected manager
    long long m_cell = 0;   // selected system
    std::string m_cellName;
    bool m_exitOnError = false;
    long long m_commandDelay = 0;
    long long m_displayWidth = 80;
};

} // namespace evasim
