#ifndef CFISEMAPHOREGUARD_H
#define CFISEMAPHOREGUARD_H

#include "cfiexport.h"
#include "cfisemaphoreposix.h"

namespace qorin_pdk_4_4 {

// Holds a semaphore for a scope; a null pointer holds nothing.
class QORIN_PDK_API CFiSemaphoreGuard {
public:
    explicit CFiSemaphoreGuard(CFiSemaphorePosix *semaphore);
    ~CFiSemaphoreGuard();

    CFiSemaphoreGuard(const CFiSemaphoreGuard &) = delete;
    CFiSemaphoreGuard &operator=(const CFiSemaphoreGuard &) = delete;

private:
    CFiSemaphorePosix *m_semaphore;
};

}  // namespace qorin_pdk_4_4

#endif
