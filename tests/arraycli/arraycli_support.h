// A private evasim world behind the SSSU stand-in, which records each script, and a recorder
// of the process's pushed messages, for the array command tests.
#ifndef ARRAYCLI_SUPPORT_H
#define ARRAYCLI_SUPPORT_H

#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "cfierrormanager.h"
#include "cfimessage.h"
#include "cfistringtool.h"
#include "hpeva_cell.h"
#include "hpeva_clitool.h"
#include "hpeva_process.h"
#include "process_recorder.h"
#include "scratch_files.h"
#include "test_paths.h"
#include "tsv_rows.h"

namespace arraycli {

using tamlin_test::capture;
using tamlin_test::makeTempDir;
using tamlin_test::readFile;
using tamlin_test::writeFile;

// The script a run gets: fixed prelude, login, cell, the commands, exit.
inline std::string scriptOf(const std::string &login, const std::string &cell, const std::vector<std::string> &commands)
{
    std::string text = "set option NOCOMMAND_DELAY\nset option DISPLAY_WIDTH=200\nset option ON_ERROR=EXIT_ON_ERROR\n";
    if (!login.empty()) {
        text += "select manager " + login + "\n";
    }
    if (!cell.empty()) {
        text += "select cell \"" + cell + "\"\n";
    }
    for (const std::string &command : commands) {
        text += command + "\n";
    }
    return text + "exit\n";
}

// The key of every message pushed in this process.
using tamlin_test::processRecorder;

// The SSSU lock's file is named once per process, at the first run: one private directory
// for the whole process keeps these tests out of other processes' way.
inline const std::string &lockDirectory()
{
    static const std::string dir = [] {
        static std::string made = makeTempDir("arraycli-lock");
        atexit([] { capture("rm -rf '" + made + "'"); });
        return made;
    }();
    return dir;
}

// An evasim world loaded from a scenario text, reached through the SSSU stand-in. Scripts,
// the SSSU lock and the world all stay below one private directory.
class Array {
public:
    explicit Array(const std::string &scenario)
    {
        root = makeTempDir("arraycli");
        record = root + "/record";
        mkdir(record.c_str(), 0755);
        mkdir((root + "/tmp").c_str(), 0755);
        mkdir((root + "/home").c_str(), 0755);
        bin = tamlin_test::buildDir() + "/bin/";
        setenv("STANDIN_DIR", record.c_str(), 1);
        setenv("STANDIN_EVASIM", (bin + "evasim").c_str(), 1);
        setenv("EVASIM_HOME", (root + "/home").c_str(), 1);
        setenv("TMPDIR", (root + "/tmp").c_str(), 1);
        setenv("QORIN_LOCK_DIR", lockDirectory().c_str(), 1);
        writeFile(root + "/world.scn", scenario);
        loaded = evasim("init --scenario '" + root + "/world.scn'").find("new world") != std::string::npos;
    }
    ~Array()
    {
        if (!root.empty()) {
            capture("rm -rf '" + root + "'");
        }
    }

    CHpEvaCliTool tool() const
    {
        return CHpEvaCliTool(qorin_pdk_4_4::CFiStringTool::str2tstr(bin), ACE_WString(L"sssu_standin"));
    }
    int runs() const { return atoi(readFile(record + "/count").c_str()); }
    std::string script(int run) const { return readFile(record + "/script." + std::to_string(run)); }
    // What run number run prints instead of asking evasim.
    void answer(int run, const std::string &text) const { writeFile(record + "/out." + std::to_string(run), text); }
    std::string evasim(const std::string &arguments) const
    {
        return capture("'" + bin + "evasim' " + arguments + " 2>&1");
    }
    // The rows of `evasim show <what> --format tsv`, by column name.
    std::vector<tamlin_test::TsvRow> table(const std::string &what) const
    {
        return tamlin_test::tsvRows(evasim("show " + what + " --format tsv"));
    }

    std::string root, record, bin;
    bool loaded = false;
};

}  // namespace arraycli

#endif
