#ifndef SFISESSIONENTRY_H
#define SFISESSIONENTRY_H

#include <cstdint>
#include <string>

namespace qorin_pdk_4_4 {

// One node of a group operation: its method and, once made, its target.
struct SFiSessionEntry {
    std::wstring nodeName;
    std::wstring target;
    std::string method;
    int32_t done = 0;
};

}  // namespace qorin_pdk_4_4

#endif
