#include "cfinetwork.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>

#include "cfistringtool.h"
#include "qrn_results.h"
#include "vstring.h"

namespace qorin_pdk_4_4 {

CFiHostInfo CFiNetwork::resolve()
{
    return resolve(getComputerName());
}

CFiHostInfo CFiNetwork::resolve(const std::string &name)
{
    CFiHostInfo info;
    if (name.empty()) {
        return info;
    }
    if (validateIPAddress(name.c_str())) {
        info.address = name;
        getHostbyAddr(name.c_str(), info.hostname);
        getFQDN(name.c_str(), info.fqdn);
        return info;
    }
    info.hostname = name;
    getHostbyName(name.c_str(), info.address);
    if (!info.address.empty()) {
        getFQDN(info.address.c_str(), info.fqdn);
    }
    return info;
}

bool CFiNetwork::compare(const CFiHostInfo &a, const CFiHostInfo &b)
{
    if (!a.address.empty() && CFiStringTool::CompareNoCase(a.address, b.address)) {
        return true;
    }
    if (!a.hostname.empty() && CFiStringTool::CompareNoCase(a.hostname, b.hostname)) {
        return true;
    }
    return !a.fqdn.empty() && CFiStringTool::CompareNoCase(a.fqdn, b.fqdn);
}

bool CFiNetwork::compare(const std::string &text, const CFiHostInfo &info)
{
    if (text.empty()) {
        return false;
    }
    return CFiStringTool::CompareNoCase(text, info.address) || CFiStringTool::CompareNoCase(text, info.fqdn) ||
           CFiStringTool::CompareNoCase(text, info.hostname);
}

int CFiNetwork::IsTokenValid(const std::string &token)
{
    if (!CFiStringTool::isDigit(token)) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    // Accumulated by hand so that a long run of digits can't overflow; leading zeros are fine.
    int value = 0;
    for (char c : token) {
        value = value * 10 + (c - '0');
        if (value > 255) {
            return QRN_ERR_INVALID_ARGUMENT;
        }
    }
    return 0;
}

bool CFiNetwork::validateIPAddress(const char *address)
{
    if (address == nullptr) {
        return false;
    }
    std::vector<std::string> tokens = CFiStringTool::tokenize(address, ".");
    if (tokens.size() != 4) {
        return false;
    }
    for (const std::string &token : tokens) {
        if (IsTokenValid(token) != 0) {
            return false;
        }
    }
    return true;
}

int CFiNetwork::getHostbyAddr(const char *address, std::string &name)
{
    if (address == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    in_addr_t raw = inet_addr(address);
    if (raw == INADDR_NONE) {
        name = address;
        return QRN_ERR_INVALID_ARGUMENT;
    }
    sockaddr_in peer;
    memset(&peer, 0, sizeof peer);
    peer.sin_family = AF_INET;
    peer.sin_addr.s_addr = raw;
    char host[NI_MAXHOST];
    if (getnameinfo(reinterpret_cast<sockaddr *>(&peer), sizeof peer, host, sizeof host, nullptr, 0, NI_NAMEREQD) !=
        0) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    name = host;
    return 0;
}

int CFiNetwork::getHostbyName(const char *name, std::string &address)
{
    if (name == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    addrinfo hints;
    memset(&hints, 0, sizeof hints);
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *found = nullptr;
    if (getaddrinfo(name, nullptr, &hints, &found) != 0 || found == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    const auto *bytes =
        reinterpret_cast<const unsigned char *>(&reinterpret_cast<sockaddr_in *>(found->ai_addr)->sin_addr.s_addr);
    char text[64];
    V_snprintf(text, sizeof text, "%d.%d.%d.%d", bytes[0], bytes[1], bytes[2], bytes[3]);
    freeaddrinfo(found);
    address = text;
    return 0;
}

int CFiNetwork::getFQDN(const char *host, std::string &fqdn)
{
    if (host == nullptr || *host == '\0') {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    std::string lowered = CFiStringTool::tostrlower(host);
    std::string name;
    int result;
    if (lowered[0] >= '0' && lowered[0] <= '9') {
        result = getHostbyAddr(lowered.c_str(), name);
    } else {
        std::string address;
        result = getHostbyName(lowered.c_str(), address);
        if (result == 0) {
            result = getHostbyAddr(address.c_str(), name);
        }
    }
    if (result != 0) {
        return result;
    }
    fqdn = CFiStringTool::tostrlower(name);
    return 0;
}

int CFiNetwork::getFQDN(std::string &fqdn)
{
    return getFQDN(getComputerName().c_str(), fqdn);
}

std::string CFiNetwork::getComputerName()
{
    char name[255];
    if (gethostname(name, sizeof name) != 0) {
        return std::string();
    }
    // gethostname may leave a cut name unterminated.
    name[sizeof name - 1] = '\0';
    return name;
}

}  // namespace qorin_pdk_4_4
