#ifndef SFIFIMGROUPINFO_H
#define SFIFIMGROUPINFO_H

#include <string>

#include "qrn_records.h"

namespace qorin_pdk_4_4 {

// The group node of one snapshot method: its identifier, owned by the interposer, and the
// host's node once the host has initialised it.
struct SFiFimGroupInfo {
    std::string group;
    std::string pattern;
    qorin_objid *id = nullptr;
    qrn_domain *node = nullptr;
};

}  // namespace qorin_pdk_4_4

#endif
