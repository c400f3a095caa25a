// A program run by a test with its standard output and error apart, read as they arrive:
// standard input is /dev/null and Ctrl-C acts as at a terminal, whatever the test inherited.
//
//     tamlin_test::ChildProcess run({program, "restore", "--yes"});
//     ASSERT_TRUE(run.waitFor("copying", 60));
//     run.signal(SIGINT);
//     EXPECT_EQ(run.finish(15), 130) << run.err;
#ifndef CHILD_PROCESS_H
#define CHILD_PROCESS_H

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <vector>

extern char **environ;

namespace tamlin_test {

class ChildProcess {
public:
    // argv[0] is the program's path.
    explicit ChildProcess(std::vector<std::string> argv)
    {
        int out[2], err[2];
        if (pipe(out) != 0 || pipe(err) != 0) {
            return;
        }
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, out[1], 1);
        posix_spawn_file_actions_adddup2(&actions, err[1], 2);
        posix_spawn_file_actions_addclose(&actions, out[0]);
        posix_spawn_file_actions_addclose(&actions, err[0]);
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        sigset_t defaults;
        sigemptyset(&defaults);
        sigaddset(&defaults, SIGINT);
        posix_spawnattr_setsigdefault(&attributes, &defaults);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
        if (posix_spawn(&m_pid, argv[0].c_str(), &actions, &attributes, pointers(argv).data(), environ) != 0) {
            m_pid = -1;
        }
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
        close(out[1]);
        close(err[1]);
        m_out = out[0];
        m_err = err[0];
    }
    ~ChildProcess()
    {
        if (m_pid > 0) {
            finish(0);
        }
    }
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    pid_t pid() const { return m_pid; }
    void signal(int number) { kill(m_pid, number); }

    // Reads what arrives within milliseconds (-1: until something does); false once both
    // streams have ended.
    bool readSome(int milliseconds)
    {
        if (m_out < 0 && m_err < 0) {
            return false;
        }
        struct pollfd fds[2] = {{m_out, POLLIN, 0}, {m_err, POLLIN, 0}};
        poll(fds, 2, milliseconds);
        drain(fds[0], m_out, out);
        drain(fds[1], m_err, err);
        return m_out >= 0 || m_err >= 0;
    }
    // Reads until standard error holds text or the run ends; false after seconds without it.
    bool waitFor(const std::string &text, int seconds)
    {
        const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
        while (err.find(text) == std::string::npos) {
            if (std::chrono::steady_clock::now() > until || !readSome(200)) {
                return err.find(text) != std::string::npos;
            }
        }
        return true;
    }
    // Reads to the end: the exit status, 128 + the signal that ended it, or -1 when it had
    // not ended within seconds (it is killed then).
    int finish(int seconds = 60)
    {
        const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
        bool late = false;
        while (readSome(200)) {
            if (std::chrono::steady_clock::now() > until) {
                late = true;
                kill(m_pid, SIGKILL);
                break;
            }
        }
        for (int *fd : {&m_out, &m_err}) {
            if (*fd >= 0) {
                close(*fd);
                *fd = -1;
            }
        }
        int status = 0;
        waitpid(m_pid, &status, 0);
        m_pid = -1;
        return late ? -1 : WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

    std::string out, err;

private:
    static std::vector<char *> pointers(std::vector<std::string> &texts)
    {
        std::vector<char *> list;
        for (std::string &text : texts) {
            list.push_back(&text[0]);
        }
        list.push_back(nullptr);
        return list;
    }
    static void drain(const pollfd &ready, int &fd, std::string &to)
    {
        if (fd < 0 || ready.revents == 0) {
            return;
        }
        char buffer[65536];
        const ssize_t n = read(fd, buffer, sizeof buffer);
        if (n > 0) {
            to.append(buffer, static_cast<size_t>(n));
        } else {
            close(fd);
            fd = -1;
        }
    }

    pid_t m_pid = -1;
    int m_out = -1, m_err = -1;
};

}  // namespace tamlin_test

#endif
