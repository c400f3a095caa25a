// snapshot: point-in-time copies of disks, made as a backup job makes them.
#include <unistd.h>

#include <cstdio>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cliutil_table.h"
#include "commands.h"
#include "json_writer.h"
#include "provider_session.h"
#include "snapshot_job.h"
#include "text.h"

namespace {

struct Method {
    const char *name;
    const char *suffix;  // the copies' names: <family><suffix><counter>
    bool remote;         // made on the DR group's other cell
};
const Method kMethods[] = {
    {"HPEVA_VSnap", "_vsnap", false},
    {"HPEVA_Snapshot", "_snap", false},
    {"HPEVA_Snapclone", "_clone", false},
    {"HPEVA_DRGroup_Snapclone", "_drclone", true},
};

const char kSleepTrace[] = "snapclone_in_progress, sleeping ";

std::string methodList()
{
    std::string list;
    for (const Method &method : kMethods) {
        list += (list.empty() ? "" : ", ") + std::string(method.name);
    }
    return list;
}

// A name as listed: HP##HSV##<cell>##<path>.
struct NameParts {
    std::string cell;
    std::string path;
};

NameParts partsOf(const std::string &name)
{
    NameParts parts;
    const size_t head = name.find("##", name.find("##") + 2);
    const size_t separator = head == std::string::npos ? std::string::npos : name.find("##", head + 2);
    if (separator == std::string::npos) {
        parts.path = name;
        return parts;
    }
    parts.cell = name.substr(head + 2, separator - head - 2);
    parts.path = name.substr(separator + 2);
    return parts;
}

std::string lastComponent(const std::string &path)
{
    const size_t slash = path.rfind('\\');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// Whether copy is named as the provider names copies of source by method: the family's name,
// the method's suffix and a hexadecimal counter, on the source's cell unless made remotely.
bool isCopyOf(const KnownDisk &copy, const KnownDisk &source, const Method &method)
{
    const NameParts from = partsOf(source.name);
    const NameParts to = partsOf(copy.name);
    const std::string stem = lastComponent(from.path) + method.suffix;
    const std::string last = lastComponent(to.path);
    return (method.remote || from.cell == to.cell) && last.size() > stem.size() &&
           last.compare(0, stem.size(), stem) == 0 &&
           last.find_first_not_of("0123456789abcdef", stem.size()) == std::string::npos;
}

struct Copy {
    KnownDisk source;
    KnownDisk copy;
};

void printCopies(FILE *out, const std::vector<Copy> &copies)
{
    cliutil::Table table({"SOURCE", "COPY", "COPY UDID"});
    for (const Copy &c : copies) {
        table.addRow({c.source.name, c.copy.name.empty() ? "-" : c.copy.name, c.copy.udid});
    }
    fputs(table.aligned().c_str(), out);
}

void writeDisk(JsonWriter &json, const KnownDisk &disk)
{
    json.beginObject().key("name").value(disk.name).key("udid").value(disk.udid).endObject();
}

void writeJson(FILE *out, const Method &method, bool complete, const std::vector<Copy> &copies,
               const std::vector<KnownDisk> &without)
{
    JsonWriter json;
    json.beginObject().key("method").value(std::string(method.name)).key("complete").value(complete);
    json.key("copies").beginArray();
    for (const Copy &c : copies) {
        json.beginObject().key("source");
        writeDisk(json, c.source);
        json.key("copy");
        writeDisk(json, c.copy);
        json.endObject();
    }
    json.endArray();
    if (!complete) {
        json.key("without_copy").beginArray();
        for (const KnownDisk &disk : without) {
            writeDisk(json, disk);
        }
        json.endArray();
    }
    fprintf(out, "%s\n", json.endObject().text().c_str());
}

std::string quoted(const std::string &word)
{
    std::string text = "'";
    for (char c : word) {
        text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return text + "'";
}

// After a failed make: which copies the arrays now hold (disks named as copies of a source
// that weren't there before), which sources have none, and how to go on from there.
int reportPartial(CliOptions &options, DiskResolver &resolver, const std::vector<KnownDisk> &before,
                  const std::vector<KnownDisk> &sources, const Method &method)
{
    std::vector<KnownDisk> now;
    if (resolver.known(now, true) != 0) {
        fprintf(stderr, "tamlinctl snapshot: the disks could not be listed again to tell which copies were made; "
                        "look with tamlinctl disks\n");
        return ProviderSession::kExitFailed;
    }
    std::map<std::string, bool> existed;
    for (const KnownDisk &disk : before) {
        existed[disk.udid] = true;
    }
    std::vector<Copy> copies;
    std::vector<KnownDisk> without;
    for (const KnownDisk &source : sources) {
        bool found = false;
        for (const KnownDisk &disk : now) {
            if (!existed.count(disk.udid) && isCopyOf(disk, source, method)) {
                copies.push_back({source, disk});
                found = true;
            }
        }
        if (!found) {
            without.push_back(source);
        }
    }
    if (options.json) {
        writeJson(options.out, method, false, copies, without);
    }
    if (copies.empty()) {
        fprintf(stderr, "tamlinctl snapshot: no copy was made; nothing is left to clean up\n");
        return ProviderSession::kExitFailed;
    }
    fprintf(stderr, "tamlinctl snapshot: %zu of %zu copies were made and remain on the arrays:\n", copies.size(),
            sources.size());
    printCopies(stderr, copies);
    if (!without.empty()) {
        std::string command = "tamlinctl snapshot --method " + std::string(method.name);
        for (const KnownDisk &disk : without) {
            command += " " + quoted(disk.name);
        }
        fprintf(stderr, "To finish the snapshot, make the copies still missing:\n  %s\n", command.c_str());
    }
    std::string udids;
    for (const Copy &c : copies) {
        udids += " " + quoted(c.copy.udid);
    }
    fprintf(stderr, "To give it up instead, delete the copies above (in Command View, or tamlinctl dispose%s)\n",
            udids.c_str());
    return ProviderSession::kExitFailed;
}

}  // namespace

int runSnapshot(CliOptions &options)
{
    cliutil::Args args(options.args);
    const std::optional<std::string> name = args.value("--method");
    const std::vector<std::string> words = args.positional();
    const Method *method = nullptr;
    for (const Method &candidate : kMethods) {
        if (name && *name == candidate.name) {
            method = &candidate;
        }
    }
    if (!name) {
        args.fail("snapshot needs --method: " + methodList());
    } else if (method == nullptr) {
        args.fail("unknown method '" + *name + "' (" + methodList() + ")");
    } else if (words.empty()) {
        args.fail("snapshot needs at least one DISK, a UDID or a name as tamlinctl disks shows it");
    }
    if (!finishArgs(args, "snapshot")) {
        return ProviderSession::kExitUsage;
    }

    ProviderSession session(options);
    DiskResolver resolver(diskLister(session));
    std::vector<KnownDisk> sources;
    int status = startAndResolve(session, resolver, "snapshot", words, sources);
    if (status != 0) {
        return status;
    }
    std::map<std::string, std::string> seen;
    for (const KnownDisk &source : sources) {
        if (!seen.emplace(source.udid, source.word).second) {
            fprintf(stderr, "tamlinctl snapshot: '%s' and '%s' name the same disk, %s\n", seen[source.udid].c_str(),
                    source.word.c_str(), source.name.c_str());
            return ProviderSession::kExitUsage;
        }
    }
    std::vector<KnownDisk> before;
    resolver.known(before);

    SnapshotJob job(session.lib(), method->name, "tamlinctl-snapshot-" + std::to_string(getpid()));
    for (const KnownDisk &source : sources) {
        session.beginCall();
        const int result = job.add(fromUtf8(source.udid));
        if (result < 0) {
            fprintf(stderr, "tamlinctl snapshot: the provider does not take %s (%s)\n", source.name.c_str(),
                    source.udid.c_str());
            return ProviderSession::kExitFailed;
        }
        if (result != 0) {
            return session.failure("init_node", result);
        }
    }
    // A refused check still answers 0: the provider's message is what says so.
    session.beginCall();
    int result = job.select();
    if (result != 0) {
        return session.failure("select", result);
    }
    if (session.reasonShown()) {
        fprintf(stderr,
                "tamlinctl snapshot: the provider refused the disks for %s (its reason above); nothing was made\n",
                method->name);
        return ProviderSession::kExitFailed;
    }

    session.watchTraces([](const std::wstring &line) {
        const std::string text = toUtf8(line);
        const size_t at = text.find(kSleepTrace);
        if (at == std::string::npos) {
            return;
        }
        const size_t open = text.find('[', at);
        const size_t close = text.rfind(']');
        const std::string clone = open != std::string::npos && close != std::string::npos && close > open
                                      ? text.substr(open + 1, close - open - 1)
                                      : std::string("the new snapclone");
        fprintf(stderr, "tamlinctl snapshot: %s is still starting its copy; waiting 4 seconds (8 at most)\n",
                clone.c_str());
    });
    session.beginCall();
    std::vector<std::wstring> targets;
    result = job.make(targets);
    session.watchTraces(nullptr);
    if (result != 0) {
        session.failure("make", result);
        return reportPartial(options, resolver, before, sources, *method);
    }

    std::vector<KnownDisk> now;
    if (resolver.known(now, true) != 0) {
        now.clear();
    }
    std::vector<Copy> copies;
    for (size_t i = 0; i < sources.size(); ++i) {
        Copy c{sources[i], KnownDisk()};
        c.copy.udid = i < targets.size() ? toUtf8(targets[i]) : std::string();
        for (const KnownDisk &disk : now) {
            if (disk.udid == c.copy.udid) {
                c.copy.name = disk.name;
            }
        }
        copies.push_back(c);
    }
    if (options.json) {
        writeJson(options.out, *method, true, copies, {});
    } else {
        printCopies(options.out, copies);
        fprintf(options.out, "%zu cop%s made by %s\n", copies.size(), copies.size() == 1 ? "y" : "ies", method->name);
    }
    return ProviderSession::kExitOk;
}
