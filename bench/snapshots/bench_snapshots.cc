// select and make through dlopen, as a backup host runs a snapshot group: vsnaps of 64 disks of
// one cell of 10,000 disks played by evasim. Wall time, the SSSU runs of the two entries as
// evasim's history counts them, and the CPU of the provider beside that of its SSSU runs.
//
// The runs are exactly those the provider's design asks for, no more: select reads each disk
// once (REFRESH and FIND in one script); make lists the cell's names for a free name, adds the
// vsnap and reads it back, per disk. That is 64 + 3 x 64 = 256 runs; the benchmark fails on any
// other number, and when the provider's share of the CPU reaches 10%.
//
// Each round runs in a fresh child process on a fresh world: RUSAGE_SELF is the host with the
// provider, RUSAGE_CHILDREN the SSSU runs, both taken around the two entries alone.
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "../bench_options.h"
#include "../provider_child.h"
#include "snapshot_job.h"
#include "text.h"

namespace {

struct Sample {
    int32_t selectResult = -1;
    int32_t makeResult = -1;
    int32_t targets = 0;
    double wall = 0, selectWall = 0;
    double providerCpu = 0, evasimCpu = 0;
};

std::string output(const std::string &command)
{
    std::string text;
    if (FILE *pipe = popen(command.c_str(), "r")) {
        char buffer[65536];
        size_t n;
        while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) {
            text.append(buffer, n);
        }
        pclose(pipe);
    }
    return text;
}

// The UDIDs of count active disks spread over the cell.
std::vector<std::wstring> pickDisks(const std::string &evasim, int count)
{
    std::istringstream in(output(evasim + " show disks --format tsv"));
    std::string line;
    std::string cellWwn;
    std::vector<std::string> wwlunids;
    std::istringstream cells(output(evasim + " show cells --format tsv"));
    while (std::getline(cells, line)) {
        if (line.rfind("EVA01\t", 0) == 0) {
            cellWwn = line.substr(6, line.find('\t', 6) - 6);
        }
    }
    while (std::getline(in, line)) {
        std::vector<std::string> cellsOfRow;
        std::istringstream fields(line);
        for (std::string cell; std::getline(fields, cell, '\t');) {
            cellsOfRow.push_back(cell);
        }
        if (cellsOfRow.size() > 4 && cellsOfRow[2] == "active") {
            wwlunids.push_back(cellsOfRow[4]);
        }
    }
    std::vector<std::wstring> udids;
    for (int i = 0; i < count && !wwlunids.empty(); ++i) {
        std::string udid = "UDID##HP##HSV##" + cellWwn + "##" + wwlunids[wwlunids.size() * i / count];
        for (char &c : udid) {
            c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
        }
        udids.push_back(fromUtf8(udid));
    }
    return udids;
}

// The child: load, start, introduce the disks, then select and make measured; the sample goes
// back through fd.
[[noreturn]] void measure(const std::string &library, const std::string &evasim, const std::vector<std::wstring> &udids,
                          int fd)
{
    Sample s;
    bench::withStartedProvider("bench_snapshots", library, [&](ProviderLibrary &lib) {
        SnapshotJob job(lib, "HPEVA_VSnap", "bench");
        bool added = true;
        for (const std::wstring &udid : udids) {
            added = added && job.add(udid) == 0;  // the first one starts the provider's arrays
        }
        if (!added || bench::run(evasim + " history --clear >/dev/null") != 0) {
            return;
        }
        const double selfBefore = bench::cpuSeconds(RUSAGE_SELF);
        const double childrenBefore = bench::cpuSeconds(RUSAGE_CHILDREN);
        const auto begun = std::chrono::steady_clock::now();
        s.selectResult = job.select();
        s.selectWall = std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count();
        std::vector<std::wstring> targets;
        s.makeResult = job.make(targets);
        s.wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count();
        s.providerCpu = bench::cpuSeconds(RUSAGE_SELF) - selfBefore;
        s.evasimCpu = bench::cpuSeconds(RUSAGE_CHILDREN) - childrenBefore;
        for (const std::wstring &target : targets) {
            s.targets += target.empty() ? 0 : 1;
        }
    });
    const ssize_t written = write(fd, &s, sizeof s);
    _exit(written == static_cast<ssize_t>(sizeof s) ? 0 : 1);
}

// The runs in evasim's history by what they did: each run's commands (logins, options and
// EXIT left out) with the names and numbers blanked, counted.
std::map<std::string, int> runsByKind(const std::string &evasim, int &total)
{
    std::istringstream in(output(evasim + " history --last 0 --format tsv"));
    std::string line;
    std::getline(in, line);
    std::map<std::string, std::string> runs;
    while (std::getline(in, line)) {
        std::vector<std::string> row;
        std::istringstream fields(line);
        for (std::string cell; std::getline(fields, cell, '\t');) {
            row.push_back(cell);
        }
        if (row.size() < 5) {
            continue;
        }
        std::string command = row[4];
        const std::string lower = command.substr(0, 14);
        if (lower.rfind("set option", 0) == 0 || lower.rfind("select ", 0) == 0 || command == "exit") {
            continue;
        }
        if (command.rfind("LS VDISK \"", 0) == 0) {
            command = "LS VDISK \"<copy>\" XML";
        } else if (command.rfind("ADD SNAPSHOT", 0) == 0) {
            command = "ADD SNAPSHOT ... ALLOCATION_POLICY=DEMAND";
        } else if (command.rfind("FIND VDISK", 0) == 0) {
            command = "FIND VDISK LUNWWID=<wwn> XML";
        }
        std::string &run = runs[row[0]];
        run += (run.empty() ? "" : " + ") + command;
    }
    std::map<std::string, int> kinds;
    for (const auto &kv : runs) {
        ++kinds[kv.second];
    }
    total = static_cast<int>(runs.size());
    return kinds;
}

}  // namespace

