#ifndef HPEVA_SINGLETON_SLOT_H
#define HPEVA_SINGLETON_SLOT_H

#include <ace/Guard_T.h>
#include <ace/Thread_Mutex.h>

#include "cfismartptr.h"

// One process-wide slot per (interface, concrete class): out gets the one object, made when
// there is none; with destroy set the process's reference goes first, so that a later call
// builds a fresh object. The static pointer and mutex are built on first use and torn down
// when the library is unloaded. Each accessor instantiates this in one source file only.
template <class T, class Concrete>
void accessSingleton(qorin_pdk_4_4::CFiSmartPtr<T, qorin_pdk_4_4::CFiContextSingletonAllocator<T>> &out, bool destroy)
{
    static qorin_pdk_4_4::CFiSmartPtr<T, qorin_pdk_4_4::CFiContextSingletonAllocator<T>> instance;
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

#endif
