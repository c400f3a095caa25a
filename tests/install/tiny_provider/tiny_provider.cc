// The start and end of a provider on the kit: its plug-in class with its function traces, the
// kit's private data made by the factory the kit instantiates, and a result list, before it
// tells the host its version.
#include <stdint.h>

#include "cfinodelistfactory.h"
#include "cfiplugininterposer.h"
#include "cfiprivatedataconcretefactory.h"
#include "cfiprivatedatamanager.h"
#include "cfitracelogfunction.h"
#include "qrn_records.h"
#include "qrn_results.h"

using namespace qorin_pdk_4_4;

namespace {

class CTinyPlugin : public CFiPluginInterposer {
public:
    int init() override
    {
        CFiTraceLogFunction function(m_traceLog, "CTinyPlugin::init");
        return QRN_OK;
    }
};

CFiSmartPtr<CFiPluginBase> *plugin = nullptr;

// Whether a node gets private data from the kit's factory and loses it again, and a list
// counts a disk.
bool kitWorks(CFiPluginBase &tiny)
{
    CFiPrivateDataManagerPtr manager(new CFiPrivateDataManager);
    manager->registerFactory(CFiPrivateDataFactoryPtr(new CFiPrivateDataConcreteFactory<CFiPrivateData>()));
    tiny.registerPrivateDataManager(manager);
    if (tiny.init() != QRN_OK) {
        return false;
    }
    wchar_t text[] = L"UDID##TINY##1";
    qorin_objid id = {text, sizeof text, 3};
    qrn_domain node = {};
    node.id = &id;
    CFiPrivateDataPtr made = manager->getFactory()->create(&node, false);
    if (made.isNull() || manager->getFactory()->find(&node).get() != made.get()) {
        return false;
    }
    tiny.deInitNode(&node);
    if (!manager->getFactory()->find(&node).isNull()) {
        return false;
    }
    int32_t count = 0;
    {
        // Counted only: without an out pointer the list goes to nobody.
        CFiNodeListFactory nodes(nullptr, &count);
        CFiNode disk(L"tiny", "disk 1", "UDID##TINY##1", 512, 0, 0, 1);
        nodes.add(disk);
    }
    return count == 1;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int32_t tamlin_fi_pgn_init(qrn_host_context *host, uint16_t *version)
{
    plugin = new CFiSmartPtr<CFiPluginBase>(new CTinyPlugin);
    if (!kitWorks(**plugin)) {
        return QRN_ERR_INIT_FAILED;
    }
    if (host != nullptr && host->callback != nullptr) {
        host->callback(host, L"tiny provider started on the kit", L"tiny provider started on the kit", 1);
    }
    const uint16_t announced[4] = {4, 4, 0, 1};
    for (int i = 0; i < 4; ++i) {
        version[i] = announced[i];
    }
    return QRN_OK;
}

extern "C" __attribute__((visibility("default"))) void tamlin_fi_pgn_fini()
{
    delete plugin;
    plugin = nullptr;
}
