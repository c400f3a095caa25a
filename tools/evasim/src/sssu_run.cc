#include "sssu_run.h"

#include "interpreter.h"
#include "output.h"
#include "run_store.h"
#include "settings.h"

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <iostream>
#include <memory>

namespace evasim {

SssuRun::SssuRun(std::string database, std::string script) :
    m_database(std::move(database)),
    m_script(std::move(script))
{
}

SssuRun::~SssuRun() = default;

int SssuRun::run()
{
    std::ifstream in(m_script);
    const bool readable = in.is_open();
    std::vector<std::string> lines;
    for (std::string l; in && std::getline(in, l);) {
        lines.push_back(l);
    }
    struct stat st {};
    if (::stat(m_database.c_str(), &st) == 0) {
        m_store = std::make_unique<RunStore>(m_database, m_script, lines);
    }
    RunStore *store = m_store.get();
    Settings defaults;
    const Settings &settings = store ? store->settings() : defaults;
    const std::vector<Fault> noFaults;
    const std::vector<Fault> &runFaults = store ? store->runFaults() : noFaults;

    std::string versionLine = "Version: " + settings.version() + " ";
    double delay = 0;
    Output out(STDOUT_FILENO);
    for (const Fault &f : runFaults) {
        if (f.kind == "ignore-signals") {
            std::signal(SIGINT, SIG_IGN);
            std::signal(SIGTERM, SIG_IGN);
        }
    }
    for (const Fault &f : runFaults) {
        if (f.kind == "no-output") {
            store->finish(static_cast<int>(f.status), "no output (fault)");
            return static_cast<int>(f.status);
        }
        if (f.atLine()) {
            continue;  // the interpreter acts on it at its line
        }
        if (f.kind == "silence" && f.line <= 0) {
            out.pause(f.seconds);
        }
        if (f.kind == "silence" && f.line > 0) {
            out.silenceAfter(f.line, f.seconds);
        }
        if (f.kind == "banner") {
            versionLine = f.text;
        }
        if (f.kind == "delay") {
            delay = f.seconds;
        }
        if (f.kind == "exit-after") {
            // The process ends at once, as if killed: the command in flight is not kept.
            const int status = static_cast<int>(f.status);
            RunStore *s = store;
            out.exitAfter(f.line, status, [s, status] {
                if (s) {
                    s->abandonCommand();
                    s->finish(status, "ended by the exit-after fault");
                }
            });
        }
    }

    out.line("");
    out.line("");
    out.line("SSSU for HP StorageWorks Command View EVA");
    out.line(versionLine);
    out.line("Build: " + settings.build());
    out.line("");

    if (!readable) {
        out.line("Error: Could not open command file " + m_script);
        if (store) {
            store->finish(1, "the script could not be read");
        }
        return 1;
    }
    // The tool takes FILE as its first command, typed at the first prompt, and echoes it so.
    out.line("NoSystemSelected> file " + m_script);
    const int status = Interpreter(out, store, settings, delay, runFaults).run(lines);
    out.flush();
    if (store) {
        store->finish(status);
    }
    return status;
}

}  // namespace evasim
