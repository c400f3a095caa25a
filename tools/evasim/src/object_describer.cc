#include "object_describer.h"

#include "object_writer.h"
#include "text_util.h"
#include "world.h"

#include <cctype>
#include <ctime>

namespace evasim {

namespace {

std::string dateTime(int64_t when)
{
    const std::time_t t = static_cast<std::time_t>(when);
    std::tm tm{};
    gmtime_r(&t, &tm);
    char buf[64];
    std::strftime(buf, sizeof buf, "%d-%b-%Y %H:%M:%S", &tm);
    return buf;
}

// 40 hexadecimal digits as the real tool groups a hex uid: eight groups of four from the front.
std::string hexUid(const std::string &objectid)
{
    std::string out;
    for (size_t g = 0; g < 8 && g * 4 + 4 <= objectid.size(); ++g) {
        if (g) {
            out += '-';
        }
        out += objectid.substr(g * 4, 4);
    }
    return out;
}

std::string wholeGb(uint64_t bytes)
{
    const uint64_t gb = 1073741824ULL;
    if (bytes % gb == 0) {
        return std::to_string(bytes / gb);
    }
    return gigabytes(bytes);
}

std::string cellObjectId(const CellRec &c)
{
    std::string digits;
    for (char ch : c.wwn) {
        if (ch != '-') {
            digits += static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
        }
    }
    return "08000710b4080560" + digits + "00000000";
}

}  // namespace

ObjectDescriber::ObjectDescriber(World &world) : m_world(world)
{
    for (const auto &[id, l] : world.luns.rows) {
        m_lunsByDisk[l.vdisk].emplace_back(l.host, l.lun);
        m_lunsByHost[l.host].emplace_back(l.vdisk, l.lun);
    }
    for (const auto &[id, d] : world.vdisks.rows) {
        if (d.parent) {
            auto &newest = m_newestChild[d.parent];
            if (id > newest) {
                newest = id;
            }
        }
        if (d.copySource) {
            m_copyTarget[d.copySource] = id;
        }
    }
    for (const auto &[id, m] : world.drmembers.rows) {
        m_drMember[m.sourceDisk] = id;
        m_drMember[m.destDisk] = id;
    }
}

std::string ObjectDescriber::sharing(const VdiskRec &d) const
{
    if (d.copySource) {
        return "snapclone_in_progress";
    }
    if (d.parent) {
        return "snapshot";
    }
    if (m_newestChild.count(d.id) || m_copyTarget.count(d.id)) {
        return "parent";
    }
    return "none";
}

void ObjectDescriber::vdisk(ObjectWriter &w, const VdiskRec &d) const
{
    const CellRec *cell = m_world.cells.find(d.cell);
    const std::string path = d.path();
    const std::string cellName = cell ? cell->name : "";
    const std::string cellWwn = cell ? cell->wwn : "";
    const std::string cellId = cell ? cellObjectId(*cell) : "";

    w.begin(path);
    w.leaf("objectid", d.objectid);
    w.leaf("objectname", path);
    w.leaf("objecttype", d.container ? "container" : "virtualdisk");
    w.leaf("objectwwn", d.wwlunid);
    w.leaf("objecthexuid", hexUid(d.objectid));
    w.leaf("partitionname", d.container ? d.family : d.familyPath());
    w.leaf("uid", d.objectid);
    w.open("parentstoragecellinfo");
    w.leaf("storagecellname", cellName);
    w.leaf("storagecellid", cellId);
    w.leaf("storagecellwwn", cellWwn);
    w.close("parentstoragecellinfo");
    const VdiskRec *parent = d.parent ? m_world.vdisks.find(d.parent) : nullptr;
    w.leaf("objectparentuid", parent ? parent->objectid : cellId);
    w.leaf("objectparenthexuid", parent ? hexUid(parent->objectid) : hexUid(cellId));
    w.leaf("objectparentid", parent ? parent->objectid : cellId);
    w.leaf("comments", d.comments);
    w.leaf("creationdatetime", dateTime(d.created));
    w.leaf("timestampmodify", std::to_string(d.modified));
    w.leaf("familyname", d.family);
    w.leaf("wwlunid", d.wwlunid);
    w.leaf("operationalstate", d.operationalstate);
    w.leaf("operationalstatedetail", d.copySource ? (d.copyStalled ? "copy_stalled" : "copy_in_progress") : "none");
    const uint64_t allocated = World::allocatedBytes(d);
    w.leaf("allocatedcapacity", wholeGb(allocated));
    w.leaf("allocatedcapacityblocks", std::to_string(allocated / 512));
    w.leaf("virtualdisktype", d.container ? "container" : d.origin);
    w.leaf("requestedcapacity", wholeGb(d.blocks * 512));
    w.leaf("requestedcapacityblocks", std::to_string(d.blocks));
    w.leaf("sharingrelationship", sharing(d));
    w.open("sharinginformation");
    const VdiskRec *source = d.copySource ? m_world.vdisks.find(d.copySource) : nullptr;
    const VdiskRec *up = parent ? parent : source;
    w.leaf("parentvdiskhexuid", up ? hexUid(up->objectid) : "n/a");
    w.leaf("parentvdiskid", up ? up->objectid : "n/a");
    w.leaf("parentvdiskname", up ? up->path() : "n/a");
    const auto child = m_newestChild.find(d.id);
    const VdiskRec *down = child != m_newestChild.end() ? m_world.vdisks.find(child->second) : nullptr;
    w.leaf("childvdiskhexuid", down ? hexUid(down->objectid) : "n/a");
    w.leaf("childvdiskid", down ? down->objectid : "n/a");
    w.leaf("childvdiskname", down ? down->path() : "n/a");
    w.close("sharinginformation");
    w.leaf("redundancy", d.redundancy);
    w.leaf("writecacheactual", d.writecache);
    w.leaf("writecache", d.writecache);
    w.leaf("vdisksecondarystate", "none");
    w.leaf("mirrorcache", "mirrored");
    w.leaf("readcache", "on");
    const auto presented = m_lunsByDisk.find(d.id);
    const bool hasLuns = presented != m_lunsByDisk.end() && !presented->second.empty();
    w.leaf("virtualdiskpresented", hasLuns ? "yes" : "no");
    w.open("presentations");
    if (hasLuns) {
        for (const auto &[hostId, lun] : presented->second) {
            const HostRec *h = m_world.hosts.find(hostId);
            w.open("presentation");
            w.leaf("hostname", h ? h->path : "");
            w.leaf("lunnumber", std::to_string(lun));
            w.close("presentation");
        }
    }
    w.close("presentations");
    w.leaf("writeprotect", "no");
    w.leaf("osunitid", "0");
    const DiskGroupRec *g = m_world.diskgroups.find(d.diskgroup);
    w.leaf("diskgroupname", g ? "\\Disk Groups\\" + g->name : "");
    w.leaf("diskgroupid", g ? cellId.substr(0, 16) + "0000000000000000" + std::to_string(10000000 + g->id) : "");
    w.leaf("preferredpath", "no_preference");
    std::string drGroup, drNode, remote;
    const auto member = m_drMember.find(d.id);
    if (member != m_drMember.end()) {
        const DrMemberRec *m = m_world.drmembers.find(member->second);
        const DrGroupRec *grp = m ? m_world.drgroups.find(m->group) : nullptr;
        if (m && grp) {
            const bool isSource = m->sourceDisk == d.id;
            drGroup = grp->path();
            drNode = isSource ? "source" : "destination";
            const VdiskRec *partner = m_world.vdisks.find(isSource ? m->destDisk : m->sourceDisk);
            remote = partner ? partner->path() : "";
        }
    }
    w.leaf("drmgroupname", drGroup);
    w.leaf("drmnode", drNode);
    w.leaf("remotevirtualdiskname", remote);
    w.end();
}

void ObjectDescriber::cell(ObjectWriter &w, const CellRec &c) const
{
    const uint64_t used = m_world.usedBytes(c.id);
    const uint64_t free = used >= c.total ? 0 : c.total - used;
    w.begin(c.name);
    w.leaf("objectid", cellObjectId(c));
    w.leaf("objectname", c.name);
    w.leaf("objecttype", "storagecell");
    w.leaf("objectwwn", c.wwn);
    w.leaf("objecthexuid", hexUid(cellObjectId(c)));
    w.leaf("operationalstate", "good");
    w.leaf("operationalstatedetail", "initialized_ok");
    w.leaf("firmwareversion", c.firmware);
    w.leaf("totalstoragespace", gigabytes(c.total));
    w.leaf("usedstoragespace", gigabytes(used));
    w.leaf("availablestoragespace", gigabytes(free));
    w.leaf("comments", "");
    w.end();
}

void ObjectDescriber::host(ObjectWriter &w, const HostRec &h) const
{
    w.begin(h.path);
    w.leaf("objectid", h.objectid);
    w.leaf("objectname", h.path);
    w.leaf("objecttype", "host");
    const std::string leaf = h.path.substr(h.path.rfind('\\') + 1);
    w.leaf("hostname", leaf);
    w.leaf("operatingsystem", h.os);
    w.open("fcadapterports", "Port_wwns");
    for (const std::string &p : split(h.ports, ',')) {
        if (!p.empty()) {
            w.leaf("portwwn", p, "Port_wwn");
        }
    }
    w.close("fcadapterports");
    w.open("presentations", "Presentations");
    const auto presented = m_lunsByHost.find(h.id);
    if (presented != m_lunsByHost.end()) {
        for (const auto &[diskId, lun] : presented->second) {
            const VdiskRec *d = m_world.vdisks.find(diskId);
            w.open("presentation", "Presentation");
            w.leaf("lunnumber", std::to_string(lun), "Lun");
            w.leaf("virtualdiskname", d ? d->path() : "", "Virtual_disk");
            w.close("presentation");
        }
    }
    w.close("presentations");
    w.end();
}

void ObjectDescriber::diskGroup(ObjectWriter &w, const DiskGroupRec &g) const
{
    const CellRec *c = m_world.cells.find(g.cell);
    w.begin("\\Disk Groups\\" + g.name);
    w.leaf("objectname", "\\Disk Groups\\" + g.name);
    w.leaf("objecttype", "diskgroupfolder");
    w.leaf("storagecellname", c ? c->name : "");
    w.leaf("operationalstate", "good");
    w.end();
}

void ObjectDescriber::drGroup(ObjectWriter &w, const DrGroupRec &g, int64_t cellId) const
{
    const bool atSource = g.sourceCell == cellId;
    const CellRec *here = m_world.cells.find(cellId);
    const CellRec *there = m_world.cells.find(atSource ? g.destCell : g.sourceCell);
    w.begin(g.path());
    w.leaf("objectid", here ? cellObjectId(*here).substr(0, 24) + std::to_string(10000000 + g.id) + "00000000" : "");
    w.leaf("objectname", g.path());
    w.leaf("objecttype", "datareplicationgroup");
    w.leaf("operationalstate", g.operationalstate);
    w.leaf("membercondition", g.membercondition);
    w.leaf("parentstoragecellname", here ? here->name : "");
    w.leaf("drmmode", atSource ? "source" : "destination");
    w.leaf("writemode", g.writemode);
    w.open("members");
    for (const auto &[id, m] : m_world.drmembers.rows) {
        if (m.group != g.id) {
            continue;
        }
        const VdiskRec *local = m_world.vdisks.find(atSource ? m.sourceDisk : m.destDisk);
        const VdiskRec *remote = m_world.vdisks.find(atSource ? m.destDisk : m.sourceDisk);
        w.open("member");
        w.leaf("objectname", local ? local->path() : "");
        w.leaf("remotevirtualdiskname", remote ? remote->path() : "");
        w.close("member");
    }
    w.close("members");
    w.open("links");
    if (g.hasLink) {
        w.open("link");
        w.leaf("scellname", there ? there->name : "");
        w.leaf("scellid", there ? cellObjectId(*there) : "");
        w.leaf("linkstate", g.linkstate);
        w.leaf("suspendstate", g.suspended ? "suspended" : "notsuspended");
        w.close("link");
    }
    w.close("links");
    w.end();
}

}  // namespace evasim
