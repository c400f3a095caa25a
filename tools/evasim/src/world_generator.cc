#include "world_generator.h"

#include "world.h"

#include <cstdio>
#include <ctime>

namespace evasim {

namespace {

std::string numbered(const char *format, long long n)
{
    char buf[64];
    std::snprintf(buf, sizeof buf, format, n);
    return buf;
}

}  // namespace

std::string WorldGenerator::check(const Options &o)
{
    if (o.servers < 1 || o.servers > 100) {
        return "--servers must be 1 to 100";
    }
    if (o.cells < 1 || o.cells > 99) {
        return "--cells must be 1 to 99";
    }
    if (o.disks < 0 || o.disks > 1000000) {
        return "--disks must be 0 to 1000000";
    }
    if (o.hosts < 0 || o.hosts > 10000) {
        return "--hosts must be 0 to 10000";
    }
    if (o.snapshots < 0 || o.snapshots > o.disks) {
        return "--snapshots must be 0 to the number of disks";
    }
    if (o.presented < 0 || o.presented > o.disks) {
        return "--presented must be 0 to the number of disks";
    }
    if (o.presented > 0 && o.hosts == 0) {
        return "--presented needs at least one host";
    }
    if (o.presented > o.hosts * 255) {
        return "--presented allows at most 255 disks per host";
    }
    if (o.folders < 1 || o.folders > 10000) {
        return "--folders must be 1 to 10000";
    }
    if (o.sizeGb < 1 || o.sizeGb > 65536) {
        return "--size must be 1 to 65536 (GB)";
    }
    return {};
}

void WorldGenerator::build(World &world, const Options &o)
{
    const int64_t now = static_cast<int64_t>(std::time(nullptr));
    std::vector<int64_t> serverIds;
    for (long long s = 1; s <= o.servers; ++s) {
        ServerRec r;
        r.host = numbered("cv%lld", s);
        r.user = "evasim";
        r.password = "evasim";
        serverIds.push_back(world.servers.insert(r).id);
    }
    const uint64_t diskBytes = static_cast<uint64_t>(o.sizeGb) << 30;
    for (long long c = 1; c <= o.cells; ++c) {
        CellRec cell;
        cell.name = numbered("EVA%02lld", c);
        cell.wwn = numbered("5000-1FE1-5000-%04llX", 0xA000 + c);
        cell.firmware = "6220";
        // Room for every disk in vraid5 and its snapshots, and half as much again.
        const uint64_t need = static_cast<uint64_t>(o.disks + o.snapshots) * (diskBytes + diskBytes / 4);
        cell.total = need + need / 2 + (uint64_t(1024) << 30);
        CellRec &made = world.cells.insert(cell);
        for (int64_t s : serverIds) {
            ManagedRec m;
            m.server = s;
            m.cell = made.id;
            world.managed.insert(m);
        }
        const int64_t group = world.defaultDiskGroup(made.id).id;

        std::vector<int64_t> hostIds;
        for (long long h = 1; h <= o.hosts; ++h) {
            HostRec host;
            host.cell = made.id;
            host.path = numbered("\\Hosts\\host%02lld", h);
            host.ports = numbered("1000-0000-C9%02llX-", c) + numbered("%04llX", h * 2 - 1) + "," +
                         numbered("1000-0000-C9%02llX-", c) + numbered("%04llX", h * 2);
            host.objectid = world.newObjectId(made);
            hostIds.push_back(world.hosts.insert(host).id);
        }

        for (long long d = 1; d <= o.disks; ++d) {
            VdiskRec disk;
            disk.cell = made.id;
            disk.folder = numbered("\\Virtual Disks\\folder%02lld", (d - 1) % o.folders + 1);
            disk.family = numbered("vd%05lld", d);
            disk.leaf = "ACTIVE";
            disk.blocks = diskBytes / 512;
            disk.diskgroup = group;
            ++made.serial;
            disk.wwlunid = World::formatWwlunid(made, made.serial);
            disk.objectid = world.newObjectId(made);
            disk.created = disk.modified = now;
            const int64_t id = world.vdisks.insert(disk).id;
            if (d <= o.snapshots) {
                VdiskRec snap = disk;
                snap.leaf = disk.family + "_vsnap000";
                snap.parent = id;
                snap.origin = "snapshot";
                snap.allocation = "demand";
                ++made.serial;
                snap.wwlunid = World::formatWwlunid(made, made.serial);
                snap.objectid = world.newObjectId(made);
                world.vdisks.insert(snap);
            }
            if (d <= o.presented) {
                LunRec l;
                l.vdisk = id;
                l.host = hostIds[static_cast<size_t>((d - 1) % o.hosts)];
                l.lun = (d - 1) / o.hosts + 1;
                world.luns.insert(l);
            }
        }
        world.cells.touch(made.id);
    }
}

}  // namespace evasim
