#include "hpeva_restorescript.h"

#include "cfistringtool.h"
#include "hpeva_clitool_run.h"

using namespace qorin_pdk_4_4;

namespace {

const char kRestoring[] = "_RESTORING";
const char kActiveLeaf[] = "\\ACTIVE";
// Stands in for the last four characters of the primary's world wide LUN name while the two
// names change places, since a cell never holds one name twice.
const char kTemporaryWwnEnd[] = "1111";

ACE_WString wide(const std::string &text)
{
    return CFiStringTool::str2tstr(text);
}

// `SET VDISK "<disk>"<tail>`
ACE_WString setVdisk(const std::string &disk, const ACE_WString &tail)
{
    ACE_WString command(L"SET VDISK \"");
    command += wide(disk);
    command += L"\"";
    command += tail;
    return command;
}

ACE_WString setName(const std::string &disk, const std::string &name)
{
    return setVdisk(disk, ACE_WString(L" NAME=\"") + wide(name) + ACE_WString(L"\""));
}

ACE_WString setWwn(const std::string &disk, const std::string &wwn)
{
    return setVdisk(disk, ACE_WString(L" WORLD_WIDE_LUN_NAME=") + wide(wwn));
}

void addLuns(std::vector<SHpEvaScriptCommand> &commands, const SHpEvaVdisk &presented, const std::string &disk)
{
    for (const auto &presentation : presented.presentations) {
        // A LUN the array reported is never negative; 0 would let it choose anew.
        const unsigned int lun = presentation.second > 0 ? static_cast<unsigned int>(presentation.second) : 0u;
        commands.push_back({hpeva_cli::addLunCommand(disk, presentation.first, lun), true});
    }
}

}  // namespace

namespace hpeva_restore {

std::vector<SHpEvaScriptCommand> containerCopyCommands(const SHpEvaVdisk &primary, const SHpEvaVdisk &secondary,
                                                       const SHpEvaRestoreSettings &settings)
{
    const std::string &target = primary.familyname;
    const std::string &source = secondary.familyname;
    std::vector<SHpEvaScriptCommand> commands;
    commands.push_back({ACE_WString(L"SET OPTION COMMAND_DELAY=") + settings.commandDelay, false});
    commands.push_back({ACE_WString(L"REFRESH"), false});
    commands.push_back({setVdisk(target, L" CHANGE_INTO_CONTAINER"), true});
    // The array copies into a container only from a source that writes through.
    commands.push_back({setVdisk(source, L" writecache=writethrough"), true});
    if (settings.rediscover) {
        commands.push_back({ACE_WString(L"REDISCOVER"), false});
    }
    commands.push_back({ACE_WString(L"REFRESH"), true});
    ACE_WString copy(L"ADD COPY \"");
    copy += wide(target);
    copy += L"\" VDISK=\"";
    copy += wide(source);
    copy += L"\" CONTAINER=\"";
    copy += wide(target);
    copy += L"\"";
    commands.push_back({copy, true});
    commands.push_back({setVdisk(source, L" writecache=writeback"), true});
    addLuns(commands, primary, target);
    return commands;
}

std::vector<SHpEvaScriptCommand> swapCommands(const SHpEvaVdisk &primary, const SHpEvaVdisk &secondary)
{
    const std::string &p = primary.objectname;
    const std::string &s = secondary.objectname;
    std::string temporaryWwn = primary.wwlunid;
    const size_t keep = temporaryWwn.size() > 4 ? temporaryWwn.size() - 4 : 0;
    temporaryWwn.replace(keep, std::string::npos, kTemporaryWwnEnd);
    // The primary's family under its temporary name, by the path it has after the rename.
    const size_t leaf = sizeof kActiveLeaf - 1;
    const std::string family = p.size() > leaf ? p.substr(0, p.size() - leaf) : std::string();
    const std::string renamed = family + kRestoring + kActiveLeaf;

    std::vector<SHpEvaScriptCommand> commands;
    commands.push_back({setWwn(p, temporaryWwn), true});
    commands.push_back({setWwn(s, primary.wwlunid), true});
    commands.push_back({setWwn(p, secondary.wwlunid), true});
    commands.push_back({setName(p, primary.familyname + kRestoring), true});
    commands.push_back({setName(s, primary.familyname), true});
    commands.push_back({setName(renamed, secondary.familyname), true});
    addLuns(commands, primary, p);
    addLuns(commands, secondary, s);
    return commands;
}

}  // namespace hpeva_restore
