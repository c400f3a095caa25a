#include "hpeva_configuration.h"

#include <cstdint>

#include "cficonfigurationpathtool.h"
#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "hpeva_plugin.h"

using namespace qorin_pdk_4_4;

namespace {

const wchar_t *const kDefaultDir = L"HP/SSSU/";
const wchar_t *const kBridgeDir = L"Hewlett-Packard/Sanworks/Element Manager for StorageWorks HSV/Bridge/";

ACE_WString below(ACE_WString base, const wchar_t *leaf)
{
    if (base.length() == 0 || base[base.length() - 1] != L'/') {
        base += L"/";
    }
    base += leaf;
    return base;
}

ACE_WString programFiles()
{
    ACE_WString dir;
    CFiConfigurationPathTool::getProgramFilesDir(dir);  // "/opt" when the registry has none
    return dir;
}

}  // namespace

CHpEvaConfiguration::CHpEvaConfiguration() :
    CFiConfiguration(ACE_WString(CHpEvaPlugin::PROVIDER_NAME)),
    m_fileNames{L"sssu_linux_x64", L"sssu_linux_x86", L"sssu_linux_ia64", L"sssu", L"SSSU"}
{
}

bool CHpEvaConfiguration::search(const ACE_WString &directory, ACE_WString &fileName) const
{
    for (const ACE_WString &name : m_fileNames) {
        fileName = name;
        ACE_WString path(directory);
        path += name;
        if (CFiConfigurationPathTool::verify(path.c_str()) == 0) {
            return true;
        }
    }
    return false;
}

CHpEvaCliTool CHpEvaConfiguration::importCliPathInfo()
{
    CFiTraceLogFunction function(m_traceLog, "CHpEvaConfiguration::importCliPathInfo");
    ACE_WString directory;
    ACE_WString fileName;
    bool directoryConfigured = false;
    bool nameConfigured = false;
    ACE_Configuration_Section_Key section;
    std::vector<std::string> versions;
    if (openSection(L"CLI_TOOL_INFO", section, 0) == 0) {
        directoryConfigured = getStringValue(L"FILEPATH", directory) == 0;
        nameConfigured = getStringValue(L"FILENAME", fileName) == 0;
        ACE_WString accepted;
        if (getStringValue(ACCEPTED_VERSIONS, accepted) == 0) {
            for (const std::string &version : CFiStringTool::tokenize(CFiStringTool::tstr2str(accepted), ";")) {
                const std::string trimmed = CFiStringTool::trim(version, " \t");
                if (!trimmed.empty()) {
                    versions.push_back(trimmed);
                }
            }
        }
        if (directory.length() == 0 || directory[directory.length() - 1] != L'/') {
            directory += L"/";
        }
    }
    if (!directoryConfigured) {
        directory = below(programFiles(), kDefaultDir);
    }
    if (!nameConfigured) {
        if (!search(directory, fileName)) {
            // Even a configured directory gives way to the bridge directory here.
            directory = below(programFiles(), kBridgeDir);
            search(directory, fileName);
        }
    }
    trace(3, "SSSU is [%S%S].", directory.c_str(), fileName.c_str());
    CHpEvaCliTool tool(directory, fileName);
    tool.setAcceptedVersions(versions);
    return tool;
}

SHpEvaTuningSettings CHpEvaConfiguration::importTuningSettings()
{
    CFiTraceLogFunction function(m_traceLog, "CHpEvaConfiguration::importTuningSettings");
    SHpEvaTuningSettings settings;
    ACE_Configuration_Section_Key section;
    if (openSection(L"TUNING_PARAMS", section, 0) == 0) {
        unsigned value = 0;
        if (getIntegerValue(L"POST_UNMASK_WAIT_IN_SEC", value) == 0) {
            settings.postUnmaskWait = value;
        }
        // 0 would leave the host without a bound: it keeps the default.
        if (getIntegerValue(L"SSSU_OUTPUT_LIMIT_MB", value) == 0 && value != 0) {
            settings.sssuOutputLimitMb = value;
        }
    }
    return settings;
}

SHpEvaRestoreSettings CHpEvaConfiguration::importRestoreSettings()
{
    CFiTraceLogFunction function(m_traceLog, "CHpEvaConfiguration::importRestoreSettings");
    SHpEvaRestoreSettings settings;
    ACE_Configuration_Section_Key section;
    if (openSection(L"RESTORE_INFO", section, 0) != 0) {
        return settings;
    }
    ACE_WString delay;
    if (getStringValue(L"COMMAND_DELAY", delay) == 0) {
        settings.commandDelay = delay;
    }
    unsigned value = 0;
    if (getIntegerValue(L"REDISCOVER", value) == 0) {
        settings.rediscover = value != 0;
    }
    if (getIntegerValue(L"TIMEOUT", value) == 0) {
        // A time-out of 0 would stop SSSU before its first answer and leave the restore
        // halfway on the array; beyond INT32_MAX it can't be passed on.
        if (value == 0 || value > static_cast<unsigned>(INT32_MAX)) {
            trace(2, "RESTORE_INFO TIMEOUT [%u] ignored, the restore script waits up to [%d] seconds.", value,
                  settings.timeout);
        } else {
            settings.timeout = static_cast<int>(value);
        }
    }
    return settings;
}
