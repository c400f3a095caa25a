// CHpEvaPlugin: rolling disks back to the content of their snapclones. Every pair is started
// before the first wait, and the call returns when the last copy has ended.
#include "hpeva_plugin.h"

#include <vector>

#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "cfiudid.h"
#include "hpeva_cliexception.h"
#include "hpeva_configuration.h"
#include "hpeva_messages.h"
#include "hpeva_rules.h"

using namespace qorin_pdk_4_4;
using namespace hpeva_rules;

namespace {

const char kSourceFile[] = "providers/hpeva/hpeva_plugin_restore";

icu::Formattable text(const std::string &utf8)
{
    return icu::Formattable(CFiStringTool::str2ustr(utf8));
}

// The pending disk as the array reports it now. A read that shows no disk ends the wait as
// a failed read does: a disk that can't be seen would be awaited for ever.
SHpEvaVdisk readPending(const CHpEvaCliTool &tool, const SHpEvaVdisk &secondary)
{
    SHpEvaVdisk detail = tool.getVirtualDiskDetail(secondary, secondary.objectname);
    if (detail.objectname.empty()) {
        ACE_WString command(L"LS VDISK \"");
        command += CFiStringTool::str2tstr(secondary.objectname);
        command += L"\" XML";
        throw CHpEvaCliException(CHpEvaCliException::CLI_NO_DATA, command, kSourceFile, __LINE__);
    }
    return detail;
}

const wchar_t *nameOf(qorin_objid **ids, int32_t count, int32_t index)
{
    if (ids == nullptr || index >= count || ids[index] == nullptr || ids[index]->text == nullptr) {
        return nullptr;
    }
    return ids[index]->text;
}

}  // namespace

int CHpEvaPlugin::restore(qorin_objid **primaries, qorin_objid **secondaries, int32_t count, wchar_t *, wchar_t *,
                          int32_t flags, int32_t *status)
{
    CFiTraceLogFunction traceFunction(m_traceLog, "CHpEvaPlugin::restore");
    return guard("restore", __LINE__).run([&] {
        const wchar_t *firstPrimary = nameOf(primaries, count, 0);
        const wchar_t *firstSecondary = nameOf(secondaries, count, 0);
        trace(6, "restore(): flags [0x%04x], pri [%S], sec [%S]", static_cast<unsigned>(flags),
              firstPrimary != nullptr ? firstPrimary : L"", firstSecondary != nullptr ? firstSecondary : L"");
        CHpEvaCliTool tool = newCliTool();
        std::vector<SHpEvaVdisk> pending;
        for (int32_t i = 0; restoreStarts(flags) && i < count; ++i) {
            const wchar_t *primaryName = nameOf(primaries, count, i);
            const wchar_t *secondaryName = nameOf(secondaries, count, i);
            if (primaryName == nullptr || secondaryName == nullptr) {
                continue;
            }
            const CFiUdid primaryId(primaryName);
            const CFiUdid secondaryId(secondaryName);
            const SHpEvaVdisk primary = tool.findVirtualDisk(cells, primaryId.getEnclosure(), primaryId.getDisk());
            const SHpEvaVdisk secondary =
                tool.findVirtualDisk(cells, secondaryId.getEnclosure(), secondaryId.getDisk());
            switch (restoreRefusal(primary, secondary)) {
            case RestoreRefusal::PRIMARY_NOT_ACTIVE:
                pushMessage(m_errorManager, hpeva_msg::MSG_ERROR_RESTORE_TO_VSNAP_NOT_SUPPORTED, QRN_SEVERITY_ERROR,
                            kSourceFile, __LINE__, text(primary.objectname), text(secondary.objectname));
                return QRN_ERR_FAILED;
            case RestoreRefusal::SECONDARY_NOT_ACTIVE:
                pushMessage(m_errorManager, hpeva_msg::MSG_ERROR_RESTORE_FROM_VSNAP_NOT_SUPPORTED, QRN_SEVERITY_ERROR,
                            kSourceFile, __LINE__, text(secondary.objectname), text(primary.objectname));
                return QRN_ERR_FAILED;
            case RestoreRefusal::NONE:
                break;
            }
            // Read at each pair: the administrator may change them between two restores.
            tool.restore(primary, secondary, CHpEvaConfiguration().importRestoreSettings());
            if (status != nullptr) {
                status[i] = RESTORE_STATUS_STARTED;
            }
            pending.push_back(secondary);
        }
        // No time limit: a copy of many gigabytes takes what it takes, and a failed read ends
        // the wait through the ladder.
        for (const SHpEvaVdisk &secondary : pending) {
            SHpEvaVdisk detail = readPending(tool, secondary);
            while (!restoreCopyEnded(detail)) {
                trace(6, "[%s], sleeping 4 seconds [%s]", detail.sharingrelationship.c_str(),
                      detail.objectname.c_str());
                env()->sleepForSeconds(RESTORE_WAIT_SECONDS);
                detail = readPending(tool, secondary);
            }
        }
        return QRN_OK;
    });
}
