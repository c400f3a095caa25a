// tamlinctl: a command-line host for the provider. It loads libtamlin.so the way a backup
// framework does (dlopen, entries by name) and drives it.
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <unistd.h>

#include "cli_options.h"
#include "commands.h"
#include "provider_library.h"
#include "provider_session.h"

namespace {

struct Command {
    std::string summary;
    std::string help;
    std::function<int(CliOptions &)> run;
};

const char kFilterHelp[] = "  --filter KEY=VALUE     a filter item of the provider (repeatable); keys:\n"
                           "                         provider_name, vendor_id, product_id, enclosure_id,\n"
                           "                         enclosure_name (all compared without regard to case)\n"
                           "  --enclosure-id WWN     short for --filter enclosure_id=WWN\n"
                           "  --enclosure-name NAME  short for --filter enclosure_name=NAME\n";

std::map<std::string, Command> commands()
{
    std::map<std::string, Command> all;
    all["check"] = {"load the provider, resolve its entries, initialise and finish it",
                    "Usage: tamlinctl [global options] check\n"
                    "\n"
                    "Loads the provider library with dlopen and resolves all of its entries by\n"
                    "name, naming any that is missing. Then calls init with a host context whose\n"
                    "callback prints the provider's messages on standard error, prints the\n"
                    "interface version the provider announces, and calls fini.\n"
                    "\n"
                    "Exit status: 0 when init succeeded, 1 when it failed, 3 when the library\n"
                    "could not be loaded or lacks entries, or the provider has no install root.\n",
                    runCheck};
    all["info"] = {"show the provider, its interface version and its snapshot methods",
                   "Usage: tamlinctl [global options] info\n"
                   "\n"
                   "Shows what the provider announces about itself: its name, interface version,\n"
                   "the disk identities it claims, and its snapshot methods with their attribute\n"
                   "words. Needs no array: it works even when initialisation fails, which it\n"
                   "reports.\n",
                   runInfo};
    all["enclosures"] = {"list the storage arrays the provider reaches",
                         std::string("Usage: tamlinctl [global options] enclosures [filter options]\n"
                                     "\n"
                                     "Lists the storage cells that the configured Command View servers reach,\n"
                                     "with their world wide names and space.\n"
                                     "\n"
                                     "Filter options:\n") +
                             kFilterHelp,
                         runEnclosures};
    all["hosts"] = {"list the hosts the arrays know, with their ports",
                    std::string("Usage: tamlinctl [global options] hosts [filter options]\n"
                                "\n"
                                "Lists the hosts known to each storage cell, one line per host and cell,\n"
                                "with the host's port world wide names.\n"
                                "\n"
                                "Filter options:\n") +
                        kFilterHelp,
                    runHosts};
    all["disks"] = {"list the virtual disks and their identities (UDIDs)",
                    std::string("Usage: tamlinctl [global options] disks [filter options] [selection]\n"
                                "\n"
                                "Lists the virtual disks of the reachable cells, with the identity (UDID)\n"
                                "a backup framework uses for each.\n"
                                "\n"
                                "Filter options:\n") +
                        kFilterHelp +
                        "  --udid UDID            only the disk of this identity, with its sharing\n"
                        "                         relationship as the array reports it (while a copy\n"
                        "                         runs: snapclone_in_progress into the disk, parent out\n"
                        "                         of it; none when no copy runs; needs the trace log on)\n"
                        "  --prefix TEXT          only disks whose array path contains TEXT\n"
                        "\n"
                        "Selection:\n"
                        "  --no-snapshots         leave out snapshots\n"
                        "  --no-active            leave out active disks\n"
                        "  --flags N              the provider's raw flag word (16 serve, 64 no snapshots,\n"
                        "                         128 no active disks)\n",
                    runDisks};
    all["config"] = {"show or set a node's configuration parameters",
                     "Usage: tamlinctl [global options] config NODE OPERATION [options]\n"
                     "\n"
                     "Shows or sets the configuration parameters of one node as a backup framework\n"
                     "does: the node is introduced to the provider, the operation goes through the\n"
                     "config entry, and the node is taken away again. The provider keeps a node's\n"
                     "parameters only while it is loaded, so every run starts afresh. Documents are\n"
                     "printed indented.\n"
                     "\n"
                     "NODE is the node's name, such as a disk's UDID.\n"
                     "\n"
                     "Operations:\n"
                     "  get        the node's parameter values (the defaults the provider offers)\n"
                     "  set FILE   set the values of a ConfigValueList document read from FILE (\"-\":\n"
                     "             standard input) and show the values the node then holds; a\n"
                     "             document that can't be read is reported with its line and column\n"
                     "  clear      drop the node's values\n"
                     "  params     the parameters the provider describes (a ConfigParamList)\n"
                     "\n"
                     "Options:\n"
                     "  --group    NODE is a group node (its member list starts with itself)\n"
                     "  --mode N   1 (default) or 0: the set of parameters; snapshot_resource_spec\n"
                     "             (the targets of each source) is of mode 1\n"
                     "\n"
                     "A value document, for example:\n"
                     "  <ConfigValueList>\n"
                     "    <ConfigValue>\n"
                     "      <key>snapshot_resource_spec</key>\n"
                     "      <value>[ENCLOSURE##DISK;TARGET1;TARGET2]</value>\n"
                     "    </ConfigValue>\n"
                     "  </ConfigValueList>\n",
                     runConfig};
    all["restore"] = {"restore disks from their snapclones, with the copies' progress",
                      "Usage: tamlinctl [global options] restore PRIMARY SECONDARY [PRIMARY SECONDARY]... [--yes]\n"
                      "\n"
                      "Gives each PRIMARY disk the content of its snapclone SECONDARY, as a backup\n"
                      "framework restores. Disks are named by UDID or by name as `tamlinctl disks`\n"
                      "shows them. Both sides must be active disks of one array and of one size.\n"
                      "\n"
                      "On a terminal tamlinctl asks before it starts, unless --yes is given; without\n"
                      "a terminal --yes is needed. The provider removes each primary's\n"
                      "presentations, makes it a container, starts the copy of the snapclone into it\n"
                      "and presents it again on its old LUNs; then tamlinctl shows, per pair, the\n"
                      "state the array reports and the time since the copy started, until every\n"
                      "copy has ended (in place on a terminal, a line per change otherwise).\n"
                      "\n"
                      "Ctrl-C stops the waiting only: the copies go on on the array, and tamlinctl\n"
                      "says how to follow them. The provider's trace log must be on (TRACELEVEL 1 or\n"
                      "more) for the array's state to be shown.\n"
                      "\n"
                      "Options:\n"
                      "  --yes      don't ask\n"
                      "\n"
                      "With --json the outcome per pair: primary, secondary (names and UDIDs),\n"
                      "outcome (done, failed, not started, unawaited), array_state, elapsed_seconds.\n"
                      "Exit status: 0 every copy ended, 1 a restore failed or was not confirmed,\n"
                      "2 bad usage or disks that can't be restored, 130 the waiting was stopped.\n",
                      runRestore};
    all["snapshot"] = {"make point-in-time copies of disks, as a backup job does",
                       "Usage: tamlinctl [global options] snapshot --method METHOD DISK...\n"
                       "\n"
                       "Makes one copy of each DISK by METHOD, as a backup framework does: the disks\n"
                       "are checked together (select), then the copies are made (make) on one session,\n"
                       "and each source is shown with its new copy and the copy's UDID.\n"
                       "\n"
                       "METHOD is one of:\n"
                       "  HPEVA_VSnap              a snapshot allocated on demand, beside the disk\n"
                       "  HPEVA_Snapshot           a fully allocated snapshot, beside the disk\n"
                       "  HPEVA_Snapclone          a full copy on the same array (the disk must have no\n"
                       "                           snapshots); waits up to 8 seconds for it to start\n"
                       "  HPEVA_DRGroup_Snapclone  a full copy of each disk's remote partner on the\n"
                       "                           other array of their DR group, which is suspended\n"
                       "                           for the copies and resumed after\n"
                       "\n"
                       "A DISK is a UDID or a name as `tamlinctl disks` shows it: whole\n"
                       "(HP##HSV##EVA01##Oracle\\ora_data), without the HP##HSV## head\n"
                       "(EVA01##Oracle\\ora_data), or the path alone (Oracle\\ora_data) when one array\n"
                       "alone has it. Quote names for the shell: they hold backslashes.\n"
                       "\n"
                       "When the provider refuses the disks, its reason is shown and nothing is made.\n"
                       "When making fails halfway, the copies already made stay on the arrays: they\n"
                       "are listed, with the command that makes the missing ones.\n"
                       "\n"
                       "Exit status: 0 all copies made; 1 refused or failed; 2 bad usage or a DISK\n"
                       "that names no disk or several.\n",
                       runSnapshot};
    all["present"] = {"present a copy to a host on a LUN",
                      "Usage: tamlinctl [global options] present COPY --host HOST [--shared [--only]]\n"
                      "\n"
                      "Presents COPY to HOST, as a backup framework imports a disk, and shows what\n"
                      "changed on the array: each presentation added or removed, with host and LUN.\n"
                      "A host that has the copy already keeps it, and nothing changes.\n"
                      "\n"
                      "  --host HOST  the host as the array knows it (its name without domain)\n"
                      "  --shared     take the LUN from the provider's LUN map, so that the copy keeps\n"
                      "               one LUN across unpresent and present and on every host\n"
                      "  --only       present to HOST alone: the copy's other presentations are\n"
                      "               removed first (with --shared)\n"
                      "\n"
                      "Without --shared the array picks the host's lowest free LUN. COPY is a UDID or a\n"
                      "name as `tamlinctl disks` shows it. Exit status: 0 done; 1 the provider refused\n"
                      "or failed (its reason is shown, and what had changed already); 2 bad usage.\n",
                      runPresent};
    all["unpresent"] = {"take a copy away from a host, or from all",
                        "Usage: tamlinctl [global options] unpresent COPY [--host HOST | --all]\n"
                        "\n"
                        "Removes the presentation of COPY from this machine (as a framework deports a\n"
                        "disk tree), from HOST, or from every host, and shows what changed on the array.\n"
                        "A shared copy keeps its LUN in the LUN map for the next present --shared.\n"
                        "\n"
                        "Exit status: 0 done (also when there was nothing to remove); 1 the provider\n"
                        "refused or failed; 2 bad usage.\n",
                        runUnpresent};
    all["dispose"] = {"delete copies, their presentations first",
                      "Usage: tamlinctl [global options] dispose COPY... [--yes]\n"
                      "\n"
                      "Deletes each COPY from its array as a backup framework disposes of a snapshot:\n"
                      "its presentations are removed, then the disk. Only copies the provider made are\n"
                      "taken (names ending in _vsnap, _snap, _clone or _drclone and a counter). On a\n"
                      "terminal tamlinctl asks first; --yes confirms beforehand, and is needed when\n"
                      "standard input is no terminal.\n"
                      "\n"
                      "Nothing is undone when the array refuses a delete: the copy stays, without the\n"
                      "presentations already removed, and `tamlinctl leftovers` lists it.\n"
                      "Exit status: 0 all deleted; 1 not confirmed or a delete failed; 2 bad usage,\n"
                      "or a COPY that is no copy.\n",
                      runDispose};
    all["leftovers"] = {"list the copies left on the arrays",
                        "Usage: tamlinctl [global options] leftovers\n"
                        "\n"
                        "Lists the disks of every reachable array whose names follow the provider's\n"
                        "copy naming (_vsnap, _snap, _clone or _drclone and a counter of three or more\n"
                        "hexadecimal digits), with size, the hosts they are presented to, and when the\n"
                        "array made them. The provider undoes nothing when a snapshot or a restore\n"
                        "fails halfway; this is how to find what such a job left behind, to present it\n"
                        "or dispose of it. With --json, for scripts.\n"
                        "\n"
                        "Exit status: 0 listed; 1 an array's disks could not be read (the list may miss\n"
                        "some) or the provider failed.\n",
                        runLeftovers};
    all["setup"] = {"configure the provider: install root, registry, SSSU, Command View logins",
                    "Usage: tamlinctl setup [--root DIR] [--sssu PATH] [--server HOST --user NAME]...\n"
                    "                       [--owner ACCOUNT] [--no-check]\n"
                    "\n"
                    "Makes the provider ready to run, then shows that it does with `tamlinctl check`\n"
                    "and `tamlinctl enclosures`:\n"
                    "\n"
                    "1. the install root: --root DIR (made, with ConfigFiles/, Logs/, CacheFiles/ and\n"
                    "   the message catalogs linked into Messages/), else the one the registry stand-in\n"
                    "   names, else the one installed with this tamlinctl;\n"
                    "2. the registry stand-in ($QORIN_REGISTRY, else /etc/qorin/registry.conf) names it:\n"
                    "   \"InstallDir64\" of [SOFTWARE\\Orvanta\\Qorin] (with \\<consumer> when\n"
                    "   QORIN_CONSUMER is set);\n"
                    "3. ConfigFiles/tamlin.conf gets SSSU's place ([CLI_TOOL_INFO]) and a section of\n"
                    "   [MANAGEMENT_APPLIANCE_INFO] per server; the login of a server that is there\n"
                    "   already is replaced. Everything else in the file stays as it is, comments\n"
                    "   included. The file is the owner's alone (mode 0600).\n"
                    "\n"
                    "Options:\n"
                    "  --root DIR       the install root to make and use\n"
                    "  --sssu PATH      SSSU itself, or a directory to look for it in; default: the one\n"
                    "                   tamlin.conf names, else the provider's own search in\n"
                    "                   /opt/HP/SSSU/ and the Command View bridge directory\n"
                    "  --server HOST    a Command View server, with the account of --user (repeatable;\n"
                    "  --user NAME      one --user for all, or one per --server in order)\n"
                    "  --owner ACCOUNT  give the settings, Logs/ and CacheFiles/ to the account the\n"
                    "                   backup service runs the provider as\n"
                    "  --no-check       don't run check and enclosures at the end\n"
                    "\n"
                    "Passwords are never taken from the command line: setup asks for each on the\n"
                    "terminal without showing it, or reads one line per --server, in order, from\n"
                    "standard input. It asks everything before it changes anything.\n"
                    "\n"
                    "Exit status: 0 set up and the arrays reached; 1 setup or the check failed;\n"
                    "2 bad usage; 3 the provider could not be loaded.\n",
                    runSetup};
    all["errmsg"] = {"show the text of result codes",
                     "Usage: tamlinctl [global options] errmsg CODE...\n"
                     "\n"
                     "Shows the provider's text for each result code, in the host language given\n"
                     "with --lang.\n",
                     runErrmsg};
    return all;
}

void printMainHelp(const std::map<std::string, Command> &all)
{
    printf("Usage: tamlinctl [global options] <command> [arguments]\n"
           "\n"
           "A command-line host for the Tamlin snapshot provider: it loads the provider\n"
           "library as a backup framework does and calls its entries.\n"
           "\n"
           "Commands:\n");
    for (const auto &kv : all) {
        printf("  %-12s %s\n", kv.first.c_str(), kv.second.summary.c_str());
    }
    printf("\n"
           "Global options:\n"
           "  --provider PATH  provider library to load (default: %s)\n"
           "  --lang LANG      host language for the provider's messages, such as \"de\"\n"
           "  --json           machine-readable output on standard output\n"
           "  -v, --verbose    also show the provider's trace lines (-vv, -vvv for more)\n"
           "  -h, --help       this text; `tamlinctl <command> --help` describes a command\n"
           "\n"
           "The provider's messages appear on standard error as it pushes them. The\n"
           "provider's install root is \"InstallDir64\" of [SOFTWARE\\Orvanta\\Qorin] in\n"
           "$QORIN_REGISTRY (else /etc/qorin/registry.conf), else $QORIN_INSTALL_ROOT.\n"
           "Exit status: 0 success, 1 an entry of the provider failed, 2 bad usage,\n"
           "3 the provider could not be loaded or has no install root.\n",
           ProviderLibrary::defaultPath().c_str());
}

}  // namespace

