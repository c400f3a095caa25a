#include "hpeva_singletons.h"

#include "hpeva_plugin.h"
#include "hpeva_singleton_slot.h"

using namespace qorin_pdk_4_4;

void getPluginSingleton(CFiPluginPtr &out, bool destroy)
{
    accessSingleton<CFiPluginBase, CHpEvaPlugin>(out, destroy);
}

void getCatalogManagerSingleton(CFiCatalogManagerPtr &out, bool destroy)
{
    accessSingleton<CFiMessageCatalogManager, CFiMessageCatalogManager>(out, destroy);
}

void getPrivateDataManagerSingleton(CFiPrivateDataManagerPtr &out, bool destroy)
{
    accessSingleton<CFiPrivateDataManager, CFiPrivateDataManager>(out, destroy);
}

void getSessionManagerSingleton(CFiSessionManagerPtr &out, bool destroy)
{
    accessSingleton<CFiSessionManager, CFiSessionManager>(out, destroy);
}
