#include "hpeva_plugin.h"

#include "cfifimlistfactory.h"
#include "cfiproviderinfolistfactory.h"
#include "cfitracelogfunction.h"
#include "hpeva_process.h"

using namespace qorin_pdk_4_4;

namespace {

const char kSourceFile[] = "providers/hpeva/hpeva_plugin";
// Version of the snapshot methods as the host sees them.
const wchar_t kFimVersion[] = L"4.1";

}  // namespace

CHpEvaPlugin::CHpEvaPlugin() = default;

CHpEvaPlugin::~CHpEvaPlugin()
{
    // The catalog manager may outlive this plug-in (whoever still holds it); it must not keep
    // a factory that goes now.
    if (!m_catalogManager.isNull() && m_catalogFactory) {
        m_catalogManager->unregisterFactory(m_catalogFactory.get());
    }
}

CHpEvaGuard CHpEvaPlugin::guard(const char *operation, int line, bool initialisation) const
{
    return CHpEvaGuard(m_errorManager, m_traceLog, operation, kSourceFile, line, initialisation);
}

CHpEvaCliTool CHpEvaPlugin::newCliTool() const
{
    CHpEvaCliTool tool(cliTool);
    tool.setEnv(env());
    return tool;
}

std::wstring CHpEvaPlugin::nodeName(const qrn_domain *node)
{
    return node != nullptr && node->id != nullptr && node->id->text != nullptr ? std::wstring(node->id->text)
                                                                               : std::wstring();
}

int CHpEvaPlugin::getProviderInfo(qrn_provider_list **out)
{
    CFiTraceLogFunction traceFunction(processTraceLog(), "CHpEvaPlugin::getProviderInfo");
    return guard("getProviderInfo", __LINE__).run([&] {
        {
            CFiProviderInfoListFactory factory(PROVIDER_NAME, out);
            CFiProviderInfo info(1, 2);
            info.addClaimPattern(UDID_PREFIX);
            factory.add(info);
        }
        return QRN_OK;
    });
}

int CHpEvaPlugin::enumerateFims(qrn_fim_list **out)
{
    CFiTraceLogFunction traceFunction(processTraceLog(), "CHpEvaPlugin::enumerateFims");
    return guard("enumerateFims", __LINE__).run([&] {
        {
            // The host's order; the FIM table of init lists VSnap first.
            CFiFim fims[] = {
                {L"HPEVA_Snapclone", 1, 0, 1, 1, 0, 5, L"HPEVA_Snapclone", kFimVersion},
                {L"HPEVA_VSnap", 1, 0, 1, 0, 0, 0, L"HPEVA_VSnap", kFimVersion},
                {L"HPEVA_Snapshot", 1, 0, 1, 0, 0, 0, L"HPEVA_Snapshot", kFimVersion},
                {L"HPEVA_DRGroup_Snapclone", 0, 0, 1, 1, 0, 0, L"HPEVA_DRGroup_Snapclone", kFimVersion},
            };
            CFiFimListFactory factory(PROVIDER_NAME, out);
            for (CFiFim &fim : fims) {
                factory.add(fim);
            }
        }
        return QRN_OK;
    });
}
