#ifndef HPEVA_SINGLETONS_H
#define HPEVA_SINGLETONS_H

#include "cfimessagecatalogmanager.h"
#include "cfipluginbase.h"
#include "cfiprivatedatamanager.h"
#include "cfisessionmanager.h"
#include "hpeva_process.h"

using CFiPluginPtr =
    qorin_pdk_4_4::CFiSmartPtr<qorin_pdk_4_4::CFiPluginBase,
                               qorin_pdk_4_4::CFiContextSingletonAllocator<qorin_pdk_4_4::CFiPluginBase>>;

// The six process-wide objects; the trace log and the error manager, which every layer
// reaches, are in hpeva_process.h. Each accessor fills out with the one object, creating it
// when there is none; with destroy set it first drops the process's reference, so that a
// later call builds a fresh object.
void getPluginSingleton(CFiPluginPtr &out, bool destroy);
void getCatalogManagerSingleton(qorin_pdk_4_4::CFiCatalogManagerPtr &out, bool destroy);
void getPrivateDataManagerSingleton(qorin_pdk_4_4::CFiPrivateDataManagerPtr &out, bool destroy);
void getSessionManagerSingleton(qorin_pdk_4_4::CFiSessionManagerPtr &out, bool destroy);

// Drops the handlers through which init connected the host's callback to the error
// manager. Only for the library's unload, after the process-wide objects: a registered
// handler must not go while its error manager can still call it.
void releaseErrorHandlers();

#endif
