// present, unpresent, dispose and leftovers: a copy shown to a host, taken away again and
// deleted, through the entries a backup framework uses for it; and the copies that failed
// jobs left on the arrays. What changed on an array is read from the provider before and after
// (its object control disk_info), since the import and deport entries answer only a result.
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cliutil_table.h"
#include "commands.h"
#include "json_writer.h"
#include "provider_session.h"
#include "qorinutil.h"
#include "text.h"

namespace {

// A disk as the provider's object controls describe it.
struct CopyInfo {
    std::string udid;
    std::string cell;
    std::string path;  // the array's full path
    uint64_t size = 0;
    std::string created;
    bool copy = false;
    std::map<std::string, int32_t> presentations;  // host path -> LUN

    // As tamlinctl disks names it, without the HP##HSV## head.
    std::string name() const
    {
        std::string shown = path;
        const std::string head = "\\Virtual Disks\\";
        const std::string tail = "\\ACTIVE";
        if (shown.compare(0, head.size(), head) == 0) {
            shown.erase(0, head.size());
        }
        if (shown.size() > tail.size() && shown.compare(shown.size() - tail.size(), tail.size(), tail) == 0) {
            shown.erase(shown.size() - tail.size());
        }
        return cell + "##" + shown;
    }
};

std::string decoded(const std::wstring &value)
{
    const std::string text = toUtf8(value);
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size()) {
            out += static_cast<char>(strtol(text.substr(i + 1, 2).c_str(), nullptr, 16));
            i += 2;
        } else {
            out += text[i];
        }
    }
    return out;
}

// The records of an object control's answer; unreadable gets the cells whose disks could not
// be listed. The answer is " <OBJCTL_OUTPUT arg=NAME value=VALUE type=TYPE />" items, values
// without blanks.
std::vector<CopyInfo> parseRecords(const std::wstring &answer, std::vector<std::string> &unreadable)
{
    std::vector<CopyInfo> records;
    std::wstring name;
    size_t at = 0;
    while (at < answer.size()) {
        const size_t blank = answer.find(L' ', at);
        const std::wstring word = answer.substr(at, blank == std::wstring::npos ? std::wstring::npos : blank - at);
        at = blank == std::wstring::npos ? answer.size() : blank + 1;
        if (word.compare(0, 4, L"arg=") == 0) {
            name = word.substr(4);
            continue;
        }
        if (word.compare(0, 6, L"value=") != 0) {
            continue;
        }
        const std::string value = decoded(word.substr(6));
        if (name == L"udid") {
            records.emplace_back();
            records.back().udid = value;
        } else if (name == L"unreadable") {
            unreadable.push_back(value);
        } else if (!records.empty()) {
            CopyInfo &record = records.back();
            if (name == L"cell") {
                record.cell = value;
            } else if (name == L"name") {
                record.path = value;
            } else if (name == L"size") {
                record.size = strtoull(value.c_str(), nullptr, 10);
            } else if (name == L"created") {
                record.created = value;
            } else if (name == L"copy") {
                record.copy = value == "yes";
            } else if (name == L"presentation") {
                const size_t colon = value.find(':');
                record.presentations[value.substr(colon + 1)] = atoi(value.c_str());
            }
        }
    }
    return records;
}

// Runs one object control: 0 with its records, or the exit status after saying why.
int objectControl(ProviderSession &session, const wchar_t *control, const std::wstring &args,
                  std::vector<CopyInfo> &records, std::vector<std::string> &unreadable)
{
    wchar_t *answer = nullptr;
    int32_t status = 0;
    session.beginCall();
    const int32_t result = session.lib()->objctl(control, args.c_str(), &answer, &status);
    const std::wstring text = answer != nullptr ? answer : L"";
    free(answer);
    if (result != 0) {
        return session.failure("objctl", result);
    }
    if (status != 0) {
        return session.failure(std::string("objctl ") + toUtf8(control), status);
    }
    records = parseRecords(text, unreadable);
    return ProviderSession::kExitOk;
}

