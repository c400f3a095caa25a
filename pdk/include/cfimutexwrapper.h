#ifndef CFIMUTEXWRAPPER_H
#define CFIMUTEXWRAPPER_H

#include <ace/Recursive_Thread_Mutex.h>

#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// Scoped hold of a recursive mutex that may be null; releases on destruction.
class QORIN_PDK_API CFiMutexWrapper {
public:
    CFiMutexWrapper(ACE_Recursive_Thread_Mutex *mutex, bool acquireNow);
    ~CFiMutexWrapper();

    void acquire();
    void release();
    bool isHeld() const { return m_held; }

    CFiMutexWrapper(const CFiMutexWrapper &) = delete;
    CFiMutexWrapper &operator=(const CFiMutexWrapper &) = delete;

private:
    ACE_Recursive_Thread_Mutex *m_mutex;
    bool m_held;
};

}  // namespace qorin_pdk_4_4

#endif
