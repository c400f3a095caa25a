// Virtual disks, their presentations to hosts (LUNs) and DR groups. Each operation is one
// script and one SSSU run, logged in and with the cell selected through the record given.
#include <cctype>
#include <list>
#include <string>
#include <vector>

#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "cfiudidexception.h"
#include "hpeva_clitool.h"
#include "hpeva_clitool_run.h"
#include "hpeva_lsdrgrouphandler.h"
#include "hpeva_lsvdiskhandler.h"
#include "hpeva_process.h"

using namespace qorin_pdk_4_4;
using namespace hpeva_cli;

namespace {

ACE_WString wide(const std::string &text)
{
    return CFiStringTool::str2tstr(text);
}

// Eight groups of four hexadecimal digits joined by hyphens, as SSSU prints wwlunid.
bool isWorldWideLunName(const std::string &text)
{
    if (text.size() != 39) {
        return false;
    }
    for (size_t i = 0; i < text.size(); ++i) {
        const bool ok = i % 5 == 4 ? text[i] == '-' : std::isxdigit(static_cast<unsigned char>(text[i])) != 0;
        if (!ok) {
            return false;
        }
    }
    return true;
}

ACE_WString cellOf(const SHpEvaCell &cell)
{
    return CFiStringTool::wstr2tstr(cell.cellname);
}

// `<verb> "<name>"<tail>`: names go in double quotes, never escaped.
ACE_WString quoted(const wchar_t *verb, const std::string &name, const wchar_t *tail)
{
    ACE_WString command(verb);
    command += L"\"";
    command += wide(name);
    command += L"\"";
    command += tail;
    return command;
}

void setDrGroupSuspension(const CHpEvaCliTool &tool, const SHpEvaCell &cell, const std::string &group,
                          const wchar_t *state)
{
    const ACE_WString command = quoted(L"SET DR_GROUP ", group, state);
    processTraceLog()->trace(2, "executing command [%S]", command.c_str());
    std::vector<std::string> lines;
    runScript(tool, cell, command, cellOf(cell), lines);
}

}  // namespace

SHpEvaVdisk CHpEvaCliTool::findVirtualDisk(const std::vector<SHpEvaCell> &cells, std::string cellWwn,
                                           const std::string &wwn) const
{
    CFiTraceLogFunction function(processTraceLog(), "CHpEvaCliTool::findVirtualDisk");
    // An unknown cell leaves an empty one: the script then has no login and SSSU's answer
    // tells the caller.
    SHpEvaCell cell;
    findCell(cellWwn, cells, cell);
    return findVirtualDisk(cell, wwn);
}

SHpEvaVdisk CHpEvaCliTool::findVirtualDisk(const SHpEvaCell &cell, const std::string &wwn) const
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCliTool::findVirtualDisk");
    // The identity comes from the host: only a world wide LUN name goes into the script.
    if (!isWorldWideLunName(wwn)) {
        log->trace(1, "findVirtualDisk: [%s] is not a world wide LUN name", wwn.c_str());
        throw CFiUdidException(wwn, CFiUdidException::NOT_A_LUN_NAME);
    }
    // A refresh first, so that a disk made moments ago through another server is seen.
    ACE_WString find(L"FIND VDISK LUNWWID=");
    find += wide(CFiStringTool::tostrlower(wwn));
    find += L" XML";
    log->trace(2, "executing command [%S]", find.c_str());
    CFiOutputLines lines;
    runListingScript(*this, cell, {ACE_WString(L"REFRESH"), find}, cellOf(cell), lines, __FILE__, __LINE__);
    CHpEvaLsVdiskHandler handler(cell);
    parseXmlOutput(lines, handler, find, __FILE__, __LINE__);
    return handler.getVdisk();
}

