#ifndef CFIENV_H
#define CFIENV_H

#include <cstdint>
#include <memory>
#include <string>

#include "cfiexecpipebase.h"
#include "cfiexport.h"
#include "cfisemaphoreposix.h"

namespace qorin_pdk_4_4 {

// What a provider asks of the machine besides its files: the clock, sleeping, running a
// child process, the machine-wide lock and the machine's name. Code that waits or starts a program goes through
// an env and never to the system directly, so that a test can put a recording clock or an
// in-process runner in its place. CFiEnv::defaultEnv() is the real one and what every
// object uses unless given another; CFiEnvWrapper forwards each call to another env, so a
// test overrides only the part it replaces.
class QORIN_PDK_API CFiEnv {
public:
    virtual ~CFiEnv();

    // The real env: one per process, shared by every thread.
    static CFiEnv *defaultEnv();

    // A monotonic clock, in microseconds from an arbitrary start.
    virtual uint64_t nowMicros() = 0;
    // Blocks the calling thread for seconds.
    virtual void sleepForSeconds(uint32_t seconds) = 0;
    // An exec pipe for one run of a child process, closing its child after Exec.
    virtual std::unique_ptr<CFiExecPipeBase> newExecPipe() = 0;
    // The machine-wide lock named by key (CFiSemaphorePosix), made at the first call for
    // that key and kept for the life of the process.
    virtual CFiSemaphorePosix &machineLock(int key) = 0;
    // This machine's name (CFiNetwork::getComputerName); empty when it has none.
    virtual std::string computerName() = 0;
};

// An env that hands every call to target; override what a test replaces.
class QORIN_PDK_API CFiEnvWrapper : public CFiEnv {
public:
    explicit CFiEnvWrapper(CFiEnv *target = CFiEnv::defaultEnv()) : m_target(target) {}

    CFiEnv *target() const { return m_target; }

    uint64_t nowMicros() override { return m_target->nowMicros(); }
    void sleepForSeconds(uint32_t seconds) override { m_target->sleepForSeconds(seconds); }
    std::unique_ptr<CFiExecPipeBase> newExecPipe() override { return m_target->newExecPipe(); }
    CFiSemaphorePosix &machineLock(int key) override { return m_target->machineLock(key); }
    std::string computerName() override { return m_target->computerName(); }

private:
    CFiEnv *m_target;
};

}  // namespace qorin_pdk_4_4

#endif