int diskInfo(ProviderSession &session, const std::string &udid, CopyInfo &info)
{
    std::vector<CopyInfo> records;
    std::vector<std::string> unreadable;
    const std::wstring args =
        L"<OBJCTL_ARG_LIST> <OBJCTL_INPUT arg=udid value=" + fromUtf8(udid) + L" type=string /> </OBJCTL_ARG_LIST>";
    const int status = objectControl(session, L"disk_info", args, records, unreadable);
    if (status == ProviderSession::kExitOk) {
        if (records.empty()) {
            fprintf(stderr, "tamlinctl: the provider told nothing of the disk %s\n", udid.c_str());
            return ProviderSession::kExitFailed;
        }
        info = records.front();
    }
    return status;
}

// The host's node record of one disk, from init_node to deinit_node.
class HostNode {
public:
    explicit HostNode(const std::string &udid) : m_name(fromUtf8(udid))
    {
        memset(&m_domain, 0, sizeof m_domain);
        m_domain.id = qorin_get_objid(m_name.c_str(), static_cast<uint32_t>((m_name.size() + 1) * sizeof(wchar_t)), 3);
        m_domain.importId = m_domain.id;
    }
    ~HostNode() { free(m_domain.id); }
    qrn_domain *get() { return &m_domain; }

    HostNode(const HostNode &) = delete;
    HostNode &operator=(const HostNode &) = delete;

private:
    std::wstring m_name;
    qrn_domain m_domain;
};

// What a presentation change did: the presentations that came and that went.
struct Change {
    std::vector<std::pair<std::string, int32_t>> added;
    std::vector<std::pair<std::string, int32_t>> removed;
};

Change changeOf(const CopyInfo &before, const CopyInfo &after)
{
    Change change;
    for (const auto &[host, lun] : after.presentations) {
        const auto was = before.presentations.find(host);
        if (was == before.presentations.end() || was->second != lun) {
            change.added.push_back({host, lun});
        }
    }
    for (const auto &[host, lun] : before.presentations) {
        const auto is = after.presentations.find(host);
        if (is == after.presentations.end() || is->second != lun) {
            change.removed.push_back({host, lun});
        }
    }
    return change;
}

void writePresentations(JsonWriter &json, const std::vector<std::pair<std::string, int32_t>> &list)
{
    json.beginArray();
    for (const auto &[host, lun] : list) {
        json.beginObject().key("host").value(host).key("lun").value(lun).endObject();
    }
    json.endArray();
}

void writePresentations(JsonWriter &json, const std::map<std::string, int32_t> &map)
{
    writePresentations(json, std::vector<std::pair<std::string, int32_t>>(map.begin(), map.end()));
}

std::string listed(const std::map<std::string, int32_t> &presentations)
{
    std::string text;
    for (const auto &[host, lun] : presentations) {
        text += (text.empty() ? "" : ", ") + host + " LUN " + std::to_string(lun);
    }
    return text.empty() ? "no host" : text;
}

// The change on the array, for people or as JSON.
void printChange(const CliOptions &options, const CopyInfo &after, const Change &change)
{
    if (options.json) {
        JsonWriter json;
        json.beginObject().key("disk").value(after.name()).key("udid").value(after.udid);
        json.key("added");
        writePresentations(json, change.added);
        json.key("removed");
        writePresentations(json, change.removed);
        json.key("presentations");
        writePresentations(json, after.presentations);
        fprintf(options.out, "%s\n", json.endObject().text().c_str());
        return;
    }
    if (change.added.empty() && change.removed.empty()) {
        fprintf(options.out, "%s: nothing changed; presented to %s\n", after.name().c_str(),
                listed(after.presentations).c_str());
        return;
    }
    cliutil::Table table({"CHANGE", "HOST", "LUN"});
    table.alignRight(2);
    for (const auto &[host, lun] : change.removed) {
        table.addRow({"removed", host, std::to_string(lun)});
    }
    for (const auto &[host, lun] : change.added) {
        table.addRow({"presented", host, std::to_string(lun)});
    }
    fprintf(options.out, "%s\n", after.name().c_str());
    fputs(table.aligned().c_str(), options.out);
    fprintf(options.out, "now presented to %s\n", listed(after.presentations).c_str());
}

