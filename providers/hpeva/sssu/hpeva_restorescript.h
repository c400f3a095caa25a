#ifndef HPEVA_RESTORESCRIPT_H
#define HPEVA_RESTORESCRIPT_H

#include <vector>

#include <ace/SString.h>

#include "hpeva_restoresettings.h"
#include "hpeva_vdisk.h"

// One command of a restore script, and whether it is traced as it goes in.
struct SHpEvaScriptCommand {
    ACE_WString text;
    bool traced;
};

// The command lists of the two ways to restore a disk (primary) from a snapclone
// (secondary): pure functions of the records as a FIND VDISK gave them and of the settings.
namespace hpeva_restore {

// The primary becomes a container, the secondary is copied into it and the primary's
// presentations come back on their old LUNs. Disks go by family name.
std::vector<SHpEvaScriptCommand> containerCopyCommands(const SHpEvaVdisk &primary, const SHpEvaVdisk &secondary,
                                                       const SHpEvaRestoreSettings &settings);

// The two disks trade world wide LUN names and family names, and each side's presentations
// come back on the disk of its old path. Disks go by full path.
std::vector<SHpEvaScriptCommand> swapCommands(const SHpEvaVdisk &primary, const SHpEvaVdisk &secondary);

}  // namespace hpeva_restore

#endif
