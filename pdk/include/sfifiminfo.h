#ifndef SFIFIMINFO_H
#define SFIFIMINFO_H

#include <cstdint>
#include <string>

namespace qorin_pdk_4_4 {

// One snapshot method of the FIM table.
struct SFiFimInfo {
    std::string group;
    std::string method;
    std::string quiesceType;
    int32_t flags = 0;
};

}  // namespace qorin_pdk_4_4

#endif
