// The array's rules for every change a script or a scenario makes. Each operation checks all
// it needs before it changes anything, so a refused command leaves the world as it was.
// Operations give an error text (what follows "Error: "), empty on success.
#pragma once

#include "records.h"

#include <cstdint>
#include <string>
#include <vector>

namespace evasim {

class Settings;
class World;

class ArrayOps {
public:
    ArrayOps(World &world, Settings const &settings);

    // A new family with its active disk. 'path' is a family path, absolute or below "\Virtual Disks\".
    std::string addVdisk(int64_t cell, std::string const &path, uint64_t bytes, std::string const &redundancy,
                         std::string const &diskGroup, std::string const &wwlunid, int64_t *created = nullptr);
    // A snapshot in the source's family: allocation "demand" (a vsnap) or "fully".
    std::string addSnapshot(int64_t cell, std::string const &name, std::string const &source,
                            std::string const &allocation, std::string const &redundancy,
                            std::string const &wwlunid, int64_t *created = nullptr);
    // A snapclone: a family of its own beside the source's family, or the copy into a container.
    std::string addCopy(int64_t cell, std::string const &name, std::string const &source,
                        std::string const &container, std::string const &redundancy, int64_t *created = nullptr);
    // Turns an active disk into an empty container of the same size.
    std::string changeIntoContainer(int64_t cell, std::string const &ref);
    std::string deleteVdisk(int64_t cell, std::string const &ref);

    struct VdiskChange {
        bool container = false;
        std::string name, wwlunid, writecache, comment;
        bool hasName = false, hasWwlunid = false, hasWritecache = false, hasComment = false;
    };
    std::string setVdisk(int64_t cell, std::string const &ref, VdiskChange const &change);

    // LUN 0 lets the array take the lowest free number of that host. 'chosen' gets the number.
    std::string addLun(int64_t cell, long long lun, std::string const &host, std::string const &disk,
                       int64_t *chosen = nullptr);
    // "<host>\<lun>".
    std::string deleteLun(int64_t cell, std::string const &hostAndLun);

    std::string addHost(int64_t cell, std::string const &path, std::vector<std::string> const &ports,
                        std::string const &os);
    std::string setDrGroup(int64_t cell, std::string const &ref, bool suspend);

    // A listing read these disks: each running copy among them is read once more, and a copy
    // whose reads are used up is done.
    void observeCopies(std::vector<VdiskRec const *> const &disks);

    static bool validName(std::string const &name);

private:
    VdiskRec *findDisk(int64_t cell, std::string const &ref, std::string &error);
    // Splits a family path into folder and family name.
    static bool splitFamilyPath(std::string const &path, std::string &folder, std::string &family);
    bool familyTaken(int64_t cell, std::string const &folder, std::string const &family, int64_t except) const;
    bool copyRunsFrom(int64_t disk) const;
    std::string reserveSpace(int64_t cell, VdiskRec const &disk) const;

    World &m_world;
    Settings const &m_settings;
};

} // namespace evasim