void CHpEvaCliTool::getVirtualDiskList(const SHpEvaCell &cell, std::list<SHpEvaVdisk> &disks) const
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCliTool::getVirtualDiskList");
    const ACE_WString command(L"LS VDISK FULL XML");
    CHpEvaLsVdiskHandler handler(cell);
    runListing(*this, cell, command, cellOf(cell), handler, __FILE__, __LINE__);
    disks = std::move(handler.getVdiskList());
}

SHpEvaVdisk CHpEvaCliTool::getVirtualDiskDetail(const SHpEvaCell &cell, std::string name) const
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCliTool::getVirtualDiskDetail");
    const ACE_WString command = quoted(L"LS VDISK ", name, L" XML");
    CHpEvaLsVdiskHandler handler(cell);
    runListing(*this, cell, command, cellOf(cell), handler, __FILE__, __LINE__);
    // The cell part is set even when no object came back.
    SHpEvaVdisk disk = handler.getVdisk();
    static_cast<SHpEvaCell &>(disk) = cell;
    return disk;
}

void CHpEvaCliTool::refresh(const SHpEvaCell &cell) const
{
    const ACE_WString command(L"REFRESH");
    processTraceLog()->trace(2, "executing command [%S]", command.c_str());
    std::vector<std::string> lines;
    runScript(*this, cell, command, cellOf(cell), lines);
}

void CHpEvaCliTool::addLun(const SHpEvaCell &cell, const std::string &disk, const std::string &host,
                           unsigned int lun) const
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCliTool::addLun");
    const ACE_WString command = addLunCommand(disk, host, lun);
    log->trace(2, "executing command [%S]", command.c_str());
    std::vector<std::string> lines;
    runScript(*this, cell, command, cellOf(cell), lines);
}

void CHpEvaCliTool::deleteLuns(const SHpEvaVdisk &disk, const char *host) const
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCliTool::deleteLuns");
    std::vector<ACE_WString> commands;
    for (const auto &presentation : disk.presentations) {
        if (host != nullptr && presentation.first != host) {
            continue;
        }
        ACE_WString command(L"DELETE LUN \"");
        command += wide(presentation.first);
        command += L"\\";
        command += wide(CFiStringTool::int2str(presentation.second));
        command += L"\"";
        log->trace(2, "executing command [%S]", command.c_str());
        commands.push_back(command);
        if (host != nullptr) {
            break;
        }
    }
    // One script for all, and run even when empty: the login still shows a bad credential.
    std::vector<std::string> lines;
    runScript(*this, disk, commands, cellOf(disk), lines);
}

void CHpEvaCliTool::deleteVirtualDisk(const SHpEvaVdisk &disk) const
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCliTool::deleteVirtualDisk");
    // The array refuses to delete a presented disk.
    if (!disk.presentations.empty()) {
        deleteLuns(disk, nullptr);
    }
    const ACE_WString command = quoted(L"DELETE VDISK ", disk.objectname, L"");
    log->trace(2, "executing command [%S]", command.c_str());
    std::vector<std::string> lines;
    runScript(*this, disk, command, cellOf(disk), lines);
}

void CHpEvaCliTool::suspendDrGroup(const SHpEvaCell &cell, std::string group) const
{
    CFiTraceLogFunction function(processTraceLog(), "CHpEvaCliTool::suspendDrGroup");
    setDrGroupSuspension(*this, cell, group, L" SUSPEND");
}

void CHpEvaCliTool::resumeDrGroup(const SHpEvaCell &cell, std::string group) const
{
    CFiTraceLogFunction function(processTraceLog(), "CHpEvaCliTool::resumeDrGroup");
    setDrGroupSuspension(*this, cell, group, L" NOSUSPEND");
}

SHpEvaDrGroup CHpEvaCliTool::getDRGroupDetail(const SHpEvaCell &cell, std::string group) const
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCliTool::getDRGroupDetail");
    const ACE_WString command = quoted(L"LS DR_GROUP ", group, L" XML");
    CHpEvaLsDrGroupHandler handler;
    runListing(*this, cell, command, cellOf(cell), handler, __FILE__, __LINE__);
    return handler.getDrGroup();
}
