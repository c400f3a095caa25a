// Reads a scenario file (format in tools/evasim/README.md) into an empty world and the settings.
#ifndef EVASIM_SCENARIO_LOADER_H
#define EVASIM_SCENARIO_LOADER_H

#include <cstdint>
#include <istream>
#include <string>
#include <vector>

namespace evasim {

class Settings;
class World;
struct Token;

class ScenarioLoader {
public:
    ScenarioLoader(World &world, Settings &settings);
    // Gives an error text "<name>:<line>: <what is wrong>", empty on success. Stops at the first error.
    std::string load(std::istream &in, const std::string &name);

private:
    std::string line(const std::string &text);
    // One reader per kind of line; each gives an error text, empty on success.
    std::string setLine(const std::vector<Token> &t);
    std::string serverLine(const std::vector<Token> &t);
    std::string cellLine(const std::vector<Token> &t);
    std::string diskGroupLine(const std::vector<Token> &t);
    std::string hostLine(const std::vector<Token> &t);
    std::string vdiskLine(const std::vector<Token> &t);
    std::string snapshotLine(const std::vector<Token> &t);
    std::string snapcloneLine(const std::vector<Token> &t);
    std::string presentLine(const std::vector<Token> &t);
    std::string drGroupLine(const std::vector<Token> &t);
    std::string memberLine(const std::vector<Token> &t);
    std::string cellOf(const std::string &name, int64_t &id);

    World &m_world;
    Settings &m_settings;
};

}  // namespace evasim

#endif
