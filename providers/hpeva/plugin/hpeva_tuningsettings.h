#ifndef HPEVA_TUNINGSETTINGS_H
#define HPEVA_TUNINGSETTINGS_H

#include <cstdint>

#include "hpeva_clitool.h"

// The provider's tuning settings (section "TUNING_PARAMS").
struct SHpEvaTuningSettings {
    // Seconds to wait after an unmask before the host looks for the disk.
    uint32_t postUnmaskWait = 0;
    // The most memory one SSSU run's output may take, in MiB ("SSSU_OUTPUT_LIMIT_MB").
    uint32_t sssuOutputLimitMb = CHpEvaCliTool::DEFAULT_OUTPUT_LIMIT_MB;
};

#endif
