// The array's rules for every change a script or a scenario makes. Each operation checks all
// it needs before it changes anything, so a refused command leaves the world as it was.
// Operations give an error text (what follows "Error: "), empty on success.
#ifndef EVASIM_ARRAY_OPS_H
#define EVASIM_ARRAY_OPS_H

#include "records.h"

#include <cstdint>
#include <string>
#include <vector>

namespace evasim {

class Settings;
class World;

class ArrayOps {
public:
    ArrayOps(World &world, const Settings &settings);

    // A new family with its active disk. 'path' is a family path, absolute or below "\Virtual Disks\".
    std::string addVdisk(int64_t cell, const std::string &path, uint64_t bytes, const std::string &redundancy,
                         const std::string &diskGroup, const std::string &wwlunid, int64_t *created = nullptr);
    // A snapshot in the source's family: allocation "demand" (a vsnap) or "fully".
    std::string addSnapshot(int64_t cell, const std::string &name, const std::string &source,
                            const std::string &allocation, const std::string &redundancy, const std::string &wwlunid,
                            int64_t *created = nullptr);
    // A snapclone: a family of its own beside the source's family, or the copy into a container.
    std::string addCopy(int64_t cell, const std::string &name, const std::string &source, const std::string &container,
                        const std::string &redundancy, int64_t *created = nullptr);
    // Turns an active disk into an empty container of the same size.
    std::string changeIntoContainer(int64_t cell, const std::string &ref);
    std::string deleteVdisk(int64_t cell, const std::string &ref);

    struct VdiskChange {
        bool container = false;
        std::string name, wwlunid, writecache, comment;
        bool hasName = false, hasWwlunid = false, hasWritecache = false, hasComment = false;
    };
    std::string setVdisk(int64_t cell, const std::string &ref, const VdiskChange &change);

    // LUN 0 lets the array take the lowest free number of that host. 'chosen' gets the number.
    std::string addLun(int64_t cell, long long lun, const std::string &host, const std::string &disk,
                       int64_t *chosen = nullptr);
    // "<host>\<lun>".
    std::string deleteLun(int64_t cell, const std::string &hostAndLun);

    std::string addHost(int64_t cell, const std::string &path, const std::vector<std::string> &ports,
                        const std::string &os);
    std::string setDrGroup(int64_t cell, const std::string &ref, bool suspend);

    // A listing read these disks: each running copy among them (as source or target) that counts
    // its progress in reads is read once more, and one whose reads are used up is done.
    void observeCopies(const std::vector<const VdiskRec *> &disks);
    // Copies that count in seconds and whose time has come are done.
    void settleCopies();
    // Starts a copy from 'source' into 'target' ("snapclone" or "restore"), timed by the settings.
    void startCopy(VdiskRec &target, const VdiskRec &source, const std::string &kind);
    void finishCopy(VdiskRec &target);

    static bool validName(const std::string &name);

private:
    VdiskRec *findDisk(int64_t cell, const std::string &ref, std::string &error);
    // Splits a family path into folder and family name.
    static bool splitFamilyPath(const std::string &path, std::string &folder, std::string &family);
    bool familyTaken(int64_t cell, const std::string &folder, const std::string &family, int64_t except) const;
    // The disk a copy from 'disk' runs into, if any.
    const VdiskRec *copyFrom(int64_t disk) const;
    // The refusal of one more snapshot or copy of 'source', empty while it may have one.
    std::string copiesLeft(const VdiskRec &source) const;
    // 'alreadyHeld': bytes the disk takes now, for a disk that grows.
    std::string reserveSpace(int64_t cell, const VdiskRec &disk, uint64_t alreadyHeld = 0) const;
    // Whether a rule that may be turned off (rules_off) holds.
    bool on(const char *rule) const;
    int64_t now() const;

    World &m_world;
    const Settings &m_settings;
};

}  // namespace evasim

#endif