int main(int argc, char **argv)
{
    long long disksOption = 10000;
    long long copiesOption = 64;
    long long roundsOption = 3;
    bench::readOptions(argc, argv, "bench_snapshots",
                       "Usage: bench_snapshots [--disks N] [--copies N] [--rounds N]\n\n"
                       "Times select and make of libtamlin.so through dlopen, vsnaps of N copies (default\n"
                       "64) of disks of an evasim cell of N disks (default 10000), each round in a fresh\n"
                       "process on a fresh world. Prints wall time, the SSSU runs of the two entries and\n"
                       "the CPU of the provider beside its SSSU runs'; fails when the runs are not one per\n"
                       "disk for select and three per disk for make, or the provider's share of the CPU\n"
                       "reaches 10%.\n",
                       {{"--disks", &disksOption, 1, 10000000},
                        {"--copies", &copiesOption, 1, 100000},
                        {"--rounds", &roundsOption, 1, 1000}});
    const int disks = static_cast<int>(disksOption);
    const int copies = static_cast<int>(copiesOption);
    const int rounds = static_cast<int>(roundsOption);
    if (copies > disks) {
        std::fprintf(stderr, "bench_snapshots: --copies can't be more than --disks\n");
        return 2;
    }

    const std::string bin = TAMLIN_BENCH_BIN_DIR;
    const std::string evasim = bin + "/evasim";
    const std::string library = std::string(TAMLIN_BENCH_LIB_DIR) + "/libtamlin.so";
    const std::string dir = bench::makeSite("bench_snapshots", evasim);
    if (dir.empty()) {
        return 1;
    }

    const int expectedRuns = copies + 3 * copies;
    std::printf("vsnaps of %d disks of a cell of %d, select and make through dlopen\n", copies, disks);
    std::printf("\n%-5s %9s %9s %6s %13s %12s %15s\n", "round", "select s", "total s", "runs", "provider cpu",
                "evasim cpu", "provider share");
    int failures = 0;
    std::map<std::string, int> kinds;
    for (int round = 1; round <= rounds; ++round) {
        if (bench::run(evasim + " init --servers 1 --cells 1 --hosts 4 --disks " + std::to_string(disks) +
                       " >/dev/null") != 0) {
            std::fprintf(stderr, "bench_snapshots: evasim init failed\n");
            return 1;
        }
        const std::vector<std::wstring> udids = pickDisks(evasim, copies);
        int fds[2];
        if (udids.size() != static_cast<size_t>(copies) || pipe(fds) != 0) {
            std::fprintf(stderr, "bench_snapshots: no %d disks to copy\n", copies);
            return 1;
        }
        std::fflush(stdout);
        const pid_t child = fork();
        if (child == 0) {
            close(fds[0]);
            measure(library, evasim, udids, fds[1]);
        }
        close(fds[1]);
        Sample s;
        const ssize_t got = read(fds[0], &s, sizeof s);
        close(fds[0]);
        waitpid(child, nullptr, 0);
        int runs = 0;
        kinds = runsByKind(evasim, runs);
        const double share = s.providerCpu / (s.providerCpu + s.evasimCpu);
        if (got != static_cast<ssize_t>(sizeof s) || s.selectResult != 0 || s.makeResult != 0 || s.targets != copies) {
            std::printf("%-5d failed: select %d, make %d, %d targets\n", round, s.selectResult, s.makeResult,
                        s.targets);
            ++failures;
            continue;
        }
        std::printf("%-5d %9.3f %9.3f %6d %13.3f %12.3f %14.1f%%%s\n", round, s.selectWall, s.wall, runs, s.providerCpu,
                    s.evasimCpu, 100.0 * share,
                    runs != expectedRuns ? "  (runs: expected " : (share >= 0.10 ? "  (share: 10% or more)" : ""));
        if (runs != expectedRuns) {
            std::printf("%d)\n", expectedRuns);
        }
        failures += runs != expectedRuns || share >= 0.10 ? 1 : 0;
    }
    std::printf("\nSSSU runs of the last round, by what each did:\n");
    for (const auto &kv : kinds) {
        std::printf("  %5d  %s\n", kv.second, kv.first.c_str());
    }
    std::printf("\nselect s, total s: wall time of select, and of select and make; runs: SSSU runs of the two\n"
                "entries (expected %d: one per disk for select, three per disk for make); cpu: seconds of\n"
                "the host process with the provider and of its SSSU runs, during the two entries.\n",
                expectedRuns);
    std::error_code ignored;
    std::filesystem::remove_all(dir, ignored);
    return failures == 0 ? 0 : 1;
}
