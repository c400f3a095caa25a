#ifndef HPEVA_RULES_H
#define HPEVA_RULES_H

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

}  // namespace hpeva_rules

#endif
