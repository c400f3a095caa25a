// Shared set-up of the SSSU tests: a private temporary directory for scripts, a scripted
// stand-in tool, a private lock directory and a recorder of trace lines and messages.
#ifndef SSSU_SUPPORT_H
#define SSSU_SUPPORT_H

#include <sys/stat.h>

#include <string>
#include <vector>

#include "cfierrormanager.h"
#include "cfiicumessage.h"
#include "cfistringtool.h"
#include "cfitracelog.h"
#include "hpeva_clitool.h"
#include "hpeva_process.h"
#include "process_recorder.h"
#include "scratch_files.h"
#include "temp_install_root.h"

namespace sssu_test {

using tamlin_test::filesIn;
using tamlin_test::makeTempDir;
using tamlin_test::readFile;
using tamlin_test::removeTree;
using tamlin_test::writeFile;
using Recorder = tamlin_test::MessageRecorder;

// Points the process's trace log (level 6) and error manager at a recorder, once per process.
inline Recorder &processRecorder()
{
    static Recorder *recorder = [] {
        Recorder *r = &tamlin_test::processRecorder();
        qorin_pdk_4_4::CFiErrorManagerPtr errors;
        getErrorManagerSingleton(errors, false);
        // The level comes from the install root's configuration, as in a real installation.
        static TempInstallRoot root;
        root.writeFile("ConfigFiles/tamlin.conf", "[DEBUG_TRACE_INFO]\n\"TRACELEVEL\"=dword:00000006\n");
        qorin_pdk_4_4::CFiTraceLogPtr log;
        getTraceLogSingleton(log, false);
        log->initialize(L"tamlin", qorin_pdk_4_4::CFiStringTool::str2tstr(root.path("Logs/")), L"trace", 1, false);
        log->registerErrorManager(errors);
        return r;
    }();
    return *recorder;
}

// A stand-in tool run: its own scripting directory and a private TMPDIR for scripts.
class StandIn {
public:
    StandIn()
    {
        processRecorder();  // its install root must not land in this run's TMPDIR
        root = makeTempDir("sssu");
        dir = root + "/standin";
        tmp = root + "/tmp";
        mkdir(dir.c_str(), 0755);
        mkdir(tmp.c_str(), 0755);
        setenv("STANDIN_DIR", dir.c_str(), 1);
        setenv("TMPDIR", tmp.c_str(), 1);
    }
    ~StandIn() { removeTree(root); }

    CHpEvaCliTool tool() const
    {
        std::string path(SSSU_STANDIN);
        size_t slash = path.rfind('/');
        return CHpEvaCliTool(qorin_pdk_4_4::CFiStringTool::str2tstr(path.substr(0, slash + 1)),
                             qorin_pdk_4_4::CFiStringTool::str2tstr(path.substr(slash + 1)));
    }
    void output(const std::string &run, const std::string &text) const { writeFile(dir + "/out." + run, text); }
    void hold(int milliseconds) const { writeFile(dir + "/hold", std::to_string(milliseconds)); }
    void flood(const std::string &line) const { writeFile(dir + "/flood", line); }
    int runs() const { return atoi(readFile(dir + "/count").c_str()); }
    std::string script(int run) const { return readFile(dir + "/script." + std::to_string(run)); }
    std::string runsLog() const { return readFile(dir + "/runs.log"); }

    std::string root, dir, tmp;
};

}  // namespace sssu_test

#endif
