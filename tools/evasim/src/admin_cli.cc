#include "admin_cli.h"

#include "database.h"
#include "fault_store.h"
#include "object_describer.h"
#include "scenario_loader.h"
#include "settings.h"
#include "state_location.h"
#include "table_printer.h"
#include "text_util.h"
#include "world.h"
#include "world_generator.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <map>
#include <tuple>

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

Prints the simulated world. WHAT is one of servers, cells, diskgroups, disks, hosts,
presentations, drgroups, faults, settings, or all (the default).

  --cell NAME       only what belongs to that cell
  --format tsv      tab-separated rows with a header line, for scripts and tests
)";

const char *const kFaultHelp = R"(Usage: evasim fault KIND [options] [--count N]
       evasim fault list | clear

Arms a fault for the next N uses (--count, default 1). Per-run faults are used by every run that
starts; the others when they hit.

  https [--server HOST]         the next logins (to HOST only, if given) print
                                "Error opening https connection" and the run stops
  silence --seconds S [--after-line K]
                                per run: no output for S seconds, before anything or after line K
  ignore-signals                per run: SIGINT and SIGTERM are ignored
  exit-after --lines K [--status N]
                                per run: the process ends after K output lines (status 1)
  no-output [--status N]        per run: the process prints nothing and ends (status 0)
  malformed-xml                 the next XML listing is not well-formed
  error --match TEXT [--message TEXT] [--cell NAME]
                                the next command that contains TEXT (ignoring case) fails with
                                "Error: MESSAGE" (default "Simulated failure"); with
                                --cell only while that cell is selected
  banner --text TEXT            per run: the banner's version line reads TEXT
  delay --seconds S             per run: a wait of S seconds before each command
  list                          the armed faults
  clear                         disarm all faults
)";

const char *const kSetHelp = R"(Usage: evasim set [KEY=VALUE]...

Changes settings of the simulator; without arguments prints them.
)";

const char *const kResetHelp = R"(Usage: evasim reset

Removes the state file: the simulator then behaves as SSSU that reaches no server.
)";

const char *const kWhereHelp = R"(Usage: evasim where

Prints the path of the state file: $EVASIM_HOME/evasim.db, else evasim.d/evasim.db in the
directory of the path the program was started by.
)";

bool wantsHelp(const std::vector<std::string> &args)
{
    for (const std::string &a : args) {
        if (a == "--help" || a == "-h") {
            return true;
        }
    }
    return false;
}

// Splits "--name value" pairs; a value is required for every option but the flags listed.
bool options(const std::vector<std::string> &args, size_t from, const std::vector<std::string> &known,
             std::multimap<std::string, std::string> &out, std::vector<std::string> &words, std::string &error)
{
    for (size_t i = from; i < args.size(); ++i) {
        const std::string &a = args[i];
        if (a.rfind("--", 0) != 0) {
            words.push_back(a);
            continue;
        }
        std::string name = a.substr(2), value;
        bool inlineValue = false;
        const size_t eq = name.find('=');
        if (eq != std::string::npos) {
            value = name.substr(eq + 1);
            name = name.substr(0, eq);
            inlineValue = true;
        }
        bool found = false;
        for (const std::string &k : known) {
            found = found || k == name;
        }
        if (!found) {
            error = "unknown option --" + name;
            return false;
        }
        if (!inlineValue) {
            if (i + 1 >= args.size()) {
                error = "--" + name + " needs a value";
                return false;
            }
            value = args[++i];
        }
        out.emplace(name, value);
    }
    return true;
}

bool number(const std::multimap<std::string, std::string> &o, const char *name, long long &value, std::string &error)
{
    auto it = o.find(name);
    if (it == o.end()) {
        return true;
    }
    if (!parseInt(it->second, value)) {
        error = std::string("--") + name + " needs a whole number, not '" + it->second + "'";
        return false;
    }
    return true;
}

