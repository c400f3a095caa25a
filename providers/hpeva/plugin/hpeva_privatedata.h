#ifndef HPEVA_PRIVATEDATA_H
#define HPEVA_PRIVATEDATA_H

#include "cfiprivatedata.h"
#include "cfiprivatedataconcretefactory.h"
#include "hpeva_drgroup.h"
#include "hpeva_vdisk.h"

// What the provider remembers of a node between the calls of one process: the disk that
// select found, the disk that make created, and the DR group of a group snapclone. Memory
// only: a process that never ran select finds them empty and asks the array again.
class CHpEvaPrivateData : public qorin_pdk_4_4::CFiPrivateData {
public:
    CHpEvaPrivateData(qorin_objid *id, bool isAltNode);
    ~CHpEvaPrivateData() override;

    SHpEvaVdisk &getSourceDisk() { return m_sourceDisk; }
    SHpEvaVdisk &getTargetDisk() { return m_targetDisk; }
    SHpEvaDrGroup &getDrGroup() { return m_drGroup; }
    void setSourceDisk(const SHpEvaVdisk &disk) { m_sourceDisk = disk; }
    void setTargetDisk(const SHpEvaVdisk &disk) { m_targetDisk = disk; }
    void setDrGroup(const SHpEvaDrGroup &group) { m_drGroup = group; }

private:
    SHpEvaVdisk m_sourceDisk;
    SHpEvaVdisk m_targetDisk;
    SHpEvaDrGroup m_drGroup;
};

// The factory the provider registers, so that every node's private data is of this kind.
using CHpEvaPrivateDataFactory = qorin_pdk_4_4::CFiPrivateDataConcreteFactory<CHpEvaPrivateData>;
extern template class qorin_pdk_4_4::CFiPrivateDataConcreteFactory<CHpEvaPrivateData>;

#endif
