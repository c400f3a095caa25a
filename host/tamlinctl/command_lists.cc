// enclosures, hosts and disks: what the arrays behind the provider hold.
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "cliutil_table.h"
#include "commands.h"
#include "disk_resolver.h"
#include "json_writer.h"
#include "provider_session.h"
#include "result_lists.h"
#include "text.h"

namespace {

const int32_t kServeFlag = 16;
const int32_t kLeaveOutSnapshots = 64;
const int32_t kLeaveOutActive = 128;

std::string text(const wchar_t *value)
{
    return value != nullptr ? toUtf8(value) : std::string();
}

// The provider's filter text from --filter KEY=VALUE items and the named shortcuts.
bool buildFilter(cliutil::Args &args, const std::vector<std::pair<std::string, std::string>> &named,
                 std::wstring &filter)
{
    std::vector<std::string> items = args.values("--filter");
    for (const auto &option : named) {
        for (const std::string &v : args.values(option.first)) {
            items.push_back(option.second + "=" + v);
        }
    }
    std::string joined;
    for (const std::string &item : items) {
        if (item.find('=') == std::string::npos || item[0] == '=') {
            return args.fail("a filter is KEY=VALUE, not '" + item + "'");
        }
        if (item.find(',') != std::string::npos || item.find('\n') != std::string::npos) {
            return args.fail("a filter value cannot hold a comma or a line break: '" + item + "'");
        }
        joined += (joined.empty() ? "" : ",") + item;
    }
    filter = fromUtf8(joined);
    return true;
}

const std::vector<std::pair<std::string, std::string>> kEnclosureKeys = {{"--enclosure-id", "enclosure_id"},
                                                                         {"--enclosure-name", "enclosure_name"}};

// Runs a list entry after a successful init; the filter is null when empty.
template <class Record, class Entry>
int listEntry(ProviderSession &session, const char *name, Entry entry, std::wstring &filter, Record *&list,
              int32_t &count)
{
    session.beginCall();
    int32_t result = entry(&list, &count, filter.empty() ? nullptr : &filter[0]);
    if (result != 0) {
        // What arrived before the failure is still the host's to release.
        result_lists::freeList(list);
        list = nullptr;
        return session.failure(name, result);
    }
    return ProviderSession::kExitOk;
}

}  // namespace

int runEnclosures(CliOptions &options)
{
    cliutil::Args args(options.args);
    std::wstring filter;
    buildFilter(args, kEnclosureKeys, filter);
    if (!finishArgs(args, "enclosures")) {
        return ProviderSession::kExitUsage;
    }
    ProviderSession session(options);
    int status = startWithArrays(session);
    if (status != 0) {
        return status;
    }
    qrn_enclosure_node_list *list = nullptr;
    int32_t count = 0;
    status = listEntry(session, "enumerate_enclosures", session.lib()->enumerate_enclosures, filter, list, count);
    if (status != 0) {
        return status;
    }
    if (options.json) {
        JsonWriter json;
        json.beginArray();
        for (auto *e : result_lists::elements(list)) {
            json.beginObject().key("name").value(text(e->name)).key("enclosure_id").value(text(e->enclosureId));
            json.key("vendor").value(text(e->vendor)).key("product").value(text(e->product));
            json.key("total_bytes").value(e->total).key("available_bytes").value(e->available).endObject();
        }
        fprintf(options.out, "%s\n", json.endArray().text().c_str());
    } else {
        cliutil::Table table({"NAME", "ENCLOSURE ID", "VENDOR", "PRODUCT", "TOTAL", "AVAILABLE"});
        table.alignRight(4);
        table.alignRight(5);
        for (auto *e : result_lists::elements(list)) {
            table.addRow({text(e->name), text(e->enclosureId), text(e->vendor), text(e->product), humanSize(e->total),
                          humanSize(e->available)});
        }
        fputs(table.aligned().c_str(), options.out);
        fprintf(options.out, "%zu enclosure%s\n", table.rows(), table.rows() == 1 ? "" : "s");
    }
    result_lists::freeList(list);
    return ProviderSession::kExitOk;
}

int runHosts(CliOptions &options)
{
    cliutil::Args args(options.args);
    std::wstring filter;
    buildFilter(args, kEnclosureKeys, filter);
    if (!finishArgs(args, "hosts")) {
        return ProviderSession::kExitUsage;
    }
    ProviderSession session(options);
    int status = startWithArrays(session);
    if (status != 0) {
        return status;
    }
    qrn_host_node_list *list = nullptr;
    int32_t count = 0;
    status = listEntry(session, "enumerate_host_nodes", session.lib()->enumerate_host_nodes, filter, list, count);
    if (status != 0) {
        return status;
    }
    if (options.json) {
        JsonWriter json;
        json.beginArray();
        for (auto *h : result_lists::elements(list)) {
            json.beginObject().key("host").value(text(h->hostName)).key("enclosure_id").value(text(h->enclosureId));
            json.key("ports").beginArray();
            for (uint32_t i = 0; h->ports != nullptr && h->ports[i] != nullptr; ++i) {
                json.value(text(h->ports[i]));
            }
            json.endArray().endObject();
        }
        fprintf(options.out, "%s\n", json.endArray().text().c_str());
    } else {
        cliutil::Table table({"HOST", "ENCLOSURE ID", "PORTS"});
        for (auto *h : result_lists::elements(list)) {
            std::string ports;
            for (uint32_t i = 0; h->ports != nullptr && h->ports[i] != nullptr; ++i) {
                ports += (i != 0 ? " " : "") + text(h->ports[i]);
            }
            table.addRow({text(h->hostName), text(h->enclosureId), ports.empty() ? "-" : ports});
        }
        fputs(table.aligned().c_str(), options.out);
        fprintf(options.out, "%zu host%s\n", table.rows(), table.rows() == 1 ? "" : "s");
    }
    result_lists::freeList(list);
    return ProviderSession::kExitOk;
}

