#include "admin_cli.h"

#include "array_ops.h"
#include "database.h"
#include "fault_store.h"
#include "history.h"
#include "scenario_loader.h"
#include "settings.h"
#include "state_location.h"
#include "text_util.h"
#include "world.h"
#include "world_change.h"
#include "world_generator.h"
#include "world_tables.h"

#include "cliutil_args.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <map>

namespace evasim {

namespace {

const char *const kInitHelp = R"(Usage: evasim init [--scenario FILE] [generation options] [--set KEY=VALUE]...

Replaces the simulated world with a new one, and resets the settings and faults.

  --scenario FILE   read the world from a scenario file (format: tools/evasim/README.md)
  --servers N       generated world: Command View servers cv1..cvN, user and password "evasim" (1)
  --cells N         cells EVA01.., each managed by every server (1)
  --disks N         virtual disks per cell, "\Virtual Disks\folderNN\vdNNNNN\ACTIVE" (10)
  --hosts N         hosts per cell, "\Hosts\hostNN" with two port WWNs each (2)
  --snapshots N     the first N disks of each cell get a vsnap (0)
  --presented N     the first N disks of each cell are presented to the hosts in turn (0)
  --folders N       folders the disks are spread over (10)
  --size GB         size of each generated disk (10)
  --set KEY=VALUE   a setting, as for `evasim set`; applied after the scenario's own
Without --scenario a world is generated from the numbers.
)";

const char *const kShowHelp = R"(Usage: evasim show [WHAT] [--cell NAME] [--format table|tsv]
       evasim show disks --family NAME [--cell NAME] [--format table|tsv]

Prints the simulated world. WHAT is one of servers, cells, diskgroups, disks, hosts,
presentations, drgroups, faults, settings, or all (the default); or rules, the array's refusals:
each with the commands it refuses, its error line, whether it is known behaviour of an EVA or an
assumption of the simulator (an assumption can be turned off with `evasim set rules_off=NAME`),
and whether it is on.

  --cell NAME       only what belongs to that cell
  --family NAME     the disks of a family as a tree: the active disk (NAME is the family's name or a
                    path), its snapshots, the snapclones and restore copies made from it (copy:) with
                    their own families, and how far each running copy is
  --format tsv      tab-separated rows with a header line, for scripts and tests
)";

const char *const kBusyMessage = "The storage system is busy. Retry the operation later.";

const char *const kFaultHelp = R"(Usage: evasim fault KIND [options] [--match TEXT [--skip N]] [--cell NAME] [--count N]
       evasim fault list | clear

Arms a fault for the next N uses (--count, default 1). Faults that act on the process (silence,
ignore-signals, exit-after, no-output, banner, delay) are used by every run that starts; the
others when they hit a command.

  --match TEXT      only where a command (a script line) contains TEXT, ignoring case; for
                    silence, exit-after and delay the fault then acts at that line, for banner,
                    no-output and ignore-signals only runs with such a line use it
  --skip N          let the first N matching commands of each run pass: with --match "ADD SNAPSHOT"
                    --skip 1 exactly the second ADD SNAPSHOT of a run is hit
  --cell NAME       only while that cell is selected (faults that hit commands)

  https [--server HOST]         the next logins (to HOST only, if given) print
                                "Error opening https connection" and the run stops
  error --match TEXT [--message TEXT]
                                the command fails with "Error: MESSAGE" (default "Simulated
                                failure") instead of running
  busy --match TEXT [--message TEXT]
                                the command answers that the array is busy ("Error: The storage
                                system is busy. Retry the operation later.") and does nothing; with
                                --count N, N times, then it works
  change --match TEXT OBJECT KEY=VALUE...
                                the array changes just before the command runs, as with
                                `evasim change OBJECT KEY=VALUE...`: a disk fails
                                (disk CELL PATH operationalstate=failed), a copy stops
                                (disk CELL PATH copy=failed or copy=stalled), a DR link goes down
                                (drgroup NAME linkstate=disconnected, or links=no) ...
  malformed-xml                 the next XML listing is not well-formed
  silence --seconds S [--after-line K]
                                no output for S seconds: before anything, after output line K, or
                                with --match after the command's echo, before it runs
  exit-after --lines K [--status N]
                                the process ends (status 1) after K output lines, or with --match
                                after the command's echo, as if killed: the commands before it are
                                kept, it is not
  delay --seconds S             a wait of S seconds before each command (with --match, before
                                the matching commands)
  ignore-signals                SIGINT and SIGTERM are ignored
  no-output [--status N]        the process prints nothing and ends (status 0)
  banner --text TEXT            the banner's version line reads TEXT
  list                          the armed faults
  clear                         disarm all faults
)";

const char *const kSetHelp = R"(Usage: evasim set [KEY=VALUE]...

Changes settings of the simulator; without arguments prints them.
)";