int main(int argc, char **argv)
{
    std::map<std::string, Command> all = commands();
    // Global options stand before the command word; only --provider and --lang take a value.
    std::vector<std::string> global;
    std::string command;
    CliOptions options;
    int i = 1;
    for (; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg.empty() || arg[0] != '-') {
            command = arg;
            ++i;
            break;
        }
        if (arg.size() > 2 && arg[1] == 'v' && arg.find_first_not_of('v', 1) == std::string::npos) {
            global.insert(global.end(), arg.size() - 1, "-v");  // -vv is -v -v
            continue;
        }
        global.push_back(arg);
        if ((arg == "--provider" || arg == "--lang") && i + 1 < argc) {
            global.push_back(argv[++i]);
        }
    }
    options.args.assign(argv + i, argv + argc);
    if (cliutil::wantsHelp(global)) {
        printMainHelp(all);
        return ProviderSession::kExitOk;
    }
    cliutil::Args globalArgs(global);
    options.provider = globalArgs.value("--provider").value_or(ProviderLibrary::defaultPath());
    options.language = globalArgs.value("--lang").value_or("");
    options.json = globalArgs.flag("--json");
    options.verbosity = globalArgs.count("-v") + globalArgs.count("--verbose");
    if (!globalArgs.finish()) {
        fprintf(stderr, "tamlinctl: %s (try --help)\n", globalArgs.error().c_str());
        return ProviderSession::kExitUsage;
    }
    if (command.empty()) {
        printMainHelp(all);
        return ProviderSession::kExitUsage;
    }
    if (command == "help") {
        if (options.args.empty()) {
            printMainHelp(all);
            return ProviderSession::kExitOk;
        }
        command = options.args.front();
        options.args = {"--help"};
    }
    auto it = all.find(command);
    if (it == all.end()) {
        fprintf(stderr, "tamlinctl: unknown command '%s' (try --help)\n", command.c_str());
        return ProviderSession::kExitUsage;
    }
    if (cliutil::wantsHelp(options.args)) {
        fputs(it->second.help.c_str(), stdout);
        return ProviderSession::kExitOk;
    }
    fflush(stdout);
    int resultsFd = dup(STDOUT_FILENO);
    FILE *results = resultsFd >= 0 ? fdopen(resultsFd, "w") : nullptr;
    if (results != nullptr) {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        options.out = results;
    }
    int status = it->second.run(options);
    fflush(stdout);
    if (results != nullptr) {
        fclose(results);
    }
    return status;
}
