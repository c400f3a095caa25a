#ifndef CFIREFCOUNT_H
#define CFIREFCOUNT_H

#include <cstdint>

#include <ace/Thread_Mutex.h>

#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// Reference count shared by every object held through CFiSmartPtr. The operations do not
// lock: the smart pointer holds refCountMutex() around them.
class QORIN_PDK_API CFiRefCount {
public:
    CFiRefCount();
    virtual ~CFiRefCount();

    virtual int32_t addRef();
    virtual int32_t releaseRef();
    virtual int32_t refCount();

    ACE_Thread_Mutex &refCountMutex() { return m_mutex; }

    // Objects of the kit alive in this process; lets a host or test see what exists.
    static int32_t liveObjects();

    CFiRefCount(const CFiRefCount &) = delete;
    CFiRefCount &operator=(const CFiRefCount &) = delete;

private:
    int32_t m_count;
    ACE_Thread_Mutex m_mutex;
};

}  // namespace qorin_pdk_4_4

#endif
