#include "state_location.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace evasim {

namespace {

std::string dirOf(const std::string &path)
{
    const size_t at = path.rfind('/');
    if (at == std::string::npos) {
        return ".";
    }
    if (at == 0) {
        return "/";
    }
    return path.substr(0, at);
}

std::string startedFrom(const char *argv0)
{
    const std::string name = argv0 ? argv0 : "";
    if (name.find('/') != std::string::npos) {
        return dirOf(name);
    }
    if (!name.empty()) {
        if (const char *path = std::getenv("PATH")) {
            const std::string list = path;
            size_t start = 0;
            while (start <= list.size()) {
                size_t end = list.find(':', start);
                if (end == std::string::npos) {
                    end = list.size();
                }
                std::string dir = list.substr(start, end - start);
                if (dir.empty()) {
                    dir = ".";
                }
                const std::string candidate = dir + "/" + name;
                if (::access(candidate.c_str(), X_OK) == 0) {
                    return dir;
                }
                start = end + 1;
            }
        }
    }
    char buf[PATH_MAX];
    const ssize_t n = ::readlink("/proc/self/exe", buf, sizeof buf - 1);
    if (n > 0) {
        return dirOf(std::string(buf, static_cast<size_t>(n)));
    }
    return ".";
}

// The directories a package puts programs in: nothing may be written beside them.
bool systemProgramDirectory(const std::string &dir)
{
    for (const char *system : {"/usr/bin", "/usr/sbin", "/bin", "/sbin", "/usr/local/bin", "/usr/local/sbin"}) {
        if (dir == system) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::string StateLocation::directory(const char *argv0)
{
    const char *home = std::getenv("EVASIM_HOME");
    if (home && *home) {
        return home;
    }
    const std::string started = startedFrom(argv0);
    if (!systemProgramDirectory(started)) {
        return started + "/evasim.d";
    }
    // An installed evasim keeps each user's world in that user's state directory.
    const char *state = std::getenv("XDG_STATE_HOME");
    if (state && *state == '/') {
        return std::string(state) + "/evasim";
    }
    const char *user = std::getenv("HOME");
    return std::string(user && *user ? user : "/tmp") + "/.local/state/evasim";
}

std::string StateLocation::database(const char *argv0)
{
    return directory(argv0) + "/evasim.db";
}

void StateLocation::ensureDirectory(const std::string &dir)
{
    struct stat st {};
    if (::stat(dir.c_str(), &st) == 0) {
        if (S_ISDIR(st.st_mode)) {
            return;
        }
        throw std::runtime_error(dir + " exists and is not a directory");
    }
    const std::string parent = dirOf(dir);
    if (parent != dir && parent != "/" && parent != ".") {
        ensureDirectory(parent);
    }
    if (::mkdir(dir.c_str(), 0755) != 0 && errno != EEXIST) {
        throw std::runtime_error("cannot make the state directory " + dir + ": " + std::strerror(errno));
    }
}

}  // namespace evasim
