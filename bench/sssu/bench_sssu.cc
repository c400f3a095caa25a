// Per-run overhead of execSSSU (script file, machine-wide lock, error scan) over a bare
// exec pipe run of the same one-line child.
#include <benchmark/benchmark.h>

#include <stdlib.h>

#include <string>
#include <vector>

#include "cfiexecpipeposix.h"
#include "hpeva_clitool.h"
#include "hpeva_commandtempfile.h"

using namespace qorin_pdk_4_4;

namespace {

// /bin/echo prints its argument, "FILE <script>": one line, like the shortest SSSU answer.
void BM_ExecPipeOneLine(benchmark::State &state)
{
    for (auto _ : state) {
        CFiExecPipePosix pipe(1);
        std::vector<std::string> lines;
        int status = pipe.Exec("\"/bin/echo\"  \"FILE /tmp/omx_fi-bench\"", lines, "", 60, "", "", "");
        if (status != 0 || lines.size() != 1) {
            state.SkipWithError("the child did not print one line");
            break;
        }
    }
}
BENCHMARK(BM_ExecPipeOneLine)->Unit(benchmark::kMicrosecond);

void BM_ExecSSSUOneLine(benchmark::State &state)
{
    CHpEvaCliTool tool(ACE_WString(L"/bin/"), ACE_WString(L"echo"));
    SFiCredential login;
    login.hostname = L"cv1";
    login.username = L"admin";
    login.password = L"secret";
    for (auto _ : state) {
        CHpEvaCommandTempFile script(login, ACE_WString(L"LS CELL"), ACE_WString(L"cell"));
        std::vector<std::string> lines;
        tool.execSSSU(script.getCommandFileOption(), lines, 60);
        if (lines.size() != 1) {
            state.SkipWithError("the child did not print one line");
            break;
        }
    }
}
BENCHMARK(BM_ExecSSSUOneLine)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char **argv)
{
    // Outside the machine's lock directory unless one is given: a benchmark must not queue
    // behind a provider at work on this machine.
    setenv("QORIN_LOCK_DIR", "/tmp", 0);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
