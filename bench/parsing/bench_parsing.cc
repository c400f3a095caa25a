// getVirtualDiskList of a cell with 10,000 disks, listed by evasim: the whole operation with
// the provider's share of time and memory beside the simulator's, and the parse alone beside
// Xerces parsing the same document with a handler that does nothing (target: within 1.5x).
#include <benchmark/benchmark.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <list>
#include <string>
#include <vector>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "cfisaxparser.h"
#include "cfistringtool.h"
#include "hpeva_clitool.h"
#include "hpeva_commandtempfile.h"
#include "hpeva_lsvdiskhandler.h"

using namespace qorin_pdk_4_4;

namespace {

const int DISKS = 10000;

struct World {
    std::string dir;
    CHpEvaCliTool tool;
    SHpEvaCell cell;
    std::vector<std::string> raw;      // SSSU's lines as execSSSU gives them
    std::string document;              // the same after massaging, joined
    double emptyHandlerSeconds = 0.0;  // mean parse of document by Xerces alone, from its benchmark
    bool ready = false;
};

// One getVirtualDiskList in a fresh process, so that its peak memory is its own.
struct FreshRun {
    bool done = false;
    size_t disks = 0;
    double wallSeconds = 0.0;
    double providerCpu = 0.0;
    double evasimCpu = 0.0;
    long providerPeakKb = 0;
    long evasimPeakKb = 0;
};

double seconds(const timeval &t)
{
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
}

double cpu(int who)
{
    rusage usage{};
    getrusage(who, &usage);
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

long peakKilobytes(int who)
{
    rusage usage{};
    getrusage(who, &usage);
    return usage.ru_maxrss;
}

// CPU time of this thread: the machine's other load stays out of the comparison.
double threadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

double emptyHandlerParse(const std::string &document)
{
    xercesc::XMLPlatformUtils::Initialize();
    const double start = threadSeconds();
    {
        xercesc::SAX2XMLReader *reader = xercesc::XMLReaderFactory::createXMLReader();
        reader->setFeature(xercesc::XMLUni::fgSAX2CoreValidation, false);
        reader->setFeature(xercesc::XMLUni::fgSAX2CoreNameSpaces, false);
        xercesc::DefaultHandler handler;
        reader->setContentHandler(&handler);
        reader->setErrorHandler(&handler);
        xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte *>(document.data()), document.size(), "bench",
                                          false);
        reader->parse(source);
        delete reader;
    }
    const double took = threadSeconds() - start;
    xercesc::XMLPlatformUtils::Terminate();
    return took;
}

// A cell of DISKS disks in a private evasim state; the tool is evasim itself.
World &world()
{
    static World w = [] {
        World made;
        char dir[] = "/tmp/bench_parsing_XXXXXX";
        if (mkdtemp(dir) == nullptr) {
            return made;
        }
        made.dir = dir;
        setenv("EVASIM_HOME", dir, 1);
        setenv("TMPDIR", dir, 1);
        setenv("QORIN_LOCK_DIR", dir, 1);
        const std::string bin = std::string(TAMLIN_BENCH_BIN_DIR) + "/";
        const std::string init = "'" + bin +
                                 "evasim' init --servers 1 --cells 1 --hosts 2 --snapshots 0 --presented 100 --disks " +
                                 std::to_string(DISKS) + " > /dev/null";
        if (std::system(init.c_str()) != 0) {
            return made;
        }
        made.tool = CHpEvaCliTool(CFiStringTool::str2tstr(bin), ACE_WString(L"evasim"));
        made.cell.hostname = L"cv1";
        made.cell.username = L"evasim";
        made.cell.password = L"evasim";
        made.cell.cellname = L"EVA01";
        made.ready = true;
        return made;
    }();
    return w;
}

// SSSU's lines and the massaged document, for the parse alone; taken after the fresh run.
void captureListing(World &made)
{
    {
        CHpEvaCommandTempFile script(made.cell, ACE_WString(L"LS VDISK FULL XML"), ACE_WString(L"EVA01"));
        made.tool.execSSSU(script.getCommandFileOption(), made.raw, CHpEvaCliTool::DEFAULT_TIMEOUT);
    }
    std::vector<std::string> massaged = made.raw;
    CHpEvaCliTool::massageOutput(massaged);
    for (const std::string &line : massaged) {
        made.document += line;
    }
}

FreshRun freshRun(World &w)
{
    FreshRun result;
    int fds[2];
    if (!w.ready || pipe(fds) != 0) {
        return result;
    }
    const pid_t child = fork();
    if (child == 0) {
        close(fds[0]);
        FreshRun run;
        const auto start = std::chrono::steady_clock::now();
        std::list<SHpEvaVdisk> disks;
        w.tool.getVirtualDiskList(w.cell, disks);
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        run.done = true;
        run.disks = disks.size();
        run.wallSeconds = took.count();
        run.providerCpu = cpu(RUSAGE_SELF);
        run.evasimCpu = cpu(RUSAGE_CHILDREN);
        run.providerPeakKb = peakKilobytes(RUSAGE_SELF);
        run.evasimPeakKb = peakKilobytes(RUSAGE_CHILDREN);
        const ssize_t written = write(fds[1], &run, sizeof run);
        _exit(written == static_cast<ssize_t>(sizeof run) ? 0 : 1);
    }
    close(fds[1]);
    if (child > 0) {
        if (read(fds[0], &result, sizeof result) != static_cast<ssize_t>(sizeof result)) {
            result = FreshRun();
        }
        waitpid(child, nullptr, 0);
    }
    close(fds[0]);
    return result;
}

void BM_GetVirtualDiskList(benchmark::State &state)
{
    World &w = world();
    if (!w.ready) {
        state.SkipWithError("evasim world not made");
        return;
    }
    double own = 0.0;
    double simulator = 0.0;
    size_t disks = 0;
    for (auto _ : state) {
        const double ownBefore = cpu(RUSAGE_SELF);
        const double simulatorBefore = cpu(RUSAGE_CHILDREN);
        std::list<SHpEvaVdisk> list;
        w.tool.getVirtualDiskList(w.cell, list);
        disks = list.size();
        own += cpu(RUSAGE_SELF) - ownBefore;
        simulator += cpu(RUSAGE_CHILDREN) - simulatorBefore;
        benchmark::DoNotOptimize(list);
    }
    const double runs = static_cast<double>(state.iterations());
    state.counters["disks"] = static_cast<double>(disks);
    state.counters["provider_cpu_s"] = own / runs;
    state.counters["evasim_cpu_s"] = simulator / runs;
}

// Massaging, joining and the handler: everything the provider does to SSSU's lines.
void BM_ParseListing(benchmark::State &state)
{
    World &w = world();
    if (w.document.empty()) {
        state.SkipWithError("evasim world not made");
        return;
    }
    double parsing = 0.0;
    double massaging = 0.0;
    std::vector<std::string> lines;
    for (auto _ : state) {
        state.PauseTiming();
        lines = w.raw;  // execSSSU's lines; copying them is the bench's cost
        state.ResumeTiming();
        const double start = threadSeconds();
        CHpEvaCliTool::massageOutput(lines);
        massaging += threadSeconds() - start;
        CHpEvaLsVdiskHandler handler(w.cell);
        CFiSaxParser parser(&handler, nullptr);
        parser.parse(lines);
        const size_t disks = handler.hasLastError() ? 0 : handler.getVdiskList().size();
        parsing += threadSeconds() - start;
        if (disks != static_cast<size_t>(DISKS)) {
            state.SkipWithError("listing did not parse");
            return;
        }
    }
    // The parse alone (target 1.5) and with the massaging before it, against Xerces alone,
    // as mean thread CPU time.
    if (w.emptyHandlerSeconds > 0.0) {
        const double runs = static_cast<double>(state.iterations());
        state.counters["x_empty_handler"] = (parsing - massaging) / runs / w.emptyHandlerSeconds;
        state.counters["x_with_massage"] = parsing / runs / w.emptyHandlerSeconds;
    }
    state.counters["massage_ms"] = massaging * 1000 / static_cast<double>(state.iterations());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(w.document.size()));
}

