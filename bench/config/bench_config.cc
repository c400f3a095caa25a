// The install path asked for as often as one start of the provider asks (each location of the
// trace log, the configuration and the catalogs asks again) from a registry stand-in of
// 0.9 MB, and the same registry read once from the start.
#include <benchmark/benchmark.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "cficonfigurationpathtool.h"
#include "cficonfigurationtext.h"

using namespace qorin_pdk_4_4;

namespace {

const int kAsksPerStart = 5;

struct Registry {
    std::string dir;
    std::string file;
    std::string text;

    Registry()
    {
        char pattern[] = "/tmp/bench-registry-XXXXXX";
        dir = mkdtemp(pattern) != nullptr ? pattern : "/tmp";
        file = dir + "/registry.conf";
        // Software keys of a busy machine, the provider's own among them.
        for (int key = 0; text.size() < 900 * 1024; ++key) {
            text += "[SOFTWARE\\Vendor" + std::to_string(key % 97) + "\\Product" + std::to_string(key) + "]\n";
            for (int value = 0; value < 8; ++value) {
                text += "\"Setting" + std::to_string(value) + "\"=\"C:\\\\Program Files\\\\Product" +
                        std::to_string(key) + "\\\\bin\"\n";
            }
        }
        text += "[SOFTWARE\\Orvanta\\Qorin]\n\"InstallDir64\"=\"/opt/qorin/\"\n";
        std::ofstream(file) << text;
        setenv("QORIN_REGISTRY", file.c_str(), 1);
    }
    ~Registry()
    {
        unlink(file.c_str());
        rmdir(dir.c_str());
    }
};

Registry &registry()
{
    static Registry made;
    return made;
}

void BM_InstallPathOfOneStart(benchmark::State &state)
{
    registry();
    for (auto _ : state) {
        for (int ask = 0; ask < kAsksPerStart; ++ask) {
            ACE_WString path;
            benchmark::DoNotOptimize(CFiConfigurationPathTool::getInstallPath(path));
        }
    }
    state.counters["registry_bytes"] = static_cast<double>(registry().text.size());
}
BENCHMARK(BM_InstallPathOfOneStart)->Unit(benchmark::kMillisecond);

void BM_ReadTheRegistryOnce(benchmark::State &state)
{
    const std::string &text = registry().text;
    for (auto _ : state) {
        CFiConfigurationText parsed;
        benchmark::DoNotOptimize(parsed.parse(text));
    }
}
BENCHMARK(BM_ReadTheRegistryOnce)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
