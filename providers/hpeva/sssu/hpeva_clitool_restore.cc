// Restoring a disk from a snapclone on the array. Nothing here undoes a step: a script that
// fails halfway leaves the commands before the failing one done, and the caller learns of it
// through the exception alone.
#include <string>
#include <vector>

#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "hpeva_clitool.h"
#include "hpeva_clitool_run.h"
#include "hpeva_process.h"
#include "hpeva_restorescript.h"

using namespace qorin_pdk_4_4;

namespace {

// One script in the secondary's login and cell.
void runRestoreScript(const CHpEvaCliTool &tool, const SHpEvaVdisk &secondary,
                      const std::vector<SHpEvaScriptCommand> &commands, int timeout)
{
    CFiTraceLogPtr log = processTraceLog();
    std::vector<ACE_WString> texts;
    for (const SHpEvaScriptCommand &command : commands) {
        if (command.traced) {
            log->trace(2, "executing command [%S]", command.text.c_str());
        }
        texts.push_back(command.text);
    }
    std::vector<std::string> lines;
    hpeva_cli::runScript(tool, secondary, texts, CFiStringTool::wstr2tstr(secondary.cellname), lines, timeout);
}

}  // namespace

void CHpEvaCliTool::restore(const SHpEvaVdisk &primary, const SHpEvaVdisk &secondary,
                            const SHpEvaRestoreSettings &settings) const
{
    CFiTraceLogFunction function(processTraceLog(), "CHpEvaCliTool::restore");
    // A presented disk can't become a container. The presentations come back at the end of
    // the script from the record as it was read before this.
    deleteLuns(primary, nullptr);
    runRestoreScript(*this, secondary, hpeva_restore::containerCopyCommands(primary, secondary, settings),
                     settings.timeout);
}

void CHpEvaCliTool::restoreSwapBased(const SHpEvaVdisk &primary, const SHpEvaVdisk &secondary) const
{
    CFiTraceLogFunction function(processTraceLog(), "CHpEvaCliTool::restoreSwapBased");
    deleteLuns(primary, nullptr);
    deleteLuns(secondary, nullptr);
    runRestoreScript(*this, secondary, hpeva_restore::swapCommands(primary, secondary), DEFAULT_TIMEOUT);
}
