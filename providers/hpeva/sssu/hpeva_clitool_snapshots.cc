// Snapshots, vsnaps and snapclones of an active disk. Each create is three SSSU runs: the
// cell's disk names (for a free name), the add command, and the new disk read back. Nothing
// is reserved between choosing a name and adding the disk: a name taken meanwhile by another
// process ends in SSSU's error line.
#include <string>
#include <vector>

#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "hpeva_clitool.h"
#include "hpeva_clitool_run.h"
#include "hpeva_messages.h"
#include "hpeva_process.h"
#include "hpeva_snapshotnames.h"

using namespace qorin_pdk_4_4;
using namespace hpeva_cli;

namespace {

const char kSourceFile[] = "providers/hpeva/hpeva_clitool";
const char kActive[] = "ACTIVE";
const char kClonePathEnd[] = "\\ACTIVE";

// Each text brings its own blanks: the command ends in two options with two blanks between
// them and one at the end.
const wchar_t *const kAllocation[] = {L" ALLOCATION_POLICY=DEMAND ", L" ALLOCATION_POLICY=FULLY "};
const wchar_t *const kRedundancy[] = {L" REDUNDANCY=Vraid0 ", L" REDUNDANCY=Vraid1 ", L" REDUNDANCY=Vraid5 "};

icu::Formattable text(const std::string &value)
{
    return icu::Formattable(CFiStringTool::str2ustr(value));
}

ACE_WString addCommand(const wchar_t *verb, const std::string &name, const std::string &source)
{
    ACE_WString command(verb);
    command += L"\"";
    command += CFiStringTool::str2tstr(name);
    command += L"\" VDISK=\"";
    command += CFiStringTool::str2tstr(source);
    command += L"\"";
    return command;
}

void run(const CHpEvaCliTool &tool, const SHpEvaVdisk &source, const ACE_WString &command)
{
    processTraceLog()->trace(2, "executing command [%S]", command.c_str());
    std::vector<std::string> lines;
    runScript(tool, source, command, CFiStringTool::wstr2tstr(source.cellname), lines);
}

}  // namespace

int CHpEvaCliTool::getNextSnapshotName(const SHpEvaVdisk &source, int inFamily, const std::string &suffix,
                                       std::string &name, std::string &path) const
{
    CFiTraceLogFunction function(processTraceLog(), "CHpEvaCliTool::getNextSnapshotName");
    const std::vector<std::string> existing = listVirtualDisks(source);
    if (!hpeva_rules::freeSnapshotName(source, inFamily != 0, suffix, existing, name, path)) {
        pushMessage(processErrorManager(), hpeva_msg::MSG_ERROR_VSNAP_OF_VSNAP_NOT_SUPPORTED, QRN_SEVERITY_ERROR,
                    kSourceFile, __LINE__, text(source.objectname));
        return QRN_ERR_INVALID_ARGUMENT;
    }
    processTraceLog()->trace(3, "next snapshot name [%s], path [%s]", name.c_str(), path.c_str());
    return QRN_OK;
}

int CHpEvaCliTool::createVSnap(const SHpEvaVdisk &source, SHpEvaVdisk &target, const std::string &suffix,
                               int allocation, int redundancy) const
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCliTool::createVSnap");
    if (allocation < ALLOCATION_DEMAND || allocation > ALLOCATION_FULLY || redundancy < REDUNDANCY_VRAID0 ||
        redundancy > REDUNDANCY_VRAID5) {
        log->trace(1, "CHpEvaCliTool::createVSnap() allocation [%d] or redundancy [%d] unknown.", allocation,
                   redundancy);
        return QRN_ERR_INVALID_ARGUMENT;
    }
    std::string name;
    std::string path;
    const int result = getNextSnapshotName(source, 1, suffix, name, path);
    if (result != QRN_OK) {
        log->trace(1, "CHpEvaCliTool::createVSnap() getNextSnapshotName failed with error [%d].", result);
        return result;
    }
    ACE_WString command = addCommand(L"ADD SNAPSHOT ", name, source.objectname);
    command += kAllocation[allocation];
    command += kRedundancy[redundancy];
    run(*this, source, command);
    target = getVirtualDiskDetail(source, path);
    return QRN_OK;
}

int CHpEvaCliTool::createSnapClone(const SHpEvaVdisk &source, SHpEvaVdisk &target, const std::string &suffix) const
{
    CFiTraceLogFunction function(processTraceLog(), "CHpEvaCliTool::createSnapClone");
    if (source.objectname.find(kActive) == std::string::npos) {
        pushMessage(processErrorManager(), hpeva_msg::MSG_ERROR_SNAPCLONE_OF_VSNAP_NOT_SUPPORTED, QRN_SEVERITY_ERROR,
                    kSourceFile, __LINE__, text(source.objectname));
        return QRN_ERR_FAILED;
    }
    std::string name;
    std::string path;
    const int result = getNextSnapshotName(source, 0, suffix, name, path);
    if (result != QRN_OK) {
        return result;
    }
    run(*this, source, addCommand(L"ADD COPY ", name, source.objectname));
    // A snapclone is a family of its own, with its own active disk.
    target = getVirtualDiskDetail(source, path + kClonePathEnd);
    return QRN_OK;
}
