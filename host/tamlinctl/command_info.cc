// check, info and errmsg: what the provider says about itself.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "cliutil_table.h"
#include "commands.h"
#include "json_writer.h"
#include "provider_session.h"
#include "result_lists.h"
#include "text.h"

namespace {

std::string versionText(const uint16_t *v)
{
    return std::to_string(v[0]) + "." + std::to_string(v[1]) + "." + std::to_string(v[2]) + "." + std::to_string(v[3]);
}

std::string words(const uint32_t *w, size_t n)
{
    std::string out;
    for (size_t i = 0; i < n; ++i) {
        out += (i != 0 ? "," : "") + std::to_string(w[i]);
    }
    return out;
}

std::string patterns(wchar_t **list)
{
    std::string out;
    for (size_t i = 0; list != nullptr && list[i] != nullptr; ++i) {
        out += (i != 0 ? " " : "") + toUtf8(list[i]);
    }
    return out;
}

}  // namespace

int runCheck(CliOptions &options)
{
    cliutil::Args args(options.args);
    if (!finishArgs(args, "check")) {
        return ProviderSession::kExitUsage;
    }
    ProviderSession session(options);
    int status = session.start();
    if (status != 0) {
        return status;
    }
    size_t n = ProviderLibrary::entryCount();
    session.finish();
    if (options.json) {
        JsonWriter json;
        json.beginObject()
            .key("provider")
            .value(options.provider)
            .key("entries")
            .value(static_cast<uint64_t>(n))
            .key("interface")
            .value(versionText(session.version()))
            .key("init")
            .value(session.initResult())
            .endObject();
        fprintf(options.out, "%s\n", json.text().c_str());
    } else {
        fprintf(options.out, "provider   %s\n", options.provider.c_str());
        fprintf(options.out, "entries    %zu of %zu resolved\n", n, n);
        fprintf(options.out, "interface  %s\n", versionText(session.version()).c_str());
        fprintf(options.out, "init       %s (%d)\n", session.initResult() == 0 ? "ok" : "failed", session.initResult());
        fprintf(options.out, "fini       done\n");
    }
    return session.initResult() == 0 ? ProviderSession::kExitOk : ProviderSession::kExitFailed;
}

int runInfo(CliOptions &options)
{
    cliutil::Args args(options.args);
    if (!finishArgs(args, "info")) {
        return ProviderSession::kExitUsage;
    }
    ProviderSession session(options);
    int status = session.start();
    if (status != 0) {
        return status;
    }
    // The provider's identity needs no array: it is shown even when init failed.
    qrn_provider_list *providers = nullptr;
    session.beginCall();
    int32_t result = session.lib()->get_provider_info(&providers);
    if (result != 0) {
        return session.failure("get_provider_info", result);
    }
    qrn_fim_list *fims = nullptr;
    session.beginCall();
    result = session.lib()->enumerate_fims(&fims);
    if (result != 0) {
        result_lists::freeList(providers);
        return session.failure("enumerate_fims", result);
    }

    if (options.json) {
        JsonWriter json;
        json.beginObject().key("interface").value(versionText(session.version()));
        json.key("init").value(session.initResult());
        json.key("providers").beginArray();
        for (qrn_provider_list *p : result_lists::elements(providers)) {
            json.beginObject().key("name").value(std::wstring(p->provider ? p->provider : L""));
            json.key("version").value(versionText(p->version));
            json.key("words").beginArray().value(p->word1).value(p->word2).endArray();
            json.key("claim_patterns").beginArray();
            for (size_t i = 0; p->claimPatterns != nullptr && p->claimPatterns[i] != nullptr; ++i) {
                json.value(std::wstring(p->claimPatterns[i]));
            }
            json.endArray().endObject();
        }
        json.endArray().key("methods").beginArray();
        for (qrn_fim_list *f : result_lists::elements(fims)) {
            json.beginObject().key("name").value(std::wstring(f->name ? f->name : L""));
            json.key("words").beginArray();
            for (uint32_t w : f->words) {
                json.value(w);
            }
            json.endArray();
            json.key("description").value(std::wstring(f->description ? f->description : L""));
            json.key("version").value(std::wstring(f->version ? f->version : L""));
            json.endObject();
        }
        json.endArray().endObject();
        fprintf(options.out, "%s\n", json.text().c_str());
    } else {
        for (qrn_provider_list *p : result_lists::elements(providers)) {
            fprintf(options.out, "Provider        %s\n", toUtf8(p->provider ? p->provider : L"").c_str());
            fprintf(options.out, "Interface       %s\n", versionText(p->version).c_str());
            fprintf(options.out, "Claim patterns  %s\n", patterns(p->claimPatterns).c_str());
        }
        fprintf(options.out, "Initialisation  %s\n\nSnapshot methods\n",
                session.initResult() == 0 ? "ok" : ("failed (" + std::to_string(session.initResult()) + ")").c_str());
        cliutil::Table table({"METHOD", "ATTRIBUTES", "VERSION", "DESCRIPTION"});
        for (qrn_fim_list *f : result_lists::elements(fims)) {
            table.addRow({toUtf8(f->name ? f->name : L""), words(f->words, 6), toUtf8(f->version ? f->version : L""),
                          toUtf8(f->description ? f->description : L"")});
        }
        fputs(table.aligned().c_str(), options.out);
    }
    result_lists::freeList(providers);
    result_lists::freeList(fims);
    return ProviderSession::kExitOk;
}

int runErrmsg(CliOptions &options)
{
    cliutil::Args args(options.args);
    std::vector<std::string> codes = args.positional();
    if (!finishArgs(args, "errmsg")) {
        return ProviderSession::kExitUsage;
    }
    if (codes.empty()) {
        fprintf(stderr, "tamlinctl errmsg: give at least one result code (try tamlinctl errmsg --help)\n");
        return ProviderSession::kExitUsage;
    }
    std::vector<int32_t> numbers;
    for (const std::string &code : codes) {
        char *end = nullptr;
        long value = strtol(code.c_str(), &end, 10);
        if (code.empty() || *end != '\0' || value < INT32_MIN || value > INT32_MAX) {
            fprintf(stderr, "tamlinctl errmsg: '%s' is not a result code\n", code.c_str());
            return ProviderSession::kExitUsage;
        }
        numbers.push_back(static_cast<int32_t>(value));
    }
    ProviderSession session(options);
    int status = session.start();
    if (status != 0) {
        return status;
    }
    JsonWriter json;
    json.beginArray();
    for (int32_t code : numbers) {
        std::string text = toUtf8(session.errmsgText(code));
        if (options.json) {
            json.beginObject().key("code").value(code).key("text").value(text).endObject();
        } else {
            fprintf(options.out, "%d: %s\n", code, text.c_str());
        }
    }
    if (options.json) {
        fprintf(options.out, "%s\n", json.endArray().text().c_str());
    }
    return ProviderSession::kExitOk;
}
