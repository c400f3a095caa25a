// Reads 64 MiB of lines from a child four ways: with a plain read loop (the floor), through
// the exec pipe's ReadLine loop, and through Exec, which gathers the lines either as strings
// or as one text (CFiOutputLines, as the SSSU layer gets them). Each round runs all four, in
// turn and in a rotating order, with this process and its children pinned to one CPU; each
// time is the CPU the run took, the reader's and the child's together, so that the machine's
// other load stays out of it. The ratios are the medians of each round's own ratios. Exits 1
// when Exec into one text takes more than 1.5 times the floor.
#include <malloc.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "../bench_options.h"
#include "../bench_support.h"
#include "cfiexecpipeposix.h"

extern char **environ;

using qorin_pdk_4_4::CFiExecPipePosix;
using qorin_pdk_4_4::CFiOutputLines;

namespace {

const double kTarget = 1.5;

std::string besideMe(const char *argv0, const char *name)
{
    std::string self = argv0;
    size_t at = self.rfind('/');
    return (at == std::string::npos ? std::string(".") : self.substr(0, at)) + "/" + name;
}

struct Source {
    std::string program;
    long long bytes;
    long line;
    std::string command() const { return "\"" + program + "\" " + std::to_string(bytes) + " " + std::to_string(line); }
};

// One way of reading: the bytes it saw, line feeds counted.
using Reader = std::function<long long(const Source &)>;

struct Sample {
    double cpu;
    double wall;
};

Sample measure(const Reader &reader, const Source &source, long long &bytes)
{
    const double cpuBefore = bench::cpuSeconds(RUSAGE_SELF) + bench::cpuSeconds(RUSAGE_CHILDREN);
    const auto start = std::chrono::steady_clock::now();
    bytes = reader(source);
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    return {bench::cpuSeconds(RUSAGE_SELF) + bench::cpuSeconds(RUSAGE_CHILDREN) - cpuBefore, wall.count()};
}

// The floor: the child's output read in 64 KiB pieces and counted, nothing more.
long long plainLoop(const Source &source)
{
    int ends[2];
    if (pipe(ends) != 0) {
        perror("bench_execpipe: pipe");
        exit(1);
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, ends[0]);
    std::string size = std::to_string(source.bytes);
    std::string line = std::to_string(source.line);
    char *argv[] = {const_cast<char *>(source.program.c_str()), &size[0], &line[0], nullptr};
    pid_t pid;
    if (posix_spawn(&pid, source.program.c_str(), &actions, nullptr, argv, environ) != 0) {
        fprintf(stderr, "bench_execpipe: can't start %s\n", source.program.c_str());
        exit(1);
    }
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    std::vector<char> buffer(64 * 1024);
    long long bytes = 0;
    ssize_t n;
    while ((n = read(ends[0], buffer.data(), buffer.size())) > 0) {
        bytes += n;
    }
    close(ends[0]);
    int status;
    waitpid(pid, &status, 0);
    return bytes;
}

long long readLineLoop(const Source &source)
{
    CFiExecPipePosix pipe(1);
    if (pipe.ExecPipe(source.command(), "") != 0) {
        fprintf(stderr, "bench_execpipe: can't start %s\n", source.program.c_str());
        exit(1);
    }
    std::vector<char> line(CFiExecPipePosix::LINE_PIECE_SIZE + 1);
    int timedOut = 0;
    long long bytes = 0;
    while (pipe.ReadLine(line.data(), CFiExecPipePosix::LINE_PIECE_SIZE, &timedOut, 600) == 1) {
        // The line feed that ReadLine took off.
        bytes += static_cast<long long>(std::char_traits<char>::length(line.data())) + 1;
    }
    pipe.Close(10);
    return bytes;
}

// The lines are counted before they go: freeing them is the caller's cost, not Exec's.
template <class Output>
long long execLines(const Source &source, Output &output)
{
    CFiExecPipePosix pipe(1);
    if (pipe.Exec(source.command(), output, "", 600, "", "", "") != 0) {
        fprintf(stderr, "bench_execpipe: Exec failed with code %d\n", pipe.getLastError().getCode());
        exit(1);
    }
    long long bytes = 0;
    for (const auto &line : output) {
        bytes += static_cast<long long>(line.size()) + 1;
    }
    return bytes;
}

}  // namespace

