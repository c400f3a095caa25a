#include "evasim_harness.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

#include "scratch_files.h"
#include "test_paths.h"
#include "tsv_rows.h"

extern char **environ;

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
    std::vector<std::string> env;
    for (char **e = environ; *e; ++e) {
        if (std::strncmp(*e, "EVASIM_HOME=", 12) != 0) {
            env.push_back(*e);
        }
    }
    env.push_back("EVASIM_HOME=" + m_home);
    std::vector<char *> envp;
    for (std::string &e : env) {
        envp.push_back(e.data());
    }
    envp.push_back(nullptr);

    std::string const bin = binary();
    std::vector<std::string> argStore{bin};
    argStore.insert(argStore.end(), args.begin(), args.end());
    std::vector<char *> argv;
    for (std::string &a : argStore) {
        argv.push_back(a.data());
    }
    argv.push_back(nullptr);

    int outPipe[2], errPipe[2];
    if (::pipe(outPipe) != 0 || ::pipe(errPipe) != 0) {
        throw std::runtime_error("pipe failed");
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, outPipe[1], 1);
    posix_spawn_file_actions_adddup2(&actions, errPipe[1], 2);
    posix_spawn_file_actions_addclose(&actions, outPipe[0]);
    posix_spawn_file_actions_addclose(&actions, errPipe[0]);
    pid_t pid = 0;
    const int rc = posix_spawn(&pid, bin.c_str(), &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    ::close(outPipe[1]);
    ::close(errPipe[1]);
    Outcome run;
    if (rc != 0) {
        ::close(outPipe[0]);
        ::close(errPipe[0]);
        throw std::runtime_error("cannot start " + bin);
    }
    std::thread helper;
    if (meanwhile) {
        helper = std::thread(meanwhile, pid);
    }
    pollfd fds[2] = {{outPipe[0], POLLIN, 0}, {errPipe[0], POLLIN, 0}};
    int open = 2;
    char buf[65536];
    while (open > 0) {
        if (::poll(fds, 2, -1) < 0) {
            break;
        }
        for (int i = 0; i < 2; ++i) {
            if (fds[i].fd < 0 || !(fds[i].revents & (POLLIN | POLLHUP))) {
                continue;
            }
            const ssize_t n = ::read(fds[i].fd, buf, sizeof buf);
            if (n <= 0) {
                ::close(fds[i].fd);
                fds[i].fd = -1;
                --open;
            } else {
                (i == 0 ? run.out : run.err).append(buf, static_cast<size_t>(n));
                if (i == 0) {
                    for (ssize_t k = 0; k < n; ++k) {
                        if (buf[k] == '\n') {
                            run.lineTimes.push_back(elapsed());
                        }
                        if (killAtLine && run.lineTimes.size() == killAtLine && buf[k] == '\n') {
                            ::kill(pid, SIGKILL);
                        }
                    }
                }
            }
        }
    }
    int status = 0;
    ::waitpid(pid, &status, 0);
    if (helper.joinable()) {
        helper.join();
    }
    run.seconds = elapsed();
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
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
