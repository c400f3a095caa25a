#ifndef HPEVA_DRGROUP_H
#define HPEVA_DRGROUP_H

#include <string>
#include <vector>

#include "hpeva_cell.h"
#include "hpeva_drgrouplink.h"

// A data replication group. remoteCell is never parsed: selection fills it in.
struct SHpEvaDrGroup {
    std::string objectname;
    std::string operationalstate;
    std::string membercondition;
    std::vector<std::string> members;
    std::vector<SHpEvaDrGroupLink> links;
    SHpEvaCell remoteCell;
    std::string parentstoragecellname;
    std::string drmmode;
};

#endif