// Reads the disk before, runs change (an entry's result), reads it after and shows the change.
template <class Entry>
int changePresentations(CliOptions &options, ProviderSession &session, const KnownDisk &disk, const char *entryName,
                        Entry change)
{
    CopyInfo before;
    int status = diskInfo(session, disk.udid, before);
    if (status != 0) {
        return status;
    }
    session.beginCall();
    const int32_t result = change(before);
    // The reason first, while it is the calling thread's last error.
    const int failed = result != 0 ? session.failure(entryName, result) : ProviderSession::kExitOk;
    // Read again whatever the result: a failure may have removed presentations already.
    CopyInfo after;
    const int read = diskInfo(session, disk.udid, after);
    if (failed != ProviderSession::kExitOk) {
        if (read == 0) {
            const Change done = changeOf(before, after);
            if (!done.added.empty() || !done.removed.empty()) {
                fprintf(stderr, "tamlinctl: nothing was undone; the array changed before the failure:\n");
                printChange(options, after, done);
            }
        }
        return failed;
    }
    if (read != 0) {
        return read;
    }
    printChange(options, after, changeOf(before, after));
    return ProviderSession::kExitOk;
}

std::string age(const std::string &created, time_t now)
{
    struct tm parts = {};
    const char *end = strptime(created.c_str(), "%d-%b-%Y %H:%M:%S", &parts);
    if (end == nullptr || *end != '\0') {
        return "-";
    }
    // The arrays print their own time; read as UTC, as a disk's age needs no more.
    const time_t then = timegm(&parts);
    if (then > now) {
        return "-";
    }
    const long long seconds = now - then;
    char text[32];
    if (seconds >= 86400) {
        snprintf(text, sizeof text, "%lldd %lldh", seconds / 86400, seconds % 86400 / 3600);
    } else if (seconds >= 3600) {
        snprintf(text, sizeof text, "%lldh %lldm", seconds / 3600, seconds % 3600 / 60);
    } else if (seconds >= 60) {
        snprintf(text, sizeof text, "%lldm", seconds / 60);
    } else {
        snprintf(text, sizeof text, "%llds", seconds);
    }
    return text;
}

bool confirmed(const std::vector<CopyInfo> &copies)
{
    fprintf(stderr, "%zu cop%s will be deleted from the array%s, after their presentations:\n", copies.size(),
            copies.size() == 1 ? "y" : "ies", copies.size() == 1 ? "" : "s");
    for (const CopyInfo &copy : copies) {
        fprintf(stderr, "  %s (presented to %s)\n", copy.name().c_str(), listed(copy.presentations).c_str());
    }
    return answeredYes("delete");
}

}  // namespace

int runPresent(CliOptions &options)
{
    cliutil::Args args(options.args);
    const std::optional<std::string> host = args.value("--host");
    const bool shared = args.flag("--shared");
    const bool only = args.flag("--only");
    const std::vector<std::string> words = args.positional();
    if (words.size() != 1) {
        args.fail(words.empty() ? "which copy? give COPY, a UDID or a name" : "one copy at a time");
    } else if (!host || host->empty()) {
        args.fail("to which host? give --host HOST");
    } else if (only && !shared) {
        args.fail("--only works on the LUN map's road: give --shared too");
    }
    if (!finishArgs(args, "present")) {
        return ProviderSession::kExitUsage;
    }
    ProviderSession session(options);
    DiskResolver resolver(diskLister(session));
    std::vector<KnownDisk> disks;
    int status = startAndResolve(session, resolver, "present", words, disks);
    if (status != 0) {
        return status;
    }
    const std::wstring hostName = fromUtf8(*host);
    return changePresentations(
        options, session, disks[0], shared ? "import_resource" : "import_tree", [&](const CopyInfo &) -> int32_t {
            std::wstring resource = fromUtf8(disks[0].udid);
            std::wstring name = hostName;
            if (shared) {
                return session.lib()->import_resource(nullptr, &resource[0], &name[0], nullptr,
                                                      only ? QRN_IMPORT_SINGLE_HOST : QRN_IMPORT_ALL, nullptr, nullptr);
            }
            // The tree road, as a framework takes it: the node, its host as an import option.
            HostNode node(disks[0].udid);
            int32_t result = session.lib()->init_node(node.get(), nullptr, 0, nullptr);
            if (result != 0) {
                return result;
            }
            qrn_host_infn hosts{&name[0], nullptr};
            qrn_splitnode split{nullptr, node.get(), nullptr};
            result = session.lib()->set_import_options(&split, nullptr, 0, &hosts, 0, nullptr);
            qorin_objid *out = nullptr;
            if (result == 0) {
                result = session.lib()->import_tree(node.get(), nullptr, nullptr, 0, &out);
            }
            session.lib()->deinit_node(node.get());
            return result;
        });
}

