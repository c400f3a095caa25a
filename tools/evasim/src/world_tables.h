// The tables of `evasim show`, one per kind of object, read from a world loaded whole.
#ifndef EVASIM_WORLD_TABLES_H
#define EVASIM_WORLD_TABLES_H

#include "fault.h"

#include "cliutil_table.h"

#include <cstdint>
#include <string>
#include <vector>

namespace evasim {

class Settings;
class World;

class WorldTables {
public:
    // 'onlyCell' 0 shows every cell.
    WorldTables(World &world, const Settings &settings, std::vector<Fault> faults, int64_t onlyCell);

    // The kinds `evasim show` knows, in the order "all" prints them.
    static const std::vector<std::string> &kinds();
    cliutil::Table table(const std::string &kind) const;

private:
    cliutil::Table servers() const;
    cliutil::Table cells() const;
    cliutil::Table diskGroups() const;
    cliutil::Table disks() const;
    cliutil::Table hosts() const;
    cliutil::Table presentations() const;
    cliutil::Table drGroups() const;
    cliutil::Table faults() const;
    cliutil::Table settings() const;
    cliutil::Table rules() const;

    bool inCell(int64_t cell) const { return !m_onlyCell || cell == m_onlyCell; }
    std::string cellName(int64_t cell) const;

    World &m_world;
    const Settings &m_settings;
    std::vector<Fault> m_faults;
    int64_t m_onlyCell;
};

}  // namespace evasim

#endif
