// Shared set-up of the SSSU tests: a private temporary directory for scripts, a scripted
// stand-in tool, a private lock directory and a recorder of trace lines and messages.
#ifndef SSSU_SUPPORT_H
#define SSSU_SUPPORT_H

#include <dirent.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "cfierrorhandlerbase.h"
#include "cfierrormanager.h"
#include "cfiicumessage.h"
#include "cfistringtool.h"
#include "cfitracelog.h"
#include "hpeva_clitool.h"
#include "hpeva_singletons.h"
#include "temp_install_root.h"

namespace sssu_test {

inline std::string makeTempDir(const char *tag)
{
    std::string pattern = std::string("/tmp/tamlin-") + tag + "-XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    const char *made = mkdtemp(buffer.data());
    return made != nullptr ? std::string(made) : std::string();
}

inline void removeTree(const std::string &dir)
{
    if (!dir.empty()) {
        std::string command = "rm -rf '" + dir + "'";
        (void)system(command.c_str());
    }
}

inline std::string readFile(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

inline void writeFile(const std::string &path, const std::string &text)
{
    std::ofstream(path, std::ios::binary) << text;
}

inline std::vector<std::string> filesIn(const std::string &dir)
{
    std::vector<std::string> names;
    if (DIR *d = opendir(dir.c_str())) {
        while (dirent *e = readdir(d)) {
            std::string name(e->d_name);
            if (name != "." && name != "..") {
                names.push_back(name);
            }
        }
        closedir(d);
    }
    return names;
}

// Everything the process's trace log and error manager hand to their handlers.
class Recorder : public qorin_pdk_4_4::CFiErrorHandlerBase {
public:
    int handleText(char *text, qrn_eseverity) override
    {
        lines.push_back(text);
        return 0;
    }
    int handleMessage(qorin_pdk_4_4::CFiMessagePtr message) override
    {
        keys.push_back(message->getMessageKey());
        messages.push_back(message);
        return 0;
    }
    bool traced(const std::string &fragment) const
    {
        for (const std::string &line : lines) {
            if (line.find(fragment) != std::string::npos) {
                return true;
            }
        }
        return false;
    }
    size_t count(const std::string &fragment) const
    {
        size_t n = 0;
        for (const std::string &line : lines) {
            n += line.find(fragment) != std::string::npos ? 1 : 0;
        }
        return n;
    }
    void clear()
    {
        lines.clear();
        keys.clear();
        messages.clear();
    }

    std::vector<std::string> lines;
    std::vector<std::string> keys;
    std::vector<qorin_pdk_4_4::CFiMessagePtr> messages;
};

// Points the process's trace log (level 6) and error manager at a recorder, once per process.
inline Recorder &processRecorder()
{
    static Recorder *recorder = [] {
        auto *r = new Recorder;
        qorin_pdk_4_4::CFiErrorManagerPtr errors;
        getErrorManagerSingleton(errors, false);
        errors->registerHandler(r);
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
    void status(const std::string &run, int rc) const { writeFile(dir + "/rc." + run, std::to_string(rc)); }
    void hold(int milliseconds) const { writeFile(dir + "/hold", std::to_string(milliseconds)); }
    int runs() const { return atoi(readFile(dir + "/count").c_str()); }
    std::string script(int run) const { return readFile(dir + "/script." + std::to_string(run)); }
    std::string argv(int run) const { return readFile(dir + "/argv." + std::to_string(run)); }
    std::string runsLog() const { return readFile(dir + "/runs.log"); }

    std::string root, dir, tmp;
};

}  // namespace sssu_test

#endif
