#include "cfimutexwrapper.h"

namespace qorin_pdk_4_4 {

CFiMutexWrapper::CFiMutexWrapper(ACE_Recursive_Thread_Mutex *mutex, bool acquireNow) : m_mutex(mutex), m_held(false)
{
    if (acquireNow) {
        acquire();
    }
}

CFiMutexWrapper::~CFiMutexWrapper()
{
    release();
}

void CFiMutexWrapper::acquire()
{
    if (m_mutex == nullptr || m_held) {
        return;
    }
    m_mutex->acquire();
    m_held = true;
}

void CFiMutexWrapper::release()
{
    if (m_mutex != nullptr && m_held) {
        m_mutex->release();
        m_held = false;
    }
}

}  // namespace qorin_pdk_4_4