const char *const kHistoryHelp = R"(Usage: evasim history [--last N] [--run ID] [--format table|tsv] [--clear]

Shows what SSSU runs did: each run with its start, process id, script and exit status, and each
of its commands with its outcome and its answer: ok, error, stopped (a login that failed), or cut
off (the run ended while the answer went out; the command's change was kept). A run that never
ended (killed, or still running) shows as unfinished. Passwords are masked. The newest 1000 runs are kept; `evasim init` starts anew.

  --last N          the newest N runs (20); 0 for all
  --run ID          one run, with the whole of each answer as kept (its first 40 lines)
  --format tsv      one row per command: run, exit, seq, outcome, command, answer (lines joined by " | ")
  --clear           forget all runs
)";

const char *const kClockHelp = R"(Usage: evasim clock [advance SECONDS | freeze | run | reset]

The simulated clock, which copies counted in seconds and the disks' times follow: the real clock
moved by clock_offset, or standing still at clock_frozen. Without arguments prints it.

  advance SECONDS   moves it ahead, so a test need not wait for a copy
  freeze            stops it where it is, so that only 'advance' moves it (tests that must not
                    depend on how fast they run)
  run               lets a frozen clock run on from where it stands
  reset             back to the real time, running
)";

const char *const kResetHelp = R"(Usage: evasim reset

Removes the state file: the simulator then behaves as SSSU that reaches no server.
)";

const char *const kWhereHelp = R"(Usage: evasim where

Prints the path of the state file: $EVASIM_HOME/evasim.db, else evasim.d/evasim.db in the
directory of the path the program was started by; started from a system directory such as
/usr/bin, $XDG_STATE_HOME/evasim/evasim.db (else ~/.local/state/evasim/evasim.db).
)";

std::string exitText(const HistoryRun &r)
{
    return r.status < 0 ? "unfinished" : std::to_string(r.status);
}

std::string outcomeText(const HistoryCommand &c)
{
    return c.outcome == "running" ? "cut off" : c.outcome;
}

// The lines of an answer that say something: the empty lines that open results left out.
std::vector<std::string> telling(const HistoryCommand &c)
{
    std::vector<std::string> out;
    for (const std::string &l : c.answer) {
        if (!trim(l).empty()) {
            out.push_back(l);
        }
    }
    return out;
}

std::string historyTsv(const std::vector<HistoryRun> &runs)
{
    cliutil::Table t({"run", "exit", "seq", "outcome", "command", "answer"});
    for (const HistoryRun &r : runs) {
        for (const HistoryCommand &c : r.commands) {
            t.addRow({std::to_string(r.id), exitText(r), std::to_string(c.seq), outcomeText(c), c.command,
                      join(telling(c), " | ")});
        }
    }
    return t.tsv();
}

