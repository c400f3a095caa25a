// CHpEvaPlugin: the copies of a snapshot group come into being. Each pending node of the
// session gets one disk by its method and its target's UDID in the session; a DR group is
// suspended once for all its copies. Nothing made is taken back: on failure the copies made
// stay, their entries stay done, and a later make of the same session makes only the rest.
#include "hpeva_plugin.h"

#include <string>
#include <vector>

#include "cfisession.h"
#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "cfiudid.h"
#include "hpeva_disknames.h"
#include "hpeva_drgroupsuspension.h"
#include "hpeva_privatedata.h"
#include "hpeva_rules.h"

using namespace qorin_pdk_4_4;
using namespace hpeva_rules;

namespace {

const char kSourceFile[] = "providers/hpeva/hpeva_plugin_creation";

// How each method makes its copy. "any" makes a snapclone.
struct SMethod {
    const char *name;
    enum { VSNAP, SNAPCLONE, DR_SNAPCLONE } kind;
    int allocation;
    const char *suffix;
    const SHpEvaMessageKey<1> *failure;
};
const SMethod kMethods[] = {
    {METHOD_VSNAP, SMethod::VSNAP, CHpEvaCliTool::ALLOCATION_DEMAND, "_vsnap",
     &hpeva_msg::MSG_ERROR_VSNAP_CREATION_FAILED},
    {METHOD_SNAPSHOT, SMethod::VSNAP, CHpEvaCliTool::ALLOCATION_FULLY, "_snap",
     &hpeva_msg::MSG_ERROR_VSNAP_CREATION_FAILED},
    {METHOD_DR_SNAPCLONE, SMethod::DR_SNAPCLONE, 0, "_drclone",
     &hpeva_msg::MSG_ERROR_DR_GROUP_SNAPCLONE_CREATION_FAILED},
    {METHOD_SNAPCLONE, SMethod::SNAPCLONE, 0, "_clone", &hpeva_msg::MSG_ERROR_SNAPCLONE_CREATION_FAILED},
    {"any", SMethod::SNAPCLONE, 0, "_clone", &hpeva_msg::MSG_ERROR_SNAPCLONE_CREATION_FAILED},
};

// The wait for a new snapclone to leave its in-progress state: at most two sleeps of four
// seconds each. A clone still starting after that is no failure.
const int kCloneSleeps = 2;
const uint32_t kCloneSleepSeconds = 4;
const char kCloneInProgress[] = "snapclone_in_progress";

const SMethod *methodNamed(const std::string &name)
{
    for (const SMethod &method : kMethods) {
        if (name == method.name) {
            return &method;
        }
    }
    return nullptr;
}

icu::Formattable text(const std::string &value)
{
    return icu::Formattable(CFiStringTool::str2ustr(value));
}

}  // namespace

