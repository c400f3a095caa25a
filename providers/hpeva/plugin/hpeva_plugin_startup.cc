// CHpEvaPlugin: start-up in two stages. init needs no array; delayedInit runs SSSU for the
// first time, when a host first needs an array.
#include "hpeva_plugin.h"

#include "cficonfigurationpathtool.h"
#include "cfiicumessagecatalogfactory.h"
#include "cfiprivatedataconcretefactory.h"
#include "cfiprivatedatamanager.h"
#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "hpeva_commandtempfile.h"
#include "hpeva_configuration.h"
#include "hpeva_messages.h"
#include "hpeva_privatedata.h"

using namespace qorin_pdk_4_4;

namespace {

const char kSourceFile[] = "providers/hpeva/hpeva_plugin_startup";
const char kClaimPattern[] = "UDID##HP##HSV##";
const char kNoQuiesce[] = "FI_QUIESCE_NONE";

icu::Formattable text(const ACE_WString &value)
{
    return icu::Formattable(CFiStringTool::tstr2ustr(value));
}

icu::Formattable text(const std::string &value)
{
    return icu::Formattable(CFiStringTool::str2ustr(value));
}

// The provider's configuration file, for messages that send the administrator there.
ACE_WString configFilePath()
{
    ACE_WString directory;
    ACE_WString file;
    CFiConfigurationPathTool::getConfigFileInfo(ACE_WString(CHpEvaPlugin::PROVIDER_NAME), directory, file);
    return directory + file;
}

}  // namespace

int CHpEvaPlugin::init()
{
    CFiTraceLogFunction traceFunction(m_traceLog, "CHpEvaPlugin::init");
    return guard("init", __LINE__, true).run([&] {
        // A host killed during a run left its script behind, with a password in it.
        CHpEvaCommandTempFile::removeLeftovers();
        if (!m_catalogManager.isNull() && m_catalogFactory) {
            m_catalogManager->unregisterFactory(m_catalogFactory.get());
        }
        m_catalogFactory.reset(new CFiIcuMessageCatalogFactory(PROVIDER_NAME, "root"));
        if (!m_catalogManager.isNull()) {
            m_catalogManager->registerFactory(m_catalogFactory.get());
        }
        if (!m_privateDataManager.isNull()) {
            m_privateDataManager->registerFactory(
                CFiPrivateDataFactoryPtr(new CFiPrivateDataConcreteFactory<CHpEvaPrivateData>()));
        }
        // The groups take their names from the methods; VSnap first, as the host expects.
        for (const char *method : {"HPEVA_VSnap", "HPEVA_Snapshot", "HPEVA_Snapclone", "HPEVA_DRGroup_Snapclone"}) {
            addFim(kClaimPattern, method, kNoQuiesce, 3, "");
        }

        CHpEvaConfiguration config;
        config.setTraceLog(m_traceLog);
        // Defaults in place of the administrator's settings would run without his credentials
        // or his SSSU, and hide the real fault behind another.
        if (config.importState() == CFiConfiguration::MALFORMED) {
            pushMessage(m_errorManager, hpeva_msg::MSG_ERROR_CONFIG_FILE_INVALID, QRN_SEVERITY_ERROR, kSourceFile,
                        __LINE__, text(config.getFullPath()),
                        icu::Formattable(static_cast<int32_t>(config.importLine())), text(config.importProblem()));
            return QRN_ERR_INIT_FAILED;
        }
        if (config.importState() == CFiConfiguration::UNREADABLE) {
            pushMessage(m_errorManager, hpeva_msg::MSG_ERROR_CONFIG_FILE_UNREADABLE, QRN_SEVERITY_ERROR, kSourceFile,
                        __LINE__, text(config.getFullPath()), text(config.importProblem()));
            return QRN_ERR_INIT_FAILED;
        }
        cliTool = config.importCliPathInfo();
        const SHpEvaTuningSettings tuning = config.importTuningSettings();
        postUnmaskWait = tuning.postUnmaskWait;
        cliTool.setOutputLimitMb(tuning.sssuOutputLimitMb);

        getPblmOps().setTraceLog(m_traceLog);
        // LUN 0 is the array controller's; 255 is kept free by the hosts.
        getPblmOps().setLunNumRange(1, 254);

        if (CFiConfigurationPathTool::verify(cliTool.getDirectory().c_str()) != 0) {
            pushMessage(m_errorManager, hpeva_msg::MSG_ERROR_CLI_NOT_INSTALLED, QRN_SEVERITY_WARNING, kSourceFile,
                        __LINE__, text(cliTool.getDirectory()), text(cliTool.getFileName()));
            trace(1, "CHpEvaPlugin::init: CLI tool is not installed.");
            return QRN_ERR_INIT_FAILED;
        }
        if (CFiConfigurationPathTool::verify(cliTool.getPath().c_str()) != 0) {
            pushMessage(m_errorManager, hpeva_msg::MSG_ERROR_CLI_NOT_FOUND, QRN_SEVERITY_WARNING, kSourceFile, __LINE__,
                        text(cliTool.getDirectory()), text(cliTool.getFileName()));
            return QRN_ERR_INIT_FAILED;
        }
        credentials = config.importCredentials("HP", "HSV", ACE_WString(L"MANAGEMENT_APPLIANCE_INFO"), false);
        if (!credentials.empty()) {
            trace(3, "Imported credentials for [%d] array management appliances", static_cast<int>(credentials.size()));
            return QRN_OK;
        }
        pushMessage(m_errorManager, hpeva_msg::MSG_ERROR_NO_CREDENTIALS, QRN_SEVERITY_WARNING, kSourceFile, __LINE__,
                    text(configFilePath()));
        return QRN_ERR_INIT_FAILED;
    });
}

int CHpEvaPlugin::delayedInit()
{
    CFiTraceLogFunction traceFunction(m_traceLog, "CHpEvaPlugin::delayedInit");
    return guard("delayedInit", __LINE__, true).run([&] {
        CHpEvaCliTool tool = newCliTool();
        std::string version;
        if (tool.checkVersion(&version) != QRN_OK) {
            pushMessage(m_errorManager, hpeva_msg::MSG_ERROR_VERSION_CHECK, QRN_SEVERITY_WARNING, kSourceFile, __LINE__,
                        text(tool.getPath()), text(version), text(configFilePath()));
            return QRN_ERR_VERSION_CHECK;
        }
        cells = tool.enumerateCells(credentials);
        if (!cells.empty()) {
            return QRN_OK;
        }
        pushMessage(m_errorManager, hpeva_msg::MSG_ERROR_NO_ARRAYS_DISCOVERED, QRN_SEVERITY_WARNING, kSourceFile,
                    __LINE__);
        return QRN_ERR_INIT_FAILED;
    });
}

void CHpEvaPlugin::fini()
{
    CFiTraceLogFunction traceFunction(m_traceLog, "CHpEvaPlugin::fini");
}