int runDisks(CliOptions &options)
{
    cliutil::Args args(options.args);
    std::vector<std::pair<std::string, std::string>> keys = kEnclosureKeys;
    keys.push_back({"--udid", "udid"});
    keys.push_back({"--prefix", "node_prefix"});
    std::wstring filter;
    buildFilter(args, keys, filter);
    int32_t flags = 0;
    if (args.flag("--no-snapshots")) {
        flags |= kServeFlag | kLeaveOutSnapshots;
    }
    if (args.flag("--no-active")) {
        flags |= kServeFlag | kLeaveOutActive;
    }
    if (std::optional<std::string> raw = args.value("--flags")) {
        char *end = nullptr;
        long value = strtol(raw->c_str(), &end, 0);
        if (raw->empty() || *end != '\0' || value < 0 || value > INT32_MAX) {
            args.fail("--flags takes a number, not '" + *raw + "'");
        }
        flags |= static_cast<int32_t>(value);
    }
    if (!finishArgs(args, "disks")) {
        return ProviderSession::kExitUsage;
    }
    ProviderSession session(options);
    int status = startWithArrays(session);
    if (status != 0) {
        return status;
    }
    qrn_node_list *list = nullptr;
    int32_t count = 0;
    auto entry = [&](qrn_node_list **out, int32_t *n, wchar_t *f) {
        return session.lib()->enumerate_nodes(out, n, flags, f);
    };
    // A disk asked for by its UDID comes with its sharing relationship, which the provider
    // tells in a trace line only: how a copy into or out of it is followed.
    const bool oneDisk = filter.find(L"udid=") != std::wstring::npos;
    std::string sharing;
    if (oneDisk) {
        session.watchTraces([&sharing](const std::wstring &line) {
            const std::string text = toUtf8(line);
            const std::string mark = "] sharing relationship [";
            const size_t at = text.find(mark);
            const size_t end = at == std::string::npos ? at : text.find(']', at + mark.size());
            if (end != std::string::npos) {
                sharing = text.substr(at + mark.size(), end - at - mark.size());
            }
        });
    }
    status = listEntry(session, "enumerate_nodes", entry, filter, list, count);
    session.watchTraces(nullptr);
    if (status != 0) {
        return status;
    }
    if (options.json) {
        JsonWriter json;
        json.beginArray();
        for (auto *n : result_lists::elements(list)) {
            json.beginObject().key("name").value(text(n->displayName));
            json.key("udid").value(n->id != nullptr ? text(n->id->text) : std::string());
            if (oneDisk && !sharing.empty()) {
                json.key("sharing_relationship").value(sharing);
            }
            json.key("size_bytes").value(n->size).endObject();
        }
        fprintf(options.out, "%s\n", json.endArray().text().c_str());
    } else {
        std::vector<std::string> headers = {"DISK", "SIZE", "UDID"};
        if (oneDisk) {
            headers.push_back("SHARING");
        }
        cliutil::Table table(headers);
        table.alignRight(1);
        for (auto *n : result_lists::elements(list)) {
            table.addRow({text(n->displayName), humanSize(n->size), n->id != nullptr ? text(n->id->text) : "",
                          sharing.empty() ? "-" : sharing});
        }
        fputs(table.aligned().c_str(), options.out);
        fprintf(options.out, "%zu disk%s\n", table.rows(), table.rows() == 1 ? "" : "s");
    }
    result_lists::freeList(list);
    return ProviderSession::kExitOk;
}

DiskResolver::Lister diskLister(ProviderSession &session)
{
    return [&session](std::vector<KnownDisk> &disks) {
        if (session.initResult() != 0) {
            return ProviderSession::kExitFailed;
        }
        qrn_node_list *list = nullptr;
        int32_t count = 0;
        std::wstring none;
        auto entry = [&](qrn_node_list **out, int32_t *n, wchar_t *f) {
            return session.lib()->enumerate_nodes(out, n, 0, f);
        };
        const int status = listEntry(session, "enumerate_nodes", entry, none, list, count);
        if (status != 0) {
            return status;
        }
        for (auto *n : result_lists::elements(list)) {
            KnownDisk disk;
            disk.name = text(n->displayName);
            disk.udid = n->id != nullptr ? text(n->id->text) : std::string();
            disk.size = n->size;
            disks.push_back(disk);
        }
        result_lists::freeList(list);
        return ProviderSession::kExitOk;
    };
}
