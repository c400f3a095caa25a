#ifndef HPEVA_RULES_H
#define HPEVA_RULES_H

#include <cstdint>
#include <string>

#include "hpeva_cell.h"
#include "hpeva_nodefilter.h"
#include "hpeva_vdisk.h"

// The provider's rules: pure functions over the records SSSU gave and the host's arguments,
// with no process, no SSSU run and no plug-in state behind them, so that each is unit-tested
// on its own (tests/rules/). An operation reads the arrays, asks these, and acts. The checks
// of the coming operations belong here too, one group per family: selection, DR groups, the
// free snapshot name, the presentation walk of an import. Rules over names alone are in
// hpeva_disknames.h; the cell of a WWN is CHpEvaCliTool::findCell.
namespace hpeva_rules {

// Bits of the enumerate_nodes flags.
const int FLAG_SERVED = 0x10;
const int FLAG_NO_SNAPSHOTS = 0x40;
const int FLAG_NO_ACTIVE = 0x80;

// Flags other than none that lack FLAG_SERVED are refused before anything else.
bool flagsRefused(int flags);
// The filter's provider, vendor and product keys against "tamlin", "HP", "HSV".
bool providerPasses(const CHpEvaNodeFilter &filter);
// The filter's enclosure id and name keys against the cell.
bool cellPasses(const CHpEvaNodeFilter &filter, const SHpEvaCell &cell);
// The filter's node prefix and the flags' choice of snapshots or active disks.
bool diskPasses(const CHpEvaNodeFilter &filter, int flags, const SHpEvaVdisk &disk);
// How the host sees an array's host: the last component of its path below "\Hosts\".
std::wstring hostDisplayName(const std::string &arrayPath);

// Restore. Flags 0, or with bit 0x1 or 0x100, start the pairs; any other flags start none.
const int32_t RESTORE_FLAG_START = 0x1;
const int32_t RESTORE_FLAG_START_TOO = 0x100;
// What a started pair's status element reads.
const int32_t RESTORE_STATUS_STARTED = 16;
// Seconds between two reads of a disk whose copy still runs.
const uint32_t RESTORE_WAIT_SECONDS = 4;

enum class RestoreRefusal { NONE, PRIMARY_NOT_ACTIVE, SECONDARY_NOT_ACTIVE };

bool restoreStarts(int32_t flags);
// Only an active disk is restored, and only from an active disk (a snapclone); the primary
// is looked at first.
RestoreRefusal restoreRefusal(const SHpEvaVdisk &primary, const SHpEvaVdisk &secondary);
// The copy out of secondary has ended when the array reports no sharing relationship left.
bool restoreCopyEnded(const SHpEvaVdisk &secondary);

}  // namespace hpeva_rules

#endif
