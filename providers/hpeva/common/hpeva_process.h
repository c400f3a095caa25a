#ifndef HPEVA_PROCESS_H
#define HPEVA_PROCESS_H

#include "cfierrormanager.h"
#include "cfitracelog.h"

// The two process-wide objects every layer of the provider reaches: the trace log and the
// error manager whose slots hold each thread's last message. The other singletons, which
// only the entries need, are in hpeva_singletons.h.

// Each accessor fills out with the one object, creating it when there is none; with destroy
// set it first drops the process's reference, so that a later call builds a fresh object.
void getTraceLogSingleton(qorin_pdk_4_4::CFiTraceLogPtr &out, bool destroy);
void getErrorManagerSingleton(qorin_pdk_4_4::CFiErrorManagerPtr &out, bool destroy);

// The process's trace log and error manager, made on first use.
qorin_pdk_4_4::CFiTraceLogPtr processTraceLog();
qorin_pdk_4_4::CFiErrorManagerPtr processErrorManager();

#endif
