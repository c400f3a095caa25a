#include "cfiexecpipeposix.h"

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <pwd.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

#include "cfistringtool.h"
#include "cfitracelogfunction.h"

extern char **environ;

namespace qorin_pdk_4_4 {

namespace {

// One read takes what a pipe holds by default; a piece of ExecMain always fits.
const size_t kReadChunk = 64 * 1024;
const int32_t kLongestStageWait = 30;

std::string systemText(int error)
{
    char buffer[256];
    // The GNU variant: the text may or may not be in buffer.
    return std::string(strerror_r(error, buffer, sizeof buffer));
}

int64_t monotonicMilliseconds()
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

int64_t toMilliseconds(int32_t seconds)
{
    return seconds > 0 ? static_cast<int64_t>(seconds) * 1000 : 0;
}

// poll() until something is ready or the deadline passes, across signals and waits longer
// than one call can take. 0 when the time is up.
int pollUntil(struct pollfd *fds, nfds_t count, int64_t milliseconds)
{
    int64_t deadline = monotonicMilliseconds() + milliseconds;
    for (;;) {
        int64_t left = deadline - monotonicMilliseconds();
        if (left < 0) {
            left = 0;
        }
        int ready = poll(fds, count, static_cast<int>(std::min<int64_t>(left, INT_MAX)));
        if (ready > 0) {
            return ready;
        }
        if (ready < 0 && errno != EINTR) {
            return -1;
        }
        if (ready == 0 && left <= INT_MAX) {
            return 0;
        }
    }
}

void closeDescriptor(int &fd)
{
    if (fd >= 0) {
        close(fd);
        fd = -1;
    }
}

// A host that runs with a closed standard descriptor hands out 0 to 2 for new pipes;
// those numbers must not be the child's pipe ends, or redirecting one would clobber another.
bool liftAboveStandard(int &fd)
{
    if (fd > STDERR_FILENO) {
        return true;
    }
    int lifted = fcntl(fd, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (lifted < 0) {
        return false;
    }
    close(fd);
    fd = lifted;
    return true;
}

int makePipe(int ends[2])
{
    if (pipe2(ends, O_CLOEXEC) != 0) {
        return errno;
    }
    if (!liftAboveStandard(ends[0]) || !liftAboveStandard(ends[1])) {
        int error = errno;
        closeDescriptor(ends[0]);
        closeDescriptor(ends[1]);
        return error;
    }
    return 0;
}

int openPidFd(pid_t pid)
{
#ifdef SYS_pidfd_open
    int fd = static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
    if (fd >= 0) {
        fcntl(fd, F_SETFD, FD_CLOEXEC);
        return fd;
    }
#endif
    return -1;
}

int decodeStatus(int status)
{
    if (WIFEXITED(status)) {
        return WEXITSTATUS(status);
    }
    if (WIFSIGNALED(status)) {
        // As a shell reports it, so that it is never 0.
        return 128 + WTERMSIG(status);
    }
    return -1;
}

}  // namespace

std::vector<std::string> CFiExecPipePosix::splitCommandLine(const std::string &commandLine)
{
    std::vector<std::string> words;
    const char *p = commandLine.c_str();
    auto isBlank = [](char c) { return c == ' ' || c == '\t'; };

    while (isBlank(*p)) {
        ++p;
    }
    if (*p == '\0') {
        return words;
    }
    // The program's name knows no escapes: a path may end in a backslash.
    std::string program;
    if (*p == '"') {
        ++p;
        while (*p != '\0' && *p != '"') {
            program += *p++;
        }
        if (*p == '"') {
            ++p;
        }
    } else {
        while (*p != '\0' && !isBlank(*p)) {
            program += *p++;
        }
    }
    words.push_back(program);

    for (;;) {
        while (isBlank(*p)) {
            ++p;
        }
        if (*p == '\0') {
            break;
        }
        std::string word;
        bool quoted = false;
        while (*p != '\0' && (quoted || !isBlank(*p))) {
            if (*p == '\\') {
                size_t slashes = 0;
                while (*p == '\\') {
                    ++slashes;
                    ++p;
                }
                if (*p == '"') {
                    word.append(slashes / 2, '\\');
                    if (slashes % 2 == 1) {
                        word += '"';
                        ++p;
                    }
                    // An even count leaves the quote to the code below.
                } else {
                    word.append(slashes, '\\');
                }
                continue;
            }
            if (*p == '"') {
                if (quoted && p[1] == '"') {
                    word += '"';
                    p += 2;
                } else {
                    quoted = !quoted;
                    ++p;
                }
                continue;
            }
            word += *p++;
        }
        words.push_back(word);
    }
    return words;
}

CFiExecPipePosix::CFiExecPipePosix(int closeAfterExec) :
    CFiExecPipeBase(closeAfterExec),
    m_closeWait(DEFAULT_CLOSE_WAIT)
{
    resetState();
    Init();
}

CFiExecPipePosix::CFiExecPipePosix(std::vector<std::string> arguments, int closeAfterExec) :
    CFiExecPipeBase(std::move(arguments), closeAfterExec),
    m_closeWait(DEFAULT_CLOSE_WAIT)
{
    resetState();
    Init();
}

CFiExecPipePosix::~CFiExecPipePosix()
{
    Close(10);
}

void CFiExecPipePosix::resetState()
{
    m_lastSystemError = 0;
    m_pid = -1;
    m_pidFd = -1;
    m_stdinWrite = -1;
    m_outputRead = -1;
    m_exited = false;
    m_exitStatus = -1;
    m_endOfOutput = false;
    m_begin = 0;
    m_end = 0;
    m_asAccount = false;
    m_uid = 0;
    m_gid = 0;
    m_groups.clear();
}

void CFiExecPipePosix::Init()
{
    CFiTraceLogFunction function(m_traceLog, "qorin_pdk_4_4::CFiExecPipePosix::Init");
    if (m_pid > 0 || m_outputRead >= 0 || m_stdinWrite >= 0) {
        // Left open by a caller that skipped Close; don't leak the child.
        Close(10);
    }
    resetState();
}

int CFiExecPipePosix::ExecPipe(std::string command, std::string directory)
{
    CFiTraceLogFunction function(m_traceLog, "qorin_pdk_4_4::CFiExecPipePosix::ExecPipe");
    if (m_pid > 0 || m_outputRead >= 0 || m_stdinWrite >= 0) {
        // A run that nobody closed; each run starts afresh, so a caller may run again.
        Close(10);
    }
    m_command = command;
    m_exited = false;
    m_exitStatus = -1;
    m_endOfOutput = false;
    m_begin = m_end = 0;

    int output[2] = {-1, -1};
    int input[2] = {-1, -1};
    int error = makePipe(output);
    if (error != 0) {
        m_lastSystemError = error;
        trace(1, "pipe() FAILED with error code (%d)\n", error);
        m_lastError = EFiExecPipe(command, QRN_EXEC_PIPE_CREATE_PIPE_FAILED);
        return QRN_EXEC_PIPE_CREATE_PIPE_FAILED;
    }
    error = makePipe(input);
    if (error != 0) {
        m_lastSystemError = error;
        trace(1, "pipe() FAILED with error code (%d)\n", error);
        m_lastError = EFiExecPipe(command, QRN_EXEC_PIPE_CREATE_PIPE_FAILED);
        FlushHandles(input[0], output[1], input[1], output[0]);
        return QRN_EXEC_PIPE_CREATE_PIPE_FAILED;
    }

    try {
        m_asAccount = false;
        if (!m_user.empty()) {
            m_asAccount = Impersonate() != 0;
        }
        // Standard error goes to the same pipe as standard output, so the lines keep the
        // order in which the child wrote them.
        CreateChildProcess(command, input[0], output[1], output[1], directory);
    } catch (const EFiExecPipe &failure) {
        FlushHandles(input[0], output[1], input[1], output[0]);
        m_lastError = failure;
        trace(2, "Execption occured while closing handles");
        return QRN_EXEC_PIPE_CLOSE_HANDLE_FAILED;
    } catch (...) {
        FlushHandles(input[0], output[1], input[1], output[0]);
        trace(2, "Unexpected error encountered.");
        m_lastError = EFiExecPipe(command, QRN_EXEC_PIPE_ERROR_UNEXPECTED);
        return QRN_EXEC_PIPE_ERROR_UNEXPECTED;
    }

    m_stdinWrite = input[1];
    m_outputRead = output[0];
    input[1] = -1;
    output[0] = -1;
    // The child holds its own copies now; ours would keep the end of output from coming.
    FlushHandles(input[0], output[1], input[1], output[0]);
    return 0;
}

int CFiExecPipePosix::Impersonate()
{
    CFiTraceLogFunction function(m_traceLog, "qorin_pdk_4_4::CFiExecPipePosix::Impersonate");
    if (geteuid() != 0) {
        trace(1, "Logon of user [%s] refused: changing the account needs root", m_user.c_str());
        throw EFiExecPipe(m_user, QRN_EXEC_PIPE_CANNOT_IMPERSONATE);
    }
    long hint = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> scratch(hint > 0 ? static_cast<size_t>(hint) : 16384);
    struct passwd account;
    struct passwd *found = nullptr;
    int error;
    while ((error = getpwnam_r(m_user.c_str(), &account, scratch.data(), scratch.size(), &found)) == ERANGE) {
        scratch.resize(scratch.size() * 2);
    }
    if (error != 0 || found == nullptr) {
        trace(1, "Logon of user [%s] failed: no such account", m_user.c_str());
        throw EFiExecPipe(m_user, QRN_EXEC_PIPE_CANNOT_IMPERSONATE);
    }
    m_uid = account.pw_uid;
    m_gid = account.pw_gid;
    int count = 16;
    m_groups.assign(static_cast<size_t>(count), 0);
    while (getgrouplist(account.pw_name, account.pw_gid, m_groups.data(), &count) < 0) {
        m_groups.assign(static_cast<size_t>(count) * 2, 0);
        count *= 2;
    }
    m_groups.resize(static_cast<size_t>(count));
    trace(3, "Child runs as user [%s], uid %u, gid %u", m_user.c_str(), static_cast<unsigned>(m_uid),
          static_cast<unsigned>(m_gid));
    return 1;
}

int CFiExecPipePosix::CreateChildProcess(std::string &command, int childStdin, int childStdout, int childStderr,
                                         std::string directory)
{
    CFiTraceLogFunction function(m_traceLog, "qorin_pdk_4_4::CFiExecPipePosix::CreateChildProcess");
    std::vector<std::string> words = splitCommandLine(command);
    int error = ENOENT;
    pid_t pid = -1;
    if (!words.empty()) {
        std::string program = words[0];
        // The program is found from the parent's directory, not the child's.
        if (!program.empty() && program[0] != '/' && !directory.empty()) {
            char here[PATH_MAX];
            if (getcwd(here, sizeof here) != nullptr) {
                program = std::string(here) + "/" + program;
            }
        }
        std::vector<char *> argv;
        for (std::string &word : words) {
            argv.push_back(&word[0]);
        }
        argv.push_back(nullptr);
        error = m_asAccount ? forkAsAccount(program, argv.data(), directory, childStdin, childStdout, childStderr, pid)
                            : spawnAsCaller(program, argv.data(), directory, childStdin, childStdout, childStderr, pid);
    }
    if (error != 0) {
        m_lastSystemError = error;
        trace(1, "Failed to create child process");
        throw EFiExecPipe(command, QRN_EXEC_PIPE_CREATE_CHILD_PROCESS_FAILED,
                          CFiStringTool::str2wstr(systemText(error)), error);
    }
    m_pid = pid;
    m_pidFd = openPidFd(pid);
    return 0;
}

int CFiExecPipePosix::spawnAsCaller(const std::string &program, char *const argv[], const std::string &directory,
                                    int childStdin, int childStdout, int childStderr, pid_t &pid)
{
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    int error = posix_spawn_file_actions_init(&actions);
    if (error != 0) {
        return error;
    }
    error = posix_spawnattr_init(&attributes);
    if (error != 0) {
        posix_spawn_file_actions_destroy(&actions);
        return error;
    }
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    // The host's blocked or ignored signals must not reach the child, or the staged kill
    // could not end it.
    if ((error = posix_spawn_file_actions_adddup2(&actions, childStdin, STDIN_FILENO)) == 0 &&
        (error = posix_spawn_file_actions_adddup2(&actions, childStdout, STDOUT_FILENO)) == 0 &&
        (error = posix_spawn_file_actions_adddup2(&actions, childStderr, STDERR_FILENO)) == 0 &&
        (directory.empty() || (error = posix_spawn_file_actions_addchdir_np(&actions, directory.c_str())) == 0) &&
        (error = posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK |
                                                           POSIX_SPAWN_SETSIGDEF)) == 0 &&
        (error = posix_spawnattr_setpgroup(&attributes, 0)) == 0 &&
        (error = posix_spawnattr_setsigmask(&attributes, &none)) == 0 &&
        (error = posix_spawnattr_setsigdefault(&attributes, &all)) == 0) {
        error = posix_spawn(&pid, program.c_str(), &actions, &attributes, argv, environ);
    }
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

int CFiExecPipePosix::forkAsAccount(const std::string &program, char *const argv[], const std::string &directory,
                                    int childStdin, int childStdout, int childStderr, pid_t &pid)
{
    // posix_spawn can't change the account, so this path forks. Between fork and exec the
    // child makes only async-signal-safe calls, and tells a failure through a pipe that
    // the exec closes.
    int report[2];
    int error = makePipe(report);
    if (error != 0) {
        return error;
    }
    const char *path = program.c_str();
    const char *dir = directory.empty() ? nullptr : directory.c_str();
    const gid_t *groups = m_groups.data();
    size_t groupCount = m_groups.size();
    uid_t uid = m_uid;
    gid_t gid = m_gid;

    pid_t child = fork();
    if (child < 0) {
        error = errno;
        closeDescriptor(report[0]);
        closeDescriptor(report[1]);
        return error;
    }
    if (child == 0) {
        setpgid(0, 0);
        int failure = 0;
        // The directory is entered with the account's rights, not with root's.
        if (dup2(childStdin, STDIN_FILENO) < 0 || dup2(childStdout, STDOUT_FILENO) < 0 ||
            dup2(childStderr, STDERR_FILENO) < 0 || setgroups(groupCount, groups) != 0 || setgid(gid) != 0 ||
            setuid(uid) != 0 || (dir != nullptr && chdir(dir) != 0)) {
            failure = errno;
        } else {
            struct sigaction standard;
            memset(&standard, 0, sizeof standard);
            standard.sa_handler = SIG_DFL;
            for (int signal = 1; signal < NSIG; ++signal) {
                sigaction(signal, &standard, nullptr);
            }
            sigset_t none;
            sigemptyset(&none);
            sigprocmask(SIG_SETMASK, &none, nullptr);
            execve(path, argv, environ);
            failure = errno;
        }
        ssize_t ignored = write(report[1], &failure, sizeof failure);
        (void)ignored;
        _exit(127);
    }

    // Either side may come first; both set the group so that no signal misses it.
    setpgid(child, child);
    closeDescriptor(report[1]);
    int failure = 0;
    ssize_t got;
    do {
        got = read(report[0], &failure, sizeof failure);
    } while (got < 0 && errno == EINTR);
    closeDescriptor(report[0]);
    if (got == static_cast<ssize_t>(sizeof failure)) {
        int status;
        while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
        return failure != 0 ? failure : ECHILD;
    }
    pid = child;
    return 0;
}

void CFiExecPipePosix::FlushHandles(int &childStdin, int &childStdout, int &parentStdin, int &parentStdout)
{
    closeDescriptor(childStdin);
    closeDescriptor(childStdout);
    closeDescriptor(parentStdin);
    closeDescriptor(parentStdout);
}

int CFiExecPipePosix::reapNow()
{
    if (m_exited) {
        return 1;
    }
    if (m_pid <= 0) {
        return -1;
    }
    int status = 0;
    pid_t done;
    do {
        done = waitpid(m_pid, &status, WNOHANG);
    } while (done < 0 && errno == EINTR);
    if (done == 0) {
        return 0;
    }
    if (done < 0) {
        // Someone else reaped it (a host that ignores SIGCHLD); its status is lost.
        m_lastSystemError = errno;
        return -1;
    }
    m_exited = true;
    m_exitStatus = decodeStatus(status);
    closeDescriptor(m_pidFd);
    return 1;
}

int CFiExecPipePosix::waitForExit(int64_t milliseconds)
{
    int64_t deadline = monotonicMilliseconds() + milliseconds;
    int64_t pause = 1;
    for (;;) {
        int reaped = reapNow();
        if (reaped != 0) {
            return reaped;
        }
        int64_t left = deadline - monotonicMilliseconds();
        if (left <= 0) {
            return 0;
        }
        if (m_pidFd >= 0) {
            struct pollfd end = {m_pidFd, POLLIN, 0};
            if (pollUntil(&end, 1, left) < 0) {
                m_lastSystemError = errno;
                return -1;
            }
        } else {
            // Without a process descriptor: look again after a growing pause.
            int64_t step = std::min(pause, left);
            struct timespec nap = {static_cast<time_t>(step / 1000), static_cast<long>(step % 1000) * 1000000};
            nanosleep(&nap, nullptr);
            pause = std::min<int64_t>(pause * 2, 50);
        }
    }
}

void CFiExecPipePosix::signalGroup(int signal)
{
    if (m_pid <= 0 || m_exited) {
        return;
    }
    if (kill(-m_pid, signal) != 0) {
        // The child left its group; it alone is still ours to end.
        kill(m_pid, signal);
    }
}

void CFiExecPipePosix::releaseChild()
{
    closeDescriptor(m_pidFd);
    m_pid = -1;
    m_exited = false;
    m_exitStatus = -1;
}

int CFiExecPipePosix::WaitPid(int32_t seconds)
{
    CFiTraceLogFunction function(m_traceLog, "qorin_pdk_4_4::CFiExecPipePosix::WaitPid");
    if (m_exited) {
        return m_exitStatus;
    }
    if (m_pid <= 0) {
        return -1;
    }
    static const int kPoliteSignals[] = {SIGINT, SIGTERM};
    int32_t wait = seconds > 0 ? seconds : 0;
    for (int round = 0; round < 3; ++round) {
        int ended = waitForExit(toMilliseconds(wait));
        if (ended > 0) {
            return m_exitStatus;
        }
        if (ended < 0) {
            return -1;
        }
        if (round < 2) {
            trace(3, "Child %d still running after %d sec, sending signal %d to its group", static_cast<int>(m_pid),
                  static_cast<int>(wait), kPoliteSignals[round]);
            signalGroup(kPoliteSignals[round]);
        }
        wait = std::min(wait, kLongestStageWait);
    }
    trace(2, "Child %d ignored SIGINT and SIGTERM, killing its group", static_cast<int>(m_pid));
    signalGroup(SIGKILL);
    // Normally at once; a child stuck in the kernel is left behind rather than waited for.
    waitForExit(toMilliseconds(std::max<int32_t>(wait, 1)));
    m_exited = true;
    m_exitStatus = QRN_EXEC_PIPE_FORCED_EXIT_STATUS;
    closeDescriptor(m_pidFd);
    return QRN_EXEC_PIPE_FORCED_EXIT_STATUS;
}

int CFiExecPipePosix::Close(int32_t)
{
    CFiTraceLogFunction function(m_traceLog, "qorin_pdk_4_4::CFiExecPipePosix::Close");
    int result = 0;
    // Closing standard input is the child's end of input.
    closeDescriptor(m_outputRead);
    closeDescriptor(m_stdinWrite);
    if (m_pid > 0) {
        int status = WaitPid(m_closeWait);
        if (status < 0) {
            trace(2, "Unexpected error encountered.");
            m_lastError = EFiExecPipe(m_command, QRN_EXEC_PIPE_ERROR_UNEXPECTED, L"Error in WaitPid()");
            result = QRN_EXEC_PIPE_ERROR_UNEXPECTED;
        } else if (status > 0) {
            wchar_t text[64];
            swprintf(text, sizeof text / sizeof text[0], L"Command exited with status %d", status);
            m_lastError = EFiExecPipe(m_command, QRN_EXEC_PIPE_CMD_FAILED, text, status);
            result = QRN_EXEC_PIPE_CMD_FAILED;
        }
        releaseChild();
    }
    m_endOfOutput = false;
    m_begin = m_end = 0;
    std::vector<char>().swap(m_buffer);
    return result;
}

int CFiExecPipePosix::takeRest(char *line)
{
    size_t count = m_end - m_begin;
    if (count == 0) {
        return 0;
    }
    memcpy(line, m_buffer.data() + m_begin, count);
    line[count] = '\0';
    m_begin = m_end = 0;
    return 1;
}

CFiExecPipePosix::FillResult CFiExecPipePosix::fill(int32_t seconds)
{
    if (m_begin > 0) {
        // What is left is shorter than one piece, so this move stays small.
        memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
        m_end -= m_begin;
        m_begin = 0;
    }
    for (;;) {
        // Once the child has ended, only what is already in the pipe counts; a descendant
        // that still holds the pipe open must not hold up the reader.
        bool childGone = m_pid <= 0 || m_exited;
        if (!childGone && m_pidFd < 0) {
            childGone = reapNow() != 0;
        }
        struct pollfd ready[2] = {{m_outputRead, POLLIN, 0}, {m_pidFd, POLLIN, 0}};
        nfds_t count = (!childGone && m_pidFd >= 0) ? 2 : 1;
        int got = pollUntil(ready, count, childGone ? 0 : toMilliseconds(seconds));
        if (got == 0) {
            return childGone ? FILL_QUIET : FILL_TIMED_OUT;
        }
        if (got < 0) {
            m_lastSystemError = errno;
            trace(1, "CFiExecPipePosix::ReadLine ERROR: poll failed, Error Code: %d, Reason: %s", m_lastSystemError,
                  systemText(m_lastSystemError).c_str());
            return FILL_END;
        }
        if (ready[0].revents != 0) {
            ssize_t n = read(m_outputRead, m_buffer.data() + m_end, m_buffer.size() - m_end);
            if (n > 0) {
                m_end += static_cast<size_t>(n);
                return FILL_DATA;
            }
            if (n == 0) {
                return FILL_END;
            }
            if (errno == EINTR || errno == EAGAIN) {
                continue;
            }
            m_lastSystemError = errno;
            trace(1, "CFiExecPipePosix::ReadLine ERROR: read failed, Error Code: %d, Reason: %s", m_lastSystemError,
                  systemText(m_lastSystemError).c_str());
            return FILL_END;
        }
        if (count == 2 && ready[1].revents != 0) {
            reapNow();
        }
    }
}

// Not traced on entry and exit: it runs once per line of output.
int CFiExecPipePosix::ReadLine(char *line, int size, int *timedOut, int32_t seconds)
{
    if (timedOut != nullptr) {
        *timedOut = 0;
    }
    if (m_outputRead < 0 || line == nullptr || size <= 0) {
        return 0;
    }
    size_t piece = static_cast<size_t>(size);
    if (m_buffer.size() < piece + kReadChunk) {
        m_buffer.resize(piece + kReadChunk);
    }
    for (;;) {
        const char *start = m_buffer.data() + m_begin;
        size_t available = m_end - m_begin;
        size_t window = std::min(available, piece);
        // The line feed counts against the piece, as when each byte is read on its own.
        const char *feed = static_cast<const char *>(memchr(start, '\n', window));
        if (feed != nullptr) {
            size_t length = static_cast<size_t>(feed - start);
            m_begin += length + 1;
            if (length > 0 && start[length - 1] == '\r') {
                --length;
            }
            memcpy(line, start, length);
            line[length] = '\0';
            return 1;
        }
        if (available >= piece) {
            memcpy(line, start, piece);
            line[piece] = '\0';
            m_begin += piece;
            return 1;
        }
        if (m_endOfOutput) {
            return takeRest(line);
        }
        switch (fill(seconds)) {
        case FILL_DATA:
            break;
        case FILL_END:
            m_endOfOutput = true;
            break;
        case FILL_QUIET:
            return takeRest(line);
        case FILL_TIMED_OUT:
            if (timedOut != nullptr) {
                *timedOut = 1;
            }
            return takeRest(line);
        }
    }
}

}  // namespace qorin_pdk_4_4