std::string historyText(const std::vector<HistoryRun> &runs, bool whole)
{
    std::string text;
    for (const HistoryRun &r : runs) {
        char started[64];
        const std::time_t when = static_cast<std::time_t>(r.started);
        std::tm tm{};
        localtime_r(&when, &tm);
        std::strftime(started, sizeof started, "%Y-%m-%d %H:%M:%S", &tm);
        text += "run " + std::to_string(r.id) + "  " + started + "  pid " + std::to_string(r.pid) + "  exit " +
                exitText(r) + (r.note.empty() ? "" : " (" + r.note + ")") + "  " + r.script + "\n";
        for (const HistoryCommand &c : r.commands) {
            char head[32];
            std::snprintf(head, sizeof head, "  %3lld  %-10s ", static_cast<long long>(c.seq), outcomeText(c).c_str());
            text += head + c.command + "\n";
            const std::vector<std::string> lines = whole ? c.answer : telling(c);
            const size_t shown = whole ? lines.size() : std::min<size_t>(lines.size(), 3);
            for (size_t i = 0; i < shown; ++i) {
                text += std::string(18, ' ') + lines[i] + "\n";
            }
            if (shown < lines.size() || c.lines > static_cast<long long>(c.answer.size())) {
                text += std::string(18, ' ') + "(" + std::to_string(c.lines) + " lines in all)\n";
            }
        }
    }
    if (runs.empty()) {
        text = "(no runs)\n";
    }
    return text;
}

std::string changeHelp()
{
    return std::string("Usage: evasim change OBJECT KEY=VALUE...\n\n"
                       "Changes the array as no SSSU command does, at once. OBJECT and its keys:\n\n") +
           WorldChange::help() +
           "\nThe same words after `evasim fault change --match TEXT` make the change when a run reaches\n"
           "that command.\n";
}

struct Command {
    const char *name;
    const char *help;
    int (AdminCli::*run)(cliutil::Args &);
};

// The options each fault takes besides --count, --match, --skip and --cell.
const std::map<std::string, std::vector<std::string>> &faultOptions()
{
    static const std::map<std::string, std::vector<std::string>> options{
        {"https", {"--server"}},
        {"silence", {"--seconds", "--after-line"}},
        {"ignore-signals", {}},
        {"exit-after", {"--lines", "--status"}},
        {"no-output", {"--status"}},
        {"malformed-xml", {}},
        {"error", {"--message"}},
        {"busy", {"--message"}},
        {"change", {}},
        {"banner", {"--text"}},
        {"delay", {"--seconds"}},
    };
    return options;
}

