// CHpEvaPlugin: object controls, through which a command-line host shows what the arrays
// hold of the provider's copies: a disk's presentations before and after it changes them,
// and the copies that a failed make or restore left behind.
//
// Outputs come in records, each opened by "udid": "cell", "name", "size" (bytes),
// "created" (as the array prints it), "copy" (yes when the name follows the copy naming)
// and one "presentation" per host, "<lun>:<host path>". "unreadable" names a cell whose
// disks could not be listed. The argument text is cut at blanks, so every value is sent with
// each byte outside letters, digits and "\_-.:#/" as %XX of its UTF-8.
#include "hpeva_plugin.h"

#include <cstring>
#include <list>

#include "cfiobjctlargs.h"
#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "cfiudid.h"
#include "hpeva_cliexception.h"
#include "hpeva_disknames.h"

using namespace qorin_pdk_4_4;

namespace {

std::wstring encoded(const std::string &utf8)
{
    static const char kHex[] = "0123456789ABCDEF";
    std::wstring out;
    for (const unsigned char c : utf8) {
        if (isalnum(c) || (c != 0 && std::strchr("\\_-.:#/", c) != nullptr)) {
            out += static_cast<wchar_t>(c);
        } else {
            out += L'%';
            out += static_cast<wchar_t>(kHex[c >> 4]);
            out += static_cast<wchar_t>(kHex[c & 0xF]);
        }
    }
    return out;
}

void add(CFiObjctlArgs &args, const wchar_t *name, const std::string &value, const wchar_t *type)
{
    args.addOutput({name, encoded(value), type});
}

void describe(CFiObjctlArgs &args, const std::string &udid, const SHpEvaVdisk &disk)
{
    add(args, L"udid", udid, L"string");
    add(args, L"cell", CFiStringTool::wstr2str(disk.cellname), L"string");
    add(args, L"name", disk.objectname, L"string");
    add(args, L"size", std::to_string(disk.capacity), L"uint64");
    add(args, L"created", disk.creationdatetime, L"string");
    add(args, L"copy", isCopyName(disk) ? "yes" : "no", L"bool");
    for (const auto &[host, lun] : disk.presentations) {
        add(args, L"presentation", std::to_string(lun) + ":" + host, L"string");
    }
}

}  // namespace

int32_t CHpEvaPlugin::objctl(std::wstring name, CFiObjctlArgs &args)
{
    CFiTraceLogFunction traceFunction(m_traceLog, "CHpEvaPlugin::objctl");
    return guard("objctl", __LINE__).run([&]() -> int32_t {
        const CHpEvaCliTool tool = newCliTool();
        if (name == L"disk_info") {
            std::wstring text;
            for (const SFiObjctlArg &input : args.inputs()) {
                if (input.name == L"udid") {
                    text = input.value;
                }
            }
            if (text.empty()) {
                trace(1, "objctl(disk_info): no udid was given");
                return QRN_ERR_INVALID_ARGUMENT;
            }
            const CFiUdid udid(text);
            const SHpEvaVdisk disk = tool.findVirtualDisk(cells, udid.getEnclosure(), udid.getDisk());
            if (disk.objectname.empty()) {
                trace(1, "objctl(disk_info): no disk has the identity [%S]", text.c_str());
                return QRN_ERR_INVALID_ARGUMENT;
            }
            describe(args, udid.toString(), disk);
            return QRN_OK;
        }
        if (name == L"leftovers") {
            for (const SHpEvaCell &cell : cells) {
                std::list<SHpEvaVdisk> disks;
                try {
                    tool.getVirtualDiskList(cell, disks);
                } catch (const CHpEvaCliException &) {
                    trace(1, "objctl(leftovers): the disks of cell [%S] could not be listed", cell.cellname.c_str());
                    add(args, L"unreadable", CFiStringTool::wstr2str(cell.cellname), L"string");
                    continue;
                }
                CFiUdid udid(std::string(UDID_PREFIX) + cell.objectwwn + "##0000");
                for (const SHpEvaVdisk &disk : disks) {
                    if (isCopyName(disk)) {
                        udid.setDisk(disk.wwlunid);
                        describe(args, udid.toString(), disk);
                    }
                }
            }
            return QRN_OK;
        }
        return CFiPluginInterposer::objctl(name, args);
    });
}
