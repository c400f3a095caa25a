#ifndef HPEVA_SNAPSHOTNAMES_H
#define HPEVA_SNAPSHOTNAMES_H

#include <string>
#include <vector>

#include "hpeva_vdisk.h"

// The rule behind CHpEvaCliTool::getNextSnapshotName, kept apart from the SSSU run that lists
// the names so that it is tested on its own; hpeva_rules.h offers it with the other rules.
namespace hpeva_rules {

// Longest name or path handed to SSSU; longer ones are cut.
const size_t SNAPSHOT_NAME_MAX = 254;

// The first free name "<familyname><suffix><counter>" for a copy of source, the counter in
// lower-case hexadecimal of at least three digits from 000, and its expected full path: inside
// the source's family when inFamily is set (a snapshot), else beside the family (a snapclone,
// whose active disk then lies at path + "\ACTIVE"). A candidate is taken when any of the
// existing paths holds its path. False, and nothing chosen, when source is no active disk.
bool freeSnapshotName(const SHpEvaVdisk &source, bool inFamily, const std::string &suffix,
                      const std::vector<std::string> &existing, std::string &name, std::string &path);

}  // namespace hpeva_rules

#endif
