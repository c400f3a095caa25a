#include "evasim_harness.h"

#include <gtest/gtest.h>

#include <signal.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

#include "child_process.h"
#include "scratch_files.h"
#include "test_paths.h"
#include "tsv_rows.h"

namespace evasim_test {

std::vector<std::string> Outcome::lines() const
{
    return tamlin_test::splitFields(out, '\n');
}

Harness::Harness() : m_home(tamlin_test::makeTempDir("evasim"))
{
    if (m_home.empty()) {
        throw std::runtime_error("no temporary directory");
    }
}

Harness::~Harness()
{
    tamlin_test::removeTree(m_home);
}

std::string Harness::binary()
{
    return tamlin_test::buildDir() + "/bin/evasim";
}

std::string Harness::scenario(const std::string &name)
{
    return tamlin_test::sourceDir() + "/tools/evasim/scenarios/" + name;
}

Outcome Harness::evasim(const std::vector<std::string> &args, const std::function<void(pid_t)> &meanwhile,
                        size_t killAtLine) const
{
    const auto start = std::chrono::steady_clock::now();
    auto elapsed = [&]() { return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(); };
    // env replaces itself with evasim: the child's process id stays evasim's.
    std::vector<std::string> argv{"/usr/bin/env", "EVASIM_HOME=" + m_home, binary()};
    argv.insert(argv.end(), args.begin(), args.end());
    tamlin_test::ChildProcess child(argv);
    if (child.pid() <= 0) {
        throw std::runtime_error("cannot start " + binary());
    }
    std::thread helper;
    if (meanwhile) {
        helper = std::thread(meanwhile, child.pid());
    }
    Outcome run;
    bool more = true;
    for (size_t seen = 0; more; seen = child.out.size()) {
        more = child.readSome(-1);
        for (size_t k = seen; k < child.out.size(); ++k) {
            if (child.out[k] == '\n') {
                run.lineTimes.push_back(elapsed());
                if (killAtLine != 0 && run.lineTimes.size() == killAtLine) {
                    child.signal(SIGKILL);
                }
            }
        }
    }
    run.status = child.finish();
    if (helper.joinable()) {
        helper.join();
    }
    run.out = child.out;
    run.err = child.err;
    run.seconds = elapsed();
    return run;
}

void Harness::init(const std::string &scenarioName) const
{
    const Outcome r = evasim({"init", "--scenario", scenario(scenarioName)});
    ASSERT_EQ(r.status, 0) << r.err;
}

std::string Harness::script(const std::vector<std::string> &lines) const
{
    std::string const path = m_home + "/script" + std::to_string(++m_scripts) + ".txt";
    std::ofstream f(path);
    for (const std::string &l : lines) {
        f << l << "\n";
    }
    return path;
}

std::string Harness::sssuScript(const std::vector<std::string> &commands, const std::string &cell,
                                const std::string &login) const
{
    std::vector<std::string> lines{"set option NOCOMMAND_DELAY", "set option DISPLAY_WIDTH=200",
                                   "set option ON_ERROR=EXIT_ON_ERROR"};
    if (!login.empty()) {
        lines.push_back(login);
    }
    if (!cell.empty()) {
        lines.push_back("select cell \"" + cell + "\"");
    }
    lines.insert(lines.end(), commands.begin(), commands.end());
    lines.push_back("exit");
    return script(lines);
}

Outcome Harness::sssu(const std::vector<std::string> &commands, const std::string &cell, const std::string &login) const
{
    return evasim({"FILE " + sssuScript(commands, cell, login)});
}

std::vector<std::map<std::string, std::string>> Harness::table(const std::string &what) const
{
    const Outcome r = evasim({"show", what, "--format", "tsv"});
    EXPECT_EQ(r.status, 0) << r.err;
    return tamlin_test::tsvRows(r.out);
}

std::map<std::string, std::string> Harness::disk(const std::string &path) const
{
    for (const auto &row : table("disks")) {
        if (row.at("path") == path) {
            return row;
        }
    }
    return {};
}

std::string element(const std::string &out, const std::string &tag)
{
    const size_t open = out.find("<" + tag + ">");
    if (open == std::string::npos) {
        return "(missing)";
    }
    const size_t start = open + tag.size() + 2;
    return out.substr(start, out.find("</" + tag + ">", start) - start);
}

std::string xmlDocument(const std::vector<std::string> &in)
{
    std::vector<std::string> lines = in;
    for (std::string &l : lines) {
        if (l.find("information:") != std::string::npos) {
            l.clear();
        }
    }
    long last = -1;
    for (long i = static_cast<long>(lines.size()) - 1; i >= 0; --i) {
        if (lines[static_cast<size_t>(i)].find("</object>") != std::string::npos) {
            last = i;
            break;
        }
    }
    std::string doc;
    if (last <= 0) {
        for (const std::string &l : lines) {
            doc += l;
        }
        return doc;
    }
    size_t i = 0;
    while (i < lines.size() && lines[i].find("<object>") == std::string::npos) {
        ++i;
    }
    doc = "<?xml version=\"1.0\" standalone=\"yes\" ?><hpeva_dataset>";
    for (; i <= static_cast<size_t>(last); ++i) {
        doc += lines[i];
    }
    doc += "</hpeva_dataset>";
    return doc;
}

}  // namespace evasim_test
