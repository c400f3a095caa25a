#ifndef HPEVA_VDISK_H
#define HPEVA_VDISK_H

#include <cstdint>
#include <map>
#include <string>

#include "hpeva_cell.h"

// One virtual disk, active disk or snapshot, with the cell it lies in. An active disk's
// objectname ends in "\ACTIVE"; a snapshot's doesn't.
struct SHpEvaVdisk : public SHpEvaCell {
    std::string objectname;
    std::string familyname;
    std::string objecthexuid;
    std::string wwlunid;
    std::string objecttype;
    std::string parentvdiskname;
    std::string childvdiskname;
    std::string drmgroupname;
    std::string drmnode;
    std::string remotevirtualdiskname;
    std::string sharingrelationship;
    std::string creationdatetime;                  // as SSSU prints it
    uint64_t capacity = 0;                         // bytes
    std::map<std::string, int32_t> presentations;  // host -> LUN

    // Clears the disk's own fields and keeps the cell part.
    void clearDisk() { static_cast<SHpEvaVdisk &>(*this) = SHpEvaVdisk(cellPart()); }

    SHpEvaVdisk() = default;
    explicit SHpEvaVdisk(const SHpEvaCell &cell) : SHpEvaCell(cell) {}
    const SHpEvaCell &cellPart() const { return *this; }
};

#endif
