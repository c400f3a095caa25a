// What SSSU tells about a virtual disk, cell, host, disk group or DR group: every element, nested
// and formatted as the real tool gives them, written through an ObjectWriter.
#ifndef EVASIM_OBJECT_DESCRIBER_H
#define EVASIM_OBJECT_DESCRIBER_H

#include "records.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace evasim {

class ObjectWriter;
class World;

class ObjectDescriber {
public:
    // Indexes the world once, so that describing thousands of disks stays linear.
    explicit ObjectDescriber(World &world);

    void vdisk(ObjectWriter &w, const VdiskRec &disk) const;
    void cell(ObjectWriter &w, const CellRec &cell) const;
    void host(ObjectWriter &w, const HostRec &host) const;
    void diskGroup(ObjectWriter &w, const DiskGroupRec &group) const;
    // The group as seen from 'cell', its source or its destination.
    void drGroup(ObjectWriter &w, const DrGroupRec &group, int64_t cell) const;

    // sharingrelationship of a disk at this moment.
    std::string sharing(const VdiskRec &disk) const;

private:
    World &m_world;
    std::map<int64_t, std::vector<std::pair<int64_t, int64_t>>> m_lunsByDisk;  // disk: (host, lun)
    std::map<int64_t, std::vector<std::pair<int64_t, int64_t>>> m_lunsByHost;  // host: (disk, lun)
    std::map<int64_t, int64_t> m_newestChild;                                  // disk: its newest snapshot
    std::map<int64_t, int64_t> m_copyTarget;                                   // disk: a disk being copied from it
    std::map<int64_t, int64_t> m_drMember;                                     // disk: its membership row
};

}  // namespace evasim

#endif
