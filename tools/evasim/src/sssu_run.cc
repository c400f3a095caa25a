#include "sssu_run.h"

#include "database.h"
#include "fault_store.h"
#include "interpreter.h"
#include "output.h"
#include "settings.h"
#include "world.h"

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

int SssuRun::run()
{
    Settings settings;
    std::unique_ptr<Database> db;
    std::vector<Fault> runFaults;
    struct stat st {};
    if (::stat(m_database.c_str(), &st) == 0) {
        db = std::make_unique<Database>(m_database, false);
        // The faults of this run are used up at once, in a transaction of their own, so that a
        // run that is killed still counts.
        db->begin();
        settings.load(*db);
        runFaults = FaultStore::takeRunFaults(*db);
        db->commit();
    }

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
            return static_cast<int>(f.status);
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
    }

    World world;
    std::vector<Fault> commandFaults;
    bool saved = false;
    auto save = [&]() {
        if (!db || saved) {
            return;
        }
        saved = true;
        world.save(*db);
        FaultStore::saveUses(*db, commandFaults);
        db->commit();
    };
    for (const Fault &f : runFaults) {
        if (f.kind == "exit-after") {
            out.exitAfter(f.line, static_cast<int>(f.status), save);
        }
    }

    out.line("");
    out.line("");
    out.line("SSSU for HP StorageWorks Command View EVA");
    out.line(versionLine);
    out.line("Build: " + settings.build());
    out.line("");

    std::ifstream in(m_script);
    if (!in) {
        out.line("Error: Could not open command file " + m_script);
        return 1;
    }
    std::vector<std::string> lines;
    for (std::string l; std::getline(in, l);) {
        lines.push_back(l);
    }

    if (db) {
        db->begin();
        world.load(*db);
        for (const Fault &f : FaultStore::list(*db)) {
            if (!f.perRun()) {
                commandFaults.push_back(f);
            }
        }
    }
    Interpreter interpreter(out, db ? &world : nullptr, settings, commandFaults, delay);
    const int status = interpreter.run(lines);
    save();
    out.flush();
    return status;
}

}  // namespace evasim
