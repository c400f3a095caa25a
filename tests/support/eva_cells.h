// Command View logins and the cells behind them as start-up leaves them, for the tests of the
// provider's layers below its entries.
#ifndef EVA_CELLS_H
#define EVA_CELLS_H

#include "hpeva_cell.h"

namespace tamlin_test {

inline qorin_pdk_4_4::SFiCredential login(const wchar_t *host = L"cv1", const wchar_t *user = L"admin",
                                          const wchar_t *password = L"secret")
{
    qorin_pdk_4_4::SFiCredential login;
    login.hostname = host;
    login.username = user;
    login.password = password;
    return login;
}

// The cell name behind host; wwn as its detail gives it.
inline SHpEvaCell cell(const wchar_t *name, const wchar_t *host = L"cv1", const wchar_t *password = L"secret",
                       const char *wwn = "")
{
    SHpEvaCell cell;
    static_cast<qorin_pdk_4_4::SFiCredential &>(cell) = login(host, L"admin", password);
    cell.cellname = name;
    cell.objectwwn = wwn;
    return cell;
}

}  // namespace tamlin_test

#endif
