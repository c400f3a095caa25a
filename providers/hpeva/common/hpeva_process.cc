#include "hpeva_process.h"

#include "hpeva_singleton_slot.h"

using namespace qorin_pdk_4_4;

void getTraceLogSingleton(CFiTraceLogPtr &out, bool destroy)
{
    accessSingleton<CFiTraceLog, CFiTraceLog>(out, destroy);
}

void getErrorManagerSingleton(CFiErrorManagerPtr &out, bool destroy)
{
    accessSingleton<CFiErrorManager, CFiErrorManager>(out, destroy);
}

CFiTraceLogPtr processTraceLog()
{
    CFiTraceLogPtr log;
    getTraceLogSingleton(log, false);
    return log;
}

CFiErrorManagerPtr processErrorManager()
{
    CFiErrorManagerPtr errors;
    getErrorManagerSingleton(errors, false);
    return errors;
}
