// What the configured Command View servers reach: SSSU's version, the cells, the hosts an
// array knows and the array's name of a machine.
#include <string>
#include <vector>

#include "cfinetwork.h"
#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "hpeva_cliexception.h"
#include "hpeva_clitool.h"
#include "hpeva_clitool_run.h"
#include "hpeva_commandtempfile.h"
#include "hpeva_lscellhandler.h"
#include "hpeva_lshosthandler.h"
#include "hpeva_process.h"
#include "qrn_results.h"

using namespace qorin_pdk_4_4;
using namespace hpeva_cli;

namespace {

const char TRIM_CHARS[] = " \n\t\r";
const char MANAGER_MARKER[] = "available on this Manager:";
const char CELL_MARKER[] = "available on this Cell:";
const char HOSTS_HEAD[] = "\\Hosts\\";
const size_t HOSTS_HEAD_LENGTH = sizeof(HOSTS_HEAD) - 1;
const char VDISK_LINE[] = " Virtual_disk : ";
const size_t VDISK_LINE_LENGTH = sizeof(VDISK_LINE) - 1;
// The SSSU versions the provider works with, in search order.
const char *const SUPPORTED_VERSIONS[] = {"v4.", "v5.", "Version: 6.", "Version: 7.", "Version: 8."};
const char VERSION_WORD[] = "Version";

// The last element of a host path: "\Hosts\lab\rack\db01" gives "db01". The head is skipped
// by position, as SSSU always prints it first.
std::string hostLeaf(const std::string &entry)
{
    std::string leaf = entry.substr(HOSTS_HEAD_LENGTH);
    size_t slash;
    while ((slash = leaf.find('\\')) != std::string::npos) {
        leaf.erase(0, slash + 1);
    }
    return leaf;
}

}  // namespace

int CHpEvaCliTool::checkVersion(std::string *found) const
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCliTool::checkVersion");
    // No login: the banner alone tells the version.
    CHpEvaCommandTempFile script;
    std::vector<std::string> lines;
    execSSSU(script.getCommandFileOption(), lines, DEFAULT_TIMEOUT);
    std::vector<std::string> accepted(std::begin(SUPPORTED_VERSIONS), std::end(SUPPORTED_VERSIONS));
    accepted.insert(accepted.end(), m_acceptedVersions.begin(), m_acceptedVersions.end());
    for (const std::string &version : accepted) {
        size_t start = 0;
        if (CFiStringTool::find(lines, version.c_str(), start, false) != std::string::npos) {
            log->trace(3, "checkVersion: supported SSSU version found in line [%s]", lines[start].c_str());
            return QRN_OK;
        }
    }
    // What to tell the administrator: the version line, else the first thing SSSU said.
    size_t start = 0;
    std::string line;
    if (CFiStringTool::find(lines, VERSION_WORD, start, false) != std::string::npos) {
        line = lines[start];
    } else {
        for (const std::string &text : lines) {
            if (!CFiStringTool::trim(text, TRIM_CHARS).empty()) {
                line = text;
                break;
            }
        }
    }
    line = CFiStringTool::trim(line, TRIM_CHARS);
    log->trace(1, "checkVersion: no supported SSSU version in the tool's output, which says [%s]", line.c_str());
    if (found != nullptr) {
        *found = line;
    }
    return QRN_ERR_INIT_FAILED;
}

