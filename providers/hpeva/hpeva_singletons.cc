#include "hpeva_singletons.h"

#include <ace/Guard_T.h>
#include <ace/Thread_Mutex.h>

#include "hpeva_plugin.h"

using namespace qorin_pdk_4_4;

namespace {

// One slot per (interface, concrete class). The static pointer and mutex are built on first
// use and torn down when the library is unloaded.
template <class T, class Concrete>
void accessSingleton(CFiSmartPtr<T, CFiContextSingletonAllocator<T>> &out, bool destroy)
{
    static CFiSmartPtr<T, CFiContextSingletonAllocator<T>> instance;
    static ACE_Thread_Mutex lock;

    ACE_Guard<ACE_Thread_Mutex> guard(lock);
    if (guard.locked()) {
        if (destroy) {
            instance.detach();
        } else if (instance.isNull()) {
            instance = static_cast<T *>(new Concrete);
        }
    }
    out = instance;
}

}  // namespace

void getPluginSingleton(CFiPluginPtr &out, bool destroy)
{
    accessSingleton<CFiPluginBase, CHpEvaPlugin>(out, destroy);
}

void getCatalogManagerSingleton(CFiCatalogManagerPtr &out, bool destroy)
{
    accessSingleton<CFiMessageCatalogManager, CFiMessageCatalogManager>(out, destroy);
}

void getTraceLogSingleton(CFiTraceLogPtr &out, bool destroy)
{
    accessSingleton<CFiTraceLog, CFiTraceLog>(out, destroy);
}

void getErrorManagerSingleton(CFiErrorManagerPtr &out, bool destroy)
{
    accessSingleton<CFiErrorManager, CFiErrorManager>(out, destroy);
}

void getPrivateDataManagerSingleton(CFiPrivateDataManagerPtr &out, bool destroy)
{
    accessSingleton<CFiPrivateDataManager, CFiPrivateDataManager>(out, destroy);
}

void getSessionManagerSingleton(CFiSessionManagerPtr &out, bool destroy)
{
    accessSingleton<CFiSessionManager, CFiSessionManager>(out, destroy);
}

CFiTraceLogPtr processTraceLog()
{
    CFiTraceLogPtr log;
    getTraceLogSingleton(log, false);
    return log;
}
