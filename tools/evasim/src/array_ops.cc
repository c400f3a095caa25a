#include "array_ops.h"

#include "settings.h"
#include "text_util.h"
#include "world.h"

#include <set>

namespace evasim {

namespace {

constexpr long long kHighestLun = 255;

std::string normaliseRedundancy(const std::string &text)
{
    const std::string r = lower(trim(text));
    if (r == "vraid0" || r == "vraid1" || r == "vraid5") {
        return r;
    }
    return {};
}

}  // namespace

ArrayOps::ArrayOps(World &world, const Settings &settings) : m_world(world), m_settings(settings) {}

int64_t ArrayOps::now() const
{
    return static_cast<int64_t>(m_settings.now());
}

bool ArrayOps::on(const char *rule) const
{
    return m_settings.ruleOn(rule);
}

bool ArrayOps::validName(const std::string &name)
{
    if (name.empty() || name.size() > 255) {
        return false;
    }
    for (char c : name) {
        if (c == '\\' || c == '"' || static_cast<unsigned char>(c) < 32) {
            return false;
        }
    }
    return !iequals(name, "ACTIVE");
}

bool ArrayOps::splitFamilyPath(const std::string &path, std::string &folder, std::string &family)
{
    std::string p = trim(path);
    if (p.empty()) {
        return false;
    }
    if (p[0] != '\\') {
        p = istartsWith(p, "Virtual Disks\\") ? "\\" + p : "\\Virtual Disks\\" + p;
    }
    if (!istartsWith(p, "\\Virtual Disks\\")) {
        return false;
    }
    if (p.size() > 7 && iequals(p.substr(p.size() - 7), "\\ACTIVE")) {
        p.resize(p.size() - 7);
    }
    const size_t at = p.rfind('\\');
    folder = p.substr(0, at);
    family = p.substr(at + 1);
    folder.replace(0, 14, "\\Virtual Disks");
    for (const std::string &part : split(folder.substr(1), '\\')) {
        if (part.empty()) {
            return false;
        }
    }
    return validName(family);
}

bool ArrayOps::familyTaken(int64_t cell, const std::string &folder, const std::string &family, int64_t except) const
{
    for (const auto &[id, d] : m_world.vdisks.rows) {
        if (d.cell != cell || !d.active() || id == except) {
            continue;
        }
        if (iequals(d.folder, folder) && iequals(d.family, family)) {
            return true;
        }
    }
    return false;
}

const VdiskRec *ArrayOps::copyFrom(int64_t disk) const
{
    for (const auto &[id, d] : m_world.vdisks.rows) {
        if (d.copySource == disk) {
            return &d;
        }
    }
    return nullptr;
}

std::string ArrayOps::copiesLeft(const VdiskRec &source) const
{
    const long long limit = m_settings.integer("copies_per_source");
    if (limit <= 0 || !on("copies-per-source")) {
        return {};
    }
    long long held = 0;
    for (const auto &[id, d] : m_world.vdisks.rows) {
        held += d.parent == source.id || d.copySource == source.id;
    }
    if (held < limit) {
        return {};
    }
    return "The Vdisk " + source.path() + " already has the most snapshots and copies allowed (" +
           std::to_string(limit) + ")";
}

void ArrayOps::startCopy(VdiskRec &target, const VdiskRec &source, const std::string &kind)
{
    if (target.id) {
        m_world.copying.insert(target.id);
    }
    target.clonedFrom = source.id;
    target.copySource = source.id;
    target.copyKind = kind;
    target.copyStalled = false;
    target.copyMode = m_settings.get("copy_progress");
    // With copy_unit_gb the copy takes its time once per unit of its capacity, begun units counted.
    const uint64_t unit = static_cast<uint64_t>(m_settings.integer("copy_unit_gb")) << 30;
    const uint64_t bytes = target.blocks * 512;
    const long long units = unit ? static_cast<long long>((bytes + unit - 1) / unit) : 1;
    if (target.copyMode == "seconds") {
        const double seconds = m_settings.seconds(kind + "_seconds") * static_cast<double>(units);
        target.copyReads = 0;
        target.copyEnd = m_settings.now() + seconds;
        if (seconds <= 0) {
            finishCopy(target);
        }
    } else {
        target.copyReads = m_settings.integer(kind + "_reads") * units;
        target.copyEnd = 0;
        if (target.copyReads <= 0) {
            finishCopy(target);
        }
    }
}

void ArrayOps::finishCopy(VdiskRec &target)
{
    target.copySource = 0;
    target.copyKind.clear();
    target.copyStalled = false;
    target.copyReads = 0;
    target.copyEnd = 0;
    if (target.id) {
        m_world.vdisks.touch(target.id);
    }
}

void ArrayOps::settleCopies()
{
    const double now = m_settings.now();
    for (int64_t id : std::vector<int64_t>(m_world.copying.begin(), m_world.copying.end())) {
        VdiskRec *d = m_world.vdisks.find(id);
        if (!d || !d->copySource) {
            m_world.copying.erase(id);
        } else if (!d->copyStalled && d->copyMode == "seconds" && now >= d->copyEnd) {
            finishCopy(*d);
        }
    }
}

std::string ArrayOps::reserveSpace(int64_t cell, const VdiskRec &disk, uint64_t alreadyHeld) const
{
    if (World::allocatedBytes(disk) > m_world.freeBytes(cell) + alreadyHeld) {
        return "Not enough free space in the disk group (" + humanSize(World::allocatedBytes(disk) - alreadyHeld) +
               " needed, " + humanSize(m_world.freeBytes(cell)) + " free)";
    }
    return {};
}

VdiskRec *ArrayOps::findDisk(int64_t cell, const std::string &ref, std::string &error)
{
    bool ambiguous = false;
    VdiskRec *d = m_world.resolveVdisk(cell, ref, ambiguous);
    if (!d) {
        error = ambiguous ? ref + " is ambiguous; give the full path" : ref + " not found";
    }
    return d;
}

std::string ArrayOps::addVdisk(int64_t cell, const std::string &path, uint64_t bytes, const std::string &redundancy,
                               const std::string &diskGroup, const std::string &wwlunid, int64_t *created)
{
    CellRec *c = m_world.cells.find(cell);
    if (!c) {
        return "no such cell";
    }
    VdiskRec d;
    d.cell = cell;
    if (!splitFamilyPath(path, d.folder, d.family)) {
        return "Invalid Vdisk name " + path;
    }
    if (familyTaken(cell, d.folder, d.family, 0)) {
        return d.familyPath() + " already exists";
    }
    if (bytes == 0 || bytes % 512) {
        return "Invalid size";
    }
    d.blocks = bytes / 512;
    d.leaf = "ACTIVE";
    if (!redundancy.empty()) {
        d.redundancy = normaliseRedundancy(redundancy);
        if (d.redundancy.empty()) {
            return "Invalid redundancy " + redundancy;
        }
    }
    if (!wwlunid.empty()) {
        if (!normaliseWwn(wwlunid, 8, d.wwlunid, false)) {
            return "Invalid world wide LUN name " + wwlunid;
        }
        if (m_world.wwlunidInUse(cell, d.wwlunid, 0)) {
            return "World wide LUN name " + d.wwlunid + " is already in use";
        }
    }
    if (!diskGroup.empty()) {
        DiskGroupRec *g = m_world.diskGroupByName(cell, diskGroup);
        if (!g) {
            return diskGroup + " not found";
        }
        d.diskgroup = g->id;
    }
    const std::string space = reserveSpace(cell, d);
    if (!space.empty()) {
        return space;
    }
    if (!d.diskgroup) {
        d.diskgroup = m_world.defaultDiskGroup(cell).id;
    }
    if (d.wwlunid.empty()) {
        d.wwlunid = m_world.newWwlunid(*c);
    }
    d.objectid = m_world.newObjectId(*c);
    d.created = d.modified = now();
    VdiskRec &made = m_world.vdisks.insert(d);
    if (created) {
        *created = made.id;
    }
    return {};
}

std::string ArrayOps::addSnapshot(int64_t cell, const std::string &name, const std::string &source,
                                  const std::string &allocation, const std::string &redundancy,
                                  const std::string &wwlunid, int64_t *created)
{
    std::string error;
    VdiskRec *src = findDisk(cell, source, error);
    if (!src) {
        return error;
    }
    if (!src->active()) {
        return "Cannot create a snapshot of a snapshot (" + src->path() + ")";
    }
    if (src->container) {
        return "Cannot create a snapshot of a container (" + src->path() + ")";
    }
    const std::string limit = copiesLeft(*src);
    if (!limit.empty()) {
        return limit;
    }
    if (!validName(name)) {
        return "Invalid snapshot name " + name;
    }
    for (const auto &[id, d] : m_world.vdisks.rows) {
        if (d.cell == cell && iequals(d.folder, src->folder) && iequals(d.family, src->family) &&
            iequals(d.leaf, name)) {
            return d.path() + " already exists";
        }
    }
    VdiskRec d;
    d.cell = cell;
    d.folder = src->folder;
    d.family = src->family;
    d.leaf = name;
    d.blocks = src->blocks;
    d.diskgroup = src->diskgroup;
    d.redundancy = src->redundancy;
    d.parent = src->id;
    d.origin = "snapshot";
    d.writecache = src->writecache;
    const std::string a = lower(trim(allocation));
    if (a.empty() || a == "demand") {
        d.allocation = "demand";
    } else if (a == "fully") {
        d.allocation = "fully";
    } else {
        return "Invalid allocation policy " + allocation;
    }
    if (!redundancy.empty()) {
        d.redundancy = normaliseRedundancy(redundancy);
        if (d.redundancy.empty()) {
            return "Invalid redundancy " + redundancy;
        }
    }
    if (!wwlunid.empty()) {
        if (!normaliseWwn(wwlunid, 8, d.wwlunid, false)) {
            return "Invalid world wide LUN name " + wwlunid;
        }
        if (m_world.wwlunidInUse(cell, d.wwlunid, 0)) {
            return "World wide LUN name " + d.wwlunid + " is already in use";
        }
    }
    const std::string space = reserveSpace(cell, d);
    if (!space.empty()) {
        return space;
    }
    CellRec *c = m_world.cells.find(cell);
    if (d.wwlunid.empty()) {
        d.wwlunid = m_world.newWwlunid(*c);
    }
    d.objectid = m_world.newObjectId(*c);
    d.created = d.modified = now();
    VdiskRec &made = m_world.vdisks.insert(d);
    if (created) {
        *created = made.id;
    }
    return {};
}

std::string ArrayOps::addCopy(int64_t cell, const std::string &name, const std::string &source,
                              const std::string &container, const std::string &redundancy, int64_t *created)
{
    std::string error;
    VdiskRec *src = findDisk(cell, source, error);
    if (!src) {
        return error;
    }
    if (!src->active() && on("copy-of-snapshot")) {
        return "Cannot create a copy of a snapshot (" + src->path() + ")";
    }
    if (src->container) {
        return "Cannot create a copy of a container (" + src->path() + ")";
    }
    if (!m_world.snapshotsOf(src->id).empty()) {
        return "Cannot create a snapclone of a Vdisk that has snapshots (" + src->path() + ")";
    }
    if (src->copySource && on("copy-of-unfinished-copy")) {
        return "Cannot copy a Vdisk while it is being copied into (" + src->path() + ")";
    }
    if (const VdiskRec *running = copyFrom(src->id); running && on("second-copy")) {
        return "Cannot create a copy of a Vdisk while its copy " + running->path() + " is in progress";
    }
    const std::string limit = copiesLeft(*src);
    if (!limit.empty()) {
        return limit;
    }
    if (const DrMemberRec *m = m_world.drMembershipOf(src->id);
        m && m->destDisk == src->id && on("dr-destination-not-suspended")) {
        const DrGroupRec *g = m_world.drgroups.find(m->group);
        if (g && !g->suspended) {
            return "Cannot copy " + src->path() + ": DR group " + g->path() + " is not suspended";
        }
    }
    std::string red;
    if (!redundancy.empty()) {
        red = normaliseRedundancy(redundancy);
        if (red.empty()) {
            return "Invalid redundancy " + redundancy;
        }
    }

    if (!container.empty()) {
        VdiskRec *target = findDisk(cell, container, error);
        if (!target) {
            return error;
        }
        if (!target->container) {
            return target->path() + " is not a container";
        }
        if (target->blocks != src->blocks) {
            return "The capacity of container " + target->path() + " does not match the source Vdisk";
        }
        if (src->writecache == "writeback" && on("container-source-writeback")) {
            return "Cannot copy into a container while the source Vdisk " + src->path() + " is in write-back mode";
        }
        if (!validName(name)) {
            return "Invalid Vdisk name " + name;
        }
        if (familyTaken(cell, target->folder, name, target->id)) {
            return target->folder + "\\" + name + " already exists";
        }
        target->container = false;
        target->family = name;
        target->origin = "snapclone";
        startCopy(*target, *src, "restore");
        m_world.copying.insert(target->id);
        target->modified = now();
        m_world.vdisks.touch(target->id);
        if (created) {
            *created = target->id;
        }
        return {};
    }

    VdiskRec d;
    d.cell = cell;
    if (name.find('\\') != std::string::npos) {
        if (!splitFamilyPath(name, d.folder, d.family)) {
            return "Invalid Vdisk name " + name;
        }
    } else {
        if (!validName(name)) {
            return "Invalid Vdisk name " + name;
        }
        d.folder = src->folder;
        d.family = name;
    }
    if (familyTaken(cell, d.folder, d.family, 0)) {
        return d.familyPath() + " already exists";
    }
    d.leaf = "ACTIVE";
    d.blocks = src->blocks;
    d.diskgroup = src->diskgroup;
    d.redundancy = red.empty() ? src->redundancy : red;
    d.origin = "snapclone";
    d.writecache = src->writecache;
    startCopy(d, *src, "snapclone");
    const std::string space = reserveSpace(cell, d);
    if (!space.empty()) {
        return space;
    }
    CellRec *c = m_world.cells.find(cell);
    d.wwlunid = m_world.newWwlunid(*c);
    d.objectid = m_world.newObjectId(*c);
    d.created = d.modified = now();
    VdiskRec &made = m_world.vdisks.insert(d);
    m_world.copying.insert(made.id);
    if (created) {
        *created = made.id;
    }
    return {};
}

std::string ArrayOps::changeIntoContainer(int64_t cell, const std::string &ref)
{
    std::string error;
    VdiskRec *d = findDisk(cell, ref, error);
    if (!d) {
        return error;
    }
    if (d->container) {
        return d->path() + " is already a container";
    }
    if (!d->active()) {
        return "Cannot change a snapshot into a container (" + d->path() + ")";
    }
    if (!m_world.lunsOfDisk(d->id).empty()) {
        return "Cannot change a presented Vdisk into a container (" + d->path() + ")";
    }
    if (!m_world.snapshotsOf(d->id).empty()) {
        return "Cannot change a Vdisk with snapshots into a container (" + d->path() + ")";
    }
    if (m_world.drMembershipOf(d->id) && on("container-dr-member")) {
        return "Cannot change a DR group member into a container (" + d->path() + ")";
    }
    if ((d->copySource || copyFrom(d->id)) && on("container-copy-running")) {
        return "Cannot change a Vdisk into a container while a copy runs (" + d->path() + ")";
    }
    d->container = true;
    d->allocation = "fully";
    d->modified = now();
    m_world.vdisks.touch(d->id);
    return {};
}

std::string ArrayOps::deleteVdisk(int64_t cell, const std::string &ref)
{
    std::string error;
    VdiskRec *d = findDisk(cell, ref, error);
    if (!d) {
        return error;
    }
    if (!m_world.lunsOfDisk(d->id).empty()) {
        return "Cannot delete Vdisks when LUNs are still present.";
    }
    if (!m_world.snapshotsOf(d->id).empty()) {
        return "Cannot delete Vdisks when snapshots are still present.";
    }
    if (m_world.drMembershipOf(d->id)) {
        return "Cannot delete a Vdisk that is a member of a DR group.";
    }
    if (copyFrom(d->id) && on("delete-copy-source")) {
        return "Cannot delete a Vdisk while it is being copied.";
    }
    m_world.vdisks.erase(d->id);
    return {};
}

std::string ArrayOps::setVdisk(int64_t cell, const std::string &ref, const VdiskChange &change)
{
    std::string error;
    VdiskRec *d = findDisk(cell, ref, error);
    if (!d) {
        return error;
    }
    std::string wwlunid, writecache;
    if (change.hasName) {
        if (!validName(change.name)) {
            return "Invalid Vdisk name " + change.name;
        }
        if (d->active()) {
            if (familyTaken(cell, d->folder, change.name, d->id)) {
                return d->folder + "\\" + change.name + " already exists";
            }
        } else {
            for (const auto &[id, o] : m_world.vdisks.rows) {
                if (id != d->id && o.cell == cell && iequals(o.folder, d->folder) && iequals(o.family, d->family) &&
                    iequals(o.leaf, change.name)) {
                    return o.path() + " already exists";
                }
            }
        }
    }
    if (change.hasWwlunid) {
        if (!normaliseWwn(change.wwlunid, 8, wwlunid, false)) {
            return "Invalid world wide LUN name " + change.wwlunid;
        }
        if (m_world.wwlunidInUse(cell, wwlunid, d->id)) {
            return "World wide LUN name " + wwlunid + " is already in use";
        }
    }
    if (change.hasWritecache) {
        writecache = lower(change.writecache);
        if (writecache != "writethrough" && writecache != "writeback") {
            return "Invalid write cache policy " + change.writecache;
        }
    }
    if (change.container) {
        const std::string refused = changeIntoContainer(cell, d->path());
        if (!refused.empty()) {
            return refused;
        }
    }
    if (change.hasName) {
        if (d->active()) {
            const std::string oldFamily = d->family;
            for (auto &[id, o] : m_world.vdisks.rows) {
                if (o.cell == cell && iequals(o.folder, d->folder) && o.family == oldFamily) {
                    o.family = change.name;
                    m_world.vdisks.touch(id);
                }
            }
        } else {
            d->leaf = change.name;
        }
    }
    if (change.hasWwlunid) {
        d->wwlunid = wwlunid;
    }
    if (change.hasWritecache) {
        d->writecache = writecache;
    }
    if (change.hasComment) {
        d->comments = change.comment;
    }
    d->modified = now();
    m_world.vdisks.touch(d->id);
    return {};
}

std::string ArrayOps::addLun(int64_t cell, long long lun, const std::string &hostRef, const std::string &diskRef,
                             int64_t *chosen)
{
    if (lun < 0 || lun > kHighestLun) {
        return "Invalid LUN " + std::to_string(lun) + "; LUNs are 1 to 255, 0 lets the array choose";
    }
    bool ambiguous = false;
    HostRec *h = m_world.resolveHost(cell, hostRef, ambiguous);
    if (!h) {
        return ambiguous ? hostRef + " is ambiguous; give the full path" : hostRef + " not found";
    }
    std::string error;
    VdiskRec *d = findDisk(cell, diskRef, error);
    if (!d) {
        return error;
    }
    if (d->container) {
        return "Cannot present a container (" + d->path() + ")";
    }
    std::set<int64_t> used;
    for (const LunRec *l : m_world.lunsOfHost(h->id)) {
        if (l->vdisk == d->id) {
            return d->path() + " is already presented to " + h->path + " as LUN " + std::to_string(l->lun);
        }
        used.insert(l->lun);
    }
    if (lun == 0) {
        for (long long n = 1; n <= kHighestLun && !lun; ++n) {
            if (!used.count(n)) {
                lun = n;
            }
        }
        if (!lun) {
            return "No free LUN left on host " + h->path;
        }
    } else if (used.count(lun)) {
        return "LUN " + std::to_string(lun) + " is already in use on host " + h->path;
    }
    LunRec l;
    l.vdisk = d->id;
    l.host = h->id;
    l.lun = lun;
    m_world.luns.insert(l);
    if (chosen) {
        *chosen = lun;
    }
    return {};
}

std::string ArrayOps::deleteLun(int64_t cell, const std::string &hostAndLun)
{
    const size_t at = hostAndLun.rfind('\\');
    long long lun = 0;
    if (at == std::string::npos || !parseInt(hostAndLun.substr(at + 1), lun)) {
        return hostAndLun + " not found";
    }
    bool ambiguous = false;
    HostRec *h = m_world.resolveHost(cell, hostAndLun.substr(0, at), ambiguous);
    if (!h) {
        return hostAndLun + " not found";
    }
    for (LunRec *l : m_world.lunsOfHost(h->id)) {
        if (l->lun == lun) {
            m_world.luns.erase(l->id);
            return {};
        }
    }
    return hostAndLun + " not found";
}

std::string ArrayOps::addHost(int64_t cell, const std::string &path, const std::vector<std::string> &ports,
                              const std::string &os)
{
    std::string p = trim(path);
    if (p.empty()) {
        return "Invalid host name";
    }
    if (p[0] != '\\') {
        p = istartsWith(p, "Hosts\\") ? "\\" + p : "\\Hosts\\" + p;
    }
    if (!istartsWith(p, "\\Hosts\\")) {
        return "Invalid host path " + path;
    }
    p.replace(0, 7, "\\Hosts\\");
    for (const std::string &part : split(p.substr(7), '\\')) {
        if (part.empty() || !validName(part)) {
            return "Invalid host path " + path;
        }
    }
    for (const auto &[id, h] : m_world.hosts.rows) {
        if (h.cell == cell && iequals(h.path, p)) {
            return p + " already exists";
        }
    }
    std::vector<std::string> wwns;
    for (const std::string &port : ports) {
        std::string w;
        if (!normaliseWwn(port, 4, w, true)) {
            return "Invalid port world wide name " + port;
        }
        wwns.push_back(w);
    }
    CellRec *c = m_world.cells.find(cell);
    if (!c) {
        return "no such cell";
    }
    HostRec h;
    h.cell = cell;
    h.path = p;
    h.ports = join(wwns, ",");
    if (!os.empty()) {
        h.os = os;
    }
    h.objectid = m_world.newObjectId(*c);
    m_world.hosts.insert(h);
    return {};
}

std::string ArrayOps::setDrGroup(int64_t cell, const std::string &ref, bool suspend)
{
    DrGroupRec *g = m_world.resolveDrGroup(cell, ref);
    if (!g) {
        return ref + " not found";
    }
    g->suspended = suspend;
    m_world.drgroups.touch(g->id);
    return {};
}

void ArrayOps::observeCopies(const std::vector<const VdiskRec *> &disks)
{
    if (m_world.copying.empty()) {
        return;
    }
    std::set<int64_t> seen;
    for (const VdiskRec *d : disks) {
        seen.insert(d->id);
    }
    for (int64_t id : std::vector<int64_t>(m_world.copying.begin(), m_world.copying.end())) {
        VdiskRec *t = m_world.vdisks.find(id);
        if (!t || !t->copySource) {
            m_world.copying.erase(id);
            continue;
        }
        if ((!seen.count(id) && !seen.count(t->copySource)) || t->copyStalled || t->copyMode != "reads") {
            continue;
        }
        if (t->copyReads > 0) {
            --t->copyReads;
            m_world.vdisks.touch(id);
        } else {
            finishCopy(*t);
        }
    }
}

}  // namespace evasim
