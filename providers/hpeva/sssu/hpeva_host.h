#ifndef HPEVA_HOST_H
#define HPEVA_HOST_H

#include <string>
#include <vector>

// A host as an array knows it: its path below "\Hosts\" (folders included) and its ports.
struct SHpEvaHost {
    std::string name;
    std::vector<std::string> ports;
};

#endif