// Reads the options of a fault of kind f.kind into f; gives an error text, empty on success.
std::string readFault(cliutil::Args &args, Fault &f)
{
    const std::vector<std::string> &allowed = faultOptions().at(f.kind);
    auto takes = [&](const char *name) { return std::find(allowed.begin(), allowed.end(), name) != allowed.end(); };
    std::map<std::string, std::optional<std::string>> given;
    for (const std::string &name : allowed) {
        given[name] = args.value(name);
    }
    for (const char *name : {"--count", "--match", "--skip", "--cell"}) {
        given[name] = args.value(name);
    }
    const std::vector<std::string> words = args.positional();
    if (!args.finish()) {
        return args.error();
    }
    auto whole = [&](const char *name, int64_t &out, int64_t min, const char *rule) -> std::string {
        long long v = 0;
        if (!given[name]) {
            return {};
        }
        if (!parseInt(*given[name], v)) {
            return std::string(name) + " needs a whole number, not '" + *given[name] + "'";
        }
        if (v < min) {
            return std::string(name) + " must be " + rule;
        }
        out = v;
        return {};
    };
    std::string e;
    if (!(e = whole("--count", f.remaining, 1, "1 or more")).empty() ||
        !(e = whole("--skip", f.skip, 0, "0 or more")).empty()) {
        return e;
    }
    f.pattern = given["--match"].value_or("");
    f.cell = given["--cell"].value_or("");
    const bool wholeRun = f.kind == "banner" || f.kind == "no-output" || f.kind == "ignore-signals";
    if (given["--match"] && f.pattern.empty()) {
        return "--match needs a text";
    }
    if ((f.kind == "error" || f.kind == "busy" || f.kind == "change") && f.pattern.empty()) {
        return "--match TEXT is required";
    }
    if (f.skip && (wholeRun || f.pattern.empty())) {
        return wholeRun ? "--skip counts matching commands; a " + f.kind + " fault acts on whole runs"
                        : "--skip needs --match";
    }
    if (!f.cell.empty() && f.perRun()) {
        return "--cell is for faults that hit commands, not for " + f.kind;
    }
    if (f.kind == "change") {
        WorldChange change;
        if (!(e = change.parse(words)).empty()) {
            return e;
        }
        f.text = change.text();
    } else if (!words.empty()) {
        return "unexpected argument '" + words[0] + "'";
    }
    if (takes("--server")) {
        f.server = given["--server"].value_or("");
    }
    if (takes("--seconds")) {
        const std::optional<std::string> &seconds = given["--seconds"];
        char *end = nullptr;
        const double v = seconds ? std::strtod(seconds->c_str(), &end) : 0;
        if (!seconds) {
            return "--seconds is required";
        }
        if (seconds->empty() || *end || !(v >= 0 && v <= 86400)) {
            return "--seconds needs a number of seconds from 0 to 86400, not '" + *seconds + "'";
        }
        f.seconds = v;
    }
    if (takes("--after-line")) {
        if (given["--after-line"] && !f.pattern.empty()) {
            return "--after-line and --match are two ways to say where; give one";
        }
        if (!(e = whole("--after-line", f.line, 0, "0 or more")).empty()) {
            return e;
        }
    }
    if (takes("--lines")) {
        if (!given["--lines"] && f.pattern.empty()) {
            return "--lines is required (or --match)";
        }
        if (given["--lines"] && !f.pattern.empty()) {
            return "--lines and --match are two ways to say where; give one";
        }
        if (!(e = whole("--lines", f.line, 1, "1 or more")).empty()) {
            return e;
        }
    }
    if (takes("--status")) {
        f.status = f.kind == "exit-after" ? 1 : 0;
        if (!(e = whole("--status", f.status, 0, "0 to 255")).empty()) {
            return e;
        }
        if (f.status > 255) {
            return "--status must be 0 to 255";
        }
    }
    if (takes("--message")) {
        f.text = given["--message"].value_or(f.kind == "busy" ? kBusyMessage : "Simulated failure");
    }
    if (takes("--text")) {
        if (!given["--text"]) {
            return "--text is required";
        }
        f.text = *given["--text"];
    }
    return {};
}

}  // namespace

AdminCli::AdminCli(std::string database, std::ostream &out, std::ostream &err) :
    m_database(std::move(database)),
    m_out(out),
    m_err(err)
{
}

std::string AdminCli::usage()
{
    return R"(Usage: evasim FILE SCRIPT            run an SSSU script, as SSSU does ("FILE SCRIPT" as one argument too)
       evasim init [options]          make a new simulated world (from a scenario file or generated)
       evasim show [WHAT] [options]   print the world: servers, cells, disks, hosts, presentations, ...;
                                      the array's rules; a family of disks as a tree
       evasim fault KIND [options]    arm a fault for the next runs: https, silence, ignore-signals,
                                      exit-after, no-output, malformed-xml, error, busy, change,
                                      banner, delay
       evasim set [KEY=VALUE]...      change or print the simulator's settings
       evasim change OBJECT KEY=VALUE...
                                      change what no command changes: a disk fails, a copy stalls,
                                      a DR link goes down, a cell shrinks
       evasim clock [advance S|freeze|run|reset]
                                      the simulated clock that timed copies follow
       evasim history [options]       what the SSSU runs did: commands, answers, exit status
       evasim reset                   remove the state: no server answers any more
       evasim where                   print where the state file is
       evasim COMMAND --help          help on one command

evasim stands in for HP's SSSU, the Command View servers behind it and the EVA arrays behind
them. Installed under an SSSU file name (such as sssu_linux_x64) it runs the scripts it is given.
The state lies in $EVASIM_HOME/evasim.db, else in evasim.d/ beside the program (for a program
in /usr/bin and the like, in $XDG_STATE_HOME/evasim/, else ~/.local/state/evasim/).
)";
}