int runUnpresent(CliOptions &options)
{
    cliutil::Args args(options.args);
    const std::optional<std::string> host = args.value("--host");
    const bool all = args.flag("--all");
    const std::vector<std::string> words = args.positional();
    if (words.size() != 1) {
        args.fail(words.empty() ? "which copy? give COPY, a UDID or a name" : "one copy at a time");
    } else if (host && all) {
        args.fail("--host and --all exclude each other");
    } else if (host && host->empty()) {
        args.fail("--host needs a host name");
    }
    if (!finishArgs(args, "unpresent")) {
        return ProviderSession::kExitUsage;
    }
    ProviderSession session(options);
    DiskResolver resolver(diskLister(session));
    std::vector<KnownDisk> disks;
    int status = startAndResolve(session, resolver, "unpresent", words, disks);
    if (status != 0) {
        return status;
    }
    const char *entry = host || all ? "deport_resource" : "deport_tree";
    return changePresentations(options, session, disks[0], entry, [&](const CopyInfo &before) -> int32_t {
        std::wstring resource = fromUtf8(disks[0].udid);
        if (host) {
            std::wstring name = fromUtf8(*host);
            return session.lib()->deport_resource(&resource[0], &name[0], nullptr, nullptr, QRN_DEPORT_SINGLE_HOST);
        }
        if (all) {
            if (before.presentations.empty()) {
                return 0;
            }
            // The provider resolves the host it is given even when it takes the disk from all.
            std::wstring name = fromUtf8(before.presentations.begin()->first);
            const size_t slash = name.rfind(L'\\');
            name = slash == std::wstring::npos ? name : name.substr(slash + 1);
            return session.lib()->deport_resource(&resource[0], &name[0], nullptr, nullptr, QRN_DEPORT_ALL);
        }
        HostNode node(disks[0].udid);
        return session.lib()->deport_tree(nullptr, node.get(), nullptr);
    });
}

