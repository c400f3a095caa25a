#include "rules.h"

#include "text_util.h"

namespace evasim {

const std::vector<Rule> &Rules::all()
{
    static const std::vector<Rule> list{
        {"snapshot-of-snapshot", "ADD SNAPSHOT", "a snapshot of a snapshot",
         "Cannot create a snapshot of a snapshot (<disk>)", false},
        {"snapshot-of-container", "ADD SNAPSHOT", "a snapshot of a container",
         "Cannot create a snapshot of a container (<disk>)", false},
        {"copy-of-snapshot", "ADD COPY", "a snapclone of a snapshot", "Cannot create a copy of a snapshot (<disk>)",
         true},
        {"copy-of-container", "ADD COPY", "a snapclone of a container", "Cannot create a copy of a container (<disk>)",
         false},
        {"snapclone-with-snapshots", "ADD COPY", "a snapclone of a disk that has snapshots",
         "Cannot create a snapclone of a Vdisk that has snapshots (<disk>)", false},
        {"second-copy", "ADD COPY", "a copy of a disk whose copy is still running",
         "Cannot create a copy of a Vdisk while its copy <copy> is in progress", true},
        {"copy-of-unfinished-copy", "ADD COPY", "a copy of a disk that is still being copied into",
         "Cannot copy a Vdisk while it is being copied into (<disk>)", true},
        {"copies-per-source", "ADD SNAPSHOT, ADD COPY",
         "more snapshots and running copies of one disk than copies_per_source",
         "The Vdisk <disk> already has the most snapshots and copies allowed (<n>)", true},
        {"dr-destination-not-suspended", "ADD COPY",
         "a copy of a DR group's destination disk while the group is not suspended",
         "Cannot copy <disk>: DR group <group> is not suspended", true},
        {"container-source-writeback",
         "ADD COPY ... CONTAINER=", "a copy into a container from a source in write-back mode",
         "Cannot copy into a container while the source Vdisk <disk> is in write-back mode", true},
        {"container-size", "ADD COPY ... CONTAINER=", "a copy into a container of another capacity",
         "The capacity of container <container> does not match the source Vdisk", false},
        {"not-a-container", "ADD COPY ... CONTAINER=", "a copy into a disk that is no container",
         "<disk> is not a container", false},
        {"name-taken", "ADD VDISK, ADD SNAPSHOT, ADD COPY, SET VDISK NAME=",
         "a name its folder or family already has, in any case", "<path> already exists", false},
        {"wwn-taken", "ADD VDISK, ADD SNAPSHOT, SET VDISK WORLD_WIDE_LUN_NAME=",
         "a world wide LUN name the cell already has", "World wide LUN name <wwn> is already in use", false},
        {"space", "ADD VDISK, ADD SNAPSHOT, ADD COPY", "a disk, snapshot or copy larger than the free space",
         "Not enough free space in the disk group (<needed> needed, <free> free)", false},
        {"delete-presented", "DELETE VDISK", "deleting a presented disk",
         "Cannot delete Vdisks when LUNs are still present.", false},
        {"delete-with-snapshots", "DELETE VDISK", "deleting a disk that has snapshots",
         "Cannot delete Vdisks when snapshots are still present.", false},
        {"delete-dr-member", "DELETE VDISK", "deleting a DR group member",
         "Cannot delete a Vdisk that is a member of a DR group.", false},
        {"delete-copy-source", "DELETE VDISK", "deleting the source of a running copy",
         "Cannot delete a Vdisk while it is being copied.", true},
        {"container-presented", "SET VDISK CHANGE_INTO_CONTAINER", "making a presented disk a container",
         "Cannot change a presented Vdisk into a container (<disk>)", false},
        {"container-with-snapshots", "SET VDISK CHANGE_INTO_CONTAINER", "making a disk with snapshots a container",
         "Cannot change a Vdisk with snapshots into a container (<disk>)", false},
        {"container-dr-member", "SET VDISK CHANGE_INTO_CONTAINER", "making a DR group member a container",
         "Cannot change a DR group member into a container (<disk>)", true},
        {"container-copy-running", "SET VDISK CHANGE_INTO_CONTAINER",
         "making the source or target of a running copy a container",
         "Cannot change a Vdisk into a container while a copy runs (<disk>)", true},
        {"present-container", "ADD LUN", "presenting a container", "Cannot present a container (<disk>)", false},
        {"lun-in-use", "ADD LUN", "a LUN number the host already uses", "LUN <lun> is already in use on host <host>",
         false},
        {"presented-twice", "ADD LUN", "presenting a disk to a host it is presented to",
         "<disk> is already presented to <host> as LUN <lun>", false},
    };
    return list;
}

const Rule *Rules::find(const std::string &name)
{
    for (const Rule &r : all()) {
        if (iequals(name, r.name)) {
            return &r;
        }
    }
    return nullptr;
}

}  // namespace evasim
