// CHpEvaPlugin: presenting a node's disk to a host on a LUN, and taking it away. importNode
// is the one operation that changes presentations; deportTree and the interposer's import
// and deport forms all come to it. A shared disk (mode 2) takes its LUN from the LUN map, so
// that it keeps one number across deports, imports and hosts.
#include "hpeva_plugin.h"

#include <memory>

#include "cfisemaphoreguard.h"
#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "cfiudid.h"
#include "hpeva_cliexception.h"
#include "hpeva_disknames.h"
#include "hpeva_privatedata.h"
#include "hpeva_rules.h"

using namespace qorin_pdk_4_4;
using namespace hpeva_rules;

namespace {

const char kSourceFile[] = "providers/hpeva/hpeva_plugin_import";
const int kSharedMode = 2;

icu::Formattable text(const std::string &value)
{
    return icu::Formattable(CFiStringTool::str2ustr(value));
}

icu::Formattable text(const std::wstring &value)
{
    return icu::Formattable(CFiStringTool::tstr2ustr(value));
}

}  // namespace

int CHpEvaPlugin::findArrayHost(const CHpEvaCliTool &tool, const SHpEvaVdisk &disk,
                                const std::vector<std::wstring> &hosts, const SHpEvaMessageKey<3> &unknown,
                                std::string &arrayHost)
{
    std::string name = hosts.empty() ? std::string() : CFiStringTool::wstr2str(hosts.front());
    if (name.empty()) {
        name = env()->computerName();
    }
    if (name.empty()) {
        if (tool.getSSSUHostName(disk, arrayHost, nullptr) != QRN_OK) {
            pushMessage(m_errorManager, hpeva_msg::MSG_ERROR_IMPORT_LOCAL_HOST_INVALID, QRN_SEVERITY_ERROR, kSourceFile,
                        __LINE__, text(name), text(disk.cellname), text(name));
            return QRN_ERR_INVALID_ARGUMENT;
        }
        return QRN_OK;
    }
    if (tool.getSSSUHostName(disk, arrayHost, name.c_str()) != QRN_OK) {
        pushMessage(m_errorManager, unknown, QRN_SEVERITY_ERROR, kSourceFile, __LINE__, text(name), text(disk.cellname),
                    text(name));
        return QRN_ERR_INVALID_ARGUMENT;
    }
    return QRN_OK;
}

void CHpEvaPlugin::waitAfterUnmask()
{
    // The host needs a moment to see a new LUN before the framework reaches for it.
    trace(6, "Sleeeping after unmask operation for [%d] sec", static_cast<int>(postUnmaskWait));
    env()->sleepForSeconds(postUnmaskWait);
}