int main(int argc, char **argv)
{
    long long mibOption = 64;
    long long lineOption = 80;
    long long roundsOption = 15;
    long long cpuOption = -1;
    bool noPin = false;
    bench::readOptions(argc, argv, "bench_execpipe",
                       "Usage: bench_execpipe [--mib N] [--line N] [--rounds N] [--cpu N | --no-pin]\n\n"
                       "Reads N MiB (64) of lines of N bytes (80, line feed included) from a child with a\n"
                       "plain read loop, through the exec pipe's ReadLine loop and through Exec into strings\n"
                       "and into one text, all four in each of N rounds (15, after one that is not\n"
                       "counted), pinned to one CPU (the last one, or --cpu N). Prints the medians of the\n"
                       "CPU time of reader and child and of the wall time, and the medians of each round's\n"
                       "ratios to the plain loop. Fails when Exec into one text takes more than 1.5x the\n"
                       "CPU of the plain loop.\n",
                       {{"--mib", &mibOption, 1, 65536},
                        {"--line", &lineOption, 1, 1 << 20},
                        {"--rounds", &roundsOption, 1, 1000},
                        {"--cpu", &cpuOption, 0, 4095}},
                       {{"--no-pin", &noPin}});
    const long long mib = mibOption;
    const long line = static_cast<long>(lineOption);
    const int rounds = static_cast<int>(roundsOption);
    const int cpu = static_cast<int>(cpuOption);
    const bool pin = !noPin;

    Source source{besideMe(argv[0], "execpipe_bench_source"), mib * 1024 * 1024, line};
    if (access(source.program.c_str(), X_OK) != 0) {
        source.program = EXECPIPE_BENCH_SOURCE;
    }
    const int pinned = pin ? bench::pinToOneCpu(cpu) : -1;
    if (pin && pinned < 0) {
        fprintf(stderr, "bench_execpipe: can't pin to %s; try --no-pin\n",
                cpu < 0 ? "one CPU" : ("CPU " + std::to_string(cpu)).c_str());
        return 2;
    }

    std::vector<std::string> strings;
    CFiOutputLines text;
    const char *names[] = {"plain read loop (floor)", "exec pipe ReadLine", "Exec, lines as strings",
                           "Exec, lines in one text"};
    const Reader readers[] = {plainLoop, readLineLoop, [&strings](const Source &s) { return execLines(s, strings); },
                              [&text](const Source &s) { return execLines(s, text); }};
    const int kinds = 4;
    std::vector<double> cpuTimes[kinds], wallTimes[kinds], cpuRatios[kinds], wallRatios[kinds];
    // Round 0 warms the page cache and the allocator and is not counted.
    for (int round = 0; round <= rounds; ++round) {
        Sample samples[kinds];
        for (int turn = 0; turn < kinds; ++turn) {
            // Each reader goes first in every third round: none always runs after the same one.
            const int kind = (turn + round) % kinds;
            long long bytes = 0;
            samples[kind] = measure(readers[kind], source, bytes);
            // The lines go, and the allocator merges and returns what they took now, not in
            // the next reader's first large allocation: freeing is the caller's cost, and
            // every reader starts from the same heap.
            std::vector<std::string>().swap(strings);
            text.clear();
            malloc_trim(0);
            // A line reader counts a line feed after the last line, which has none when the
            // size cuts it.
            if (bytes != source.bytes && !(kind > 0 && bytes == source.bytes + 1)) {
                fprintf(stderr, "bench_execpipe: %s read %lld bytes of %lld\n", names[kind], bytes, source.bytes);
                return 1;
            }
        }
        if (round == 0) {
            continue;
        }
        printf("round %2d: CPU plain %.3f s, ReadLine %.3f s, Exec %.3f s (strings), %.3f s (one text)\n", round,
               samples[0].cpu, samples[1].cpu, samples[2].cpu, samples[3].cpu);
        for (int kind = 0; kind < kinds; ++kind) {
            cpuTimes[kind].push_back(samples[kind].cpu);
            wallTimes[kind].push_back(samples[kind].wall);
            cpuRatios[kind].push_back(samples[kind].cpu / samples[0].cpu);
            wallRatios[kind].push_back(samples[kind].wall / samples[0].wall);
        }
    }

    const double total = static_cast<double>(source.bytes) / (1024.0 * 1024.0);
    printf("\n%lld MiB in lines of %ld bytes, medians of %d rounds, %s\n", mib, line, rounds,
           pinned >= 0 ? ("pinned to CPU " + std::to_string(pinned)).c_str() : "not pinned");
    printf("  %-24s %9s %9s %10s %9s %9s\n", "", "CPU ms", "wall ms", "MiB/s CPU", "x floor", "x (wall)");
    bool met = false;
    for (int kind = 0; kind < kinds; ++kind) {
        const double ratio = bench::median(cpuRatios[kind]);
        printf("  %-24s %9.1f %9.1f %10.1f %8.2fx %8.2fx\n", names[kind], bench::median(cpuTimes[kind]) * 1000,
               bench::median(wallTimes[kind]) * 1000, total / bench::median(cpuTimes[kind]), ratio,
               bench::median(wallRatios[kind]));
        if (kind == 3) {
            met = ratio <= kTarget;
        }
    }
    printf("CPU: of the reader and its child together; x floor: median of the rounds' ratios of CPU.\n");
    printf("target: Exec into one text within %.1fx of the plain loop: %s\n", kTarget, met ? "met" : "MISSED");
    return met ? 0 : 1;
}