int runDispose(CliOptions &options)
{
    cliutil::Args args(options.args);
    const bool yes = args.flag("--yes");
    const std::vector<std::string> words = args.positional();
    if (words.empty()) {
        args.fail("which copies? give COPY..., UDIDs or names");
    }
    if (!finishArgs(args, "dispose")) {
        return ProviderSession::kExitUsage;
    }
    if (!mayConfirm(yes, "dispose", "deletes copies")) {
        return ProviderSession::kExitUsage;
    }
    ProviderSession session(options);
    DiskResolver resolver(diskLister(session));
    std::vector<KnownDisk> disks;
    int status = startAndResolve(session, resolver, "dispose", words, disks);
    if (status != 0) {
        return status;
    }
    std::vector<CopyInfo> copies;
    std::set<std::string> seen;
    for (const KnownDisk &disk : disks) {
        if (!seen.insert(disk.udid).second) {
            continue;
        }
        CopyInfo info;
        status = diskInfo(session, disk.udid, info);
        if (status != 0) {
            return status;
        }
        // A source disk named by mistake would be gone for good.
        if (!info.copy) {
            fprintf(stderr,
                    "tamlinctl dispose: %s is no copy the provider made (its name doesn't end in _vsnap, _snap, "
                    "_clone or _drclone and a counter); nothing was deleted\n",
                    info.name().c_str());
            return ProviderSession::kExitUsage;
        }
        copies.push_back(info);
    }
    if (!yes && !confirmed(copies)) {
        fprintf(stderr, "tamlinctl dispose: not confirmed; nothing was deleted\n");
        return ProviderSession::kExitFailed;
    }

    cliutil::Table table({"COPY", "REMOVED FROM", "OUTCOME"});
    JsonWriter json;
    json.beginArray();
    int exit = ProviderSession::kExitOk;
    for (const CopyInfo &copy : copies) {
        HostNode node(copy.udid);
        session.beginCall();
        const int32_t result = session.lib()->dispose(nullptr, node.get(), nullptr, QRN_DISPOSITION_DELETE);
        std::string outcome = "deleted";
        CopyInfo after;
        bool left = false;
        if (result != 0) {
            exit = session.failure("dispose", result);
            // What is left of it now, if anything.
            left = diskInfo(session, copy.udid, after) == 0;
            outcome = left ? "left on the array, presented to " + listed(after.presentations) : "failed";
        }
        std::map<std::string, int32_t> gone;
        for (const auto &[host, lun] : copy.presentations) {
            if (!left || !after.presentations.count(host)) {
                gone[host] = lun;
            }
        }
        table.addRow({copy.name(), gone.empty() ? "-" : listed(gone), outcome});
        json.beginObject().key("copy").value(copy.name()).key("udid").value(copy.udid);
        json.key("removed");
        writePresentations(json, gone);
        json.key("deleted").value(result == 0).endObject();
    }
    if (options.json) {
        fprintf(options.out, "%s\n", json.endArray().text().c_str());
    } else {
        fputs(table.aligned().c_str(), options.out);
    }
    if (exit != ProviderSession::kExitOk) {
        fprintf(stderr, "tamlinctl dispose: nothing was undone; tamlinctl leftovers lists the copies that remain\n");
    }
    return exit;
}

int runLeftovers(CliOptions &options)
{
    cliutil::Args args(options.args);
    if (!args.positional().empty()) {
        args.fail("leftovers takes no disks; it looks at every array");
    }
    if (!finishArgs(args, "leftovers")) {
        return ProviderSession::kExitUsage;
    }
    ProviderSession session(options);
    int status = startWithArrays(session);
    if (status != 0) {
        return status;
    }
    std::vector<CopyInfo> copies;
    std::vector<std::string> unreadable;
    status = objectControl(session, L"leftovers", L"", copies, unreadable);
    if (status != 0) {
        return status;
    }
    const time_t now = time(nullptr);
    if (options.json) {
        JsonWriter json;
        json.beginArray();
        for (const CopyInfo &copy : copies) {
            json.beginObject().key("copy").value(copy.name()).key("udid").value(copy.udid);
            json.key("cell").value(copy.cell).key("path").value(copy.path).key("size_bytes").value(copy.size);
            json.key("created").value(copy.created).key("presentations");
            writePresentations(json, copy.presentations);
            json.endObject();
        }
        fprintf(options.out, "%s\n", json.endArray().text().c_str());
    } else {
        cliutil::Table table({"COPY", "SIZE", "PRESENTED TO", "CREATED", "AGE"});
        table.alignRight(1);
        table.alignRight(4);
        for (const CopyInfo &copy : copies) {
            std::string presented;
            for (const auto &[host, lun] : copy.presentations) {
                presented += (presented.empty() ? "" : ", ") + host + ":" + std::to_string(lun);
            }
            table.addRow({copy.name(), humanSize(copy.size), presented.empty() ? "-" : presented,
                          copy.created.empty() ? "-" : copy.created, age(copy.created, now)});
        }
        if (!copies.empty()) {
            fputs(table.aligned().c_str(), options.out);
        }
        fprintf(options.out, "%zu cop%s left on the arrays\n", copies.size(), copies.size() == 1 ? "y" : "ies");
    }
    for (const std::string &cell : unreadable) {
        fprintf(stderr, "tamlinctl leftovers: the disks of %s could not be listed; it may hold more\n", cell.c_str());
    }
    return unreadable.empty() ? ProviderSession::kExitOk : ProviderSession::kExitFailed;
}