int CHpEvaPlugin::importNode(std::wstring node, std::vector<std::wstring> hosts, bool, bool singleHost, bool deport,
                             int mode)
{
    CFiTraceLogFunction traceFunction(m_traceLog, "CHpEvaPlugin::importNode");
    return guard("importNode", __LINE__).run([&]() -> int {
        const CFiUdid udid(node);
        const std::string enclosure = udid.getEnclosure();
        const bool shared = (mode & kSharedMode) != 0;
        CHpEvaCliTool tool = newCliTool();

        CFiPrivateDataFactoryPtr factory = privateDataFactory();
        CFiPrivateDataPtr found = factory.isNull() ? CFiPrivateDataPtr() : factory->find(node, false);
        auto *data = dynamic_cast<CHpEvaPrivateData *>(found.get());
        if (data == nullptr) {
            trace(2, "importNode, no private data exists for node [%S]", node.c_str());
        }
        SHpEvaVdisk disk = data != nullptr ? data->getSourceDisk() : SHpEvaVdisk();
        auto lookUp = [&] {
            disk = tool.findVirtualDisk(cells, enclosure, udid.getDisk());
            if (data != nullptr) {
                data->setSourceDisk(disk);
            }
        };
        if (!isCompleteDisk(disk) || disk.password.empty() || disk.hostname.empty()) {
            lookUp();
        }

        std::string arrayHost;
        if (int refused = findArrayHost(tool, disk, hosts, hpeva_msg::MSG_ERROR_DEPORT_HOST_INVALID, arrayHost)) {
            return refused;
        }

        // Picking a number and recording it is one step for every process of the machine:
        // without the lock two imports could both take a number that each map shows free,
        // and the array accepts one number on two hosts. Held until the number is recorded.
        CFiPblmOps &lunMap = getPblmOps();
        std::unique_ptr<CFiSemaphoreGuard> lunMapLock;
        std::string lunKey;
        std::vector<std::string> recorded;
        int32_t lun = -1;
        if (shared) {
            if (!deport) {
                lunMapLock.reset(new CFiSemaphoreGuard(&env()->machineLock(CFiPblmOps::LOCK_KEY)));
            }
            lunMap.getLunKey(CFiStringTool::wstr2str(node), lunKey);
            trace(6, "getLunKey returned [%s]", lunKey.c_str());
            lunMap.getKeyValue(lunKey.c_str(), recorded);
            if (!recorded.empty()) {
                lun = lunOfText(recorded.front());
                if (lun == -1) {
                    trace(3, "lun [%s] returned from cache is not valid.", recorded.front().c_str());
                }
            }
        }

        const SHpEvaPresentationWalk walk =
            walkPresentations(disk.presentations, arrayHost, singleHost, deport, shared, lun);
        for (const std::string &host : walk.deletions) {
            tool.deleteLuns(disk, host.c_str());
        }
        switch (walk.outcome) {
        case SHpEvaPresentationWalk::DEPORTED:
            return QRN_OK;
        case SHpEvaPresentationWalk::ALREADY_MAPPED:
            trace(2, "importNode(): host %s is already mapped to the HP EVA vdisk %s at array [%S].", arrayHost.c_str(),
                  disk.objectname.c_str(), disk.cellname.c_str());
            return QRN_OK;
        case SHpEvaPresentationWalk::LUN_MISMATCH:
            trace(1, "importNode(): OmxSharedDisk udid is unmasked from outside OMX on someother lun");
            return QRN_ERR_PRESENTED_ON_OTHER_LUN;
        case SHpEvaPresentationWalk::WALKED:
            break;
        }
        if (deport) {
            if (singleHost) {
                trace(2, "importNode(): host [%s] is already unmapped to the HP EVA vdisk [%s] at array [%S].",
                      arrayHost.c_str(), disk.objectname.c_str(), disk.cellname.c_str());
            }
            return QRN_OK;
        }
        if (walk.mapped) {
            return QRN_OK;
        }

        if (!shared) {
            // The array chooses the number, and nothing is recorded.
            trace(2, "Exhausted values returned by getNewValue or no value returned");
            trace(3, "Hence, trying to unmask the vdisk without specifying lun");
            tool.addLun(disk, disk.objectname, arrayHost, 0);
            lookUp();
            waitAfterUnmask();
            return QRN_OK;
        }

        if (lun != -1) {
            trace(3, "LUN returned from getKeyValue is [%d]", lun);
            try {
                tool.addLun(disk, disk.objectname, arrayHost, static_cast<unsigned>(lun));
                lunMapLock.reset();
                waitAfterUnmask();
                return QRN_OK;
            } catch (const CHpEvaCliException &) {
                trace(3, "addLun Failed at LUN [%d]", lun);
            }
        }

        // The number is this node's record, its device record goes, and the lock with them: the
        // wait after the unmask holds up no other host's import.
        auto recordLun = [&](const std::string &number, int level) {
            lunMap.setKeyValue(lunKey.c_str(), {number}, enclosure.c_str());
            std::string devKey;
            lunMap.getDevKey(CFiStringTool::wstr2str(node), devKey);
            trace(level, " getdevKey returned [%s]", devKey.c_str());
            lunMap.rmCacheRecord(devKey.c_str());
            lunMapLock.reset();
            waitAfterUnmask();
            return QRN_OK;
        };

        // What other processes recorded since this one last looked counts too.
        if (lunMap.reloadEnclMap(enclosure.c_str()) != 0) {
            trace(2, "importNode(): the LUN records of enclosure [%s] could not be read again", enclosure.c_str());
        }
        std::vector<std::string> offered;
        lunMap.getNewValue(enclosure.c_str(), offered);
        for (const int32_t candidate : lunCandidates(recorded, offered)) {
            if (!isLunNumber(candidate)) {
                trace(2, "lun [%d] returned from cache is not valid.", candidate);
                continue;
            }
            trace(3, "LUN returned from getNewValue is [%d]", candidate);
            try {
                tool.addLun(disk, disk.objectname, arrayHost, static_cast<unsigned>(candidate));
            } catch (const CHpEvaCliException &) {
                trace(3, "addLun Failed at LUN [%d]", candidate);
                continue;
            }
            trace(3, "LUNNO passed to setKeyValue is [%d]", candidate);
            return recordLun(std::to_string(candidate), 3);
        }

        // Every number refused, or none offered: the array chooses, and its choice is recorded.
        trace(2, "Exhausted values returned by getNewValue or no value returned");
        trace(3, "Hence, trying to unmask the vdisk without specifying lun");
        try {
            tool.addLun(disk, disk.objectname, arrayHost, 0);
            lookUp();
        } catch (const CHpEvaCliException &e) {
            trace(1, "importNode failed to addLun for node [%s]", disk.objectname.c_str());
            e.report(m_errorManager);
            return QRN_ERR_FAILED;
        }
        if (int refused = findArrayHost(tool, disk, hosts, hpeva_msg::MSG_ERROR_IMPORT_HOST_INVALID, arrayHost)) {
            return refused;
        }
        const auto chosen = disk.presentations.find(arrayHost);
        if (chosen == disk.presentations.end()) {
            return QRN_OK;
        }
        const int32_t arrayLun = chosen->second;
        trace(3, "importNode: Host [%s] has been mapped to the disk [%s] at lunNo [%d]", arrayHost.c_str(),
              disk.objectname.c_str(), arrayLun);
        // Whatever record held the array's number is stale: the array just gave it to this disk.
        lunMap.rmLunCacheRecord(enclosure.c_str(), static_cast<unsigned>(arrayLun));
        const std::string number = std::to_string(arrayLun);
        trace(6, "LUN passed to setKeyValue is [%s]", number.c_str());
        return recordLun(number, 6);
    });
}

int CHpEvaPlugin::deportTree(qrn_domain *, qrn_domain *node, qrn_accessnode *)
{
    CFiTraceLogFunction traceFunction(m_traceLog, "CHpEvaPlugin::deportTree");
    return guard("deportTree", __LINE__).run([&]() -> int {
        const std::wstring name = nodeName(node);
        if (name.empty()) {
            trace(1, "deportTree(): no node name was given");
            return QRN_ERR_INVALID_ARGUMENT;
        }
        trace(3, "CHpEvaPlugin::deportTree: calling importNode for node [%S] with QRN_MODE_DEPORT_RESOURCE flag",
              name.c_str());
        return importNode(name, {}, false, true, true, 1);
    });
}
