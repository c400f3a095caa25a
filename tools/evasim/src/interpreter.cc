#include "interpreter.h"

#include "array_ops.h"
#include "history.h"
#include "keywords.h"
#include "object_describer.h"
#include "output.h"
#include "run_store.h"
#include "settings.h"
#include "text_object_writer.h"
#include "text_util.h"
#include "tokenizer.h"
#include "world.h"
#include "world_change.h"
#include "xml_object_writer.h"

#include <algorithm>
#include <memory>

#include <unistd.h>

namespace evasim {

namespace {

const char *const kNoManager = "Command not valid until a manager is selected (SELECT MANAGER)";
const char *const kNoSystem = "Command not valid until a system is selected (SELECT SYSTEM)";
const char *const kHttps = "Error opening https connection";

}  // namespace

// The tail keywords of an LS command, and where the name before them starts and ends.
struct Interpreter::ListRequest {
    bool full = false;
    bool xml = false;
    std::string name;
    size_t badColumn = std::string::npos;

    // A listing of whole objects rather than of names.
    bool objects() const { return full || xml || !name.empty(); }
};

namespace {

Interpreter::ListRequest parseList(const std::string &line, const std::vector<Token> &t)
{
    Interpreter::ListRequest r;
    size_t end = t.size();
    while (end > 2 && (t[end - 1].is("XML") || t[end - 1].is("FULL"))) {
        if (t[end - 1].is("XML")) {
            r.xml = true;
        } else {
            r.full = true;
        }
        --end;
    }
    if (end > 2) {
        if (t[2].kind == Token::Quoted) {
            r.name = t[2].text;
            if (end > 3) {
                r.badColumn = t[3].column;
            }
        } else {
            for (size_t i = 2; i < end; ++i) {
                if (t[i].kind != Token::Word) {
                    r.badColumn = t[i].column;
                    return r;
                }
            }
            // An unquoted name runs to the keywords behind it, blanks and all.
            const size_t stop = end < t.size() ? t[end].column : line.size();
            r.name = trim(line.substr(t[2].column, stop - t[2].column));
        }
    }
    return r;
}

}  // namespace

Interpreter::Interpreter(Output &out, RunStore *store, const Settings &settings, double delay,
                         std::vector<Fault> runFaults) :
    m_out(out),
    m_store(store),
    m_world(store ? &store->world() : nullptr),
    m_settings(settings),
    m_faults(store ? &store->commandFaults() : &m_noFaults),
    m_runFaults(std::move(runFaults)),
    m_delay(delay)
{
}

std::string Interpreter::prompt() const
{
    return (m_cell ? m_cellName : std::string("NoSystemSelected")) + "> ";
}

int Interpreter::run(const std::vector<std::string> &lines)
{
    for (std::string raw : lines) {
        while (!raw.empty() && (raw.back() == '\r' || raw.back() == '\n')) {
            raw.pop_back();
        }
        if (trim(raw).empty()) {
            continue;
        }
        if (m_delay > 0) {
            m_out.pause(m_delay);
        }
        const Result r = command(raw);
        if (r == Result::Stop || r == Result::Exit) {
            return 0;
        }
        if (r == Result::Error && m_exitOnError) {
            return 1;
        }
    }
    return 0;
}

Interpreter::Result Interpreter::command(const std::string &raw)
{
    const std::string body = trim(raw);
    const bool login = isLogin(body);
    const Fault *atThisLine = nullptr;
    for (const Fault &f : m_runFaults) {
        if (!f.atLine() || !icontains(raw, f.pattern) || ++m_passed[f.id] <= f.skip) {
            continue;
        }
        if (f.kind == "delay") {
            m_out.pause(f.seconds);
        } else if (m_passed[f.id] == f.skip + 1) {
            atThisLine = &f;
        }
    }
    if (!login) {
        m_out.line(prompt() + raw);
    }
    if (atThisLine && atThisLine->kind == "silence") {
        m_out.finishLine();
        m_out.pause(atThisLine->seconds);
    }
    if (atThisLine && atThisLine->kind == "exit-after") {
        // Ended as if killed: the commands before are kept, this one never runs.
        const int status = static_cast<int>(atThisLine->status);
        m_out.finishLine();
        m_out.flush();
        if (m_store) {
            m_store->finish(status, "ended by the exit-after fault");
        }
        ::_exit(status);
    }
    if (m_store) {
        m_store->beginCommand(login ? History::masked(body) : raw);
        m_out.beforeNextLine([this] { m_store->commitCommand(); });
    }
    m_out.capture(History::kAnswerLines);
    const Result r = login ? loginLine(body) : execute(raw);
    long long count = 0;
    std::vector<std::string> answer = m_out.captured(count);
    if (m_store) {
        m_out.beforeNextLine(nullptr);
        m_store->commitCommand();
        m_store->answer(r == Result::Error ? "error" : (r == Result::Stop ? "stopped" : "ok"), std::move(answer),
                        count);
    }
    return r;
}

bool Interpreter::isLogin(const std::string &body)
{
    std::vector<std::string> words;
    for (const std::string &w : split(body, ' ')) {
        if (!w.empty() && words.size() < 2) {
            words.push_back(w);
        }
    }
    std::string verb, object;
    return words.size() == 2 && Keywords::match(words[0], {"SELECT", "SET"}, verb) == Keywords::Match::One &&
           verb == "SELECT" &&
           Keywords::match(words[1], {"CELL", "MANAGER", "SYSTEM"}, object) == Keywords::Match::One &&
           object == "MANAGER";
}

Interpreter::Result Interpreter::loginLine(const std::string &line)
{
    // "select manager <host> USERNAME=<user> PASSWORD=<password>": the password runs to the end of
    // the line and may hold blanks, so the line is read word by word only up to it.
    std::string host, user, password;
    bool hasUser = false, hasPassword = false;
    size_t at = 0;
    for (int skip = 0; skip < 2; ++skip) {
        at = line.find_first_not_of(" \t", at);
        at = line.find_first_of(" \t", at);
    }
    while (at != std::string::npos && !hasPassword) {
        const size_t start = line.find_first_not_of(" \t", at);
        if (start == std::string::npos) {
            break;
        }
        const size_t end = std::min(line.find_first_of(" \t", start), line.size());
        const std::string word = line.substr(start, end - start);
        at = end == line.size() ? std::string::npos : end;
        const size_t eq = word.find('=');
        if (eq == std::string::npos || eq == 0) {
            if (!host.empty()) {
                return error("Unexpected " + word + " in SELECT MANAGER");
            }
            host = word;
            continue;
        }
        std::string key;
        if (Keywords::match(word.substr(0, eq), {"USERNAME", "PASSWORD"}, key) != Keywords::Match::One) {
            return error("Unknown keyword " + word.substr(0, eq + 1) + " in SELECT MANAGER");
        }
        if (key == "USERNAME") {
            user = word.substr(eq + 1), hasUser = true;
        } else {
            password = line.substr(start + eq + 1), hasPassword = true;
        }
    }
    if (host.empty()) {
        return error("SELECT MANAGER needs the name of a manager");
    }
    if (!hasUser || user.empty()) {
        return error("SELECT MANAGER needs a user: USERNAME=<user>");
    }
    if (!hasPassword || password.empty()) {
        return error("SELECT MANAGER needs a password: PASSWORD=<password>");
    }
    ServerRec *server = m_world ? m_world->serverByHost(host) : nullptr;
    bool ok = server && server->reachable && server->user == user && server->password == password;
    m_loginHost = host;
    if (ok && takeFault("https", History::masked(line))) {
        ok = false;
    }
    if (!ok) {
        m_out.line(kHttps);
        return Result::Stop;
    }
    m_server = server->id;
    m_cell = 0;
    m_cellName.clear();
    return Result::Ok;
}

Interpreter::Result Interpreter::error(const std::string &message)
{
    m_out.line("");
    m_out.line("Error: " + message);
    return Result::Error;
}

Interpreter::Result Interpreter::syntaxError(const std::string &line, size_t column, const char *message)
{
    m_out.line("");
    m_out.line(std::string(prompt().size() + column, ' ') + "^");
    m_out.line(std::string("Error: ") + message);
    return Result::Error;
}

bool Interpreter::needManager()
{
    if (m_server) {
        return true;
    }
    error(kNoManager);
    return false;
}

bool Interpreter::needSystem()
{
    if (!needManager()) {
        return false;
    }
    if (m_cell) {
        return true;
    }
    error(kNoSystem);
    return false;
}

bool Interpreter::takeFault(const char *kind, const std::string &line, Fault *taken)
{
    for (Fault &f : *m_faults) {
        if (f.kind != kind || f.remaining <= 0) {
            continue;
        }
        if (!f.pattern.empty() && !icontains(line, f.pattern)) {
            continue;
        }
        if (!f.cell.empty() && !(m_cell && iequals(f.cell, m_cellName))) {
            continue;
        }
        if (f.kind == "https" && !f.server.empty() && !iequals(f.server, m_loginHost)) {
            continue;
        }
        if (m_passed[f.id]++ < f.skip) {
            continue;
        }
        --f.remaining;
        if (taken) {
            *taken = f;
        }
        return true;
    }
    return false;
}

Interpreter::Result Interpreter::quirk(const char *setting, const std::string &message)
{
    if (!m_settings.flag(setting)) {
        m_out.line("");
        return Result::Ok;
    }
    // The real tool reports these successes as errors, and stops on them like on any other.
    return error(message);
}

void Interpreter::nameList(const std::string &header, const std::vector<std::string> &names)
{
    m_out.line("");
    m_out.line(header);
    for (const std::string &n : names) {
        m_out.line(n);
    }
}

std::unique_ptr<ObjectWriter> Interpreter::objectWriter(bool xml, const std::string &line)
{
    if (!xml) {
        return std::make_unique<TextObjectWriter>(m_out);
    }
    const bool malformed = takeFault("malformed-xml", line);
    return std::make_unique<XmlObjectWriter>(m_out, m_settings.flag("info_lines"), malformed);
}

Interpreter::Result Interpreter::execute(const std::string &line)
{
    static const struct {
        const char *verb;
        Result (Interpreter::*run)(const std::string &, const std::vector<Token> &);
    } verbs[] = {
        {"SET", &Interpreter::setCommand},  {"SELECT", &Interpreter::selectCommand},
        {"LS", &Interpreter::lsCommand},    {"FIND", &Interpreter::findCommand},
        {"ADD", &Interpreter::addCommand},  {"DELETE", &Interpreter::deleteCommand},
        {"REFRESH", &Interpreter::refresh}, {"REDISCOVER", &Interpreter::refresh},
    };
    std::vector<Token> t;
    size_t bad = 0;
    if (!Tokenizer::split(line, t, bad)) {
        return syntaxError(line, bad);
    }
    if (!Keywords::expand(t, bad)) {
        return syntaxError(line, bad, "Ambiguous keyword at or near here");
    }
    if (t.empty()) {
        return Result::Ok;
    }
    if (t[0].is("EXIT")) {
        return t.size() == 1 ? Result::Exit : syntaxError(line, t[1].column);
    }
    Fault injected;
    if (m_world && takeFault("change", line, &injected)) {
        // The array changes under the command; a change that no longer fits the world is void.
        WorldChange change;
        if (change.fromText(injected.text).empty()) {
            change.apply(*m_world, m_settings);
        }
    }
    if (takeFault("error", line, &injected) || takeFault("busy", line, &injected)) {
        return error(injected.text);
    }
    for (const auto &v : verbs) {
        if (t[0].is(v.verb)) {
            return (this->*v.run)(line, t);
        }
    }
    return syntaxError(line, t[0].column);
}

Interpreter::Result Interpreter::refresh(const std::string &line, const std::vector<Token> &t)
{
    if (t.size() > 1) {
        return syntaxError(line, t[1].column);
    }
    if (!needManager()) {
        return Result::Error;
    }
    m_out.line("");
    return Result::Ok;
}

Interpreter::Result Interpreter::setCommand(const std::string &line, const std::vector<Token> &t)
{
    if (t.size() < 2) {
        return syntaxError(line, line.size());
    }
    if (t[1].is("OPTIONS")) {
        return setOptions(line, t);
    }
    if (t[1].is("VDISK")) {
        return setVdisk(line, t);
    }
    if (t[1].is("DR_GROUP")) {
        return setDrGroup(line, t);
    }
    return syntaxError(line, t[1].column);
}

Interpreter::Result Interpreter::setOptions(const std::string &line, const std::vector<Token> &t)
{
    if (t.size() < 3) {
        return syntaxError(line, line.size());
    }
    bool exitOnError = m_exitOnError;
    long long delay = m_commandDelay, width = m_displayWidth;
    for (size_t i = 2; i < t.size(); ++i) {
        const Token &o = t[i];
        long long n = 0;
        if (o.is("NOCOMMAND_DELAY")) {
            delay = 0;
        } else if (o.isKey("COMMAND_DELAY") && parseInt(o.value, n) && n >= 0) {
            delay = n;
        } else if (o.isKey("DISPLAY_WIDTH") && parseInt(o.value, n) && n >= 20 && n <= 65535) {
            width = n;
        } else if (o.isKey("ON_ERROR") && iequals(o.value, "CONTINUE")) {
            exitOnError = false;
        } else if (o.isKey("ON_ERROR") && (iequals(o.value, "EXIT_ON_ERROR") || iequals(o.value, "HALT_ON_ERROR"))) {
            exitOnError = true;
        } else {
            return syntaxError(line, o.column);
        }
    }
    m_exitOnError = exitOnError;
    m_commandDelay = delay;
    m_displayWidth = width;
    m_out.line("");
    return Result::Ok;
}

Interpreter::Result Interpreter::setVdisk(const std::string &line, const std::vector<Token> &t)
{
    if (t.size() < 4 || !t[2].isName()) {
        return syntaxError(line, t.size() < 3 ? line.size() : t[2].column);
    }
    ArrayOps::VdiskChange change;
    for (size_t i = 3; i < t.size(); ++i) {
        const Token &o = t[i];
        if (o.is("CHANGE_INTO_CONTAINER")) {
            change.container = true;
        } else if (o.isKey("NAME")) {
            change.hasName = true, change.name = o.value;
        } else if (o.isKey("WORLD_WIDE_LUN_NAME")) {
            change.hasWwlunid = true, change.wwlunid = o.value;
        } else if (o.isKey("WRITECACHE")) {
            change.hasWritecache = true, change.writecache = o.value;
        } else if (o.isKey("COMMENT")) {
            change.hasComment = true, change.comment = o.value;
        } else {
            return syntaxError(line, o.column);
        }
    }
    if (!needSystem()) {
        return Result::Error;
    }
    return done(ArrayOps(*m_world, m_settings).setVdisk(m_cell, t[2].text, change));
}

Interpreter::Result Interpreter::setDrGroup(const std::string &line, const std::vector<Token> &t)
{
    if (t.size() != 4 || !t[2].isName()) {
        return syntaxError(line, t.size() < 3 ? line.size() : t[t.size() < 4 ? 2 : 3].column);
    }
    bool suspend = false;
    if (t[3].is("SUSPEND")) {
        suspend = true;
    } else if (!t[3].is("NOSUSPEND")) {
        return syntaxError(line, t[3].column);
    }
    if (!needSystem()) {
        return Result::Error;
    }
    return done(ArrayOps(*m_world, m_settings).setDrGroup(m_cell, t[2].text, suspend));
}

Interpreter::Result Interpreter::done(const std::string &refused)
{
    if (!refused.empty()) {
        return error(refused);
    }
    m_out.line("");
    return Result::Ok;
}

Interpreter::Result Interpreter::selectCommand(const std::string &line, const std::vector<Token> &t)
{
    if (t.size() < 2 || !(t[1].is("CELL") || t[1].is("SYSTEM"))) {
        return syntaxError(line, t.size() < 2 ? line.size() : t[1].column);
    }
    if (t.size() < 3) {
        return syntaxError(line, line.size());
    }
    std::string name;
    if (t.size() == 3 && t[2].kind == Token::Quoted) {
        name = t[2].text;
    } else {
        for (size_t i = 2; i < t.size(); ++i) {
            if (t[i].kind != Token::Word) {
                return syntaxError(line, t[i].column);
            }
        }
        name = trim(line.substr(t[2].column));
    }
    if (!needManager()) {
        return Result::Error;
    }
    CellRec *c = m_world->cellByName(name);
    if (!c || !m_world->manages(m_server, c->id)) {
        return error(name + " not found");
    }
    m_cell = c->id;
    m_cellName = c->name;
    m_out.line("");
    return Result::Ok;
}

Interpreter::Result Interpreter::lsCommand(const std::string &line, const std::vector<Token> &t)
{
    static const struct {
        const char *what;
        bool needsSystem;
        Result (Interpreter::*run)(const std::string &, const ListRequest &);
    } kinds[] = {
        {"CELL", false, &Interpreter::lsCells},       {"SYSTEM", false, &Interpreter::lsCells},
        {"VDISK", true, &Interpreter::lsVdisks},      {"HOST", true, &Interpreter::lsHosts},
        {"DR_GROUP", true, &Interpreter::lsDrGroups}, {"DISK_GROUP", true, &Interpreter::lsDiskGroups},
    };
    if (t.size() < 2) {
        return syntaxError(line, line.size());
    }
    for (const auto &k : kinds) {
        if (!t[1].is(k.what)) {
            continue;
        }
        const ListRequest req = parseList(line, t);
        if (req.badColumn != std::string::npos) {
            return syntaxError(line, req.badColumn);
        }
        if (k.needsSystem ? !needSystem() : !needManager()) {
            return Result::Error;
        }
        return (this->*k.run)(line, req);
    }
    return syntaxError(line, t[1].column);
}

template <class Rec, class NameOf, class Describe>
Interpreter::Result Interpreter::report(const std::string &line, const ListRequest &req, const char *marker,
                                        const std::vector<const Rec *> &list, NameOf nameOf, Describe describe)
{
    if (!req.objects()) {
        std::vector<std::string> names;
        names.reserve(list.size());
        for (const Rec *r : list) {
            names.push_back(nameOf(*r));
        }
        nameList(marker, names);
        return Result::Ok;
    }
    const std::unique_ptr<ObjectWriter> writer = objectWriter(req.xml, line);
    ObjectDescriber describer(*m_world);
    m_out.line("");
    for (const Rec *r : list) {
        describe(describer, *writer, *r);
    }
    return Result::Ok;
}

Interpreter::Result Interpreter::notFound(const std::string &name, bool ambiguous)
{
    return error(ambiguous ? name + " is ambiguous; give the full path" : name + " not found");
}

Interpreter::Result Interpreter::lsCells(const std::string &line, const ListRequest &req)
{
    std::vector<const CellRec *> list;
    for (const CellRec *c : m_world->cellsOf(m_server)) {
        if (req.name.empty() || iequals(c->name, req.name)) {
            list.push_back(c);
        }
    }
    if (!req.name.empty() && list.empty()) {
        return notFound(req.name, false);
    }
    return report(
        line, req, "Systems available on this Manager:", list, [](const CellRec &c) { return c.name; },
        [](ObjectDescriber &d, ObjectWriter &w, const CellRec &c) { d.cell(w, c); });
}

Interpreter::Result Interpreter::lsVdisks(const std::string &line, const ListRequest &req)
{
    std::vector<const VdiskRec *> list;
    if (!req.name.empty()) {
        bool ambiguous = false;
        VdiskRec *d = m_world->resolveVdisk(m_cell, req.name, ambiguous);
        if (!d) {
            return notFound(req.name, ambiguous);
        }
        list.push_back(d);
    } else {
        for (VdiskRec *d : m_world->vdisksOf(m_cell)) {
            list.push_back(d);
        }
    }
    if (req.objects()) {
        ArrayOps(*m_world, m_settings).observeCopies(list);
    }
    return report(
        line, req, "Vdisks available on this Cell:", list, [](const VdiskRec &d) { return d.path(); },
        [](ObjectDescriber &d, ObjectWriter &w, const VdiskRec &v) { d.vdisk(w, v); });
}

Interpreter::Result Interpreter::lsHosts(const std::string &line, const ListRequest &req)
{
    std::vector<const HostRec *> list;
    if (!req.name.empty()) {
        bool ambiguous = false;
        HostRec *h = m_world->resolveHost(m_cell, req.name, ambiguous);
        if (!h) {
            return notFound(req.name, ambiguous);
        }
        list.push_back(h);
    } else {
        for (HostRec *h : m_world->hostsOf(m_cell)) {
            list.push_back(h);
        }
    }
    return report(
        line, req, "Hosts available on this Cell:", list, [](const HostRec &h) { return h.path; },
        [](ObjectDescriber &d, ObjectWriter &w, const HostRec &h) { d.host(w, h); });
}

Interpreter::Result Interpreter::lsDrGroups(const std::string &line, const ListRequest &req)
{
    std::vector<const DrGroupRec *> list;
    if (!req.name.empty()) {
        DrGroupRec *g = m_world->resolveDrGroup(m_cell, req.name);
        if (!g) {
            return notFound(req.name, false);
        }
        list.push_back(g);
    } else {
        for (const auto &[id, g] : m_world->drgroups.rows) {
            if (g.sourceCell == m_cell || g.destCell == m_cell) {
                list.push_back(&g);
            }
        }
    }
    const int64_t cell = m_cell;
    return report(
        line, req, "DR groups available on this Cell:", list, [](const DrGroupRec &g) { return g.path(); },
        [cell](ObjectDescriber &d, ObjectWriter &w, const DrGroupRec &g) { d.drGroup(w, g, cell); });
}

Interpreter::Result Interpreter::lsDiskGroups(const std::string &line, const ListRequest &req)
{
    std::vector<const DiskGroupRec *> list;
    for (const auto &[id, g] : m_world->diskgroups.rows) {
        if (g.cell == m_cell &&
            (req.name.empty() || iequals(g.name, req.name) || iequals("\\Disk Groups\\" + g.name, req.name))) {
            list.push_back(&g);
        }
    }
    if (!req.name.empty() && list.empty()) {
        return notFound(req.name, false);
    }
    return report(
        line, req, "Disk groups available on this Cell:", list,
        [](const DiskGroupRec &g) { return "\\Disk Groups\\" + g.name; },
        [](ObjectDescriber &d, ObjectWriter &w, const DiskGroupRec &g) { d.diskGroup(w, g); });
}

Interpreter::Result Interpreter::findCommand(const std::string &line, const std::vector<Token> &t)
{
    if (t.size() < 3 || !t[1].is("VDISK")) {
        return syntaxError(line, t.size() < 2 ? line.size() : t[1].column);
    }
    if (!t[2].isKey("LUNWWID")) {
        return syntaxError(line, t[2].column);
    }
    bool xml = false;
    for (size_t i = 3; i < t.size(); ++i) {
        if (!t[i].is("XML")) {
            return syntaxError(line, t[i].column);
        }
        xml = true;
    }
    if (!needSystem()) {
        return Result::Error;
    }
    std::string wanted;
    const VdiskRec *found = nullptr;
    if (normaliseWwn(t[2].value, 8, wanted, false)) {
        for (const auto &[id, d] : m_world->vdisks.rows) {
            if (d.cell == m_cell && iequals(d.wwlunid, wanted)) {
                found = &d;
            }
        }
    }
    if (!found) {
        return notFound(t[2].value, false);
    }
    ArrayOps(*m_world, m_settings).observeCopies({found});
    const std::unique_ptr<ObjectWriter> writer = objectWriter(xml, line);
    m_out.line("");
    ObjectDescriber(*m_world).vdisk(*writer, *found);
    return Result::Ok;
}

Interpreter::Result Interpreter::addCommand(const std::string &line, const std::vector<Token> &t)
{
    if (t.size() < 2) {
        return syntaxError(line, line.size());
    }
    if (t[1].is("LUN")) {
        return addLun(line, t);
    }
    if (t[1].is("VDISK") || t[1].is("SNAPSHOT") || t[1].is("COPY")) {
        return addDisk(line, t);
    }
    return syntaxError(line, t[1].column);
}

Interpreter::Result Interpreter::addLun(const std::string &line, const std::vector<Token> &t)
{
    long long lun = 0;
    if (t.size() < 3 || t[2].kind != Token::Word || !parseInt(t[2].text, lun)) {
        return syntaxError(line, t.size() < 3 ? line.size() : t[2].column);
    }
    std::string host, disk;
    bool hasHost = false, hasDisk = false;
    for (size_t i = 3; i < t.size(); ++i) {
        if (t[i].isKey("HOST")) {
            host = t[i].value, hasHost = true;
        } else if (t[i].isKey("VDISK")) {
            disk = t[i].value, hasDisk = true;
        } else {
            return syntaxError(line, t[i].column);
        }
    }
    if (!hasHost || !hasDisk) {
        return syntaxError(line, line.size());
    }
    if (!needSystem()) {
        return Result::Error;
    }
    const std::string refused = ArrayOps(*m_world, m_settings).addLun(m_cell, lun, host, disk);
    if (!refused.empty()) {
        return error(refused);
    }
    return quirk("quirk_present_failed",
                 "Error the call to present the virtual disk has failed. [Logical disk Presented]");
}

// ADD VDISK, ADD SNAPSHOT and ADD COPY: a name, then options of which each kind takes its own.
Interpreter::Result Interpreter::addDisk(const std::string &line, const std::vector<Token> &t)
{
    const Token &what = t[1];
    if (t.size() < 3 || !t[2].isName()) {
        return syntaxError(line, t.size() < 3 ? line.size() : t[2].column);
    }
    const std::string name = t[2].text;
    std::string source, container, redundancy, allocation, wwlunid, diskGroup, size;
    bool hasSource = false, hasSize = false;
    for (size_t i = 3; i < t.size(); ++i) {
        const Token &o = t[i];
        if (o.isKey("VDISK") && !what.is("VDISK")) {
            source = o.value, hasSource = true;
        } else if (o.isKey("CONTAINER") && what.is("COPY")) {
            container = o.value;
        } else if (o.isKey("REDUNDANCY")) {
            redundancy = o.value;
        } else if (o.isKey("ALLOCATION_POLICY") && what.is("SNAPSHOT")) {
            allocation = o.value;
        } else if (o.isKey("WORLD_WIDE_LUN_NAME") && !what.is("COPY")) {
            wwlunid = o.value;
        } else if (o.isKey("DISK_GROUP") && !what.is("SNAPSHOT")) {
            diskGroup = o.value;
        } else if (o.isKey("SIZE") && what.is("VDISK")) {
            size = o.value, hasSize = true;
        } else {
            return syntaxError(line, o.column);
        }
    }
    if (what.is("VDISK") ? !hasSize : !hasSource) {
        return syntaxError(line, line.size());
    }
    if (!needSystem()) {
        return Result::Error;
    }
    ArrayOps ops(*m_world, m_settings);
    if (what.is("VDISK")) {
        uint64_t bytes = 0;
        if (!parseSize(size, bytes)) {
            return error("Invalid size " + size);
        }
        return done(ops.addVdisk(m_cell, name, bytes, redundancy, diskGroup, wwlunid));
    }
    if (what.is("SNAPSHOT")) {
        return done(ops.addSnapshot(m_cell, name, source, allocation, redundancy, wwlunid));
    }
    return done(ops.addCopy(m_cell, name, source, container, redundancy));
}

Interpreter::Result Interpreter::deleteCommand(const std::string &line, const std::vector<Token> &t)
{
    if (t.size() < 2 || !(t[1].is("VDISK") || t[1].is("LUN"))) {
        return syntaxError(line, t.size() < 2 ? line.size() : t[1].column);
    }
    if (t.size() != 3 || !t[2].isName()) {
        return syntaxError(line, t.size() < 3 ? line.size() : t[3].column);
    }
    if (!needSystem()) {
        return Result::Error;
    }
    ArrayOps ops(*m_world, m_settings);
    const std::string refused =
        t[1].is("VDISK") ? ops.deleteVdisk(m_cell, t[2].text) : ops.deleteLun(m_cell, t[2].text);
    if (!refused.empty()) {
        return error(refused);
    }
    return quirk("quirk_deletion_completed", "Deletion completed");
}

}  // namespace evasim
