// A small provider on the kit: a plug-in class of its own, the kit's private data made by
// the factory the kit instantiates for it, a result list, and its function traces.
#include "cfinodelistfactory.h"
#include "cfiplugininterposer.h"
#include "cfiprivatedataconcretefactory.h"
#include "cfiprivatedatamanager.h"
#include "cfitracelogfunction.h"
#include "qrn_results.h"

using namespace qorin_pdk_4_4;

namespace {

class COutsidePlugin : public CFiPluginInterposer {
public:
    int init() override
    {
        CFiTraceLogFunction function(m_traceLog, "COutsidePlugin::init");
        return QRN_OK;
    }
};

}  // namespace

// 0 when the provider's node got private data from the kit's factory and lost it again,
// and its list counted a disk.
extern "C" __attribute__((visibility("default"))) int outside_provider_check()
{
    CFiSmartPtr<CFiPluginBase> plugin(new COutsidePlugin);
    CFiPrivateDataManagerPtr manager(new CFiPrivateDataManager);
    manager->registerFactory(CFiPrivateDataFactoryPtr(new CFiPrivateDataConcreteFactory<CFiPrivateData>()));
    plugin->registerPrivateDataManager(manager);
    if (plugin->init() != QRN_OK) {
        return 1;
    }
    wchar_t text[] = L"UDID##OUTSIDE##1";
    qorin_objid id = {text, sizeof text, 3};
    qrn_domain node = {};
    node.id = &id;
    CFiPrivateDataPtr made = manager->getFactory()->create(&node, false);
    if (made.isNull() || manager->getFactory()->find(&node).get() != made.get()) {
        return 2;
    }
    plugin->deInitNode(&node);
    if (!manager->getFactory()->find(&node).isNull()) {
        return 3;
    }
    int32_t count = 0;
    {
        // Counted only: without an out pointer the list goes to nobody.
        CFiNodeListFactory nodes(nullptr, &count);
        CFiNode disk(L"outside", "disk 1", "UDID##OUTSIDE##1", 512, 0, 0, 1);
        nodes.add(disk);
    }
    return count == 1 ? 0 : 4;
}
