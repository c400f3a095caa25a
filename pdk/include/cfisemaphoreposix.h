#ifndef CFISEMAPHOREPOSIX_H
#define CFISEMAPHOREPOSIX_H

#include <mutex>
#include <string>

#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// A lock with one unit. A non-zero key names it machine-wide ("qorin-sem-<key>"): an
// advisory file lock in $QORIN_LOCK_DIR, else /run/lock when writable, else /tmp, so that
// every process that uses the key shares it and the kernel frees it when its holder dies.
// Every account that can read the file shares the lock, whichever account made it and
// whatever the umask (a new file is made readable by all); restricting the lock to some
// accounts is the lock directory's business. Key 0 makes a lock of this process only.
//
// Each wait opens a descriptor of its own, so threads of one process exclude each other
// as processes do. post must come from the thread that waited.
class QORIN_PDK_API CFiSemaphorePosix {
public:
    static const char *const NAME_FORMAT;  // "qorin-sem-%d"

    explicit CFiSemaphorePosix(int key = 0);
    ~CFiSemaphorePosix();

    // Blocks without time limit until the unit is free. Throws std::system_error naming the
    // lock file when it can't be opened or locked, rather than running unguarded.
    void wait();
    void post();

    int getKey() const { return m_key; }
    // The lock file of a named lock; empty for key 0.
    const std::string &getPath() const { return m_path; }

    CFiSemaphorePosix(const CFiSemaphorePosix &) = delete;
    CFiSemaphorePosix &operator=(const CFiSemaphorePosix &) = delete;

private:
    static std::string lockDirectory();

    int m_key;
    std::string m_path;
    // Threads of this process queue here first, so the file lock sees one waiter per process.
    std::mutex m_local;
    int m_heldFd;
};

}  // namespace qorin_pdk_4_4

#endif
