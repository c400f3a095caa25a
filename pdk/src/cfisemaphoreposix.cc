#include "cfisemaphoreposix.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
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

namespace {

// Opens the lock file for flock, which needs no more than reading, so a file that another
// account made serves every account that may read it. O_CREAT only with O_EXCL: on a file
// of another account in a sticky directory (/tmp, /run/lock) it fails under
// fs.protected_regular even where the mode allows. The file holds nothing, so a new one is
// readable by all whatever the umask; who may take the lock is the lock directory's choice.
int openLockFile(const std::string &path)
{
    for (;;) {
        int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
        if (fd >= 0 || errno != ENOENT) {
            return fd;
        }
        fd = ::open(path.c_str(), O_RDONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0644);
        if (fd >= 0) {
            ::fchmod(fd, 0644);
            return fd;
        }
        if (errno != EEXIST) {
            return fd;
        }
        // Another process made it just now: open that one.
    }
}

}  // namespace

void CFiSemaphorePosix::wait()
{
    m_local.lock();
    if (m_path.empty()) {
        return;
    }
    int fd = openLockFile(m_path);
    if (fd < 0) {
        int error = errno;
        m_local.unlock();
        std::string what = "cannot open the lock file " + m_path;
        if (error == EACCES) {
            what += " (this account may not read it or reach its directory; a lock file that another account "
                    "made with mode 0600 can be given mode 0644, or removed while no SSSU runs)";
        }
        throw std::system_error(error, std::generic_category(), what);
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
