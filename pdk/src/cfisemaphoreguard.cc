#include "cfisemaphoreguard.h"

namespace qorin_pdk_4_4 {

CFiSemaphoreGuard::CFiSemaphoreGuard(CFiSemaphorePosix *semaphore) : m_semaphore(semaphore)
{
    if (m_semaphore != nullptr) {
        m_semaphore->wait();
    }
}

CFiSemaphoreGuard::~CFiSemaphoreGuard()
{
    if (m_semaphore != nullptr) {
        m_semaphore->post();
    }
}

}  // namespace qorin_pdk_4_4
