#include "hpeva_rules.h"

#include <cstdlib>

#include "cfistringtool.h"
#include "hpeva_disknames.h"

using namespace qorin_pdk_4_4;

namespace hpeva_rules {

namespace {

const char kProvider[] = "tamlin";
const char kVendor[] = "HP";
const char kProduct[] = "HSV";
const char kActiveMarker[] = "ACTIVE";

}  // namespace

bool flagsRefused(int flags)
{
    return flags != 0 && (flags & FLAG_SERVED) == 0;
}

bool providerPasses(const CHpEvaNodeFilter &filter)
{
    return filter.matches("provider_name", kProvider) && filter.matches("vendor_id", kVendor) &&
           filter.matches("product_id", kProduct);
}

bool cellPasses(const CHpEvaNodeFilter &filter, const SHpEvaCell &cell)
{
    return filter.matches("enclosure_id", cell.objectwwn) &&
           filter.matches("enclosure_name", CFiStringTool::wstr2str(cell.cellname));
}

bool diskPasses(const CHpEvaNodeFilter &filter, int flags, const SHpEvaVdisk &disk)
{
    if (!filter.containedIn("node_prefix", disk.objectname)) {
        return false;
    }
    const bool snapshot = isSnapshotDisk(disk);
    return !(snapshot && (flags & FLAG_NO_SNAPSHOTS) != 0) && !(!snapshot && (flags & FLAG_NO_ACTIVE) != 0);
}

std::wstring hostDisplayName(const std::string &arrayPath)
{
    std::wstring name = CFiStringTool::str2wstr(arrayPath);
    const size_t slash = name.rfind(L'\\');
    return slash == std::wstring::npos ? name : name.substr(slash + 1);
}

bool restoreStarts(int32_t flags)
{
    return flags == 0 || (flags & (RESTORE_FLAG_START | RESTORE_FLAG_START_TOO)) != 0;
}

RestoreRefusal restoreRefusal(const SHpEvaVdisk &primary, const SHpEvaVdisk &secondary)
{
    if (primary.objectname.find(kActiveMarker) == std::string::npos) {
        return RestoreRefusal::PRIMARY_NOT_ACTIVE;
    }
    if (secondary.objectname.find(kActiveMarker) == std::string::npos) {
        return RestoreRefusal::SECONDARY_NOT_ACTIVE;
    }
    return RestoreRefusal::NONE;
}

bool restoreCopyEnded(const SHpEvaVdisk &secondary)
{
    return secondary.sharingrelationship == "none";
}

void pushRefusal(const CFiErrorManagerPtr &errors, const SHpEvaRefusal &refused, qrn_eseverity severity,
                 const char *file, int line)
{
    std::vector<icu::Formattable> arguments;
    for (const std::string &argument : refused.arguments) {
        arguments.emplace_back(CFiStringTool::str2ustr(argument));
    }
    hpeva_msg::push(errors, refused.key, arguments.data(), static_cast<int>(arguments.size()), severity, file, line);
}

const char *const METHOD_VSNAP = "HPEVA_VSnap";
const char *const METHOD_SNAPSHOT = "HPEVA_Snapshot";
const char *const METHOD_SNAPCLONE = "HPEVA_Snapclone";
const char *const METHOD_DR_SNAPCLONE = "HPEVA_DRGroup_Snapclone";

SHpEvaRefusal selectionRefusal(const SHpEvaVdisk &disk, const std::string &method, const std::string &udidDisk,
                               const std::string &groupNode)
{
    if (disk.objectname.find(kActiveMarker) == std::string::npos) {
        return refusal(hpeva_msg::MSG_ERROR_VERIFY_FAILED_OPERATIONS_ON_VSNAP_NOT_SUPPORTED, disk.objectname, udidDisk,
                       groupNode);
    }
    if (method == METHOD_SNAPCLONE && disk.childvdiskname != "n/a") {
        return refusal(hpeva_msg::MSG_ERROR_VERIFY_FAILED_CREATE_CLONE_WITH_VSNAP_PRESENT_NOT_SUPPORTED,
                       disk.objectname, udidDisk, groupNode);
    }
    return SHpEvaRefusal();
}

SHpEvaRefusal drMembershipRefusal(const SHpEvaVdisk &disk, bool first, const SHpEvaDrGroup &group)
{
    if (disk.drmgroupname.empty()) {
        return refusal(hpeva_msg::MSG_ERROR_NO_DR_GROUP_PRESENT_FOR_VDISK, disk.objectname);
    }
    if (!first && disk.drmgroupname != group.objectname) {
        return refusal(hpeva_msg::MSG_ERROR_DR_GROUP_NAMES_DONT_MATCH, disk.objectname, disk.drmgroupname,
                       group.objectname);
    }
    return SHpEvaRefusal();
}

SHpEvaRefusal drGroupRefusal(const SHpEvaVdisk &disk, const std::vector<SHpEvaCell> &cells, SHpEvaDrGroup &group)
{
    if (group.drmmode != "source") {
        return refusal(hpeva_msg::MSG_ERROR_DR_GROUP_IS_NOT_SOURCED_ON_THIS_CELL_ERROR, disk.objectname,
                       group.objectname, group.drmmode);
    }
    if (group.membercondition != "normal") {
        return refusal(hpeva_msg::MSG_ERROR_DR_GROUP_MEMBER_CONDITION_ERROR, group.objectname, group.membercondition);
    }
    if (group.operationalstate != "good") {
        return refusal(hpeva_msg::MSG_ERROR_DR_GROUP_OPERATIONAL_STATE_ERROR, group.objectname, group.operationalstate);
    }
    if (group.links.empty()) {
        return refusal(hpeva_msg::MSG_ERROR_DR_GROUP_NO_REMOTE_CELL_LINKS_DETECTED, group.objectname,
                       group.parentstoragecellname);
    }
    const std::wstring remote = CFiStringTool::str2wstr(group.links.front().scellname);
    group.remoteCell = SHpEvaCell();
    for (const SHpEvaCell &cell : cells) {
        if (cell.cellname == remote) {
            group.remoteCell = cell;
        }
    }
    if (group.remoteCell.cellname.empty()) {
        return refusal(hpeva_msg::MSG_ERROR_DR_GROUP_NO_REMOTE_CELL_LINKS_FOUND, group.objectname,
                       group.links.front().scellname);
    }
    return SHpEvaRefusal();
}

SHpEvaPresentationWalk walkPresentations(const std::map<std::string, int32_t> &presentations,
                                         const std::string &sssuHost, bool singleHost, bool deport, bool shared,
                                         int32_t recordedLun)
{
    SHpEvaPresentationWalk walk;
    for (const auto &[host, lun] : presentations) {
        if (host == sssuHost) {
            if (deport) {
                walk.deletions.push_back(host);
                if (singleHost) {
                    walk.outcome = SHpEvaPresentationWalk::DEPORTED;
                    return walk;
                }
                continue;
            }
            if (!singleHost) {
                walk.outcome = SHpEvaPresentationWalk::ALREADY_MAPPED;
                return walk;
            }
            if (!shared || (recordedLun != -1 && lun == recordedLun)) {
                walk.mapped = true;
                continue;
            }
            if (recordedLun != -1) {
                walk.outcome = SHpEvaPresentationWalk::LUN_MISMATCH;
                return walk;
            }
            // No record: the host's presentation goes like any other, and the map's LUN comes.
        }
        // Another host: only an import for this host alone, or a deport from all, removes it.
        if (deport != singleHost) {
            walk.deletions.push_back(host);
        }
    }
    return walk;
}

int32_t lunOfText(const std::string &text)
{
    const int32_t number = atoi(text.c_str());
    return isLunNumber(number) ? number : -1;
}

std::vector<int32_t> lunCandidates(const std::vector<std::string> &recorded, const std::vector<std::string> &offered)
{
    std::vector<int32_t> luns;
    for (const std::vector<std::string> *values : {&recorded, &offered}) {
        for (const std::string &value : *values) {
            if (!value.empty()) {
                luns.push_back(atoi(value.c_str()));
            }
        }
    }
    return luns;
}

}  // namespace hpeva_rules
