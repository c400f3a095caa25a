// The rows of the simulated world, one plain record per table of the state file.
#ifndef EVASIM_RECORDS_H
#define EVASIM_RECORDS_H

#include <cstdint>
#include <string>

namespace evasim {

// A Command View server: what "select manager" logs in to.
struct ServerRec {
    int64_t id = 0;
    std::string host, user, password;
    bool reachable = true;
};

// Which server manages which cell; a cell may have several.
struct ManagedRec {
    int64_t id = 0;
    int64_t server = 0, cell = 0;
};

struct CellRec {
    int64_t id = 0;
    std::string name;
    std::string wwn;  // 4 groups of 4 upper-case hexadecimal digits
    std::string firmware;
    uint64_t total = 0;  // bytes
    int64_t serial = 0;  // last number used for an object of this cell
};

struct DiskGroupRec {
    int64_t id = 0;
    int64_t cell = 0;
    std::string name;
};

// A virtual disk, active member of a family, snapshot in a family, or container.
// Its path is folder + "\" + family + "\" + leaf; leaf is "ACTIVE" for the family's active disk.
struct VdiskRec {
    int64_t id = 0;
    int64_t cell = 0;
    std::string folder;  // "\Virtual Disks" or "\Virtual Disks\a\b"
    std::string family;
    std::string leaf;
    bool container = false;
    std::string wwlunid;                // 8 groups of 4 lower-case hexadecimal digits
    std::string objectid;               // 40 hexadecimal digits
    uint64_t blocks = 0;                // requested capacity in 512-byte blocks
    std::string redundancy = "vraid5";  // vraid0, vraid1, vraid5
    std::string allocation = "fully";   // fully or demand
    int64_t diskgroup = 0;
    int64_t parent = 0;               // the active disk a snapshot was taken of
    std::string origin = "original";  // original, snapshot, snapclone
    int64_t clonedFrom = 0;           // the disk a snapclone or restore copy was copied from, for good
    // A copy into this disk, while it runs or stalls: its source, its kind ("snapclone" or
    // "restore"), how its progress is counted ("reads" or "seconds"), and what is left: reads
    // that still show it running, or the simulated time it ends at. A stalled copy keeps its
    // source and, in 'copyEnd', the seconds it still needs.
    int64_t copySource = 0;
    std::string copyKind;
    std::string copyMode = "reads";
    int64_t copyReads = 0;
    double copyEnd = 0;
    bool copyStalled = false;
    std::string operationalstate = "good";
    uint64_t written = 0;  // a demand-allocated snapshot takes the bytes written since it was taken
    std::string writecache = "writeback";
    std::string comments;
    int64_t created = 0, modified = 0;  // seconds since the epoch

    bool active() const { return leaf == "ACTIVE"; }
    std::string familyPath() const { return folder + "\\" + family; }
    std::string path() const { return folder + "\\" + family + "\\" + leaf; }
};

// A host as the array knows it: "\Hosts\<folders>\<name>".
struct HostRec {
    int64_t id = 0;
    int64_t cell = 0;
    std::string path;
    std::string ports;  // port WWNs joined by ","
    std::string os = "Linux";
    std::string objectid;
};

// A presentation of a virtual disk to a host on a LUN.
struct LunRec {
    int64_t id = 0;
    int64_t vdisk = 0, host = 0;
    int64_t lun = 0;
};

struct DrGroupRec {
    int64_t id = 0;
    std::string name;  // without the "\Data Replication\" head
    int64_t sourceCell = 0, destCell = 0;
    std::string writemode = "synchronous";
    std::string operationalstate = "good";
    std::string membercondition = "normal";
    std::string linkstate = "connected";
    bool hasLink = true;  // false: the group lists no link to its other cell at all
    bool suspended = false;

    std::string path() const { return "\\Data Replication\\" + name; }
};

// A disk of a DR group with its partner on the destination cell.
struct DrMemberRec {
    int64_t id = 0;
    int64_t group = 0, sourceDisk = 0, destDisk = 0;
};

}  // namespace evasim

#endif