int AdminCli::bad(const std::string &command, const std::string &message)
{
    m_err << "evasim " << command << ": " << message << "\n"
          << "Try 'evasim " << command << " --help'.\n";
    return 2;
}

bool AdminCli::stateExists() const
{
    struct stat st {};
    return ::stat(m_database.c_str(), &st) == 0;
}

void AdminCli::ensureStateDirectory() const
{
    StateLocation::ensureDirectory(m_database.substr(0, m_database.rfind('/')));
}

int AdminCli::run(const std::vector<std::string> &args)
{
    static const Command commands[] = {
        {"init", kInitHelp, &AdminCli::init},          {"show", kShowHelp, &AdminCli::show},
        {"fault", kFaultHelp, &AdminCli::fault},       {"set", kSetHelp, &AdminCli::set},
        {"history", kHistoryHelp, &AdminCli::history}, {"change", nullptr, &AdminCli::change},
        {"clock", kClockHelp, &AdminCli::clock},       {"reset", kResetHelp, &AdminCli::reset},
        {"where", kWhereHelp, &AdminCli::where},
    };
    if (args.empty()) {
        m_err << usage();
        return 2;
    }
    const std::string &name = args[0];
    const std::vector<std::string> rest(args.begin() + 1, args.end());
    if (name == "--help" || name == "-h" || name == "help") {
        m_out << usage();
        return 0;
    }
    for (const Command &c : commands) {
        if (name != c.name) {
            continue;
        }
        if (cliutil::wantsHelp(rest)) {
            m_out << (c.help ? c.help : changeHelp());
            if (c.run == &AdminCli::set) {
                m_out << "\nSettings:\n";
                for (const Settings::Key &k : Settings::keys()) {
                    m_out << "  " << k.name << " (default " << k.fallback << "): " << k.help << "\n";
                }
            }
            return 0;
        }
        try {
            cliutil::Args parsed(rest);
            return (this->*c.run)(parsed);
        } catch (const std::exception &e) {
            m_err << "evasim " << name << ": " << e.what() << "\n";
            return 1;
        }
    }
    if (iequals(name, "FILE")) {
        m_err << "evasim: FILE needs the path of a script\n";
        return 2;
    }
    m_err << "evasim: unknown command '" << name << "'\n\n" << usage();
    return 2;
}

int AdminCli::init(cliutil::Args &args)
{
    static const char *const generation[] = {"--servers",   "--cells",     "--disks",   "--hosts",
                                             "--snapshots", "--presented", "--folders", "--size"};
    const std::optional<std::string> scenario = args.value("--scenario");
    const std::vector<std::string> sets = args.values("--set");
    WorldGenerator::Options g;
    long long *targets[] = {&g.servers,   &g.cells,     &g.disks,   &g.hosts,
                            &g.snapshots, &g.presented, &g.folders, &g.sizeGb};
    bool generated = false;
    for (size_t i = 0; i < sizeof generation / sizeof generation[0]; ++i) {
        const std::optional<std::string> v = args.value(generation[i]);
        if (v) {
            generated = true;
            if (!parseInt(*v, *targets[i])) {
                args.fail(std::string(generation[i]) + " needs a whole number, not '" + *v + "'");
            }
        }
    }
    if (!args.finish()) {
        return bad("init", args.error());
    }
    if (scenario && generated) {
        return bad("init", "the generation options make a world; they can't go with --scenario");
    }

    World world;
    Settings settings;
    std::string error;
    if (scenario) {
        std::ifstream in(*scenario);
        if (!in) {
            m_err << "evasim init: cannot read the scenario file " << *scenario << ": " << std::strerror(errno) << "\n";
            return 1;
        }
        error = ScenarioLoader(world, settings).load(in, *scenario);
        if (!error.empty()) {
            m_err << "evasim init: " << error << "\n";
            return 1;
        }
    } else {
        error = WorldGenerator::check(g);
        if (!error.empty()) {
            return bad("init", error);
        }
        WorldGenerator::build(world, g);
    }
    for (const std::string &kv : sets) {
        const size_t eq = kv.find('=');
        if (eq == std::string::npos) {
            return bad("init", "--set needs KEY=VALUE, not '" + kv + "'");
        }
        error = settings.set(kv.substr(0, eq), kv.substr(eq + 1));
        if (!error.empty()) {
            return bad("init", error);
        }
    }

    ensureStateDirectory();
    Database db(m_database, true, true);
    db.begin();
    World::wipe(db);
    History::clear(db);
    db.exec("DELETE FROM settings");
    world.save(db);
    settings.save(db);
    db.commit();
    m_out << "evasim: new world in " << m_database << ": " << world.servers.rows.size() << " servers, "
          << world.cells.rows.size() << " cells, " << world.vdisks.rows.size() << " disks, " << world.hosts.rows.size()
          << " hosts, " << world.luns.rows.size() << " presentations, " << world.drgroups.rows.size() << " DR groups\n";
    return 0;
}

