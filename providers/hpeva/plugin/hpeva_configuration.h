#ifndef HPEVA_CONFIGURATION_H
#define HPEVA_CONFIGURATION_H

#include <vector>

#include <ace/SString.h>

#include "cficonfiguration.h"
#include "hpeva_clitool.h"
#include "hpeva_restoresettings.h"
#include "hpeva_tuningsettings.h"

// The provider's own settings in <install>/ConfigFiles/tamlin.conf: where SSSU lies and which
// further versions of it are accepted (section "CLI_TOOL_INFO": FILEPATH, FILENAME,
// ACCEPTED_VERSIONS), the tuning values ("TUNING_PARAMS") and the restore settings
// ("RESTORE_INFO").
class CHpEvaConfiguration : public qorin_pdk_4_4::CFiConfiguration {
public:
    // Beginnings of SSSU version lines, separated by ";", that are accepted beside the
    // built-in table: "Version: 9.;Version: 10." for releases after 8.
    static constexpr const wchar_t *ACCEPTED_VERSIONS = L"ACCEPTED_VERSIONS";

    CHpEvaConfiguration();

    // The configured directory and name; what isn't configured is searched for: the names
    // SSSU is installed under, first in <program files>/HP/SSSU/, then in the Command View
    // bridge directory. After a search without a hit the name is the last one tried.
    CHpEvaCliTool importCliPathInfo();
    SHpEvaTuningSettings importTuningSettings();
    // COMMAND_DELAY (a string), REDISCOVER and TIMEOUT (numbers); what isn't set, or can't be
    // read as its type, keeps its default.
    SHpEvaRestoreSettings importRestoreSettings();

    // The file names SSSU may have, in the order they are tried.
    const std::vector<ACE_WString> &getFileNames() const { return m_fileNames; }

private:
    // The first of m_fileNames that exists in directory, or the last name.
    bool search(const ACE_WString &directory, ACE_WString &fileName) const;

    std::vector<ACE_WString> m_fileNames;
};

#endif
