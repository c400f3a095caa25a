// CHpEvaPlugin: what the arrays hold, as the host asks for it: disks, enclosures and hosts.
// Nothing here changes an array, and nothing is cached: each call reads the arrays anew.
#include "hpeva_plugin.h"

#include <list>

#include "cfienclosurenode.h"
#include "cfienclosurenodelistfactory.h"
#include "cfihostnode.h"
#include "cfihostnodelistfactory.h"
#include "cfinode.h"
#include "cfinodelistfactory.h"
#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "cfiudid.h"
#include "hpeva_cliexception.h"
#include "hpeva_disknames.h"
#include "hpeva_nodefilter.h"
#include "hpeva_rules.h"

using namespace qorin_pdk_4_4;
using namespace hpeva_rules;

namespace {

// Reads of one cell's disks before the enumeration gives up; SSSU's own retries come on top.
const int kDiskListAttempts = 4;

const char kVendor[] = "HP";
const char kProduct[] = "HSV";

}  // namespace

int CHpEvaPlugin::enumerateNodes(qrn_node_list **out, int *count, int flags, wchar_t *filterText)
{
    CFiTraceLogFunction traceFunction(m_traceLog, "CHpEvaPlugin::enumerateNodes");
    if (flagsRefused(flags)) {
        trace(1, "enumerateNodes(): Unhandled execption encountered, exiting the function");
        return QRN_ERR_FAILED;
    }
    return guard("enumerateNodes", __LINE__).run([&] {
        trace(6, "Specifed filter is [%S].", filterText != nullptr ? filterText : L"");
        CHpEvaNodeFilter filter(filterText);
        CFiNodeListFactory factory(out, count);
        // Counted here: the host's count may be null, or not start at 0.
        int listed = 0;
        if (!providerPasses(filter)) {
            return QRN_OK;
        }
        if (invokeDelayedInit() != QRN_OK) {
            return QRN_ERR_DELAYED_INIT;
        }
        CHpEvaCliTool tool = newCliTool();
        if (filter.has("udid")) {
            trace(6, "Matching a single UDID as per filter");
            CFiUdid udid(filter.get("udid"));
            if (udid.getVendor() != kVendor) {
                trace(2, "vendor id [%s] in udid, specified as filter, doesn't match the array vendor",
                      udid.getVendor().c_str());
                return QRN_OK;
            }
            SHpEvaVdisk disk = tool.findVirtualDisk(cells, udid.getEnclosure(), udid.getDisk());
            const std::string name = getDiskDisplayName(disk);
            trace(3, "Returning disk [%s] UDID [%s].", name.c_str(), udid.toString().c_str());
            // No entry reports a disk's state: a host follows a running copy by this line.
            trace(6, "Disk [%s] sharing relationship [%s].", name.c_str(), disk.sharingrelationship.c_str());
            CFiNode node(PROVIDER_NAME, name.c_str(), udid.toString().c_str(), disk.capacity, 0, 0, 1);
            factory.add(node);
            return QRN_OK;
        }

        bool cellPassed = false;
        for (const SHpEvaCell &cell : cells) {
            if (!cellPasses(filter, cell)) {
                continue;
            }
            cellPassed = true;
            std::list<SHpEvaVdisk> disks;
            int attempt = 0;
            for (; attempt < kDiskListAttempts; ++attempt) {
                try {
                    disks.clear();
                    tool.getVirtualDiskList(cell, disks);
                    break;
                } catch (const CHpEvaCliException &e) {
                    trace(2, "%s",
                          e.getKind() == CHpEvaCliException::CLI_NO_DATA
                              ? "HPEVA command did not return any data for command"
                              : "HPEVA command failed to get the disk information");
                }
            }
            if (attempt == kDiskListAttempts) {
                trace(1,
                      "HP EVA failed to get the virtual disk information after [%d] retry attempts. exiting the "
                      "enumeration call with error.",
                      kDiskListAttempts);
                return QRN_ERR_FAILED;
            }
            if (disks.empty()) {
                trace(2, "No disks are found for current enclosure.");
                continue;
            }
            CFiUdid udid(std::string(UDID_PREFIX) + cell.objectwwn + "##0000");
            bool added = false;
            for (const SHpEvaVdisk &disk : disks) {
                const std::string name = getDiskDisplayName(disk);
                trace(6, " Checking disk [%s] UDID [%s] for filtering.", name.c_str(), udid.toString().c_str());
                if (!diskPasses(filter, flags, disk)) {
                    continue;
                }
                udid.setDisk(disk.wwlunid);
                trace(6, " Adding disk [%s] UDID [%s].", name.c_str(), udid.toString().c_str());
                CFiNode node(PROVIDER_NAME, name.c_str(), udid.toString().c_str(), disk.capacity, 0, 0, 1);
                factory.add(node);
                ++listed;
                added = true;
            }
            if (!added) {
                trace(2, "No disks are added for current enclosure.");
            }
        }
        if (!cellPassed) {
            trace(1, "Could not find the specified enclosure in accessible managers.");
            return QRN_ERR_INVALID_ARGUMENT;
        }
        if (listed == 0) {
            trace(2, "Due to aggressive filtering ZERO disks are returned.");
        }
        trace(6, "Returning [%d] disks in the list.", listed);
        return QRN_OK;
    });
}