std::vector<SHpEvaCell> CHpEvaCliTool::enumerateCells(const std::vector<SFiCredential> &credentials) const
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCliTool::enumerateCells");
    std::vector<SHpEvaCell> cells;
    for (const SFiCredential &credential : credentials) {
        if (!credential.isValid()) {
            log->trace(1,
                       "Invalid login credentials specified for a HPEVA Command View server, one or more of "
                       "hostname [%S], username [%S] or password missing.\n",
                       credential.hostname.c_str(), credential.username.c_str());
            continue;
        }
        // One server that fails in any way must not stop the discovery of the others.
        try {
            const ACE_WString command(L"LS CELL");
            log->trace(2, "executing command [%S]", command.c_str());
            std::vector<std::string> lines;
            try {
                runListingScript(*this, credential, std::vector<ACE_WString>(1, command), ACE_WString(), lines,
                                 __FILE__, __LINE__);
            } catch (const CHpEvaCliException &e) {
                // A server that can't be reached or stops early is told, and the next one asked.
                e.report();
                continue;
            }
            size_t marker = 0;
            if (CFiStringTool::find(lines, MANAGER_MARKER, marker, false) == std::string::npos) {
                CHpEvaCliException(CHpEvaCliException::CLI_NO_DATA, command, MANAGER_MARKER, lines, __FILE__, __LINE__)
                    .report();
                continue;
            }
            // The names end at the echo of the script's last command.
            const size_t end = lastLineOf(lines);
            for (size_t i = marker + 1; i < end; ++i) {
                try {
                    SHpEvaCell cell;
                    static_cast<SFiCredential &>(cell) = credential;
                    cell.cellname = CFiStringTool::str2wstr(CFiStringTool::trim(lines[i], TRIM_CHARS));
                    getCellDetail(cell);
                    bool known = false;
                    for (const SHpEvaCell &found : cells) {
                        if (!found.objectwwn.empty() && found.objectwwn == cell.objectwwn) {
                            known = true;
                            break;
                        }
                    }
                    if (known) {
                        log->trace(3, "enumerateCells: cell [%S] is already known through another server",
                                   cell.cellname.c_str());
                    } else {
                        cells.push_back(cell);
                    }
                } catch (const CHpEvaCliException &e) {
                    e.report();
                }
            }
        } catch (...) {
            log->trace(2, "Skipping invalid credentials for management host [%S]", credential.hostname.c_str());
        }
    }
    return cells;
}

void CHpEvaCliTool::getCellDetail(SHpEvaCell &cell) const
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCliTool::getCellDetail");
    ACE_WString command(L"LS CELL \"");
    command += CFiStringTool::wstr2tstr(cell.cellname);
    command += L"\" XML";
    CHpEvaLsCellHandler handler;
    // The command names the cell; none is selected.
    runListing(*this, cell, command, ACE_WString(), handler, __FILE__, __LINE__);
    SHpEvaCell detail = handler.getCell();
    static_cast<SFiCredential &>(detail) = static_cast<const SFiCredential &>(cell);
    cell = detail;
}

int CHpEvaCliTool::findCell(std::string wwn, const std::vector<SHpEvaCell> &cells, SHpEvaCell &cell)
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCliTool::findCell");
    wwn = CFiStringTool::tostrupper(wwn);
    for (const SHpEvaCell &candidate : cells) {
        if (CFiStringTool::tostrupper(candidate.objectwwn) == wwn) {
            cell = candidate;
            return QRN_OK;
        }
    }
    log->trace(2, "findCell: no cell with WWN [%s]", wwn.c_str());
    return QRN_ERR_NO_SUCH_CELL;
}

std::vector<std::string> CHpEvaCliTool::enumerate(const SHpEvaCell &cell, const ACE_WString &command,
                                                  const char *marker) const
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCliTool::enumerate");
    std::vector<std::string> lines;
    runListingScript(*this, cell, std::vector<ACE_WString>(1, command), CFiStringTool::wstr2tstr(cell.cellname), lines,
                     __FILE__, __LINE__);
    size_t start = 0;
    if (CFiStringTool::find(lines, marker, start, false) == std::string::npos) {
        throw CHpEvaCliException(CHpEvaCliException::CLI_NO_DATA, command, marker, lines, __FILE__, __LINE__);
    }
    std::vector<std::string> names;
    // The names end at the echo of the script's last command.
    const size_t end = lastLineOf(lines);
    for (size_t i = start + 1; i < end; ++i) {
        names.push_back(CFiStringTool::trim(lines[i], TRIM_CHARS));
    }
    return names;
}

std::vector<std::string> CHpEvaCliTool::listHosts(const SHpEvaCell &cell) const
{
    static const ACE_WString command(L"LS HOST");
    return enumerate(cell, command, CELL_MARKER);
}