// The floor: Xerces alone over the massaged document, with a handler that does nothing.
void BM_ParseEmptyHandler(benchmark::State &state)
{
    World &w = world();
    if (w.document.empty()) {
        state.SkipWithError("evasim world not made");
        return;
    }
    double parsing = 0.0;
    for (auto _ : state) {
        parsing += emptyHandlerParse(w.document);
    }
    w.emptyHandlerSeconds = parsing / static_cast<double>(state.iterations());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(w.document.size()));
}

BENCHMARK(BM_GetVirtualDiskList)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);
// The floor first: the listing's parse is compared with it.
BENCHMARK(BM_ParseEmptyHandler)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_ParseListing)->Unit(benchmark::kMillisecond)->MinTime(2.0);

}  // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    World &w = world();
    const FreshRun fresh = freshRun(w);
    if (w.ready) {
        captureListing(w);
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (fresh.done) {
        std::printf("\nOne getVirtualDiskList of %zu disks in a fresh process: %.3f s wall\n"
                    "  provider: %.3f s CPU, peak RSS %.1f MB\n"
                    "  evasim:   %.3f s CPU, peak RSS %.1f MB\n",
                    fresh.disks, fresh.wallSeconds, fresh.providerCpu, fresh.providerPeakKb / 1024.0, fresh.evasimCpu,
                    fresh.evasimPeakKb / 1024.0);
    } else {
        std::printf("\nThe fresh-process run failed.\n");
    }
    if (!world().dir.empty()) {
        std::system(("rm -rf '" + world().dir + "'").c_str());
    }
    return 0;
}