bool seconds(const std::multimap<std::string, std::string> &o, double &value, std::string &error)
{
    auto it = o.find("seconds");
    if (it == o.end()) {
        error = "--seconds is required";
        return false;
    }
    char *end = nullptr;
    value = std::strtod(it->second.c_str(), &end);
    if (it->second.empty() || *end || value < 0 || value > 86400) {
        error = "--seconds needs a number of seconds from 0 to 86400, not '" + it->second + "'";
        return false;
    }
    return true;
}

std::string presentationsOf(World &world, int64_t disk)
{
    std::vector<std::string> parts;
    for (const LunRec *l : world.lunsOfDisk(disk)) {
        const HostRec *h = world.hosts.find(l->host);
        parts.push_back((h ? h->path : "?") + ":" + std::to_string(l->lun));
    }
    return join(parts, ",");
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
       evasim show [WHAT] [options]   print the world: servers, cells, disks, hosts, presentations, ...
       evasim fault KIND [options]    arm a fault for the next runs: https, silence, ignore-signals,
                                      exit-after, no-output, malformed-xml, error, banner, delay
       evasim set [KEY=VALUE]...      change or print the simulator's settings
       evasim reset                   remove the state: no server answers any more
       evasim where                   print where the state file is
       evasim COMMAND --help          help on one command

evasim stands in for HP's SSSU, the Command View servers behind it and the EVA arrays behind
them. Installed under an SSSU file name (such as sssu_linux_x64) it runs the scripts it is given.
The state lies in $EVASIM_HOME/evasim.db, else in evasim.d/ beside the program.
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

int AdminCli::run(const std::vector<std::string> &args)
{
    if (args.empty()) {
        m_err << usage();
        return 2;
    }
    const std::string &command = args[0];
    const std::vector<std::string> rest(args.begin() + 1, args.end());
    if (command == "--help" || command == "-h" || command == "help") {
        m_out << usage();
        return 0;
    }
    try {
        if (command == "init") {
            return init(rest);
        }
        if (command == "show") {
            return show(rest);
        }
        if (command == "fault") {
            return fault(rest);
        }
        if (command == "set") {
            return set(rest);
        }
        if (command == "reset") {
            return reset(rest);
        }
        if (command == "where") {
            return where(rest);
        }
        if (iequals(command, "FILE")) {
            m_err << "evasim: FILE needs the path of a script\n";
            return 2;
        }
    } catch (const std::exception &e) {
        m_err << "evasim " << command << ": " << e.what() << "\n";
        return 1;
    }
    m_err << "evasim: unknown command '" << command << "'\n\n" << usage();
    return 2;
}

int AdminCli::init(const std::vector<std::string> &args)
{
    if (wantsHelp(args)) {
        m_out << kInitHelp;
        return 0;
    }
    std::multimap<std::string, std::string> o;
    std::vector<std::string> words;
    std::string error;
    if (!options(args, 0,
                 {"scenario", "servers", "cells", "disks", "hosts", "snapshots", "presented", "folders", "size", "set"},
                 o, words, error)) {
        return bad("init", error);
    }
    if (!words.empty()) {
        return bad("init", "unexpected argument '" + words[0] + "'");
    }

    World world;
    Settings settings;
    std::string summary;
    if (o.count("scenario")) {
        for (const char *g : {"servers", "cells", "disks", "hosts", "snapshots", "presented", "folders", "size"}) {
            if (o.count(g)) {
                return bad("init", std::string("--") + g + " generates a world; it can't go with --scenario");
            }
        }
        std::string const file = o.find("scenario")->second;
        std::ifstream in(file);
        if (!in) {
            m_err << "evasim init: cannot read the scenario file " << file << ": " << std::strerror(errno) << "\n";
            return 1;
        }
        error = ScenarioLoader(world, settings).load(in, file);
        if (!error.empty()) {
            m_err << "evasim init: " << error << "\n";
            return 1;
        }
    } else {
        WorldGenerator::Options g;
        if (!number(o, "servers", g.servers, error) || !number(o, "cells", g.cells, error) ||
            !number(o, "disks", g.disks, error) || !number(o, "hosts", g.hosts, error) ||
            !number(o, "snapshots", g.snapshots, error) || !number(o, "presented", g.presented, error) ||
            !number(o, "folders", g.folders, error) || !number(o, "size", g.sizeGb, error)) {
            return bad("init", error);
        }
        error = WorldGenerator::check(g);
        if (!error.empty()) {
            return bad("init", error);
        }
        WorldGenerator::build(world, g);
    }
    auto range = o.equal_range("set");
    for (auto it = range.first; it != range.second; ++it) {
        const size_t eq = it->second.find('=');
        if (eq == std::string::npos) {
            return bad("init", "--set needs KEY=VALUE, not '" + it->second + "'");
        }
        error = settings.set(it->second.substr(0, eq), it->second.substr(eq + 1));
        if (!error.empty()) {
            return bad("init", error);
        }
    }

    StateLocation::ensureDirectory(m_database.substr(0, m_database.rfind('/')));
    Database db(m_database, true);
    db.begin();
    World::wipe(db);
    db.exec("DELETE FROM settings");
    world.save(db);
    settings.save(db);
    db.commit();
    m_out << "evasim: new world in " << m_database << ": " << world.servers.rows.size() << " servers, "
          << world.cells.rows.size() << " cells, " << world.vdisks.rows.size() << " disks, " << world.hosts.rows.size()
          << " hosts, " << world.luns.rows.size() << " presentations, " << world.drgroups.rows.size() << " DR groups\n";
    return 0;
}

int AdminCli::show(const std::vector<std::string> &args)
{
    if (wantsHelp(args)) {
        m_out << kShowHelp;
        return 0;
    }
    std::multimap<std::string, std::string> o;
    std::vector<std::string> words;
    std::string error;
    if (!options(args, 0, {"cell", "format"}, o, words, error)) {
        return bad("show", error);
    }
    if (words.size() > 1) {
        return bad("show", "one WHAT at most, not '" + words[1] + "'");
    }
    std::string const what = words.empty() ? "all" : lower(words[0]);
    static const std::vector<std::string> kinds{"servers",       "cells",    "diskgroups", "disks",    "hosts",
                                                "presentations", "drgroups", "faults",     "settings", "all"};
    bool known = false;
    for (const std::string &k : kinds) {
        known = known || k == what;
    }
    if (!known) {
        return bad("show", "unknown WHAT '" + what + "'");
    }
    std::string const format = o.count("format") ? o.find("format")->second : "table";
    if (format != "table" && format != "tsv") {
        return bad("show", "--format is table or tsv, not '" + format + "'");
    }
    if (!stateExists()) {
        m_err << "evasim show: no state yet at " << m_database << "; run 'evasim init' first\n";
        return 1;
    }

    Database db(m_database, false);
    World world;
    Settings settings;
    std::vector<Fault> faults;
    db.exec("BEGIN");
    world.load(db);
    settings.load(db);
    faults = FaultStore::list(db);
    db.exec("COMMIT");

    int64_t onlyCell = 0;
    if (o.count("cell")) {
        CellRec *c = world.cellByName(o.find("cell")->second);
        if (!c) {
            m_err << "evasim show: no cell named '" << o.find("cell")->second << "'\n";
            return 1;
        }
        onlyCell = c->id;
    }
    auto inCell = [&](int64_t cell) { return !onlyCell || cell == onlyCell; };
    auto cellName = [&](int64_t cell) {
        CellRec const *c = world.cells.find(cell);
        return c ? c->name : std::string("?");
    };
    bool first = true;
    auto emit = [&](const TablePrinter &t) {
        if (!first && format == "table") {
            m_out << "\n";
        }
        first = false;
        t.print(m_out, format);
    };
    const bool all = what == "all";

    if (all || what == "servers") {
        TablePrinter t("Command View servers", {"host", "user", "password", "reachable", "cells"});
        for (const auto &[id, s] : world.servers.rows) {
            std::vector<std::string> names;
            for (const CellRec *c : world.cellsOf(id)) {
                names.push_back(c->name);
            }
            t.row({s.host, s.user, s.password, s.reachable ? "yes" : "no", join(names, ",")});
        }
        emit(t);
    }
    if (all || what == "cells") {
        TablePrinter t("Cells", {"name", "wwn", "firmware", "total", "used", "free", "disks", "servers"});
        for (const auto &[id, c] : world.cells.rows) {
            if (!inCell(id)) {
                continue;
            }
            size_t disks = 0;
            for (const auto &[did, d] : world.vdisks.rows) {
                disks += d.cell == id;
            }
            std::vector<std::string> servers;
            for (const auto &[mid, m] : world.managed.rows) {
                if (m.cell == id) {
                    if (const ServerRec *s = world.servers.find(m.server)) {
                        servers.push_back(s->host);
                    }
                }
            }
            const uint64_t used = world.usedBytes(id);
            t.row({c.name, c.wwn, c.firmware, gigabytes(c.total) + " GB", gigabytes(used) + " GB",
                   gigabytes(world.freeBytes(id)) + " GB", std::to_string(disks), join(servers, ",")});
        }
        emit(t);
    }
    if (all || what == "diskgroups") {
        TablePrinter t("Disk groups", {"cell", "name"});
        for (const auto &[id, g] : world.diskgroups.rows) {
            if (inCell(g.cell)) {
                t.row({cellName(g.cell), g.name});
            }
        }
        emit(t);
    }
    if (all || what == "disks") {
        ObjectDescriber describe(world);
        TablePrinter t("Virtual disks", {"cell", "path", "type", "size", "wwlunid", "sharing", "parent",
                                         "presentations", "drgroup", "writecache"});
        for (const auto &[cid, c] : world.cells.rows) {
            if (!inCell(cid)) {
                continue;
            }
            for (const VdiskRec *d : world.vdisksOf(cid)) {
                std::string const type = d->container  ? "container"
                                         : d->active() ? (d->origin == "snapclone" ? "snapclone" : "active")
                                                       : (d->allocation == "demand" ? "vsnap" : "snapshot");
                const VdiskRec *parent = world.vdisks.find(d->parent ? d->parent : d->copySource);
                const DrMemberRec *m = world.drMembershipOf(d->id);
                const DrGroupRec *g = m ? world.drgroups.find(m->group) : nullptr;
                t.row({c.name, d->path(), type, humanSize(d->blocks * 512), d->wwlunid, describe.sharing(*d),
                       parent ? parent->path() : "", presentationsOf(world, d->id), g ? g->name : "", d->writecache});
            }
        }
        emit(t);
    }
    if (all || what == "hosts") {
        TablePrinter t("Hosts", {"cell", "path", "ports", "os"});
        for (const auto &[cid, c] : world.cells.rows) {
            if (!inCell(cid)) {
                continue;
            }
            for (const HostRec *h : world.hostsOf(cid)) {
                t.row({c.name, h->path, h->ports, h->os});
            }
        }
        emit(t);
    }
    if (all || what == "presentations") {
        TablePrinter t("Presentations", {"cell", "host", "lun", "disk"});
        std::vector<std::vector<std::string>> rows;
        for (const auto &[id, l] : world.luns.rows) {
            const HostRec *h = world.hosts.find(l.host);
            const VdiskRec *d = world.vdisks.find(l.vdisk);
            if (!h || !d || !inCell(h->cell)) {
                continue;
            }
            rows.push_back({cellName(h->cell), h->path, std::to_string(l.lun), d->path()});
        }
        std::sort(rows.begin(), rows.end(), [](const auto &a, const auto &b) {
            return std::tie(a[0], a[1]) != std::tie(b[0], b[1]) ? std::tie(a[0], a[1]) < std::tie(b[0], b[1])
                                                                : std::stoi(a[2]) < std::stoi(b[2]);
        });
        for (auto &r : rows) {
            t.row(r);
        }
        emit(t);
    }
    if (all || what == "drgroups") {
        TablePrinter t("DR groups", {"name", "source", "destination", "members", "writemode", "operationalstate",
                                     "membercondition", "linkstate", "suspended"});
        for (const auto &[id, g] : world.drgroups.rows) {
            if (!inCell(g.sourceCell) && !inCell(g.destCell)) {
                continue;
            }
            std::vector<std::string> members;
            for (const auto &[mid, m] : world.drmembers.rows) {
                if (m.group != id) {
                    continue;
                }
                const VdiskRec *s = world.vdisks.find(m.sourceDisk);
                const VdiskRec *d = world.vdisks.find(m.destDisk);
                members.push_back((s ? s->path() : "?") + " => " + (d ? d->path() : "?"));
            }
            t.row({g.name, cellName(g.sourceCell), cellName(g.destCell), join(members, "; "), g.writemode,
                   g.operationalstate, g.membercondition, g.linkstate, g.suspended ? "yes" : "no"});
        }
        emit(t);
    }
    if (all || what == "faults") {
        TablePrinter t("Armed faults", {"id", "kind", "remaining", "effect"});
        for (const Fault &f : faults) {
            t.row({std::to_string(f.id), f.kind, std::to_string(f.remaining), f.describe()});
        }
        emit(t);
    }
    if (all || what == "settings") {
        TablePrinter t("Settings", {"key", "value"});
        for (const Settings::Key &k : Settings::keys()) {
            t.row({k.name, settings.get(k.name)});
        }
        emit(t);
    }
    return 0;
}

int AdminCli::fault(const std::vector<std::string> &args)
{
    if (args.empty() || wantsHelp(args)) {
        if (args.empty()) {
            return bad("fault", "which fault? (" + join(FaultStore::kinds(), ", ") + ", list, clear)");
        }
        m_out << kFaultHelp;
        return 0;
    }
    std::string const kind = lower(args[0]);
    if (kind == "list" || kind == "clear") {
        if (args.size() > 1) {
            return bad("fault", "unexpected argument '" + args[1] + "'");
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
    bool known = false;
    for (const std::string &k : FaultStore::kinds()) {
        known = known || k == kind;
    }
    if (!known) {
        return bad("fault", "unknown fault '" + args[0] + "' (known: " + join(FaultStore::kinds(), ", ") + ")");
    }

    std::multimap<std::string, std::string> o;
    std::vector<std::string> words;
    std::string error;
    std::vector<std::string> allowed{"count"};
    if (kind == "https") {
        allowed.push_back("server");
    }
    if (kind == "silence") {
        allowed.insert(allowed.end(), {"seconds", "after-line"});
    }
    if (kind == "exit-after") {
        allowed.insert(allowed.end(), {"lines", "status"});
    }
    if (kind == "no-output") {
        allowed.push_back("status");
    }
    if (kind == "error") {
        allowed.insert(allowed.end(), {"match", "message", "cell"});
    }
    if (kind == "banner") {
        allowed.push_back("text");
    }
    if (kind == "delay") {
        allowed.push_back("seconds");
    }
    if (!options(args, 1, allowed, o, words, error)) {
        return bad("fault", error);
    }
    if (!words.empty()) {
        return bad("fault", "unexpected argument '" + words[0] + "'");
    }

    Fault f;
    f.kind = kind;
    long long count = 1;
    if (!number(o, "count", count, error)) {
        return bad("fault", error);
    }
    if (count < 1) {
        return bad("fault", "--count must be 1 or more");
    }
    f.remaining = count;
    if (o.count("server")) {
        f.server = o.find("server")->second;
    }
    if (kind == "silence" || kind == "delay") {
        if (!seconds(o, f.seconds, error)) {
            return bad("fault", error);
        }
    }
    if (kind == "silence") {
        long long after = 0;
        if (!number(o, "after-line", after, error)) {
            return bad("fault", error);
        }
        if (after < 0) {
            return bad("fault", "--after-line must be 0 or more");
        }
        f.line = after;
    }
    if (kind == "exit-after") {
        long long lines = 0, status = 1;
        if (!o.count("lines")) {
            return bad("fault", "--lines is required");
        }
        if (!number(o, "lines", lines, error) || !number(o, "status", status, error)) {
            return bad("fault", error);
        }
        if (lines < 1) {
            return bad("fault", "--lines must be 1 or more");
        }
        if (status < 0 || status > 255) {
            return bad("fault", "--status must be 0 to 255");
        }
        f.line = lines;
        f.status = status;
    }
    if (kind == "no-output") {
        long long status = 0;
        if (!number(o, "status", status, error)) {
            return bad("fault", error);
        }
        if (status < 0 || status > 255) {
            return bad("fault", "--status must be 0 to 255");
        }
        f.status = status;
    }
    if (kind == "error") {
        if (!o.count("match") || o.find("match")->second.empty()) {
            return bad("fault", "--match TEXT is required");
        }
        f.pattern = o.find("match")->second;
        f.text = o.count("message") ? o.find("message")->second : "Simulated failure";
        if (o.count("cell")) {
            f.cell = o.find("cell")->second;
        }
    }
    if (kind == "banner") {
        if (!o.count("text")) {
            return bad("fault", "--text is required");
        }
        f.text = o.find("text")->second;
    }

    StateLocation::ensureDirectory(m_database.substr(0, m_database.rfind('/')));
    Database db(m_database, true);
    db.begin();
    FaultStore::add(db, f);
    db.commit();
    m_out << "evasim: armed for " << f.remaining << (f.remaining == 1 ? " use: " : " uses: ") << f.describe() << "\n";
    return 0;
}

int AdminCli::set(const std::vector<std::string> &args)
{
    if (wantsHelp(args)) {
        m_out << kSetHelp << "\nSettings:\n";
        for (const Settings::Key &k : Settings::keys()) {
            m_out << "  " << k.name << " (default " << k.fallback << "): " << k.help << "\n";
        }
        return 0;
    }
    Settings settings;
    for (const std::string &a : args) {
        const size_t eq = a.find('=');
        if (eq == std::string::npos) {
            return bad("set", "expected KEY=VALUE, not '" + a + "'");
        }
        std::string const error = settings.set(a.substr(0, eq), a.substr(eq + 1));
        if (!error.empty()) {
            return bad("set", error);
        }
    }
    if (args.empty()) {
        if (stateExists()) {
            Database db(m_database, false);
            settings.load(db);
        }
        for (const Settings::Key &k : Settings::keys()) {
            m_out << k.name << "=" << settings.get(k.name) << "\n";
        }
        return 0;
    }
    StateLocation::ensureDirectory(m_database.substr(0, m_database.rfind('/')));
    Database db(m_database, true);
    db.begin();
    Settings stored;
    stored.load(db);
    for (const std::string &a : args) {
        const size_t eq = a.find('=');
        stored.set(a.substr(0, eq), a.substr(eq + 1));
        m_out << "evasim: " << lower(trim(a.substr(0, eq))) << "=" << stored.get(lower(trim(a.substr(0, eq)))) << "\n";
    }
    stored.save(db);
    db.commit();
    return 0;
}

int AdminCli::reset(const std::vector<std::string> &args)
{
    if (wantsHelp(args)) {
        m_out << kResetHelp;
        return 0;
    }
    if (!args.empty()) {
        return bad("reset", "unexpected argument '" + args[0] + "'");
    }
    if (!stateExists()) {
        m_out << "evasim: no state at " << m_database << "\n";
        return 0;
    }
    for (std::string const suffix : {"", "-wal", "-shm"}) {
        std::string const file = m_database + suffix;
        if (::unlink(file.c_str()) != 0 && errno != ENOENT) {
            m_err << "evasim reset: cannot remove " << file << ": " << std::strerror(errno) << "\n";
            return 1;
        }
    }
    m_out << "evasim: state removed (" << m_database << ")\n";
    return 0;
}

int AdminCli::where(const std::vector<std::string> &args)
{
    if (wantsHelp(args)) {
        m_out << kWhereHelp;
        return 0;
    }
    if (!args.empty()) {
        return bad("where", "unexpected argument '" + args[0] + "'");
    }
    m_out << m_database << "\n";
    return 0;
}

}  // namespace evasim
