#ifndef HPEVA_RESTORESETTINGS_H
#define HPEVA_RESTORESETTINGS_H

#include <ace/SString.h>

// What the administrator may set for a restore (section "RESTORE_INFO"); the defaults are
// what a restore uses where nothing is set.
struct SHpEvaRestoreSettings {
    // Longest silence of SSSU during the restore script, in seconds.
    static const int DEFAULT_TIMEOUT = 120;

    // The text behind "SET OPTION COMMAND_DELAY=", taken as it is.
    ACE_WString commandDelay = L"5";
    // Whether the script asks the array to rediscover its disks before the copy.
    bool rediscover = false;
    int timeout = DEFAULT_TIMEOUT;
};

#endif
