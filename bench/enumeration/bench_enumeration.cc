// enumerate_nodes through dlopen, as a host calls it, for one cell of 10,000 disks listed by
// evasim: wall time and peak memory, with the provider's share beside the simulator's, and the
// host's peak against the size of the disk listing SSSU prints (target: at most 3 times).
//
// Each measured start runs in a fresh child process, so that its peak memory is its own:
// RUSAGE_SELF is the host with the provider, RUSAGE_CHILDREN the SSSU runs (evasim). The
// simulator's own peak comes from a run of the listing alone: the exec pipe starts SSSU
// through a helper that shares the host's memory, whose peak RUSAGE_CHILDREN would report.
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "../bench_options.h"
#include "../bench_support.h"
#include "../provider_child.h"
#include "host_context.h"
#include "provider_library.h"
#include "result_lists.h"

namespace {

const double kTarget = 3.0;

struct Sample {
    int32_t firstResult = -1;   // the first call: SSSU's version check, discovery, the listing
    int32_t secondResult = -1;  // the next call: the listing alone
    int32_t disks = 0;
    double firstWall = 0, secondWall = 0;
    double providerCpu = 0, evasimCpu = 0;
    long providerPeakKb = 0;
};

int32_t listAll(ProviderLibrary &lib, int32_t &count, double &wall)
{
    qrn_node_list *list = nullptr;
    count = 0;
    auto begun = std::chrono::steady_clock::now();
    int32_t rc = lib->enumerate_nodes(&list, &count, 0, nullptr);
    wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count();
    result_lists::freeList(list);
    return rc;
}

// The child: load, start, list twice, stop; the sample goes back through fd.
[[noreturn]] void measure(const std::string &library, int fd)
{
    Sample s;
    bench::withStartedProvider("bench_enumeration", library, [&s](ProviderLibrary &lib) {
        s.firstResult = listAll(lib, s.disks, s.firstWall);
        s.secondResult = listAll(lib, s.disks, s.secondWall);
    });
    rusage self{}, children{};
    getrusage(RUSAGE_SELF, &self);
    getrusage(RUSAGE_CHILDREN, &children);
    s.providerCpu = bench::seconds(self.ru_utime) + bench::seconds(self.ru_stime);
    s.evasimCpu = bench::seconds(children.ru_utime) + bench::seconds(children.ru_stime);
    s.providerPeakKb = self.ru_maxrss;
    ssize_t written = write(fd, &s, sizeof s);
    _exit(written == static_cast<ssize_t>(sizeof s) ? 0 : 1);
}

// What SSSU prints for the provider's listing of the cell's disks, run here on its own: its
// size in bytes and the simulator's peak memory in KiB, or -1 bytes when it did not run.
struct Listing {
    long long bytes = -1;
    long peakKb = 0;
};

Listing listDisks(const std::string &evasim, const std::string &dir)
{
    Listing listing;
    const std::string script = dir + "/list_disks";
    std::ofstream(script) << "select manager cv1 user=evasim password=evasim\nselect cell \"EVA01\"\n"
                             "LS VDISK FULL XML\nexit\n";
    int ends[2];
    if (pipe(ends) != 0) {
        return listing;
    }
    const std::string file = "FILE " + script;
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        close(ends[1]);
        execl(evasim.c_str(), evasim.c_str(), file.c_str(), static_cast<char *>(nullptr));
        _exit(127);
    }
    close(ends[1]);
    long long bytes = 0;
    char buffer[65536];
    ssize_t got;
    while ((got = read(ends[0], buffer, sizeof buffer)) > 0) {
        bytes += got;
    }
    close(ends[0]);
    int status = 0;
    rusage usage{};
    if (child > 0 && wait4(child, &status, 0, &usage) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0) {
        listing.bytes = bytes;
        listing.peakKb = usage.ru_maxrss;
    }
    return listing;
}

}  // namespace