std::vector<std::string> CHpEvaCliTool::listVirtualDisks(const SHpEvaCell &cell) const
{
    static const ACE_WString command(L"LS VDISK");
    return enumerate(cell, command, CELL_MARKER);
}

void CHpEvaCliTool::getHostInfoList(const SHpEvaCell &cell, std::vector<SHpEvaHost> &hosts) const
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCliTool::getHostInfoList");
    const ACE_WString command(L"LS HOST FULL XML");
    CHpEvaLsHostHandler handler;
    runListing(*this, cell, command, CFiStringTool::wstr2tstr(cell.cellname), handler, __FILE__, __LINE__);
    hosts = handler.getHostList();
}

int CHpEvaCliTool::getSSSUHostName(const SHpEvaCell &cell, std::string &name, const char *hostName) const
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCliTool::getSSSUHostName");
    CFiHostInfo info = hostName != nullptr ? CFiNetwork::resolve(std::string(hostName)) : CFiNetwork::resolve();
    // Arrays know machines by their short name.
    const size_t dot = info.hostname.find('.');
    if (dot != std::string::npos) {
        info.hostname.erase(dot);
    }
    const std::vector<std::string> entries = listHosts(cell);

    // First without any name service: an entry that already is the name, the full name or
    // the address wins over any match that a lookup would find.
    for (const std::string &entry : entries) {
        log->trace(4, "Found host [%s]", entry.c_str());
        if (!holds(entry, HOSTS_HEAD)) {
            continue;
        }
        const std::string leaf = hostLeaf(entry);
        if (CFiNetwork::compare(leaf, info)) {
            name = entry;
            log->trace(4, "comparing hostname, match found for [%s] : [%s],[%s],[%s]", leaf.c_str(),
                       info.address.c_str(), info.fqdn.c_str(), info.hostname.c_str());
            return QRN_OK;
        }
    }
    log->trace(3, "comparing hostname, no quick match found for [%s]", info.hostname.c_str());

    for (const std::string &entry : entries) {
        if (!holds(entry, HOSTS_HEAD)) {
            continue;
        }
        const CFiHostInfo candidate = CFiNetwork::resolve(hostLeaf(entry));
        log->trace(4, "getSSSUHostName: matching [%s][%s][%s] with [%s][%s][%s]", candidate.address.c_str(),
                   candidate.hostname.c_str(), candidate.fqdn.c_str(), info.address.c_str(), info.hostname.c_str(),
                   info.fqdn.c_str());
        if (CFiNetwork::compare(candidate, info)) {
            log->trace(4, "getSSSUHostName: match found [%s] for [%s]", entry.c_str(), info.hostname.c_str());
            name = entry;
            return QRN_OK;
        }
    }
    log->trace(1, "getSSSUHostName: no match found for [%s]", info.hostname.c_str());
    return QRN_ERR_FAILED;
}

std::vector<SHpEvaVdisk> CHpEvaCliTool::getLocalVdiskList(const SHpEvaCell &cell, const char *hostName) const
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCliTool::getLocalVdiskList");
    std::vector<SHpEvaVdisk> disks;
    std::string path;
    if (getSSSUHostName(cell, path, hostName) != QRN_OK) {
        return disks;
    }
    // The path goes unquoted, as SSSU prints it.
    ACE_WString command(L"LS HOST ");
    command += CFiStringTool::str2tstr(path);
    log->trace(2, "executing command [%S]", command.c_str());
    std::vector<std::string> lines;
    runListingScript(*this, cell, std::vector<ACE_WString>(1, command), CFiStringTool::wstr2tstr(cell.cellname), lines,
                     __FILE__, __LINE__);
    size_t line = 0;
    size_t at;
    while ((at = CFiStringTool::find(lines, VDISK_LINE, line, false)) != std::string::npos) {
        const std::string disk = CFiStringTool::trim(lines[line].substr(at + VDISK_LINE_LENGTH), TRIM_CHARS);
        disks.push_back(getVirtualDiskDetail(cell, disk));
        ++line;
    }
    return disks;
}
