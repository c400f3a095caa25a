#ifndef HPEVA_CELL_H
#define HPEVA_CELL_H

#include <cstdint>
#include <string>

#include "sficredential.h"

// One storage cell of an array, with the login of the Command View server through which it
// was found, so that a cell can be passed as the credential of its own script.
struct SHpEvaCell : public qorin_pdk_4_4::SFiCredential {
    std::wstring cellname;
    std::string objectwwn;
    uint64_t availablestoragespace = 0;  // bytes
    uint64_t totalstoragespace = 0;      // bytes
    int32_t firmwareversion = 0;
};

#endif
