// Reads a scenario file (format in tools/evasim/README.md) into an empty world and the settings.
#ifndef EVASIM_SCENARIO_LOADER_H
#define EVASIM_SCENARIO_LOADER_H

#include <istream>
#include <string>

namespace evasim {

class Settings;
class World;

class ScenarioLoader {
public:
    ScenarioLoader(World &world, Settings &settings);
    // Gives an error text "<name>:<line>: <what is wrong>", empty on success. Stops at the first error.
    std::string load(std::istream &in, const std::string &name);

private:
    std::string line(const std::string &text);

    World &m_world;
    Settings &m_settings;
};

}  // namespace evasim

#endif
