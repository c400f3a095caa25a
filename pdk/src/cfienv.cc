#include "cfienv.h"

#include <ace/OS_NS_unistd.h>
#include <ace/Time_Value.h>

#include <chrono>
#include <map>
#include <mutex>

#include "cfiexecpipeposix.h"
#include "cfinetwork.h"

namespace qorin_pdk_4_4 {

namespace {

class PosixEnv : public CFiEnv {
public:
    uint64_t nowMicros() override
    {
        return static_cast<uint64_t>(
            std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now().time_since_epoch())
                .count());
    }

    void sleepForSeconds(uint32_t seconds) override { ACE_OS::sleep(ACE_Time_Value(seconds)); }

    std::unique_ptr<CFiExecPipeBase> newExecPipe() override
    {
        return std::unique_ptr<CFiExecPipeBase>(new CFiExecPipePosix(1));
    }

    CFiSemaphorePosix &machineLock(int key) override
    {
        std::lock_guard<std::mutex> guard(m_locksLock);
        std::unique_ptr<CFiSemaphorePosix> &lock = m_locks[key];
        if (!lock) {
            lock.reset(new CFiSemaphorePosix(key));
        }
        return *lock;
    }

    std::string computerName() override { return CFiNetwork::getComputerName(); }

private:
    std::mutex m_locksLock;
    // Closed when the library unloads; the kernel frees the lock of a process that dies.
    std::map<int, std::unique_ptr<CFiSemaphorePosix>> m_locks;
};

}  // namespace

CFiEnv::~CFiEnv() = default;

CFiEnv *CFiEnv::defaultEnv()
{
    static PosixEnv env;
    return &env;
}

}  // namespace qorin_pdk_4_4
