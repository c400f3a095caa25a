#ifndef CFIHOSTINFO_H
#define CFIHOSTINFO_H

#include <string>

namespace qorin_pdk_4_4 {

// What the name service says about one host. An empty field means it said nothing.
struct CFiHostInfo {
    std::string hostname;
    std::string address;  // dotted decimal IPv4
    std::string fqdn;     // the official name from reverse lookup
};

}  // namespace qorin_pdk_4_4

#endif
