#ifndef CFINETWORK_H
#define CFINETWORK_H

#include <string>

#include "cfiexport.h"
#include "cfihostinfo.h"

namespace qorin_pdk_4_4 {

// Host names and addresses (IPv4 only). Every name service failure gives 3 and no message;
// resolve shows it only as empty fields.
class QORIN_PDK_API CFiNetwork {
public:
    // This machine.
    static CFiHostInfo resolve();
    // A name or a dotted address; the results of the lookups aren't checked.
    static CFiHostInfo resolve(const std::string &name);
    // The first field that a has filled, of address, hostname and fqdn, decides (ignoring case).
    static bool compare(const CFiHostInfo &a, const CFiHostInfo &b);
    // text against info's address, fqdn and hostname; an empty text matches nothing.
    static bool compare(const std::string &text, const CFiHostInfo &info);
    // Four dot-separated decimal numbers from 0 to 255.
    static bool validateIPAddress(const char *address);
    // Reverse lookup. An address that doesn't parse is copied into name, with result 3.
    static int getHostbyAddr(const char *address, std::string &name);
    // Forward lookup to the first IPv4 address.
    static int getHostbyName(const char *name, std::string &address);
    // Lower-case official name of host by reverse lookup (after a forward one for a name).
    static int getFQDN(const char *host, std::string &fqdn);
    static int getFQDN(std::string &fqdn);
    static std::string getComputerName();

private:
    static int IsTokenValid(const std::string &token);
};

}  // namespace qorin_pdk_4_4

#endif