int CHpEvaPlugin::makeSnapshots(CFiSessionPtr &session)
{
    CFiTraceLogFunction traceFunction(m_traceLog, "CHpEvaPlugin::makeSnapshots");
    return guard("makeSnapshots", __LINE__).run([&] {
        if (session.isNull()) {
            return QRN_ERR_INVALID_ARGUMENT;
        }
        const std::vector<SFiSessionEntry> pending = session->getPendingEntries();
        CHpEvaCliTool tool = newCliTool();
        CFiPrivateDataFactoryPtr factory = privateDataFactory();
        std::vector<SHpEvaVdisk> clones;
        // This call's copies, "path (UDID)", told to the administrator when a later step fails.
        std::vector<std::string> made;
        int wanted = 0;
        for (const SFiSessionEntry &entry : pending) {
            wanted += isInterposerNode(entry.nodeName) ? 1 : 0;
        }
        auto tellLeftBehind = [&] {
            if (made.empty()) {
                return;
            }
            std::string list;
            for (const std::string &copy : made) {
                list += (list.empty() ? "" : ", ") + copy;
            }
            trace(1, "makeSnapshots(): [%zu] copies made before the failure stay: %s", made.size(), list.c_str());
            pushMessage(m_errorManager, hpeva_msg::MSG_ERROR_SNAPSHOTS_LEFT_AFTER_FAILURE, QRN_SEVERITY_WARNING,
                        kSourceFile, __LINE__, icu::Formattable(static_cast<int32_t>(made.size())),
                        icu::Formattable(static_cast<int32_t>(wanted)), text(list));
        };
        SHpEvaDrGroup group;
        bool groupTaken = false;
        CHpEvaDrGroupSuspension suspension(&tool, m_errorManager);
        try {
            for (const SFiSessionEntry &entry : pending) {
                if (!isInterposerNode(entry.nodeName)) {
                    continue;
                }
                const CFiUdid udid(entry.nodeName);
                CFiPrivateDataPtr found = factory.isNull() ? CFiPrivateDataPtr() : factory->find(entry.nodeName, false);
                auto *data = found.isNull() ? nullptr : dynamic_cast<CHpEvaPrivateData *>(found.get());
                SHpEvaVdisk source = data != nullptr ? data->getSourceDisk() : SHpEvaVdisk();
                if (!isCompleteDisk(source)) {
                    // select ran in another process, or on a node the host never initialised.
                    source = tool.findVirtualDisk(cells, udid.getEnclosure(), udid.getDisk());
                }
                const SMethod *method = methodNamed(entry.method);
                if (method == nullptr) {
                    tellLeftBehind();
                    pushMessage(m_errorManager, hpeva_msg::MSG_ERROR_INVALID_SPLIT_TYPE, QRN_SEVERITY_ERROR,
                                kSourceFile, __LINE__, text(entry.method));
                    return QRN_ERR_FAILED;
                }
                SHpEvaVdisk copied = source;
                SHpEvaVdisk target;
                int result = QRN_OK;
                if (method->kind == SMethod::DR_SNAPCLONE) {
                    if (!groupTaken) {
                        // The group, its state and its remote cell are known only from select in
                        // this process; without them nothing is suspended.
                        if (data == nullptr || data->getDrGroup().remoteCell.cellname.empty()) {
                            tellLeftBehind();
                            pushMessage(m_errorManager, hpeva_msg::MSG_ERROR_DR_GROUP_NOT_SELECTED, QRN_SEVERITY_ERROR,
                                        kSourceFile, __LINE__, text(source.objectname));
                            return QRN_ERR_NOT_DONE;
                        }
                        group = data->getDrGroup();
                        groupTaken = true;
                        suspension.suspend(source, source.drmgroupname);
                    }
                    copied = tool.getVirtualDiskDetail(group.remoteCell, source.remotevirtualdiskname);
                    result = tool.createSnapClone(copied, target, method->suffix);
                } else if (method->kind == SMethod::VSNAP) {
                    result = tool.createVSnap(source, target, method->suffix, method->allocation,
                                              CHpEvaCliTool::REDUNDANCY_VRAID0);
                } else {
                    result = tool.createSnapClone(source, target, method->suffix);
                }
                if (result != QRN_OK) {
                    tellLeftBehind();
                    pushMessage(m_errorManager, *method->failure, QRN_SEVERITY_ERROR, kSourceFile, __LINE__,
                                text(copied.objectname));
                    return QRN_ERR_NOT_DONE;
                }
                if (method->kind != SMethod::VSNAP) {
                    clones.push_back(target);
                }
                if (data != nullptr) {
                    data->setTargetDisk(target);
                }
                CFiUdid targetUdid(udid);
                targetUdid.setEnclosure(target.objectwwn);
                targetUdid.setDisk(target.wwlunid);
                session->setTarget(entry.nodeName, targetUdid.toTString().c_str());
                made.push_back(target.objectname + " (" + targetUdid.toString() + ")");
                trace(3, "makeSnapshots(): made [%s] of [%s]", made.back().c_str(), copied.objectname.c_str());
            }
            // Before the wait: the remote copies fall behind for as long as the group is
            // suspended.
            suspension.resume();

            for (const SHpEvaVdisk &clone : clones) {
                SHpEvaVdisk current = tool.getVirtualDiskDetail(clone, clone.objectname);
                for (int sleeps = kCloneSleeps; current.sharingrelationship == kCloneInProgress && sleeps > 0;
                     --sleeps) {
                    trace(6, "snapclone_in_progress, sleeping 4 seconds [%s]", current.objectname.c_str());
                    env()->sleepForSeconds(kCloneSleepSeconds);
                    current = tool.getVirtualDiskDetail(clone, clone.objectname);
                }
            }
        } catch (...) {
            tellLeftBehind();
            throw;
        }
        return QRN_OK;
    });
}
