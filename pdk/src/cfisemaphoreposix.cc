#include "cfisemaphoreposix.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

namespace qorin_pdk_4_4 {

const char *const CFiSemaphorePosix::NAME_FORMAT = "qorin-sem-%d";

CFiSemaphorePosix::CFiSemaphorePosix(int key) : m_key(key), m_heldFd(-1)
{
    if (key != 0) {
        char name[256];
        std::snprintf(name, sizeof name, NAME_FORMAT, key);
        m_path = lockDirectory() + name;
    }
}

CFiSemaphorePosix::~CFiSemaphorePosix()
{
    if (m_heldFd >= 0) {
        ::close(m_heldFd);
    }
}

std::string CFiSemaphorePosix::lockDirectory()
{
    const char *configured = std::getenv("QORIN_LOCK_DIR");
    if (configured != nullptr && *configured != '\0') {
        std::string dir(configured);
        if (dir.back() != '/') {
            dir += '/';
        }
        return dir;
    }
    if (::access("/run/lock", W_OK) == 0) {
        return "/run/lock/";
    }
    return "/tmp/";
}

void CFiSemaphorePosix::wait()
{
    m_local.lock();
    if (m_path.empty()) {
        return;
    }
    // 0666 so that every account that runs a host shares the one lock; the file holds nothing.
    int fd = ::open(m_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0) {
        int error = errno;
        m_local.unlock();
        throw std::system_error(error, std::generic_category(), "cannot open the lock file " + m_path);
    }
    int rc;
    do {
        rc = ::flock(fd, LOCK_EX);
    } while (rc != 0 && errno == EINTR);
    if (rc != 0) {
        int error = errno;
        ::close(fd);
        m_local.unlock();
        throw std::system_error(error, std::generic_category(), "cannot lock " + m_path);
    }
    m_heldFd = fd;
}

void CFiSemaphorePosix::post()
{
    if (m_heldFd >= 0) {
        // Closing the last descriptor of the open file releases the lock.
        int fd = m_heldFd;
        m_heldFd = -1;
        ::close(fd);
    }
    m_local.unlock();
}

}  // namespace qorin_pdk_4_4
