#ifndef SFICREDENTIAL_H
#define SFICREDENTIAL_H

#include <cstdint>
#include <string>

namespace qorin_pdk_4_4 {

// One login of a Command View server. Valid when host, user and password are all set;
// port and data play no part in that.
struct SFiCredential {
    std::wstring hostname;
    std::wstring username;
    std::wstring password;
    int32_t port = -1;
    std::wstring data;

    bool isValid() const { return !hostname.empty() && !username.empty() && !password.empty(); }
};

}  // namespace qorin_pdk_4_4

#endif
