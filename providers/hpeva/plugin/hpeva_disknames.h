#ifndef HPEVA_DISKNAMES_H
#define HPEVA_DISKNAMES_H

#include <string>

#include "hpeva_vdisk.h"

// How a virtual disk record reads: whether it is whole enough to act on, whether it is a
// snapshot, and the name the host shows for it.

// Identity, path, cell identity and cell name are all known.
bool isCompleteDisk(const SHpEvaVdisk &disk);
// Anything whose path isn't an active disk's; a record without a path is none.
bool isSnapshotDisk(const SHpEvaVdisk &disk);
// "HP##HSV##<cell>##<path>", the path without "\Virtual Disks\" in front and, for an active
// disk, without "\ACTIVE" behind.
std::string getDiskDisplayName(const SHpEvaVdisk &disk);
// Whether the disk's own name (its family's, for an active disk) is one the provider gives
// the copies it makes: a name, "_vsnap", "_snap", "_clone" or "_drclone", and a counter of
// at least three lower-case hexadecimal digits.
bool isCopyName(const SHpEvaVdisk &disk);

#endif
