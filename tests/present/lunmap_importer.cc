// A host process for the LUN map's concurrency test: prints "pid <id>", loads the provider,
// presents each disk given to one host as a shared disk (import_resource, flag 0x1) and prints
// "done <i> <result>" after each, so that the test knows how far it got before it kills it.
//
//     lunmap_importer PROVIDER HOST UDID...
#include <cstdio>
#include <string>

#include <unistd.h>

#include "provider_library.h"
#include "text.h"

int main(int argc, char **argv)
{
    if (argc < 3) {
        fprintf(stderr, "usage: lunmap_importer PROVIDER HOST UDID...\n");
        return 2;
    }
    printf("pid %d\n", static_cast<int>(getpid()));
    fflush(stdout);
    ProviderLibrary provider;
    if (!provider.open(argv[1])) {
        fprintf(stderr, "lunmap_importer: %s\n", provider.error().c_str());
        return 3;
    }
    uint16_t version[4] = {0, 0, 0, 0};
    if (provider->init(nullptr, version) != 0) {
        fprintf(stderr, "lunmap_importer: init failed\n");
        return 2;
    }
    std::wstring host = fromUtf8(argv[2]);
    int failures = 0;
    for (int i = 3; i < argc; ++i) {
        std::wstring udid = fromUtf8(argv[i]);
        const int32_t result = provider->import_resource(nullptr, &udid[0], &host[0], nullptr, 0x1, nullptr, nullptr);
        printf("done %d %d\n", i - 3, result);
        fflush(stdout);
        failures += result != 0 ? 1 : 0;
    }
    provider->fini();
    return failures != 0 ? 1 : 0;
}