int main(int argc, char **argv)
{
    long long disksOption = 10000;
    long long roundsOption = 3;
    bench::readOptions(argc, argv, "bench_enumeration",
                       "Usage: bench_enumeration [--disks N] [--rounds N]\n\n"
                       "Times enumerate_nodes of libtamlin.so through dlopen against an evasim cell of N\n"
                       "disks (default 10000), each round in a fresh process, and prints wall time and\n"
                       "CPU of the provider beside those of the simulator, and the host's peak memory\n"
                       "against the size of SSSU's disk listing. Fails when that peak is more than " +
                           std::to_string(static_cast<int>(kTarget)) + "\ntimes the listing.\n",
                       {{"--disks", &disksOption, 1, 10000000}, {"--rounds", &roundsOption, 1, 1000}});
    const int disks = static_cast<int>(disksOption);
    const int rounds = static_cast<int>(roundsOption);

    const std::string bin = TAMLIN_BENCH_BIN_DIR;
    const std::string library = std::string(TAMLIN_BENCH_LIB_DIR) + "/libtamlin.so";
    const std::string dir = bench::makeSite("bench_enumeration", bin + "/evasim");
    if (dir.empty()) {
        return 1;
    }

    std::printf("Making a cell of %d disks with evasim ...\n", disks);
    std::fflush(stdout);
    if (bench::run(bin + "/evasim init --servers 1 --cells 1 --hosts 4 --disks " + std::to_string(disks) +
                   " >/dev/null") != 0) {
        std::fprintf(stderr, "bench_enumeration: evasim init failed\n");
        return 1;
    }

    const Listing listing = listDisks(bin + "/evasim", dir);
    if (listing.bytes <= 0) {
        std::fprintf(stderr, "bench_enumeration: evasim did not list the disks\n");
        return 1;
    }

    std::printf("\n%-5s %8s %12s %12s %13s %13s %12s %9s\n", "round", "disks", "first s", "listing s", "provider cpu",
                "evasim cpu", "provider MiB", "x listing");
    std::vector<double> peaks;
    int failures = 0;
    for (int round = 1; round <= rounds; ++round) {
        int fds[2];
        if (pipe(fds) != 0) {
            std::perror("bench_enumeration: pipe");
            return 1;
        }
        pid_t child = fork();
        if (child == 0) {
            close(fds[0]);
            measure(library, fds[1]);
        }
        close(fds[1]);
        Sample s;
        ssize_t got = read(fds[0], &s, sizeof s);
        close(fds[0]);
        waitpid(child, nullptr, 0);
        if (got != static_cast<ssize_t>(sizeof s) || s.firstResult != 0 || s.secondResult != 0 || s.disks != disks) {
            std::printf("%-5d failed: results %d and %d, %d disks listed\n", round, s.firstResult, s.secondResult,
                        s.disks);
            ++failures;
            continue;
        }
        const double peakRatio = s.providerPeakKb * 1024.0 / static_cast<double>(listing.bytes);
        peaks.push_back(peakRatio);
        std::printf("%-5d %8d %12.3f %12.3f %13.3f %13.3f %12.1f %8.2fx\n", round, s.disks, s.firstWall, s.secondWall,
                    s.providerCpu, s.evasimCpu, s.providerPeakKb / 1024.0, peakRatio);
        std::fflush(stdout);
    }
    std::printf("\nfirst s: the first call, with SSSU's version check and discovery; listing s: the next one.\n"
                "cpu: seconds of the whole child process (provider) and of all its SSSU runs (evasim);\n"
                "provider MiB: peak resident memory of the host process with the provider; x listing: that\n"
                "peak over the size of SSSU's disk listing, %.1f MiB (%lld bytes; evasim's peak in\n"
                "printing it: %.1f MiB).\n",
                static_cast<double>(listing.bytes) / 1048576.0, listing.bytes, listing.peakKb / 1024.0);
    const bool met = !peaks.empty() && failures == 0 && bench::median(peaks) <= kTarget;
    if (!peaks.empty()) {
        std::printf("target: peak within %.0fx the listing (median %.2fx): %s\n", kTarget, bench::median(peaks),
                    met ? "met" : "MISSED");
    }
    std::error_code ignored;
    std::filesystem::remove_all(dir, ignored);
    return met ? 0 : 1;
}
