#include "world.h"

#include "database.h"
#include "statement.h"
#include "text_util.h"

#include <algorithm>
#include <cstdio>
#include <functional>

namespace evasim {

namespace {

// How one record type maps to its table: the column list after "id", how to bind a record to
// the placeholders 2.. and how to read one from columns 1...
template <class Rec>
struct Mapping {
    const char *table;
    const char *columns;
    int count;
    std::function<void(Statement &, const Rec &)> bind;
    std::function<Rec(Statement &)> read;
};

const Mapping<ServerRec> kServers{
    "servers", "host,user,password,reachable", 4,
    [](Statement &s, const ServerRec &r) {
        s.bind(2, r.host).bind(3, r.user).bind(4, r.password).bind(5, int64_t(r.reachable));
    },
    [](Statement &s) {
        ServerRec r;
        r.host = s.text(1);
        r.user = s.text(2);
        r.password = s.text(3);
        r.reachable = s.integer(4) != 0;
        return r;
    }};

const Mapping<ManagedRec> kManaged{"managed", "server,cell", 2,
                                   [](Statement &s, const ManagedRec &r) { s.bind(2, r.server).bind(3, r.cell); },
                                   [](Statement &s) {
                                       ManagedRec r;
                                       r.server = s.integer(1);
                                       r.cell = s.integer(2);
                                       return r;
                                   }};

const Mapping<CellRec> kCells{
    "cells", "name,wwn,firmware,total,serial", 5,
    [](Statement &s, const CellRec &r) {
        s.bind(2, r.name).bind(3, r.wwn).bind(4, r.firmware).bind(5, int64_t(r.total)).bind(6, r.serial);
    },
    [](Statement &s) {
        CellRec r;
        r.name = s.text(1);
        r.wwn = s.text(2);
        r.firmware = s.text(3);
        r.total = uint64_t(s.integer(4));
        r.serial = s.integer(5);
        return r;
    }};

const Mapping<DiskGroupRec> kDiskGroups{"diskgroups", "cell,name", 2,
                                        [](Statement &s, const DiskGroupRec &r) { s.bind(2, r.cell).bind(3, r.name); },
                                        [](Statement &s) {
                                            DiskGroupRec r;
                                            r.cell = s.integer(1);
                                            r.name = s.text(2);
                                            return r;
                                        }};

const Mapping<VdiskRec> kVdisks{
    "vdisks",
    "cell,folder,family,leaf,container,wwlunid,objectid,blocks,redundancy,allocation,diskgroup,parent,"
    "origin,copy_source,copy_reads,copy_kind,writecache,comments,created,modified,cloned_from,copy_mode,copy_end,"
    "copy_stalled,operationalstate,written",
    26,
    [](Statement &s, const VdiskRec &r) {
        s.bind(2, r.cell).bind(3, r.folder).bind(4, r.family).bind(5, r.leaf).bind(6, int64_t(r.container));
        s.bind(7, r.wwlunid).bind(8, r.objectid).bind(9, int64_t(r.blocks)).bind(10, r.redundancy);
        s.bind(11, r.allocation).bind(12, r.diskgroup).bind(13, r.parent).bind(14, r.origin);
        s.bind(15, r.copySource).bind(16, r.copyReads).bind(17, r.copyKind).bind(18, r.writecache);
        s.bind(19, r.comments).bind(20, r.created).bind(21, r.modified).bind(22, r.clonedFrom);
        s.bind(23, r.copyMode).bind(24, r.copyEnd).bind(25, int64_t(r.copyStalled)).bind(26, r.operationalstate);
        s.bind(27, int64_t(r.written));
    },
    [](Statement &s) {
        VdiskRec r;
        r.cell = s.integer(1);
        r.folder = s.text(2);
        r.family = s.text(3);
        r.leaf = s.text(4);
        r.container = s.integer(5) != 0;
        r.wwlunid = s.text(6);
        r.objectid = s.text(7);
        r.blocks = uint64_t(s.integer(8));
        r.redundancy = s.text(9);
        r.allocation = s.text(10);
        r.diskgroup = s.integer(11);
        r.parent = s.integer(12);
        r.origin = s.text(13);
        r.copySource = s.integer(14);
        r.copyReads = s.integer(15);
        r.copyKind = s.text(16);
        r.writecache = s.text(17);
        r.comments = s.text(18);
        r.created = s.integer(19);
        r.modified = s.integer(20);
        r.clonedFrom = s.integer(21);
        r.copyMode = s.text(22);
        r.copyEnd = s.real(23);
        r.copyStalled = s.integer(24) != 0;
        r.operationalstate = s.text(25);
        r.written = uint64_t(s.integer(26));
        return r;
    }};

const Mapping<HostRec> kHosts{"hosts", "cell,path,ports,os,objectid", 5,
                              [](Statement &s, const HostRec &r) {
                                  s.bind(2, r.cell).bind(3, r.path).bind(4, r.ports).bind(5, r.os).bind(6, r.objectid);
                              },
                              [](Statement &s) {
                                  HostRec r;
                                  r.cell = s.integer(1);
                                  r.path = s.text(2);
                                  r.ports = s.text(3);
                                  r.os = s.text(4);
                                  r.objectid = s.text(5);
                                  return r;
                              }};

const Mapping<LunRec> kLuns{"luns", "vdisk,host,lun", 3,
                            [](Statement &s, const LunRec &r) { s.bind(2, r.vdisk).bind(3, r.host).bind(4, r.lun); },
                            [](Statement &s) {
                                LunRec r;
                                r.vdisk = s.integer(1);
                                r.host = s.integer(2);
                                r.lun = s.integer(3);
                                return r;
                            }};

const Mapping<DrGroupRec> kDrGroups{
    "drgroups", "name,source_cell,dest_cell,writemode,operationalstate,membercondition,linkstate,suspended,has_link", 9,
    [](Statement &s, const DrGroupRec &r) {
        s.bind(2, r.name).bind(3, r.sourceCell).bind(4, r.destCell).bind(5, r.writemode);
        s.bind(6, r.operationalstate).bind(7, r.membercondition).bind(8, r.linkstate);
        s.bind(9, int64_t(r.suspended)).bind(10, int64_t(r.hasLink));
    },
    [](Statement &s) {
        DrGroupRec r;
        r.name = s.text(1);
        r.sourceCell = s.integer(2);
        r.destCell = s.integer(3);
        r.writemode = s.text(4);
        r.operationalstate = s.text(5);
        r.membercondition = s.text(6);
        r.linkstate = s.text(7);
        r.suspended = s.integer(8) != 0;
        r.hasLink = s.integer(9) != 0;
        return r;
    }};

const Mapping<DrMemberRec> kDrMembers{
    "drmembers", "drgroup,source_disk,dest_disk", 3,
    [](Statement &s, const DrMemberRec &r) { s.bind(2, r.group).bind(3, r.sourceDisk).bind(4, r.destDisk); },
    [](Statement &s) {
        DrMemberRec r;
        r.group = s.integer(1);
        r.sourceDisk = s.integer(2);
        r.destDisk = s.integer(3);
        return r;
    }};

template <class Rec>
void loadTable(Database &db, const Mapping<Rec> &m, RowTable<Rec> &table)
{
    Statement s(db.handle(), std::string("SELECT id,") + m.columns + " FROM " + m.table + " ORDER BY id");
    while (s.step()) {
        Rec r = m.read(s);
        r.id = s.integer(0);
        table.load(r);
    }
    table.clean();
}

template <class Rec>
void saveTable(Database &db, const Mapping<Rec> &m, RowTable<Rec> &table)
{
    if (!table.dirty().empty()) {
        std::string marks = "?";
        for (int i = 0; i < m.count; ++i) {
            marks += ",?";
        }
        Statement s(db.handle(),
                    std::string("INSERT OR REPLACE INTO ") + m.table + "(id," + m.columns + ") VALUES(" + marks + ")");
        for (int64_t id : table.dirty()) {
            const Rec *r = table.find(id);
            if (!r) {
                continue;
            }
            s.bind(1, id);
            m.bind(s, *r);
            s.run();
        }
    }
    if (!table.removed().empty()) {
        Statement s(db.handle(), std::string("DELETE FROM ") + m.table + " WHERE id=?");
        for (int64_t id : table.removed()) {
            s.bind(1, id);
            s.run();
        }
    }
    table.clean();
}

// The last path element of "\Hosts\a\b" or of a family path.
std::string leafOf(const std::string &path)
{
    const size_t at = path.rfind('\\');
    return at == std::string::npos ? path : path.substr(at + 1);
}

}  // namespace

void World::load(Database &db)
{
    loadTable(db, kServers, servers);
    loadTable(db, kManaged, managed);
    loadTable(db, kCells, cells);
    loadTable(db, kDiskGroups, diskgroups);
    loadTable(db, kVdisks, vdisks);
    for (const auto &[id, d] : vdisks.rows) {
        if (d.copySource) {
            copying.insert(id);
        }
    }
    loadTable(db, kHosts, hosts);
    loadTable(db, kLuns, luns);
    loadTable(db, kDrGroups, drgroups);
    loadTable(db, kDrMembers, drmembers);
}

void World::save(Database &db)
{
    saveTable(db, kServers, servers);
    saveTable(db, kManaged, managed);
    saveTable(db, kCells, cells);
    saveTable(db, kDiskGroups, diskgroups);
    saveTable(db, kVdisks, vdisks);
    saveTable(db, kHosts, hosts);
    saveTable(db, kLuns, luns);
    saveTable(db, kDrGroups, drgroups);
    saveTable(db, kDrMembers, drmembers);
}

void World::wipe(Database &db)
{
    for (const char *table :
         {"servers", "managed", "cells", "diskgroups", "vdisks", "hosts", "luns", "drgroups", "drmembers", "faults"}) {
        db.exec(std::string("DELETE FROM ") + table);
    }
}

ServerRec *World::serverByHost(const std::string &host)
{
    for (auto &[id, s] : servers.rows) {
        if (iequals(s.host, host)) {
            return &s;
        }
    }
    return nullptr;
}

CellRec *World::cellByName(const std::string &name)
{
    for (auto &[id, c] : cells.rows) {
        if (iequals(c.name, name)) {
            return &c;
        }
    }
    return nullptr;
}

CellRec *World::cellByWwn(const std::string &wwn)
{
    std::string wanted;
    if (!normaliseWwn(wwn, 4, wanted, true)) {
        return nullptr;
    }
    for (auto &[id, c] : cells.rows) {
        if (c.wwn == wanted) {
            return &c;
        }
    }
    return nullptr;
}

std::vector<const CellRec *> World::cellsOf(int64_t server) const
{
    std::vector<const CellRec *> out;
    for (const auto &[id, m] : managed.rows) {
        if (m.server == server) {
            if (const CellRec *c = cells.find(m.cell)) {
                out.push_back(c);
            }
        }
    }
    return out;
}

bool World::manages(int64_t server, int64_t cell) const
{
    for (const auto &[id, m] : managed.rows) {
        if (m.server == server && m.cell == cell) {
            return true;
        }
    }
    return false;
}

std::vector<VdiskRec *> World::vdisksOf(int64_t cell)
{
    std::vector<std::pair<std::string, VdiskRec *>> keyed;
    for (auto &[id, d] : vdisks.rows) {
        if (d.cell == cell) {
            keyed.emplace_back(lower(d.path()), &d);
        }
    }
    std::sort(keyed.begin(), keyed.end(), [](const auto &a, const auto &b) { return a.first < b.first; });
    std::vector<VdiskRec *> out;
    out.reserve(keyed.size());
    for (auto &k : keyed) {
        out.push_back(k.second);
    }
    return out;
}

std::vector<HostRec *> World::hostsOf(int64_t cell)
{
    std::vector<HostRec *> out;
    for (auto &[id, h] : hosts.rows) {
        if (h.cell == cell) {
            out.push_back(&h);
        }
    }
    std::sort(out.begin(), out.end(), [](HostRec *a, HostRec *b) { return lower(a->path) < lower(b->path); });
    return out;
}

std::vector<LunRec *> World::lunsOfDisk(int64_t vdisk)
{
    std::vector<LunRec *> out;
    for (auto &[id, l] : luns.rows) {
        if (l.vdisk == vdisk) {
            out.push_back(&l);
        }
    }
    return out;
}

std::vector<LunRec *> World::lunsOfHost(int64_t host)
{
    std::vector<LunRec *> out;
    for (auto &[id, l] : luns.rows) {
        if (l.host == host) {
            out.push_back(&l);
        }
    }
    return out;
}

std::vector<VdiskRec *> World::snapshotsOf(int64_t vdisk)
{
    std::vector<VdiskRec *> out;
    for (auto &[id, d] : vdisks.rows) {
        if (d.parent == vdisk) {
            out.push_back(&d);
        }
    }
    return out;
}

DiskGroupRec *World::diskGroupByName(int64_t cell, const std::string &name)
{
    const std::string leaf = leafOf(name);
    for (auto &[id, g] : diskgroups.rows) {
        if (g.cell == cell && iequals(g.name, leaf)) {
            return &g;
        }
    }
    return nullptr;
}

DiskGroupRec &World::defaultDiskGroup(int64_t cell)
{
    for (auto &[id, g] : diskgroups.rows) {
        if (g.cell == cell) {
            return g;
        }
    }
    DiskGroupRec g;
    g.cell = cell;
    g.name = "Default Disk Group";
    return diskgroups.insert(g);
}

DrMemberRec *World::drMembershipOf(int64_t vdisk)
{
    for (auto &[id, m] : drmembers.rows) {
        if (m.sourceDisk == vdisk || m.destDisk == vdisk) {
            return &m;
        }
    }
    return nullptr;
}

VdiskRec *World::resolveVdisk(int64_t cell, const std::string &ref, bool &ambiguous)
{
    ambiguous = false;
    if (ref.empty()) {
        return nullptr;
    }
    const std::string full =
        ref[0] == '\\' ? ref : (istartsWith(ref, "Virtual Disks\\") ? "\\" + ref : "\\Virtual Disks\\" + ref);
    VdiskRec *byFamily = nullptr;
    for (auto &[id, d] : vdisks.rows) {
        if (d.cell != cell) {
            continue;
        }
        if (iequals(d.path(), full)) {
            return &d;
        }
        if (d.active() && iequals(d.familyPath(), full)) {
            byFamily = &d;
        }
    }
    if (byFamily || ref.find('\\') != std::string::npos) {
        return byFamily;
    }
    VdiskRec *found = nullptr;
    for (auto &[id, d] : vdisks.rows) {
        if (d.cell != cell) {
            continue;
        }
        const bool fits = d.active() ? iequals(d.family, ref) : iequals(d.leaf, ref);
        if (!fits) {
            continue;
        }
        if (found) {
            ambiguous = true;
            return nullptr;
        }
        found = &d;
    }
    return found;
}

HostRec *World::resolveHost(int64_t cell, const std::string &ref, bool &ambiguous)
{
    ambiguous = false;
    if (ref.empty()) {
        return nullptr;
    }
    const std::string full = ref[0] == '\\' ? ref : (istartsWith(ref, "Hosts\\") ? "\\" + ref : "\\Hosts\\" + ref);
    for (auto &[id, h] : hosts.rows) {
        if (h.cell == cell && iequals(h.path, full)) {
            return &h;
        }
    }
    if (ref.find('\\') != std::string::npos) {
        return nullptr;
    }
    HostRec *found = nullptr;
    for (auto &[id, h] : hosts.rows) {
        if (h.cell != cell || !iequals(leafOf(h.path), ref)) {
            continue;
        }
        if (found) {
            ambiguous = true;
            return nullptr;
        }
        found = &h;
    }
    return found;
}

DrGroupRec *World::resolveDrGroup(int64_t cell, const std::string &ref)
{
    for (auto &[id, g] : drgroups.rows) {
        if (g.sourceCell != cell && g.destCell != cell) {
            continue;
        }
        if (iequals(g.name, ref) || iequals(g.path(), ref) || iequals("Data Replication\\" + g.name, ref)) {
            return &g;
        }
    }
    return nullptr;
}

uint64_t World::allocatedBytes(const VdiskRec &disk)
{
    const uint64_t bytes = disk.allocation == "demand" ? disk.written : disk.blocks * 512;
    if (disk.redundancy == "vraid1") {
        return bytes * 2;
    }
    if (disk.redundancy == "vraid5") {
        return bytes + bytes / 4;
    }
    return bytes;
}

uint64_t World::usedBytes(int64_t cell) const
{
    uint64_t used = 0;
    for (const auto &[id, d] : vdisks.rows) {
        if (d.cell == cell) {
            used += allocatedBytes(d);
        }
    }
    return used;
}

uint64_t World::freeBytes(int64_t cell) const
{
    const CellRec *c = cells.find(cell);
    if (!c) {
        return 0;
    }
    const uint64_t used = usedBytes(cell);
    return used >= c->total ? 0 : c->total - used;
}

bool World::wwlunidInUse(int64_t cell, const std::string &wwlunid, int64_t except) const
{
    for (const auto &[id, d] : vdisks.rows) {
        if (d.cell == cell && id != except && iequals(d.wwlunid, wwlunid)) {
            return true;
        }
    }
    return false;
}

std::string World::formatWwlunid(const CellRec &cell, int64_t serial)
{
    const std::string w = lower(cell.wwn);
    // "5000-1fe1-5000-a9f0": its last two groups make the cell's part of every LUN id.
    const std::string cellPart = w.size() >= 19 ? w.substr(10, 9) : "0000-0000";
    char digits[32];
    std::snprintf(digits, sizeof digits, "%012llx", static_cast<unsigned long long>(serial));
    const std::string s(digits);
    return "6005-08b4-" + cellPart + "-" + s.substr(0, 4) + "-" + s.substr(4, 4) + "-" + s.substr(8, 4) + "-0000";
}

std::string World::newWwlunid(CellRec &cell)
{
    for (;;) {
        ++cell.serial;
        cells.touch(cell.id);
        const std::string id = formatWwlunid(cell, cell.serial);
        if (!wwlunidInUse(cell.id, id, 0)) {
            return id;
        }
    }
}

std::string World::newObjectId(CellRec &cell)
{
    ++cell.serial;
    cells.touch(cell.id);
    std::string digits;
    for (char c : cell.wwn) {
        if (c != '-') {
            digits += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
    }
    char serial[32];
    std::snprintf(serial, sizeof serial, "%016llx", static_cast<unsigned long long>(cell.serial));
    return "0" + digits.substr(0, 15) + std::string(serial) + "00000000";
}

}  // namespace evasim
