#ifndef HPEVA_DRGROUPLINK_H
#define HPEVA_DRGROUPLINK_H

#include <string>

// A DR group's link to another cell.
struct SHpEvaDrGroupLink {
    std::string scellname;
    std::string scellid;
    std::string linkstate;
    std::string suspendstate;
};

#endif
