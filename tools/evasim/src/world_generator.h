// Builds a world of any size from a few numbers, for tests and benchmarks that need bulk.
#ifndef EVASIM_WORLD_GENERATOR_H
#define EVASIM_WORLD_GENERATOR_H

#include <string>

namespace evasim {

class World;

class WorldGenerator {
public:
    struct Options {
        long long servers = 1;
        long long cells = 1;
        long long disks = 10;     // per cell
        long long hosts = 2;      // per cell
        long long snapshots = 0;  // per cell: the first disks get one vsnap each
        long long presented = 0;  // per cell: the first disks are presented, round robin over the hosts
        long long folders = 10;   // disks are spread over this many folders
        long long sizeGb = 10;    // of each disk
    };

    // Checks the numbers; gives an error text, empty when they can be built.
    static std::string check(const Options &o);
    // Fills an empty world. Names: servers cv1.., user and password "evasim"; cells EVA01..;
    // disks "\Virtual Disks\folderNN\vdNNNNN\ACTIVE"; hosts "\Hosts\hostNN".
    static void build(World &world, const Options &o);
};

}  // namespace evasim

#endif
