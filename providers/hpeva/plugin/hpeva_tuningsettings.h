#ifndef HPEVA_TUNINGSETTINGS_H
#define HPEVA_TUNINGSETTINGS_H

#include <cstdint>

// The provider's tuning settings (section "TUNING_PARAMS").
struct SHpEvaTuningSettings {
    // Seconds to wait after an unmask before the host looks for the disk.
    uint32_t postUnmaskWait = 0;
};

#endif
