// The tables of `evasim show`, one per kind of object, read from a world loaded whole.
#ifndef EVASIM_WORLD_TABLES_H
#define EVASIM_WORLD_TABLES_H

#include "fault.h"

#include "cliutil_table.h"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace evasim {

class ObjectDescriber;
class Settings;
class World;
struct VdiskRec;

class WorldTables {
public:
    // 'onlyCell' 0 shows every cell.
    WorldTables(World &world, const Settings &settings, std::vector<Fault> faults, int64_t onlyCell);

    // The kinds "all" prints, in order; "rules" is shown on its own only.
    static const std::vector<std::string> &kinds();
    cliutil::Table table(const std::string &kind) const;
    // The disks of the families called 'family' (a family name, or a disk's or family's path),
    // as a tree: each active disk, its snapshots, and the snapclones and restore copies made
    // from it with their own families below them. Empty with an error text when there is none.
    cliutil::Table familyTree(const std::string &family, std::string &error) const;

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

    void branch(cliutil::Table &t, const ObjectDescriber &describe, const VdiskRec &disk, const std::string &relation,
                int depth, std::set<int64_t> &shown) const;
    std::string diskType(const VdiskRec &disk) const;
    bool inCell(int64_t cell) const { return !m_onlyCell || cell == m_onlyCell; }
    std::string cellName(int64_t cell) const;

    World &m_world;
    const Settings &m_settings;
    std::vector<Fault> m_faults;
    int64_t m_onlyCell;
};

}  // namespace evasim

#endif
