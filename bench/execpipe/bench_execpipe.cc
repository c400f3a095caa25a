// Reads 64 MiB of lines from a child three ways: through Exec (lines gathered into a
// vector, as the SSSU layer gets them), through the exec pipe's ReadLine loop, and with a
// plain read loop over the same child. Prints each throughput and the ratio of the plain
// loop to the exec pipe; exits 1 when the ReadLine loop is more than 1.5 times slower.
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "cfiexecpipeposix.h"

extern char **environ;

using qorin_pdk_4_4::CFiExecPipePosix;

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

double seconds(std::chrono::steady_clock::time_point since)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

// The baseline: the child's output read in 64 KiB pieces and counted, nothing more.
double plainLoop(const Source &source, long long &bytes)
{
    auto start = std::chrono::steady_clock::now();
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
    bytes = 0;
    ssize_t n;
    while ((n = read(ends[0], buffer.data(), buffer.size())) > 0) {
        bytes += n;
    }
    close(ends[0]);
    int status;
    waitpid(pid, &status, 0);
    return seconds(start);
}

double readLineLoop(const Source &source, long long &bytes)
{
    auto start = std::chrono::steady_clock::now();
    CFiExecPipePosix pipe(1);
    if (pipe.ExecPipe(source.command(), "") != 0) {
        fprintf(stderr, "bench_execpipe: can't start %s\n", source.program.c_str());
        exit(1);
    }
    std::vector<char> line(CFiExecPipePosix::LINE_PIECE_SIZE + 1);
    int timedOut = 0;
    bytes = 0;
    while (pipe.ReadLine(line.data(), CFiExecPipePosix::LINE_PIECE_SIZE, &timedOut, 600) == 1) {
        // The line feed that ReadLine took off.
        bytes += static_cast<long long>(std::char_traits<char>::length(line.data())) + 1;
    }
    pipe.Close(10);
    return seconds(start);
}

double execLines(const Source &source, long long &bytes)
{
    auto start = std::chrono::steady_clock::now();
    CFiExecPipePosix pipe(1);
    std::vector<std::string> output;
    if (pipe.Exec(source.command(), output, "", 600, "", "", "") != 0) {
        fprintf(stderr, "bench_execpipe: Exec failed with code %d\n", pipe.getLastError().getCode());
        exit(1);
    }
    bytes = 0;
    for (const std::string &line : output) {
        bytes += static_cast<long long>(line.size()) + 1;
    }
    double took = seconds(start);
    return took;
}

}  // namespace

int main(int argc, char **argv)
{
    long long mib = 64;
    long line = 80;
    int runs = 7;
    for (int i = 1; i < argc; ++i) {
        std::string a = argv[i];
        if (a == "--help" || a == "-h") {
            printf("Usage: bench_execpipe [--mib N] [--line N] [--runs N]\n\n"
                   "Reads N MiB (64) of lines of N bytes (80, line feed included) from a child,\n"
                   "through Exec, through the exec pipe's ReadLine loop, and with a plain read loop;\n"
                   "the median of N runs (7) each. Fails when the ReadLine loop is more than %.1fx\n"
                   "slower\n"
                   "than the plain loop.\n",
                   kTarget);
            return 0;
        }
        if ((a == "--mib" || a == "--line" || a == "--runs") && i + 1 < argc) {
            long long v = strtoll(argv[++i], nullptr, 10);
            if (v < 1) {
                fprintf(stderr, "bench_execpipe: %s needs a positive number\n", a.c_str());
                return 2;
            }
            if (a == "--mib") {
                mib = v;
            } else if (a == "--line") {
                line = static_cast<long>(v);
            } else {
                runs = static_cast<int>(v);
            }
            continue;
        }
        fprintf(stderr, "bench_execpipe: unknown argument '%s'; try --help\n", a.c_str());
        return 2;
    }

    Source source{besideMe(argv[0], "execpipe_bench_source"), mib * 1024 * 1024, line};
    if (access(source.program.c_str(), X_OK) != 0) {
        source.program = EXECPIPE_BENCH_SOURCE;
    }

    // Medians: the machine's other load makes single runs swing both ways, the plain loop most.
    std::vector<double> plainTimes, readLineTimes, execTimes;
    for (int run = 0; run < runs; ++run) {
        // Interleaved, so that a slow patch of the machine hits all three alike.
        long long plainBytes = 0, readLineBytes = 0, execBytes = 0;
        double plain = plainLoop(source, plainBytes);
        double readLine = readLineLoop(source, readLineBytes);
        double exec = execLines(source, execBytes);
        if (plainBytes != source.bytes || readLineBytes < source.bytes || execBytes < source.bytes) {
            fprintf(stderr, "bench_execpipe: read %lld, %lld and %lld bytes of %lld\n", plainBytes, readLineBytes,
                    execBytes, source.bytes);
            return 1;
        }
        printf("run %d: plain %.3f s, ReadLine %.3f s, Exec %.3f s\n", run + 1, plain, readLine, exec);
        plainTimes.push_back(plain);
        readLineTimes.push_back(readLine);
        execTimes.push_back(exec);
    }
    auto median = [](std::vector<double> times) {
        std::sort(times.begin(), times.end());
        const size_t n = times.size();
        return n % 2 == 1 ? times[n / 2] : (times[n / 2 - 1] + times[n / 2]) / 2;
    };
    const double plainBest = median(plainTimes);
    const double readLineBest = median(readLineTimes);
    const double execBest = median(execTimes);

    double total = static_cast<double>(source.bytes) / (1024.0 * 1024.0);
    printf("%lld MiB in lines of %ld bytes, median of %d runs:\n", mib, line, runs);
    printf("  plain read loop        %8.1f MiB/s\n", total / plainBest);
    printf("  exec pipe ReadLine     %8.1f MiB/s   ratio %.2fx\n", total / readLineBest, readLineBest / plainBest);
    printf("  exec pipe Exec (lines) %8.1f MiB/s   ratio %.2fx\n", total / execBest, execBest / plainBest);
    bool met = readLineBest / plainBest <= kTarget;
    printf("target: exec pipe ReadLine within %.1fx of the plain loop: %s\n", kTarget, met ? "met" : "MISSED");
    return met ? 0 : 1;
}
