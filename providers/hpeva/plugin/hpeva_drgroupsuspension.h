#ifndef HPEVA_DRGROUPSUSPENSION_H
#define HPEVA_DRGROUPSUSPENSION_H

#include <string>

#include "cfierrormanager.h"
#include "hpeva_cell.h"
#include "hpeva_clitool.h"
#include "hpeva_vdisk.h"

// A DR group suspended for the copies of its remote partners: resumed by resume() or, at the
// latest, when this object ends, whichever way the operation ends, and never twice. The one
// thing on an array the provider undoes on failure.
class CHpEvaDrGroupSuspension {
public:
    // errors receives the message of a group that could not be resumed.
    CHpEvaDrGroupSuspension(const CHpEvaCliTool *tool, const qorin_pdk_4_4::CFiErrorManagerPtr &errors);
    ~CHpEvaDrGroupSuspension();

    // Remembers the group and the disk's cell before suspending, so that a suspend whose
    // outcome is unknown (SSSU failed or was cut off) is still resumed.
    void suspend(const SHpEvaVdisk &disk, const std::string &group);
    // Resumes a suspended group and forgets it; does nothing otherwise. A failed resume throws
    // and keeps the group, so that the destructor tries once more.
    void resume();
    // The suspended group; empty when none is.
    const std::string &group() const { return m_group; }

    CHpEvaDrGroupSuspension(const CHpEvaDrGroupSuspension &) = delete;
    CHpEvaDrGroupSuspension &operator=(const CHpEvaDrGroupSuspension &) = delete;

private:
    std::string m_group;
    SHpEvaCell m_cell;
    const CHpEvaCliTool *m_tool;
    qorin_pdk_4_4::CFiErrorManagerPtr m_errors;
};

#endif
