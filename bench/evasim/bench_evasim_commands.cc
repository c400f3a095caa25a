// What single commands cost the simulator on a cell of 10,000 disks, run as the provider runs
// SSSU (a script file, the output read whole through a pipe): the CPU time of the evasim process
// (user and system, from wait4) for one ADD SNAPSHOT run and one LS VDISK "<path>" XML run, and the
// wall and CPU time of LS VDISK FULL XML. Prints each run and the medians; exits 1 when a median
// misses its target (50 ms of CPU for the single commands, 1 s of wall time for the full listing).
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "../bench_options.h"

extern char **environ;

namespace {

struct Cost {
    double cpu = 0;   // seconds of user and system time of the child
    double wall = 0;  // seconds from start to exit
    size_t bytes = 0;
    int status = -1;
};

// Runs the program with its output read whole, as the provider's exec pipe does.
Cost run(const std::vector<std::string> &args)
{
    std::vector<char *> argv;
    for (const std::string &a : args) {
        argv.push_back(const_cast<char *>(a.c_str()));
    }
    argv.push_back(nullptr);
    int out[2];
    if (::pipe(out) != 0) {
        return {};
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    posix_spawn_file_actions_addclose(&actions, out[0]);
    const auto start = std::chrono::steady_clock::now();
    pid_t pid = 0;
    Cost cost;
    if (posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ) != 0) {
        posix_spawn_file_actions_destroy(&actions);
        return cost;
    }
    posix_spawn_file_actions_destroy(&actions);
    ::close(out[1]);
    char buf[1 << 16];
    for (ssize_t n; (n = ::read(out[0], buf, sizeof buf)) > 0;) {
        cost.bytes += static_cast<size_t>(n);
    }
    ::close(out[0]);
    int status = 0;
    rusage usage{};
    ::wait4(pid, &status, 0, &usage);
    cost.wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    cost.cpu = static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
               static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
    cost.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return cost;
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

std::string script(const std::string &dir, const std::string &name, const std::string &command)
{
    std::string const path = dir + "/" + name;
    std::ofstream(path) << "set option NOCOMMAND_DELAY\nset option DISPLAY_WIDTH=200\n"
                           "set option ON_ERROR=EXIT_ON_ERROR\nselect manager cv1 user=evasim password=evasim\n"
                           "select cell \"EVA01\"\n"
                        << command << "\nexit\n";
    return path;
}

std::string disk(long n)
{
    char path[96];
    // As the generator spreads them over its ten folders.
    std::snprintf(path, sizeof path, "\\Virtual Disks\\folder%02ld\\vd%05ld\\ACTIVE", (n - 1) % 10 + 1, n);
    return path;
}

}  // namespace

int main(int argc, char **argv)
{
    long long disksOption = 10000;
    long long runsOption = 7;
    bench::readOptions(argc, argv, "bench_evasim_commands",
                       "Usage: bench_evasim_commands [--disks N] [--runs N]\n\n"
                       "On a generated cell of N disks (10000), times N runs (7) each of one ADD SNAPSHOT,\n"
                       "one LS VDISK \"<path>\" XML (CPU of the evasim process, target 50 ms) and of\n"
                       "LS VDISK FULL XML (wall time, target 1 s); fails when a median misses its target.\n",
                       {{"--disks", &disksOption, 1, 10000000}, {"--runs", &runsOption, 1, 1000}});
    const long disks = static_cast<long>(disksOption);
    const int runs = static_cast<int>(runsOption);

    std::string self = argv[0];
    std::string const evasim = self.substr(0, self.rfind('/') + 1) + "evasim";
    char dir[] = "/tmp/bench_evasim_commands_XXXXXX";
    if (!::mkdtemp(dir)) {
        std::perror("bench_evasim_commands: mkdtemp");
        return 1;
    }
    ::setenv("EVASIM_HOME", dir, 1);
    const Cost init = run({evasim, "init", "--cells", "1", "--disks", std::to_string(disks), "--hosts", "4",
                           "--presented", "100", "--snapshots", "100"});
    if (init.status != 0) {
        std::fprintf(stderr, "bench_evasim_commands: %s init failed\n", evasim.c_str());
        return 1;
    }

    struct Case {
        const char *name;
        double target;
        bool byCpu;
        std::vector<double> cpu, wall;
    };
    std::vector<Case> cases{{"ADD SNAPSHOT", 0.050, true, {}, {}},
                            {"LS VDISK \"<path>\" XML", 0.050, true, {}, {}},
                            {"LS VDISK FULL XML", 1.0, false, {}, {}}};
    std::string const full = script(dir, "full.txt", "LS VDISK FULL XML");
    for (int r = 0; r < runs; ++r) {
        // Each run snapshots another disk, as a backup of many disks would.
        const long n = 1 + (r * 997) % disks;
        std::string const files[] = {
            script(dir, "snap.txt", "ADD SNAPSHOT \"bench" + std::to_string(r) + "\" VDISK=\"" + disk(n) + "\""),
            script(dir, "one.txt", "LS VDISK \"" + disk(n) + "\" XML"), full};
        for (size_t c = 0; c < cases.size(); ++c) {
            const Cost cost = run({evasim, "FILE " + files[c]});
            if (cost.status != 0) {
                std::fprintf(stderr, "bench_evasim_commands: %s ended with status %d\n", cases[c].name, cost.status);
                return 1;
            }
            cases[c].cpu.push_back(cost.cpu);
            cases[c].wall.push_back(cost.wall);
            std::printf("%-24s run %d: %6.1f ms CPU, %7.1f ms wall, %.1f MB of output\n", cases[c].name, r + 1,
                        cost.cpu * 1e3, cost.wall * 1e3, static_cast<double>(cost.bytes) / 1e6);
        }
    }
    bool met = true;
    std::printf("\nmedians on a cell of %ld disks:\n", disks);
    for (const Case &c : cases) {
        const double measured = median(c.byCpu ? c.cpu : c.wall);
        const bool ok = measured < c.target;
        met = met && ok;
        std::printf("  %-24s %6.1f ms CPU, %7.1f ms wall  (target: %s under %.0f ms: %s)\n", c.name,
                    median(c.cpu) * 1e3, median(c.wall) * 1e3, c.byCpu ? "CPU" : "wall", c.target * 1e3,
                    ok ? "met" : "MISSED");
    }
    std::system((std::string("rm -rf '") + dir + "'").c_str());
    return met ? 0 : 1;
}
