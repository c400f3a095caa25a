#include "hpeva_disknames.h"

#include <regex>

#include "cfistringtool.h"

using namespace qorin_pdk_4_4;

namespace {

const char kActive[] = "\\ACTIVE";
const char kVirtualDisks[] = "\\Virtual Disks\\";

}  // namespace

bool isCompleteDisk(const SHpEvaVdisk &disk)
{
    return !disk.wwlunid.empty() && !disk.objectname.empty() && !disk.objectwwn.empty() && !disk.cellname.empty();
}

bool isSnapshotDisk(const SHpEvaVdisk &disk)
{
    return !disk.objectname.empty() && disk.objectname.find(kActive) == std::string::npos;
}

std::string getDiskDisplayName(const SHpEvaVdisk &disk)
{
    std::string path = disk.objectname;
    if (path.compare(0, sizeof kVirtualDisks - 1, kVirtualDisks) == 0) {
        path.erase(0, sizeof kVirtualDisks - 1);
    }
    // An active disk is shown by its family's path; "\ACTIVE" is its last component.
    if (path.find(kActive) != std::string::npos) {
        path.erase(path.size() - (sizeof kActive - 1));
    }
    return "HP##HSV##" + CFiStringTool::wstr2str(disk.cellname) + "##" + path;
}

bool isCopyName(const SHpEvaVdisk &disk)
{
    static const std::regex copy("^.+_(vsnap|snap|clone|drclone)[0-9a-f]{3,}$");
    std::string path = disk.objectname;
    if (path.size() > sizeof kActive - 1 &&
        path.compare(path.size() - (sizeof kActive - 1), std::string::npos, kActive) == 0) {
        path.erase(path.size() - (sizeof kActive - 1));
    }
    const size_t slash = path.rfind('\\');
    return std::regex_match(slash == std::string::npos ? path : path.substr(slash + 1), copy);
}
