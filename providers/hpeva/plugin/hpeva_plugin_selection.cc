// CHpEvaPlugin: the checks of a snapshot group before anything is made. Nothing here changes
// an array; every disk is read anew.
#include "hpeva_plugin.h"

#include "cfisession.h"
#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "cfiudid.h"
#include "hpeva_privatedata.h"
#include "hpeva_rules.h"

using namespace qorin_pdk_4_4;
using namespace hpeva_rules;

namespace {

const char kSourceFile[] = "providers/hpeva/hpeva_plugin_selection";

}  // namespace

int CHpEvaPlugin::select(char *, qrn_splitnode **nodes, int count)
{
    CFiTraceLogFunction traceFunction(m_traceLog, "CHpEvaPlugin::select");
    return guard("select", __LINE__).run([&] {
        CHpEvaCliTool tool = newCliTool();
        CFiPrivateDataFactoryPtr factory = privateDataFactory();
        // Read for the list's first node and held against every later one.
        SHpEvaDrGroup group;
        auto refused = [&](const SHpEvaRefusal &refusal, int line) {
            if (refusal) {
                trace(2, "select(): check failed [%s]", refusal.key);
                pushRefusal(m_errorManager, refusal, QRN_SEVERITY_WARNING, kSourceFile, line);
            }
            return static_cast<bool>(refusal);
        };
        for (int i = 0; nodes != nullptr && i < count; ++i) {
            const qrn_splitnode *split = nodes[i];
            if (split == nullptr) {
                continue;
            }
            const std::wstring name = CFiSession::nodeName(split->node);
            const std::string method = split->method != nullptr ? split->method : "";
            CFiPrivateDataPtr found = factory.isNull() ? CFiPrivateDataPtr() : factory->find(split->node);
            auto *data = found.isNull() ? nullptr : dynamic_cast<CHpEvaPrivateData *>(found.get());
            if (isGroupNode(name) || !isInterposerNode(name)) {
                continue;
            }
            CFiUdid udid(name);
            SHpEvaCell cell;
            CHpEvaCliTool::findCell(udid.getEnclosure(), cells, cell);
            const SHpEvaVdisk disk = tool.findVirtualDisk(cell, udid.getDisk());
            if (data != nullptr) {
                data->setSourceDisk(disk);
            }
            // Without a group node the method names what the disk was checked for.
            const std::string groupNode =
                split->group != nullptr ? CFiStringTool::wstr2str(CFiSession::nodeName(split->group)) : method;
            trace(3, "select(): disk [%s] for [%s]", disk.objectname.c_str(), method.c_str());
            if (refused(selectionRefusal(disk, method, udid.getDisk(), groupNode), __LINE__)) {
                return QRN_ERR_NOT_PROVIDED;
            }
            if (method != METHOD_DR_SNAPCLONE) {
                continue;
            }
            if (refused(drMembershipRefusal(disk, i == 0, group), __LINE__)) {
                return QRN_ERR_NOT_PROVIDED;
            }
            if (i == 0) {
                group = tool.getDRGroupDetail(disk, disk.drmgroupname);
                if (refused(drGroupRefusal(disk, cells, group), __LINE__)) {
                    return QRN_ERR_NOT_PROVIDED;
                }
            }
            // make reads the group from here alone; a node the host never initialised would
            // reach it without one, so it is refused now, before anything is suspended.
            if (data == nullptr) {
                refused(refusal(hpeva_msg::MSG_ERROR_DR_GROUP_NOT_SELECTED, disk.objectname), __LINE__);
                return QRN_ERR_NOT_PROVIDED;
            }
            data->setDrGroup(group);
        }
        return QRN_OK;
    });
}