int AdminCli::show(cliutil::Args &args)
{
    const std::optional<std::string> cell = args.value("--cell");
    const std::optional<std::string> family = args.value("--family");
    const std::string format = args.value("--format").value_or("table");
    const std::vector<std::string> words = args.positional();
    if (!args.finish()) {
        return bad("show", args.error());
    }
    if (words.size() > 1) {
        return bad("show", "one WHAT at most, not '" + words[1] + "'");
    }
    const std::string what = words.empty() ? "all" : lower(words[0]);
    std::vector<std::string> kinds = WorldTables::kinds();
    if (what == "rules") {
        kinds = {"rules"};
    }
    if (what != "all" && std::find(kinds.begin(), kinds.end(), what) == kinds.end()) {
        return bad("show", "unknown WHAT '" + what + "'");
    }
    if (format != "table" && format != "tsv") {
        return bad("show", "--format is table or tsv, not '" + format + "'");
    }
    if (family && what != "disks") {
        return bad("show", "--family goes with disks");
    }
    if (!stateExists()) {
        m_err << "evasim show: no state yet at " << m_database << "; run 'evasim init' first\n";
        return 1;
    }

    Database db(m_database, false);
    World world;
    Settings settings;
    db.exec("BEGIN");
    world.load(db);
    settings.load(db);
    std::vector<Fault> faults = FaultStore::list(db);
    db.exec("COMMIT");
    ArrayOps(world, settings).settleCopies();

    int64_t onlyCell = 0;
    if (cell) {
        CellRec *c = world.cellByName(*cell);
        if (!c) {
            m_err << "evasim show: no cell named '" << *cell << "'\n";
            return 1;
        }
        onlyCell = c->id;
    }
    WorldTables tables(world, settings, std::move(faults), onlyCell);
    if (family) {
        std::string error;
        const cliutil::Table tree = tables.familyTree(*family, error);
        if (!error.empty()) {
            m_err << "evasim show: " << error << "\n";
            return 1;
        }
        m_out << (format == "tsv" ? tree.tsv() : tree.aligned());
        return 0;
    }
    bool first = true;
    for (const std::string &kind : kinds) {
        if (what != "all" && what != kind) {
            continue;
        }
        const cliutil::Table t = tables.table(kind);
        if (format == "tsv") {
            m_out << t.tsv();
        } else {
            m_out << (first ? "" : "\n") << t.aligned();
        }
        first = false;
    }
    return 0;
}

