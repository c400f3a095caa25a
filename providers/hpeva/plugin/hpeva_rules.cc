#include "hpeva_rules.h"

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

}  // namespace hpeva_rules