int CHpEvaPlugin::enumerateEnclosures(qrn_enclosure_node_list **out, int *count, wchar_t *filterText)
{
    CFiTraceLogFunction traceFunction(m_traceLog, "CHpEvaPlugin::enumerateEnclosures");
    return guard("enumerateEnclosures", __LINE__).run([&] {
        CHpEvaNodeFilter filter(filterText);
        if (!providerPasses(filter)) {
            return QRN_OK;
        }
        if (invokeDelayedInit() != QRN_OK) {
            return QRN_ERR_DELAYED_INIT;
        }
        // Built only here: a refusal above leaves the caller's list as it was.
        CFiEnclosureNodeListFactory factory(out, count);
        const std::wstring vendor = CFiStringTool::str2wstr(std::string(kVendor));
        const std::wstring product = CFiStringTool::str2wstr(std::string(kProduct));
        for (const SHpEvaCell &cell : cells) {
            if (cellPasses(filter, cell)) {
                const std::wstring id = CFiStringTool::str2wstr(cell.objectwwn);
                CFiEnclosureNode node(cell.cellname.c_str(), PROVIDER_NAME, id.c_str(), vendor.c_str(), product.c_str(),
                                      cell.availablestoragespace, cell.totalstoragespace, 0);
                factory.add(node);
            }
        }
        return QRN_OK;
    });
}

int CHpEvaPlugin::enumerateHostNodes(qrn_host_node_list **out, int *count, wchar_t *filterText)
{
    CFiTraceLogFunction traceFunction(m_traceLog, "CHpEvaPlugin::enumerateHostNodes");
    return guard("enumerateHostNodes", __LINE__).run([&] {
        CFiHostNodeListFactory factory(out, count);
        CHpEvaNodeFilter filter(filterText);
        if (!providerPasses(filter)) {
            return QRN_OK;
        }
        if (invokeDelayedInit() != QRN_OK) {
            return QRN_ERR_DELAYED_INIT;
        }
        CHpEvaCliTool tool = newCliTool();
        for (const SHpEvaCell &cell : cells) {
            if (!cellPasses(filter, cell)) {
                continue;
            }
            std::vector<SHpEvaHost> hosts;
            tool.getHostInfoList(cell, hosts);
            const std::wstring id = CFiStringTool::str2wstr(cell.objectwwn);
            for (const SHpEvaHost &host : hosts) {
                const std::wstring name = hostDisplayName(host.name);
                CFiHostNode node(name.c_str(), id.c_str());
                node.addPorts(host.ports);
                factory.add(node);
            }
        }
        return QRN_OK;
    });
}