int AdminCli::fault(cliutil::Args &args)
{
    const std::optional<std::string> word = args.leading();
    if (!word) {
        return bad("fault", "which fault? (" + join(FaultStore::kinds(), ", ") + ", list, clear)");
    }
    const std::string kind = lower(*word);
    if (kind == "list" || kind == "clear") {
        if (!args.finish()) {
            return bad("fault", args.error());
        }
        if (!stateExists()) {
            if (kind == "list") {
                m_out << "(no faults armed)\n";
            }
            return 0;
        }
        Database db(m_database, false);
        if (kind == "clear") {
            db.begin();
            FaultStore::clear(db);
            db.commit();
            m_out << "evasim: all faults disarmed\n";
            return 0;
        }
        const std::vector<Fault> faults = FaultStore::list(db);
        if (faults.empty()) {
            m_out << "(no faults armed)\n";
        }
        for (const Fault &f : faults) {
            m_out << f.id << "\t" << f.kind << "\t" << f.remaining << "\t" << f.describe() << "\n";
        }
        return 0;
    }
    if (!faultOptions().count(kind)) {
        return bad("fault", "unknown fault '" + *word + "' (known: " + join(FaultStore::kinds(), ", ") + ")");
    }
    Fault f;
    f.kind = kind;
    const std::string error = readFault(args, f);
    if (!error.empty()) {
        return bad("fault", error);
    }
    ensureStateDirectory();
    Database db(m_database, true);
    db.begin();
    FaultStore::add(db, f);
    db.commit();
    m_out << "evasim: armed for " << f.remaining << (f.remaining == 1 ? " use: " : " uses: ") << f.describe() << "\n";
    return 0;
}

int AdminCli::set(cliutil::Args &args)
{
    const std::vector<std::string> pairs = args.positional();
    if (!args.finish()) {
        return bad("set", args.error());
    }
    Settings settings;
    for (const std::string &a : pairs) {
        const size_t eq = a.find('=');
        if (eq == std::string::npos) {
            return bad("set", "expected KEY=VALUE, not '" + a + "'");
        }
        const std::string error = settings.set(a.substr(0, eq), a.substr(eq + 1));
        if (!error.empty()) {
            return bad("set", error);
        }
    }
    if (pairs.empty()) {
        if (stateExists()) {
            Database db(m_database, false);
            settings.load(db);
        }
        for (const Settings::Key &k : Settings::keys()) {
            m_out << k.name << "=" << settings.get(k.name) << "\n";
        }
        return 0;
    }
    ensureStateDirectory();
    Database db(m_database, true);
    db.begin();
    Settings stored;
    stored.load(db);
    for (const std::string &a : pairs) {
        const size_t eq = a.find('=');
        const std::string key = lower(trim(a.substr(0, eq)));
        stored.set(key, a.substr(eq + 1));
        m_out << "evasim: " << key << "=" << stored.get(key) << "\n";
    }
    stored.save(db);
    db.commit();
    return 0;
}

int AdminCli::history(cliutil::Args &args)
{
    long long last = 20, only = 0;
    args.integer("--last", last, 0, LLONG_MAX);
    args.integer("--run", only, 1, LLONG_MAX);
    const std::string format = args.value("--format").value_or("table");
    const bool clear = args.flag("--clear");
    if (!args.finish()) {
        return bad("history", args.error());
    }
    if (format != "table" && format != "tsv") {
        return bad("history", "--format is table or tsv, not '" + format + "'");
    }
    if (!stateExists()) {
        m_err << "evasim history: no state yet at " << m_database << "; run 'evasim init' first\n";
        return 1;
    }
    Database db(m_database, false);
    if (clear) {
        db.begin();
        History::clear(db);
        db.commit();
        m_out << "evasim: history cleared\n";
        return 0;
    }
    db.exec("BEGIN");
    const std::vector<HistoryRun> runs = History::list(db, last, only);
    db.exec("COMMIT");
    if (only && runs.empty()) {
        m_err << "evasim history: no run " << only << "\n";
        return 1;
    }
    m_out << (format == "tsv" ? historyTsv(runs) : historyText(runs, only != 0));
    return 0;
}

