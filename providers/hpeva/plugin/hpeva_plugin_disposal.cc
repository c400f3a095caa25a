// CHpEvaPlugin: the end of a copy. Disposition QRN_DISPOSITION_DELETE deletes the disk the
// node names, its presentations first; any other disposition leaves everything as it is.
#include "hpeva_plugin.h"

#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "cfiudid.h"
#include "hpeva_cliexception.h"

using namespace qorin_pdk_4_4;

namespace {

const char kSourceFile[] = "providers/hpeva/hpeva_plugin_disposal";

}  // namespace

int CHpEvaPlugin::dispose(qrn_domain *, qrn_domain *node, qrn_splitnode *, qrn_disposition disposition)
{
    CFiTraceLogFunction traceFunction(m_traceLog, "CHpEvaPlugin::dispose");
    return guard("dispose", __LINE__).run([&]() -> int {
        if (disposition != QRN_DISPOSITION_DELETE) {
            return QRN_OK;
        }
        const CFiUdid udid(nodeName(node));
        const CHpEvaCliTool tool = newCliTool();
        // Read now, so that the presentations to remove are those of this moment.
        const SHpEvaVdisk disk = tool.findVirtualDisk(cells, udid.getEnclosure(), udid.getDisk());
        // The LUNs go first, as deleteVirtualDisk would take them, so that a refused delete
        // is known to leave the copy presented to no one.
        if (!disk.presentations.empty()) {
            tool.deleteLuns(disk, nullptr);
        }
        SHpEvaVdisk unpresented = disk;
        unpresented.presentations.clear();
        try {
            tool.deleteVirtualDisk(unpresented);
        } catch (const CHpEvaCliException &) {
            // Nothing is put back; the administrator learns what is left.
            if (!disk.presentations.empty()) {
                pushMessage(m_errorManager, hpeva_msg::MSG_ERROR_DISPOSE_LEFT_UNPRESENTED, QRN_SEVERITY_WARNING,
                            kSourceFile, __LINE__, icu::Formattable(CFiStringTool::str2ustr(disk.objectname)),
                            icu::Formattable(CFiStringTool::tstr2ustr(disk.cellname)));
            }
            throw;
        }
        return QRN_OK;
    });
}
