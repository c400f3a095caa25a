// What the benchmarks that load the provider share: each measures in a child process of its
// own, so that the figures (CPU, peak memory) are the provider's and evasim's alone.
#ifndef BENCH_PROVIDER_CHILD_H
#define BENCH_PROVIDER_CHILD_H

#include <sys/wait.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "bench_support.h"
#include "host_context.h"
#include "provider_library.h"

namespace bench {

// A shell command's exit status, -1 when it did not exit.
inline int run(const std::string &command)
{
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// A provider install of its own below a new directory /tmp/tamlin-bench-*, whose SSSU is the
// simulator and whose one server is cv1, made the process's environment for the provider and
// evasim; the directory, or empty (with the reason printed under name) when it can't be made.
inline std::string makeSite(const char *name, const std::string &evasim)
{
    char pattern[] = "/tmp/tamlin-bench-XXXXXX";
    if (mkdtemp(pattern) == nullptr) {
        std::fprintf(stderr, "%s: can't make a directory in /tmp: %s\n", name, std::strerror(errno));
        return std::string();
    }
    const std::string dir = pattern;
    const std::string root = dir + "/root/";
    std::filesystem::create_directories(root + "ConfigFiles");
    std::filesystem::create_directories(dir + "/sssu");
    std::filesystem::create_symlink(evasim, dir + "/sssu/sssu_linux_x64");
    std::ofstream(root + "ConfigFiles/tamlin.conf")
        << "[DEBUG_TRACE_INFO]\n\"TRACELEVEL\"=dword:00000001\n\n[CLI_TOOL_INFO]\n\"FILEPATH\"=\"" << dir
        << "/sssu/\"\n\"FILENAME\"=\"sssu_linux_x64\"\n\n[MANAGEMENT_APPLIANCE_INFO\\cv1]\n"
           "\"HOSTNAME\"=\"cv1\"\n\"USERNAME\"=\"evasim\"\n\"PASSWORD\"=\"evasim\"\n";
    setenv("QORIN_INSTALL_ROOT", root.c_str(), 1);
    setenv("QORIN_REGISTRY", (dir + "/registry.conf").c_str(), 1);
    setenv("QORIN_LOCK_DIR", dir.c_str(), 1);
    setenv("EVASIM_HOME", (dir + "/evasim").c_str(), 1);
    unsetenv("QORIN_CREDENTIAL_BLOB");
    return dir;
}

// Loads and starts the provider at library, runs body(lib) and stops it; what fails on the way
// is printed under name. Every trace line reaches the host's callback; a host shows only errors.
template <class Body>
void withStartedProvider(const char *name, const std::string &library, Body body)
{
    ProviderLibrary lib;
    if (!lib.open(library)) {
        std::fprintf(stderr, "%s: %s\n", name, lib.error().c_str());
        return;
    }
    HostContext host("en", [](const std::wstring &text, const std::wstring &, int severity) {
        if (severity == 3) {
            std::fprintf(stderr, "%ls\n", text.c_str());
        }
    });
    uint16_t version[4] = {0, 0, 0, 0};
    if (lib->init(host.get(), version) == 0) {
        body(lib);
    }
    lib->fini();
}

}  // namespace bench

#endif