int AdminCli::change(cliutil::Args &args)
{
    const std::vector<std::string> words = args.positional();
    if (!args.finish()) {
        return bad("change", args.error());
    }
    WorldChange change;
    std::string error = change.parse(words);
    if (!error.empty()) {
        return bad("change", error);
    }
    if (!stateExists()) {
        m_err << "evasim change: no state yet at " << m_database << "; run 'evasim init' first\n";
        return 1;
    }
    Database db(m_database, false);
    db.begin();
    World world;
    Settings settings;
    world.load(db);
    settings.load(db);
    ArrayOps(world, settings).settleCopies();
    error = change.apply(world, settings);
    if (!error.empty()) {
        m_err << "evasim change: " << error << "\n";
        return 1;
    }
    world.save(db);
    db.commit();
    m_out << "evasim: changed " << change.describe() << "\n";
    return 0;
}

int AdminCli::clock(cliutil::Args &args)
{
    const std::vector<std::string> words = args.positional();
    if (!args.finish()) {
        return bad("clock", args.error());
    }
    double advance = 0;
    char *end = nullptr;
    const std::string what = words.empty() ? "" : words[0];
    if (what == "advance" && words.size() == 2) {
        advance = std::strtod(words[1].c_str(), &end);
        if (words[1].empty() || *end || !(advance >= 0)) {
            return bad("clock", "advance needs a number of seconds, not '" + words[1] + "'");
        }
    } else if (!(words.empty() || (words.size() == 1 && (what == "reset" || what == "freeze" || what == "run")))) {
        return bad("clock", "expected 'advance SECONDS', 'freeze', 'run' or 'reset'");
    }
    ensureStateDirectory();
    Database db(m_database, true);
    db.begin();
    Settings settings;
    settings.load(db);
    auto put = [&](const char *key, double value) {
        char text[64];
        std::snprintf(text, sizeof text, "%.3f", value);
        settings.set(key, text);
    };
    const bool frozen = settings.seconds("clock_frozen") > 0;
    if (what == "advance") {
        put(frozen ? "clock_frozen" : "clock_offset",
            settings.seconds(frozen ? "clock_frozen" : "clock_offset") + advance);
    } else if (what == "freeze") {
        put("clock_frozen", settings.now());
    } else if (what == "run" && frozen) {
        // It runs on from where it stands.
        const double wall = std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
        put("clock_offset", settings.seconds("clock_frozen") - wall);
        put("clock_frozen", 0);
    } else if (what == "reset") {
        put("clock_offset", 0);
        put("clock_frozen", 0);
    }
    settings.save(db);
    db.commit();
    const std::time_t now = static_cast<std::time_t>(settings.now());
    std::tm tm{};
    localtime_r(&now, &tm);
    char when[64];
    std::strftime(when, sizeof when, "%Y-%m-%d %H:%M:%S", &tm);
    m_out << "evasim: simulated time " << when
          << (settings.seconds("clock_frozen") > 0
                  ? " (frozen)"
                  : " (real time " + std::string(settings.seconds("clock_offset") >= 0 ? "+" : "") +
                        settings.get("clock_offset") + " s)")
          << "\n";
    return 0;
}

int AdminCli::reset(cliutil::Args &args)
{
    if (!args.finish()) {
        return bad("reset", args.error());
    }
    if (!stateExists()) {
        m_out << "evasim: no state at " << m_database << "\n";
        return 0;
    }
    for (const std::string suffix : {"", "-wal", "-shm"}) {
        const std::string file = m_database + suffix;
        if (::unlink(file.c_str()) != 0 && errno != ENOENT) {
            m_err << "evasim reset: cannot remove " << file << ": " << std::strerror(errno) << "\n";
            return 1;
        }
    }
    m_out << "evasim: state removed (" << m_database << ")\n";
    return 0;
}

int AdminCli::where(cliutil::Args &args)
{
    if (!args.finish()) {
        return bad("where", args.error());
    }
    m_out << m_database << "\n";
    return 0;
}

}  // namespace evasim
