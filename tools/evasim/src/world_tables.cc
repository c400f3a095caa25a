#include "world_tables.h"

#include "object_describer.h"
#include "rules.h"
#include "settings.h"
#include "text_util.h"
#include "world.h"

#include <algorithm>
#include <cstdio>
#include <tuple>

namespace evasim {

namespace {

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

WorldTables::WorldTables(World &world, const Settings &settings, std::vector<Fault> faults, int64_t onlyCell) :
    m_world(world),
    m_settings(settings),
    m_faults(std::move(faults)),
    m_onlyCell(onlyCell)
{
}

const std::vector<std::string> &WorldTables::kinds()
{
    static const std::vector<std::string> list{"servers",       "cells",    "diskgroups", "disks",   "hosts",
                                               "presentations", "drgroups", "faults",     "settings"};
    return list;
}

cliutil::Table WorldTables::table(const std::string &kind) const
{
    if (kind == "servers") {
        return servers();
    }
    if (kind == "cells") {
        return cells();
    }
    if (kind == "diskgroups") {
        return diskGroups();
    }
    if (kind == "disks") {
        return disks();
    }
    if (kind == "hosts") {
        return hosts();
    }
    if (kind == "presentations") {
        return presentations();
    }
    if (kind == "drgroups") {
        return drGroups();
    }
    if (kind == "faults") {
        return faults();
    }
    if (kind == "rules") {
        return rules();
    }
    return settings();
}

std::string WorldTables::cellName(int64_t cell) const
{
    const CellRec *c = m_world.cells.find(cell);
    return c ? c->name : std::string("?");
}

cliutil::Table WorldTables::servers() const
{
    cliutil::Table t({"host", "user", "password", "reachable", "cells"}, "Command View servers");
    for (const auto &[id, s] : m_world.servers.rows) {
        std::vector<std::string> names;
        for (const CellRec *c : m_world.cellsOf(id)) {
            names.push_back(c->name);
        }
        t.addRow({s.host, s.user, s.password, s.reachable ? "yes" : "no", join(names, ",")});
    }
    return t;
}

cliutil::Table WorldTables::cells() const
{
    cliutil::Table t({"name", "wwn", "firmware", "total", "used", "free", "disks", "servers"}, "Cells");
    for (const auto &[id, c] : m_world.cells.rows) {
        if (!inCell(id)) {
            continue;
        }
        size_t disks = 0;
        for (const auto &[did, d] : m_world.vdisks.rows) {
            disks += d.cell == id;
        }
        std::vector<std::string> servers;
        for (const auto &[mid, m] : m_world.managed.rows) {
            if (m.cell == id) {
                if (const ServerRec *s = m_world.servers.find(m.server)) {
                    servers.push_back(s->host);
                }
            }
        }
        t.addRow({c.name, c.wwn, c.firmware, gigabytes(c.total) + " GB", gigabytes(m_world.usedBytes(id)) + " GB",
                  gigabytes(m_world.freeBytes(id)) + " GB", std::to_string(disks), join(servers, ",")});
    }
    return t;
}

cliutil::Table WorldTables::diskGroups() const
{
    cliutil::Table t({"cell", "name"}, "Disk groups");
    for (const auto &[id, g] : m_world.diskgroups.rows) {
        if (inCell(g.cell)) {
            t.addRow({cellName(g.cell), g.name});
        }
    }
    return t;
}

std::string WorldTables::diskType(const VdiskRec &d) const
{
    return d.container  ? "container"
           : d.active() ? (d.origin == "snapclone" ? "snapclone" : "active")
                        : (d.allocation == "demand" ? "vsnap" : "snapshot");
}

cliutil::Table WorldTables::familyTree(const std::string &family, std::string &error) const
{
    cliutil::Table t({"cell", "disk", "type", "size", "sharing", "copy", "presentations"}, "Family " + family);
    const ObjectDescriber describe(m_world);
    std::set<int64_t> shown;
    std::vector<const VdiskRec *> roots;
    for (const auto &[cid, c] : m_world.cells.rows) {
        if (!inCell(cid)) {
            continue;
        }
        bool ambiguous = false;
        const VdiskRec *named =
            family.find('\\') != std::string::npos ? m_world.resolveVdisk(cid, family, ambiguous) : nullptr;
        for (const VdiskRec *d : m_world.vdisksOf(cid)) {
            const bool fits =
                named ? d->id == named->id || (d->id == named->parent) : d->active() && iequals(d->family, family);
            if (fits && d->active()) {
                roots.push_back(d);
            }
        }
    }
    if (roots.empty()) {
        error = "no family '" + family + "'";
        return t;
    }
    for (const VdiskRec *root : roots) {
        // Start at the oldest disk the family was copied from, so its origin shows too.
        const VdiskRec *top = root;
        std::set<int64_t> seen{top->id};
        while (const VdiskRec *from = m_world.vdisks.find(top->clonedFrom)) {
            if (!seen.insert(from->id).second) {
                break;
            }
            top = from;
        }
        if (!shown.count(top->id)) {
            branch(t, describe, *top, "", 0, shown);
        }
    }
    return t;
}

void WorldTables::branch(cliutil::Table &t, const ObjectDescriber &describe, const VdiskRec &d,
                         const std::string &relation, int depth, std::set<int64_t> &shown) const
{
    shown.insert(d.id);
    std::string copy;
    if (d.copySource) {
        copy = std::string(d.copyKind == "restore" ? "restore" : "copy") + (d.copyStalled ? " stalled" : " running");
        if (!d.copyStalled && d.copyMode == "reads") {
            copy += ", " + std::to_string(d.copyReads) + " reads left";
        } else if (!d.copyStalled) {
            char left[32];
            std::snprintf(left, sizeof left, ", %.0f s left", std::max(0.0, d.copyEnd - m_settings.now()));
            copy += left;
        }
    } else if (d.operationalstate != "good") {
        copy = d.operationalstate;
    }
    const std::string indent = depth ? std::string(static_cast<size_t>(depth - 1) * 3, ' ') + "+- " : "";
    t.addRow({cellName(d.cell), indent + (relation.empty() ? "" : relation + " ") + d.path(), diskType(d),
              humanSize(d.blocks * 512), describe.sharing(d), copy, presentationsOf(m_world, d.id)});
    std::vector<const VdiskRec *> below;
    for (const auto &[id, o] : m_world.vdisks.rows) {
        if (!shown.count(id) && (o.parent == d.id || o.clonedFrom == d.id)) {
            below.push_back(&o);
        }
    }
    for (const VdiskRec *o : below) {
        if (!shown.count(o->id)) {
            branch(t, describe, *o, o->parent == d.id ? "" : "copy:", depth + 1, shown);
        }
    }
}

cliutil::Table WorldTables::disks() const
{
    ObjectDescriber describe(m_world);
    cliutil::Table t(
        {"cell", "path", "type", "size", "wwlunid", "sharing", "parent", "presentations", "drgroup", "writecache"},
        "Virtual disks");
    for (const auto &[cid, c] : m_world.cells.rows) {
        if (!inCell(cid)) {
            continue;
        }
        for (const VdiskRec *d : m_world.vdisksOf(cid)) {
            const std::string type = diskType(*d);
            const VdiskRec *parent = m_world.vdisks.find(d->parent ? d->parent : d->copySource);
            const DrMemberRec *m = m_world.drMembershipOf(d->id);
            const DrGroupRec *g = m ? m_world.drgroups.find(m->group) : nullptr;
            t.addRow({c.name, d->path(), type, humanSize(d->blocks * 512), d->wwlunid, describe.sharing(*d),
                      parent ? parent->path() : "", presentationsOf(m_world, d->id), g ? g->name : "", d->writecache});
        }
    }
    return t;
}

cliutil::Table WorldTables::hosts() const
{
    cliutil::Table t({"cell", "path", "ports", "os"}, "Hosts");
    for (const auto &[cid, c] : m_world.cells.rows) {
        if (!inCell(cid)) {
            continue;
        }
        for (const HostRec *h : m_world.hostsOf(cid)) {
            t.addRow({c.name, h->path, h->ports, h->os});
        }
    }
    return t;
}

cliutil::Table WorldTables::presentations() const
{
    cliutil::Table t({"cell", "host", "lun", "disk"}, "Presentations");
    std::vector<std::tuple<std::string, std::string, int64_t, std::string>> rows;
    for (const auto &[id, l] : m_world.luns.rows) {
        const HostRec *h = m_world.hosts.find(l.host);
        const VdiskRec *d = m_world.vdisks.find(l.vdisk);
        if (h && d && inCell(h->cell)) {
            rows.emplace_back(cellName(h->cell), h->path, l.lun, d->path());
        }
    }
    std::sort(rows.begin(), rows.end());
    for (const auto &[cell, host, lun, disk] : rows) {
        t.addRow({cell, host, std::to_string(lun), disk});
    }
    return t;
}

cliutil::Table WorldTables::drGroups() const
{
    cliutil::Table t({"name", "source", "destination", "members", "writemode", "operationalstate", "membercondition",
                      "linkstate", "suspended"},
                     "DR groups");
    for (const auto &[id, g] : m_world.drgroups.rows) {
        if (!inCell(g.sourceCell) && !inCell(g.destCell)) {
            continue;
        }
        std::vector<std::string> members;
        for (const auto &[mid, m] : m_world.drmembers.rows) {
            if (m.group != id) {
                continue;
            }
            const VdiskRec *s = m_world.vdisks.find(m.sourceDisk);
            const VdiskRec *d = m_world.vdisks.find(m.destDisk);
            members.push_back((s ? s->path() : "?") + " => " + (d ? d->path() : "?"));
        }
        t.addRow({g.name, cellName(g.sourceCell), cellName(g.destCell), join(members, "; "), g.writemode,
                  g.operationalstate, g.membercondition, g.linkstate, g.suspended ? "yes" : "no"});
    }
    return t;
}

cliutil::Table WorldTables::faults() const
{
    cliutil::Table t({"id", "kind", "remaining", "effect"}, "Armed faults");
    for (const Fault &f : m_faults) {
        t.addRow({std::to_string(f.id), f.kind, std::to_string(f.remaining), f.describe()});
    }
    return t;
}

cliutil::Table WorldTables::rules() const
{
    cliutil::Table t({"rule", "commands", "refuses", "error", "basis", "state"}, "The array's rules");
    for (const Rule &r : Rules::all()) {
        t.addRow({r.name, r.commands, r.refuses, std::string("Error: ") + r.error,
                  r.assumption ? "assumption" : "known", m_settings.ruleOn(r.name) ? "on" : "off"});
    }
    return t;
}

cliutil::Table WorldTables::settings() const
{
    cliutil::Table t({"key", "value"}, "Settings");
    for (const Settings::Key &k : Settings::keys()) {
        t.addRow({k.name, m_settings.get(k.name)});
    }
    return t;
}

}  // namespace evasim
