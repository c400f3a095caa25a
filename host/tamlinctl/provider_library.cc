#include "provider_library.h"

#include <dlfcn.h>
#include <limits.h>
#include <unistd.h>

#include <filesystem>

ProviderLibrary::~ProviderLibrary()
{
    close();
}

size_t ProviderLibrary::entryCount()
{
    size_t n = 0;
#define TAMLIN_COUNT_ENTRY(name) ++n;
    TAMLIN_ENTRY_NAMES(TAMLIN_COUNT_ENTRY)
#undef TAMLIN_COUNT_ENTRY
    return n;
}

bool ProviderLibrary::open(const std::string &path)
{
    close();
    m_handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (m_handle == nullptr) {
        const char *reason = dlerror();
        m_error = "cannot load " + path + ": " + (reason != nullptr ? reason : "unknown reason");
        return false;
    }
#define TAMLIN_RESOLVE_ENTRY(name)                                                                                     \
    m_entries.name = reinterpret_cast<decltype(m_entries.name)>(dlsym(m_handle, "tamlin_fi_pgn_" #name));              \
    if (m_entries.name == nullptr) {                                                                                   \
        m_missing.push_back("tamlin_fi_pgn_" #name);                                                                   \
    }
    TAMLIN_ENTRY_NAMES(TAMLIN_RESOLVE_ENTRY)
#undef TAMLIN_RESOLVE_ENTRY
    if (!m_missing.empty()) {
        m_error = path + " lacks " + std::to_string(m_missing.size()) + " of the " + std::to_string(entryCount()) +
                  " entries";
        return false;
    }
    return true;
}

void ProviderLibrary::close()
{
    if (m_handle != nullptr) {
        dlclose(m_handle);
        m_handle = nullptr;
    }
    m_entries = Entries();
    m_missing.clear();
    m_error.clear();
}

std::string ProviderLibrary::defaultPath()
{
    char self[PATH_MAX];
    ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
    if (n <= 0) {
        return "libtamlin.so";
    }
    std::string exe(self, static_cast<size_t>(n));
    std::string dir = exe.substr(0, exe.rfind('/'));
    // Installed, the provider lies where the layout puts it; in the build tree, in lib/.
    const std::string installed = dir + "/" TAMLIN_BIN_TO_PROVIDER;
    const std::string path = access(installed.c_str(), F_OK) == 0 ? installed : dir + "/../lib/libtamlin.so";
    return std::filesystem::path(path).lexically_normal().string();
}
