// tamlinctl: a command-line host for the provider. It loads libtamlin.so the way a backup
// framework does (dlopen, entries by name) and drives it.
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "host_context.h"
#include "provider_library.h"

namespace {

const int kExitOk = 0;
const int kExitFailed = 1;
const int kExitUsage = 2;
const int kExitLoad = 3;

struct Options {
    std::string provider;
    std::string language;
    std::vector<std::string> args;
};

struct Command {
    const char *summary;
    const char *help;
    std::function<int(Options &)> run;
};

void printMainHelp(const std::map<std::string, Command> &commands)
{
    printf("Usage: tamlinctl [--provider PATH] [--lang LANG] <command> [arguments]\n"
           "\n"
           "A command-line host for the Tamlin snapshot provider: it loads the provider\n"
           "library as a backup framework does and calls its entries.\n"
           "\n"
           "Commands:\n");
    for (const auto &kv : commands) {
        printf("  %-12s %s\n", kv.first.c_str(), kv.second.summary);
    }
    printf("\n"
           "Options:\n"
           "  --provider PATH  provider library to load (default: %s)\n"
           "  --lang LANG      host language for the provider's messages, such as \"de\"\n"
           "  -h, --help       this text; `tamlinctl <command> --help` describes a command\n"
           "\n"
           "Exit status: 0 success, 1 an entry of the provider failed, 2 bad usage,\n"
           "3 the provider could not be loaded.\n",
           ProviderLibrary::defaultPath().c_str());
}

// Loads the provider; on failure says why and which entries are missing.
bool load(ProviderLibrary &library, const Options &options)
{
    if (library.open(options.provider)) {
        return true;
    }
    fprintf(stderr, "tamlinctl: %s\n", library.error().c_str());
    for (const std::string &name : library.missing()) {
        fprintf(stderr, "tamlinctl: missing entry %s\n", name.c_str());
    }
    return false;
}

int runCheck(Options &options)
{
    if (!options.args.empty()) {
        fprintf(stderr, "tamlinctl check: unexpected argument '%s'\n", options.args.front().c_str());
        return kExitUsage;
    }
    ProviderLibrary library;
    if (!load(library, options)) {
        return kExitLoad;
    }
    printf("provider   %s\n", options.provider.c_str());
    printf("entries    %zu of %zu resolved\n", ProviderLibrary::entryCount(), ProviderLibrary::entryCount());

    HostContext host(options.language, HostContext::printToStderr());
    uint16_t version[4] = {0, 0, 0, 0};
    int32_t result = library->init(host.get(), version);
    printf("interface  %u.%u.%u.%u\n", version[0], version[1], version[2], version[3]);
    printf("init       %s (%d)\n", result == 0 ? "ok" : "failed", result);
    library->fini();
    printf("fini       done\n");
    return result == 0 ? kExitOk : kExitFailed;
}

std::map<std::string, Command> commands()
{
    std::map<std::string, Command> all;
    all["check"] = {"load the provider, resolve its entries, initialise and finish it",
                    "Usage: tamlinctl [--provider PATH] [--lang LANG] check\n"
                    "\n"
                    "Loads the provider library with dlopen and resolves all of its entries by\n"
                    "name, naming any that is missing. Then calls init with a host context whose\n"
                    "callback prints the provider's messages on standard error, prints the\n"
                    "interface version the provider announces, and calls fini.\n"
                    "\n"
                    "Exit status: 0 when init succeeded, 1 when it failed, 3 when the library\n"
                    "could not be loaded or lacks entries.\n",
                    runCheck};
    return all;
}

bool wantsHelp(const std::vector<std::string> &args)
{
    for (const std::string &a : args) {
        if (a == "-h" || a == "--help") {
            return true;
        }
    }
    return false;
}

}  // namespace

int main(int argc, char **argv)
{
    std::map<std::string, Command> all = commands();
    Options options;
    options.provider = ProviderLibrary::defaultPath();
    std::string command;
    int i = 1;
    for (; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg == "-h" || arg == "--help") {
            printMainHelp(all);
            return kExitOk;
        }
        if (arg == "--provider" || arg == "--lang") {
            if (i + 1 >= argc) {
                fprintf(stderr, "tamlinctl: %s needs a value\n", arg.c_str());
                return kExitUsage;
            }
            (arg == "--provider" ? options.provider : options.language) = argv[++i];
            continue;
        }
        if (arg.rfind("--provider=", 0) == 0) {
            options.provider = arg.substr(strlen("--provider="));
            continue;
        }
        if (arg.rfind("--lang=", 0) == 0) {
            options.language = arg.substr(strlen("--lang="));
            continue;
        }
        if (!arg.empty() && arg[0] == '-') {
            fprintf(stderr, "tamlinctl: unknown option '%s' (try --help)\n", arg.c_str());
            return kExitUsage;
        }
        command = arg;
        ++i;
        break;
    }
    for (; i < argc; ++i) {
        options.args.push_back(argv[i]);
    }
    if (command.empty()) {
        printMainHelp(all);
        return kExitUsage;
    }
    if (command == "help") {
        if (options.args.empty()) {
            printMainHelp(all);
            return kExitOk;
        }
        command = options.args.front();
        options.args = {"--help"};
    }
    auto it = all.find(command);
    if (it == all.end()) {
        fprintf(stderr, "tamlinctl: unknown command '%s' (try --help)\n", command.c_str());
        return kExitUsage;
    }
    if (wantsHelp(options.args)) {
        fputs(it->second.help, stdout);
        return kExitOk;
    }
    return it->second.run(options);
}
