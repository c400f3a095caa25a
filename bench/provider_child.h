// What the benchmarks that load the provider share: each measures in a child process of its
// own, so that the figures (CPU, peak memory) are the provider's and evasim's alone.
#ifndef BENCH_PROVIDER_CHILD_H
#define BENCH_PROVIDER_CHILD_H

#include <sys/wait.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
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
