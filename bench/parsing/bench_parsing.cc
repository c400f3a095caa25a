// getVirtualDiskList of a cell with 10,000 disks, listed by evasim: the whole operation with
// the provider's share of time beside the simulator's and the provider's peak memory, and the
// massaging and parse alone beside Xerces parsing the same document with a handler that does
// nothing (target: within 1.3x, massaging included).
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sched.h>
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

#include "../bench_support.h"
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
    std::vector<std::string> raw;  // SSSU's lines
    std::string document;          // the same after massaging, joined
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
};

long peakKilobytes(int who)
{
    rusage usage{};
    getrusage(who, &usage);
    return usage.ru_maxrss;
}

// Xerces alone over the document with a handler that does nothing: the floor, in thread CPU
// seconds. Xerces' initialisation stays out of it.
double emptyHandlerParse(const std::string &document)
{
    xercesc::XMLPlatformUtils::Initialize();
    const double start = bench::threadSeconds();
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
    const double took = bench::threadSeconds() - start;
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
    CFiOutputLines massaged(made.raw);
    CHpEvaCliTool::massageOutput(massaged);
    for (const std::string_view line : massaged) {
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
        run.providerCpu = bench::cpuSeconds(RUSAGE_SELF);
        run.evasimCpu = bench::cpuSeconds(RUSAGE_CHILDREN);
        run.providerPeakKb = peakKilobytes(RUSAGE_SELF);
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
        const double ownBefore = bench::cpuSeconds(RUSAGE_SELF);
        const double simulatorBefore = bench::cpuSeconds(RUSAGE_CHILDREN);
        std::list<SHpEvaVdisk> list;
        w.tool.getVirtualDiskList(w.cell, list);
        disks = list.size();
        own += bench::cpuSeconds(RUSAGE_SELF) - ownBefore;
        simulator += bench::cpuSeconds(RUSAGE_CHILDREN) - simulatorBefore;
        benchmark::DoNotOptimize(list);
    }
    const double runs = static_cast<double>(state.iterations());
    state.counters["disks"] = static_cast<double>(disks);
    state.counters["provider_cpu_s"] = own / runs;
    state.counters["evasim_cpu_s"] = simulator / runs;
}

// The provider's share of a listing: massaging SSSU's lines and parsing them into records,
// beside Xerces alone on the massaged bytes (the floor). Both run in every iteration, in turn
// and in alternating order, on one CPU; each is thread CPU time. The ratios are the medians of
// each iteration's own ratios.
void BM_ParseListing(benchmark::State &state)
{
    World &w = world();
    if (w.document.empty()) {
        state.SkipWithError("evasim world not made");
        return;
    }
    cpu_set_t before;
    const bool restore = sched_getaffinity(0, sizeof before, &before) == 0;
    bench::pinToOneCpu();
    std::vector<double> floors, parses, massages, ratios, ratiosWithoutMassage;
    bool floorFirst = true;
    for (auto _ : state) {
        double floor = 0.0;
        double parse = 0.0;
        double massage = 0.0;
        size_t disks = 0;
        for (int turn = 0; turn < 2; ++turn) {
            if ((turn == 0) == floorFirst) {
                floor = emptyHandlerParse(w.document);
                continue;
            }
            // The lines as execSSSU leaves them for a listing, read into a heap where the last
            // round's are merged back, not scattered through its free lists.
            malloc_trim(0);
            CFiOutputLines lines(w.raw);
            const double start = bench::threadSeconds();
            CHpEvaCliTool::massageOutput(lines);
            massage = bench::threadSeconds() - start;
            CHpEvaLsVdiskHandler handler(w.cell);
            {
                CFiSaxParser parser(&handler, nullptr);
                parser.parse(lines);
            }
            parse = bench::threadSeconds() - start;
            disks = handler.hasLastError() ? 0 : handler.getVdiskList().size();
        }
        state.SetIterationTime(parse);
        floorFirst = !floorFirst;
        if (disks != static_cast<size_t>(DISKS)) {
            state.SkipWithError("listing did not parse");
            break;
        }
        floors.push_back(floor);
        parses.push_back(parse);
        massages.push_back(massage);
        ratios.push_back(parse / floor);
        ratiosWithoutMassage.push_back((parse - massage) / floor);
    }
    if (restore) {
        sched_setaffinity(0, sizeof before, &before);
    }
    state.counters["floor_ms"] = bench::median(floors) * 1000;
    state.counters["parse_ms"] = bench::median(parses) * 1000;
    state.counters["massage_ms"] = bench::median(massages) * 1000;
    // Target: 1.3, massaging included.
    state.counters["x_floor"] = bench::median(ratios);
    state.counters["x_floor_unmassaged"] = bench::median(ratiosWithoutMassage);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(w.document.size()));
}

BENCHMARK(BM_GetVirtualDiskList)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);
// A fixed count, so that every run takes its medians over as many pairs.
BENCHMARK(BM_ParseListing)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(21);

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
                    "  provider: %.3f s CPU, peak RSS %.1f MiB\n"
                    "  evasim:   %.3f s CPU\n",
                    fresh.disks, fresh.wallSeconds, fresh.providerCpu, fresh.providerPeakKb / 1024.0, fresh.evasimCpu);
    } else {
        std::printf("\nThe fresh-process run failed.\n");
    }
    if (!world().dir.empty()) {
        std::system(("rm -rf '" + world().dir + "'").c_str());
    }
    return 0;
}
