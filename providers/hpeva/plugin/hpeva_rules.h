#ifndef HPEVA_RULES_H
#define HPEVA_RULES_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "hpeva_cell.h"
#include "hpeva_drgroup.h"
#include "hpeva_messages.h"
#include "hpeva_nodefilter.h"
#include "hpeva_snapshotnames.h"
#include "hpeva_vdisk.h"

// The provider's rules: pure functions over the records SSSU gave and the host's arguments,
// with no process, no SSSU run and no plug-in state behind them, so that each is unit-tested
// on its own (tests/rules/). An operation reads the arrays, asks these, and acts. The checks
// of the coming operations belong here too, one group per family: selection, DR groups, the
// free snapshot name, the presentation walk of an import. Rules over names alone are in
// hpeva_disknames.h; the cell of a WWN is CHpEvaCliTool::findCell; the free snapshot name,
// which the SSSU layer asks, is in hpeva_snapshotnames.h and included here.
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

// A check that failed: the catalog key to raise and its arguments, in the order its texts
// take them. Empty (false) when the check passed.
struct SHpEvaRefusal {
    const char *key = nullptr;
    std::vector<std::string> arguments;
    explicit operator bool() const { return key != nullptr; }
};

// Made only through a key's constant, so that the compiler holds it to the key's count.
template <int N, class... Args>
SHpEvaRefusal refusal(const SHpEvaMessageKey<N> &key, const Args &...args)
{
    static_assert(sizeof...(Args) == N, "the catalog's texts of this key take another number of arguments");
    return SHpEvaRefusal{key.key, {std::string(args)...}};
}

// Raises a refusal as its catalog message, with text arguments.
void pushRefusal(const qorin_pdk_4_4::CFiErrorManagerPtr &errors, const SHpEvaRefusal &refused, qrn_eseverity severity,
                 const char *file, int line);

// The snapshot methods.
extern const char *const METHOD_VSNAP;
extern const char *const METHOD_SNAPSHOT;
extern const char *const METHOD_SNAPCLONE;
extern const char *const METHOD_DR_SNAPCLONE;

// Selection: a copy is made of an active disk only, and a snapclone only of a disk without
// snapshots. Any other method is checked as a vsnap. udidDisk is the disk part of the node's
// UDID, groupNode the name of the split node's group node.
SHpEvaRefusal selectionRefusal(const SHpEvaVdisk &disk, const std::string &method, const std::string &udidDisk,
                               const std::string &groupNode);

// DR groups. Whether disk may join the group snapclone: it belongs to a DR group and, unless it
// is the list's first node, to the group read for that first node.
SHpEvaRefusal drMembershipRefusal(const SHpEvaVdisk &disk, bool first, const SHpEvaDrGroup &group);
// Whether the group read for the first node can be copied from here: this cell is its source,
// its members are normal, its state is good and its first link names a reachable cell, which
// becomes its remoteCell (the last of cells with that name, compared exactly).
SHpEvaRefusal drGroupRefusal(const SHpEvaVdisk &disk, const std::vector<SHpEvaCell> &cells, SHpEvaDrGroup &group);

// --- Import and deport ---

// What an import or deport does with the presentations a disk has, walked in the map's
// order, for one host (sssuHost, the array's path of it).
struct SHpEvaPresentationWalk {
    enum Outcome {
        // Walked to the end: deport is done, an import presents the disk unless mapped.
        WALKED,
        // A single-host deport removed the host's presentation and stops there.
        DEPORTED,
        // A plain import found the host presented: nothing changes.
        ALREADY_MAPPED,
        // A shared disk is presented to the host on another LUN than its record says.
        LUN_MISMATCH,
    };
    // The hosts whose presentation goes, in this order, before the outcome holds.
    std::vector<std::string> deletions;
    Outcome outcome = WALKED;
    // The host keeps the presentation it has.
    bool mapped = false;
};

// shared: the disk takes its LUN from the LUN map; recordedLun is the map's number for it,
// -1 for none. A shared import whose host has the disk without a record gives up that
// presentation, so that a LUN from the map replaces it.
SHpEvaPresentationWalk walkPresentations(const std::map<std::string, int32_t> &presentations,
                                         const std::string &sssuHost, bool singleHost, bool deport, bool shared,
                                         int32_t recordedLun);

// A LUN the array takes: 0 (the array chooses) to 255.
inline bool isLunNumber(int32_t number)
{
    return number >= 0 && number <= 255;
}
// A LUN as a record gives it: its atoi reading, or -1 when that is no LUN.
int32_t lunOfText(const std::string &text);

// The LUNs a shared disk tries, in order, as atoi reads them: the number on record for it
// (once more, when it has just failed), then the map's free numbers as offered, lowest
// first. Empty texts are left out; a number that is no LUN stays, to be reported and passed.
std::vector<int32_t> lunCandidates(const std::vector<std::string> &recorded, const std::vector<std::string> &offered);

}  // namespace hpeva_rules

#endif
