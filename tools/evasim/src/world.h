// The simulated world in memory: servers, cells, disks, hosts, presentations and DR groups,
// loaded from the state file at the start of a run and written back, changed rows only, at its end.
#ifndef EVASIM_WORLD_H
#define EVASIM_WORLD_H

#include "records.h"
#include "row_table.h"

#include <set>
#include <string>
#include <vector>

namespace evasim {

class Database;

class World {
public:
    RowTable<ServerRec> servers;
    RowTable<ManagedRec> managed;
    RowTable<CellRec> cells;
    RowTable<DiskGroupRec> diskgroups;
    RowTable<VdiskRec> vdisks;
    RowTable<HostRec> hosts;
    RowTable<LunRec> luns;
    RowTable<DrGroupRec> drgroups;
    RowTable<DrMemberRec> drmembers;
    // Disks a copy may still be running into: those that had one when loaded and those that got
    // one since. Copies are few, so their progress is kept without a look at every disk.
    std::set<int64_t> copying;

    void load(Database &db);
    void save(Database &db);
    // Empties every table of the file, for a new world.
    static void wipe(Database &db);

    // Lookups. Names compare without regard to case, as the array does.
    ServerRec *serverByHost(const std::string &host);
    CellRec *cellByName(const std::string &name);
    CellRec *cellByWwn(const std::string &wwn);
    std::vector<const CellRec *> cellsOf(int64_t server) const;
    bool manages(int64_t server, int64_t cell) const;
    std::vector<VdiskRec *> vdisksOf(int64_t cell);  // sorted by path
    std::vector<HostRec *> hostsOf(int64_t cell);    // sorted by path
    std::vector<LunRec *> lunsOfDisk(int64_t vdisk);
    std::vector<LunRec *> lunsOfHost(int64_t host);
    std::vector<VdiskRec *> snapshotsOf(int64_t vdisk);
    DiskGroupRec *diskGroupByName(int64_t cell, const std::string &name);
    // The cell's first disk group; a "Default Disk Group" is made if it has none.
    DiskGroupRec &defaultDiskGroup(int64_t cell);
    DrMemberRec *drMembershipOf(int64_t vdisk);

    // How a disk, host or group is named in a command: a full path, a path below
    // "\Virtual Disks\" (or "\Hosts\"), a family path without "\ACTIVE", or a bare name
    // that only one object of the cell has. 'ambiguous' is set when a bare name fits several.
    VdiskRec *resolveVdisk(int64_t cell, const std::string &ref, bool &ambiguous);
    HostRec *resolveHost(int64_t cell, const std::string &ref, bool &ambiguous);
    DrGroupRec *resolveDrGroup(int64_t cell, const std::string &ref);

    // Space: what a disk takes from its cell, what the cell has left.
    static uint64_t allocatedBytes(const VdiskRec &disk);
    uint64_t usedBytes(int64_t cell) const;
    uint64_t freeBytes(int64_t cell) const;

    // New identities, unique in the cell: world wide LUN id and object id.
    std::string newWwlunid(CellRec &cell);
    // The LUN id that serial number 'serial' of the cell gets.
    static std::string formatWwlunid(const CellRec &cell, int64_t serial);
    std::string newObjectId(CellRec &cell);
    bool wwlunidInUse(int64_t cell, const std::string &wwlunid, int64_t except) const;
};

}  // namespace evasim

#endif
