#include "scenario_loader.h"

#include "array_ops.h"
#include "settings.h"
#include "text_util.h"
#include "tokenizer.h"
#include "world.h"
#include "world_change.h"

#include <algorithm>

#include <map>
#include <set>

namespace evasim {

namespace {

// The KEY=VALUE items of a line behind its fixed words, checked against the keys allowed.
struct Options {
    std::map<std::string, std::string> values;

    bool has(const std::string &key) const { return values.count(key) != 0; }
    std::string get(const std::string &key, const std::string &fallback = {}) const
    {
        auto it = values.find(key);
        return it == values.end() ? fallback : it->second;
    }
};

std::string readOptions(const std::vector<Token> &t, size_t from, const std::set<std::string> &allowed, Options &out)
{
    for (size_t i = from; i < t.size(); ++i) {
        if (t[i].kind != Token::Assign) {
            return "expected KEY=VALUE, found '" + t[i].text + "'";
        }
        const std::string key = lower(t[i].text);
        if (!allowed.count(key)) {
            std::string list;
            for (const std::string &k : allowed) {
                list += (list.empty() ? "" : ", ") + k;
            }
            return "unknown option '" + t[i].text + "'" + (list.empty() ? "" : " (allowed: " + list + ")");
        }
        if (out.values.count(key)) {
            return "option '" + key + "' given twice";
        }
        out.values[key] = t[i].value;
    }
    return {};
}

std::string needNames(const std::vector<Token> &t, size_t count, const char *usage)
{
    for (size_t i = 1; i <= count; ++i) {
        if (i >= t.size() || !t[i].isName()) {
            return std::string("usage: ") + usage;
        }
    }
    return {};
}

}  // namespace

ScenarioLoader::ScenarioLoader(World &world, Settings &settings) : m_world(world), m_settings(settings) {}

std::string ScenarioLoader::load(std::istream &in, const std::string &name)
{
    std::string text;
    int number = 0;
    while (std::getline(in, text)) {
        ++number;
        const std::string error = line(text);
        if (!error.empty()) {
            return name + ":" + std::to_string(number) + ": " + error;
        }
    }
    return {};
}

std::string ScenarioLoader::line(const std::string &text)
{
    static const struct {
        const char *kind;
        std::string (ScenarioLoader::*read)(const std::vector<Token> &);
    } kinds[] = {
        {"set", &ScenarioLoader::setLine},         {"server", &ScenarioLoader::serverLine},
        {"cell", &ScenarioLoader::cellLine},       {"diskgroup", &ScenarioLoader::diskGroupLine},
        {"host", &ScenarioLoader::hostLine},       {"vdisk", &ScenarioLoader::vdiskLine},
        {"container", &ScenarioLoader::vdiskLine}, {"snapshot", &ScenarioLoader::snapshotLine},
        {"present", &ScenarioLoader::presentLine}, {"drgroup", &ScenarioLoader::drGroupLine},
        {"member", &ScenarioLoader::memberLine},   {"snapclone", &ScenarioLoader::snapcloneLine},
    };
    const std::string body = trim(text);
    if (body.empty() || body[0] == '#') {
        return {};
    }
    std::vector<Token> t;
    size_t bad = 0;
    if (!Tokenizer::split(body, t, bad)) {
        return "unclosed double quote at column " + std::to_string(bad + 1);
    }
    if (t[0].kind != Token::Word) {
        return "a line starts with a keyword, not '" + t[0].text + "'";
    }
    std::vector<std::string> known;
    for (const auto &k : kinds) {
        if (iequals(t[0].text, k.kind)) {
            return (this->*k.read)(t);
        }
        known.push_back(k.kind);
    }
    return "unknown keyword '" + t[0].text + "' (known: " + join(known, ", ") + ")";
}

std::string ScenarioLoader::cellOf(const std::string &name, int64_t &id)
{
    CellRec *c = m_world.cellByName(name);
    if (!c) {
        return "unknown cell '" + name + "' (declare it with a cell line first)";
    }
    id = c->id;
    return {};
}

std::string ScenarioLoader::setLine(const std::vector<Token> &t)
{
    std::string e;
    if (t.size() < 2) {
        return "usage: set KEY=VALUE ...";
    }
    for (size_t i = 1; i < t.size(); ++i) {
        if (t[i].kind != Token::Assign) {
            return "expected KEY=VALUE, found '" + t[i].text + "'";
        }
        e = m_settings.set(t[i].text, t[i].value);
        if (!e.empty()) {
            return e;
        }
    }
    return {};
}

std::string ScenarioLoader::serverLine(const std::vector<Token> &t)
{
    Options o;
    std::string e;
    if (!(e = needNames(t, 1, "server HOST user=USER password=PASSWORD [reachable=yes|no]")).empty()) {
        return e;
    }
    if (!(e = readOptions(t, 2, {"user", "password", "reachable"}, o)).empty()) {
        return e;
    }
    if (!o.has("user") || !o.has("password")) {
        return "server " + t[1].text + " needs user= and password=";
    }
    if (m_world.serverByHost(t[1].text)) {
        return "server " + t[1].text + " is declared twice";
    }
    ServerRec s;
    s.host = t[1].text;
    s.user = o.get("user");
    s.password = o.get("password");
    if (s.user.empty() || s.password.empty()) {
        return "user and password must not be empty";
    }
    if (o.has("reachable") && !parseBool(o.get("reachable"), s.reachable)) {
        return "reachable must be yes or no, not '" + o.get("reachable") + "'";
    }
    m_world.servers.insert(s);
    return {};
}

std::string ScenarioLoader::cellLine(const std::vector<Token> &t)
{
    Options o;
    std::string e;
    if (!(e = needNames(t, 1, "cell NAME wwn=WWN [firmware=TEXT] [total=SIZE] [servers=HOST,...]")).empty()) {
        return e;
    }
    if (!(e = readOptions(t, 2, {"wwn", "firmware", "total", "servers"}, o)).empty()) {
        return e;
    }
    if (m_world.cellByName(t[1].text)) {
        return "cell " + t[1].text + " is declared twice";
    }
    CellRec c;
    c.name = t[1].text;
    if (!o.has("wwn")) {
        return "cell " + c.name + " needs wwn=";
    }
    if (!normaliseWwn(o.get("wwn"), 4, c.wwn, true)) {
        return "wwn '" + o.get("wwn") + "' is not 16 hexadecimal digits in 4 groups";
    }
    if (m_world.cellByWwn(c.wwn)) {
        return "wwn " + c.wwn + " is used by another cell";
    }
    c.firmware = o.get("firmware", "6220");
    c.total = uint64_t(4096) << 30;
    if (o.has("total") && !parseSize(o.get("total"), c.total)) {
        return "total '" + o.get("total") + "' is not a size such as 4096GB or 4TB";
    }
    std::vector<int64_t> servers;
    if (o.has("servers")) {
        for (const std::string &h : split(o.get("servers"), ',')) {
            ServerRec *s = m_world.serverByHost(trim(h));
            if (!s) {
                return "unknown server '" + trim(h) + "' (declare it with a server line first)";
            }
            servers.push_back(s->id);
        }
    }
    const int64_t id = m_world.cells.insert(c).id;
    for (int64_t s : servers) {
        ManagedRec m;
        m.server = s;
        m.cell = id;
        m_world.managed.insert(m);
    }
    return {};
}

std::string ScenarioLoader::diskGroupLine(const std::vector<Token> &t)
{
    Options o;
    std::string e;
    int64_t cell = 0;
    if (!(e = needNames(t, 2, "diskgroup CELL NAME")).empty()) {
        return e;
    }
    if (!(e = readOptions(t, 3, {}, o)).empty()) {
        return e;
    }
    if (!(e = cellOf(t[1].text, cell)).empty()) {
        return e;
    }
    if (m_world.diskGroupByName(cell, t[2].text)) {
        return "disk group " + t[2].text + " is declared twice";
    }
    if (!ArrayOps::validName(t[2].text)) {
        return "invalid disk group name '" + t[2].text + "'";
    }
    DiskGroupRec g;
    g.cell = cell;
    g.name = t[2].text;
    m_world.diskgroups.insert(g);
    return {};
}

std::string ScenarioLoader::hostLine(const std::vector<Token> &t)
{
    Options o;
    std::string e;
    ArrayOps ops(m_world, m_settings);
    int64_t cell = 0;
    if (!(e = needNames(t, 2, "host CELL PATH [ports=WWN,...] [os=TEXT]")).empty()) {
        return e;
    }
    if (!(e = readOptions(t, 3, {"ports", "os"}, o)).empty()) {
        return e;
    }
    if (!(e = cellOf(t[1].text, cell)).empty()) {
        return e;
    }
    std::vector<std::string> ports;
    for (const std::string &p : split(o.get("ports"), ',')) {
        if (!trim(p).empty()) {
            ports.push_back(trim(p));
        }
    }
    return ops.addHost(cell, t[2].text, ports, o.get("os"));
}

std::string ScenarioLoader::vdiskLine(const std::vector<Token> &t)
{
    Options o;
    std::string e;
    ArrayOps ops(m_world, m_settings);
    int64_t cell = 0;
    if (!(e = needNames(t, 2,
                        "vdisk CELL PATH size=SIZE [wwlunid=ID] [redundancy=vraid0|vraid1|vraid5] "
                        "[diskgroup=NAME] [writecache=writeback|writethrough] [comment=TEXT]"))
             .empty()) {
        return e;
    }
    if (!(e = readOptions(t, 3, {"size", "wwlunid", "redundancy", "diskgroup", "writecache", "comment"}, o)).empty()) {
        return e;
    }
    if (!(e = cellOf(t[1].text, cell)).empty()) {
        return e;
    }
    uint64_t bytes = 0;
    if (!o.has("size")) {
        return lower(t[0].text) + " " + t[2].text + " needs size=";
    }
    if (!parseSize(o.get("size"), bytes)) {
        return "size '" + o.get("size") + "' is not a size such as 100GB";
    }
    int64_t id = 0;
    if (!(e = ops.addVdisk(cell, t[2].text, bytes, o.get("redundancy"), o.get("diskgroup"), o.get("wwlunid"), &id))
             .empty()) {
        return e;
    }
    VdiskRec *d = m_world.vdisks.find(id);
    ArrayOps::VdiskChange change;
    change.hasComment = o.has("comment");
    change.comment = o.get("comment");
    change.hasWritecache = o.has("writecache");
    change.writecache = o.get("writecache");
    change.container = iequals(t[0].text, "container");
    return ops.setVdisk(cell, d->path(), change);
}

std::string ScenarioLoader::snapshotLine(const std::vector<Token> &t)
{
    Options o;
    std::string e;
    ArrayOps ops(m_world, m_settings);
    int64_t cell = 0;
    if (!(e = needNames(t, 3, "snapshot CELL SOURCE NAME [allocation=demand|fully] [wwlunid=ID] [written=SIZE]"))
             .empty()) {
        return e;
    }
    if (!(e = readOptions(t, 4, {"allocation", "wwlunid", "written"}, o)).empty()) {
        return e;
    }
    if (!(e = cellOf(t[1].text, cell)).empty()) {
        return e;
    }
    int64_t id = 0;
    if (!(e = ops.addSnapshot(cell, t[3].text, t[2].text, o.get("allocation", "demand"), {}, o.get("wwlunid"), &id))
             .empty()) {
        return e;
    }
    if (!o.has("written")) {
        return {};
    }
    const VdiskRec *made = m_world.vdisks.find(id);
    const CellRec *c = m_world.cells.find(cell);
    WorldChange change;
    change.parse({"disk", c->name, made->path(), "written=" + o.get("written")});
    return change.apply(m_world, m_settings);
}

std::string ScenarioLoader::snapcloneLine(const std::vector<Token> &t)
{
    Options o;
    std::string e;
    ArrayOps ops(m_world, m_settings);
    int64_t cell = 0;
    if (!(e = needNames(t, 3, "snapclone CELL SOURCE NAME [reads=N | seconds=S | state=done|stalled|failed]"))
             .empty()) {
        return e;
    }
    if (!(e = readOptions(t, 4, {"reads", "seconds", "state"}, o)).empty()) {
        return e;
    }
    if (!(e = cellOf(t[1].text, cell)).empty()) {
        return e;
    }
    int64_t id = 0;
    if (!(e = ops.addCopy(cell, t[3].text, t[2].text, {}, {}, &id)).empty()) {
        return e;
    }
    VdiskRec *made = m_world.vdisks.find(id);
    std::vector<std::string> words{"disk", m_world.cells.find(cell)->name, made->path()};
    for (const char *key : {"reads", "seconds", "state"}) {
        if (o.has(key)) {
            words.push_back(std::string(std::string(key) == "state" ? "copy" : std::string("copy_") + key) + "=" +
                            o.get(key));
        }
    }
    if (words.size() == 3) {
        return {};
    }
    if (!made->copySource) {
        ops.startCopy(*made, *m_world.vdisks.find(made->clonedFrom), "snapclone");
        made->copyReads = std::max<int64_t>(made->copyReads, 1);
        made->copyEnd = std::max(made->copyEnd, m_settings.now() + 1);
    }
    WorldChange change;
    if (!(e = change.parse(words)).empty()) {
        return e;
    }
    return change.apply(m_world, m_settings);
}

std::string ScenarioLoader::presentLine(const std::vector<Token> &t)
{
    Options o;
    std::string e;
    ArrayOps ops(m_world, m_settings);
    int64_t cell = 0;
    if (!(e = needNames(t, 3, "present CELL DISK HOST lun=N")).empty()) {
        return e;
    }
    if (!(e = readOptions(t, 4, {"lun"}, o)).empty()) {
        return e;
    }
    if (!(e = cellOf(t[1].text, cell)).empty()) {
        return e;
    }
    long long lun = 0;
    if (!o.has("lun") || !parseInt(o.get("lun"), lun)) {
        return "present needs lun=N (1 to 255, or 0 for the lowest free)";
    }
    return ops.addLun(cell, lun, t[3].text, t[2].text);
}

std::string ScenarioLoader::drGroupLine(const std::vector<Token> &t)
{
    Options o;
    std::string e;
    if (!(e = needNames(t, 1,
                        "drgroup NAME source=CELL destination=CELL [writemode=TEXT] [operationalstate=TEXT] "
                        "[membercondition=TEXT] [linkstate=TEXT] [suspended=yes|no] [links=yes|no]"))
             .empty()) {
        return e;
    }
    if (!(e = readOptions(t, 2,
                          {"source", "destination", "writemode", "operationalstate", "membercondition", "linkstate",
                           "suspended", "links"},
                          o))
             .empty()) {
        return e;
    }
    DrGroupRec g;
    g.name = t[1].text;
    if (!ArrayOps::validName(g.name)) {
        return "invalid DR group name '" + g.name + "'";
    }
    for (const auto &[id, other] : m_world.drgroups.rows) {
        if (iequals(other.name, g.name)) {
            return "DR group " + g.name + " is declared twice";
        }
    }
    if (!o.has("source") || !o.has("destination")) {
        return "drgroup " + g.name + " needs source= and destination=";
    }
    if (!(e = cellOf(o.get("source"), g.sourceCell)).empty()) {
        return e;
    }
    if (!(e = cellOf(o.get("destination"), g.destCell)).empty()) {
        return e;
    }
    if (g.sourceCell == g.destCell) {
        return "a DR group's source and destination must be different cells";
    }
    g.writemode = o.get("writemode", g.writemode);
    g.operationalstate = o.get("operationalstate", g.operationalstate);
    g.membercondition = o.get("membercondition", g.membercondition);
    g.linkstate = o.get("linkstate", g.linkstate);
    if (o.has("links") && !parseBool(o.get("links"), g.hasLink)) {
        return "links must be yes or no, not '" + o.get("links") + "'";
    }
    if (o.has("suspended") && !parseBool(o.get("suspended"), g.suspended)) {
        return "suspended must be yes or no, not '" + o.get("suspended") + "'";
    }
    m_world.drgroups.insert(g);
    return {};
}

std::string ScenarioLoader::memberLine(const std::vector<Token> &t)
{
    Options o;
    std::string e;
    ArrayOps ops(m_world, m_settings);
    if (!(e = needNames(t, 2, "member GROUP DISK [remote=PATH]")).empty()) {
        return e;
    }
    if (!(e = readOptions(t, 3, {"remote"}, o)).empty()) {
        return e;
    }
    DrGroupRec *g = nullptr;
    for (auto &[id, other] : m_world.drgroups.rows) {
        if (iequals(other.name, t[1].text)) {
            g = &other;
        }
    }
    if (!g) {
        return "unknown DR group '" + t[1].text + "' (declare it with a drgroup line first)";
    }
    bool ambiguous = false;
    VdiskRec *src = m_world.resolveVdisk(g->sourceCell, t[2].text, ambiguous);
    if (!src) {
        return "disk '" + t[2].text + "' is not on the group's source cell";
    }
    if (!src->active() || src->container) {
        return "only an active disk can be a DR group member";
    }
    if (m_world.drMembershipOf(src->id)) {
        return src->path() + " is already in a DR group";
    }
    const std::string remotePath = o.get("remote", src->familyPath());
    VdiskRec *dst = m_world.resolveVdisk(g->destCell, remotePath, ambiguous);
    if (!dst) {
        int64_t made = 0;
        e = ops.addVdisk(g->destCell, remotePath, src->blocks * 512, src->redundancy, {}, {}, &made);
        if (!e.empty()) {
            return "cannot make the remote disk: " + e;
        }
        dst = m_world.vdisks.find(made);
    }
    if (!dst->active() || dst->container) {
        return "only an active disk can be a DR group member";
    }
    if (dst->blocks != src->blocks) {
        return "the remote disk's size differs from the source disk's";
    }
    if (m_world.drMembershipOf(dst->id)) {
        return dst->path() + " is already in a DR group";
    }
    DrMemberRec m;
    m.group = g->id;
    m.sourceDisk = src->id;
    m.destDisk = dst->id;
    m_world.drmembers.insert(m);
    return {};
}

}  // namespace evasim
