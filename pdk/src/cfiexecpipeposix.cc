#include "cfiexecpipeposix.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <gnu/lib-names.h>
#include <grp.h>
#include <poll.h>
#include <pwd.h>
#include <sched.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
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

// A run's child is started by a keeper: a small process that shares the host's memory,
// never runs another program and has no exit signal. The kernel neither reaps such a
// process for a host that ignores SIGCHLD nor hands it to a host's waitpid(-1), and the
// host gets no SIGCHLD for it. The keeper starts the program as its own child, with SIGCHLD
// at its default, waits for it and leaves the wait status in memory we share, so the
// status and the end of the run reach us whatever the host does with SIGCHLD.
//
// The keeper and the program's child before exec run in the host's memory beside the
// host's threads: they make raw system calls only (no errno, no lock, no allocation) and
// are built without sanitizer instrumentation, which would act on the host thread's state.
#define TAMLIN_RAW __attribute__((no_sanitize("address", "thread", "undefined")))

// A system call without errno: the result, or -errno.
TAMLIN_RAW __attribute__((always_inline)) inline long rawCall(long number, long a = 0, long b = 0, long c = 0,
                                                              long d = 0, long e = 0)
{
#if defined(__x86_64__)
    long result;
    register long r10 __asm__("r10") = d;
    register long r8 __asm__("r8") = e;
    __asm__ volatile("syscall"
                     : "=a"(result)
                     : "a"(number), "D"(a), "S"(b), "d"(c), "r"(r10), "r"(r8)
                     : "rcx", "r11", "memory");
    return result;
#elif defined(__aarch64__)
    register long x8 __asm__("x8") = number;
    register long x0 __asm__("x0") = a;
    register long x1 __asm__("x1") = b;
    register long x2 __asm__("x2") = c;
    register long x3 __asm__("x3") = d;
    register long x4 __asm__("x4") = e;
    __asm__ volatile("svc 0" : "+r"(x0) : "r"(x8), "r"(x1), "r"(x2), "r"(x3), "r"(x4) : "memory", "cc");
    return x0;
#else
#error "raw system calls are written for x86-64 and aarch64"
#endif
}

// What the keeper and the program's child need; lives in the starting thread's frame
// until the keeper has reported.
struct StartPlan {
    const char *path;
    char *const *argv;
    char *const *envp;
    int input;
    int output;
    int error;
    // Null: the parent's directory.
    const char *directory;
    bool asAccount;
    uid_t uid;
    gid_t gid;
    const gid_t *groups;
    size_t groupCount;
    pid_t host;
    int report;
};

using CloneCall = int (*)(int (*)(void *), void *, int, void *, ...);

// The head of the keeper's mapping; its two stacks follow. Written by the keeper, read by
// us once the keeper has ended.
struct KeeperArea {
    const StartPlan *plan;
    CloneCall clone;
    char *childStack;
    // Set by the program's child when exec failed.
    int execError;
    // The program's wait status, valid when hasStatus is 1.
    int waitStatus;
    int hasStatus;
};

// What the keeper reports once the program runs or could not start.
struct StartReport {
    int32_t pid;
    int32_t error;
};

// The kernel's sigaction, as rt_sigaction takes it.
struct KernelSigaction {
    void (*handler)(int);
    unsigned long flags;
    void (*restorer)();
    unsigned long mask;
};

const int kKernelSignals = 64;
const size_t kStackSize = 64 * 1024;
const size_t kAreaSize = 4096 + 2 * kStackSize;

TAMLIN_RAW int programChild(void *argument)
{
    KeeperArea &area = *static_cast<KeeperArea *>(argument);
    const StartPlan &plan = *area.plan;
    // Every signal at its default: the host's handlers mean nothing after exec, and an
    // ignored SIGINT or SIGTERM would defeat the staged kill. All were blocked from before
    // the keeper started, so no handler of the host ran in either.
    KernelSigaction standard = {SIG_DFL, 0, nullptr, 0};
    for (int signal = 1; signal <= kKernelSignals; ++signal) {
        if (signal != SIGKILL && signal != SIGSTOP) {
            rawCall(SYS_rt_sigaction, signal, reinterpret_cast<long>(&standard), 0, sizeof standard.mask);
        }
    }
    long failed = rawCall(SYS_setpgid, 0, 0);
    if (failed == 0) {
        failed = rawCall(SYS_dup3, plan.input, STDIN_FILENO, 0);
    }
    if (failed >= 0) {
        failed = rawCall(SYS_dup3, plan.output, STDOUT_FILENO, 0);
    }
    if (failed >= 0) {
        failed = rawCall(SYS_dup3, plan.error, STDERR_FILENO, 0);
    }
    if (failed >= 0 && plan.asAccount) {
        failed = rawCall(SYS_setgroups, static_cast<long>(plan.groupCount), reinterpret_cast<long>(plan.groups));
        if (failed == 0) {
            failed = rawCall(SYS_setresgid, plan.gid, plan.gid, plan.gid);
        }
        if (failed == 0) {
            failed = rawCall(SYS_setresuid, plan.uid, plan.uid, plan.uid);
        }
    }
    // The directory is entered with the account's rights, not with root's.
    if (failed >= 0 && plan.directory != nullptr) {
        failed = rawCall(SYS_chdir, reinterpret_cast<long>(plan.directory));
    }
    // The program ends with its keeper, and so with the host. Set after the change of
    // account, which clears it.
    if (failed >= 0) {
        failed = rawCall(SYS_prctl, PR_SET_PDEATHSIG, SIGKILL);
    }
    if (failed >= 0) {
        unsigned long none = 0;
        rawCall(SYS_rt_sigprocmask, SIG_SETMASK, reinterpret_cast<long>(&none), 0, sizeof none);
        failed = rawCall(SYS_execve, reinterpret_cast<long>(plan.path), reinterpret_cast<long>(plan.argv),
                         reinterpret_cast<long>(plan.envp));
    }
    area.execError = failed < 0 ? static_cast<int>(-failed) : ECHILD;
    rawCall(SYS_exit_group, 127);
    return 127;
}

TAMLIN_RAW int keeper(void *argument)
{
    KeeperArea &area = *static_cast<KeeperArea *>(argument);
    const StartPlan &plan = *area.plan;
    const int report = plan.report;
    // SIGCHLD at its default, whatever the host set: the kernel then keeps the program's
    // status for our wait. The other signals stay blocked: only SIGKILL ends a keeper, and
    // the keeper ends with the host.
    KernelSigaction standard = {SIG_DFL, 0, nullptr, 0};
    rawCall(SYS_rt_sigaction, SIGCHLD, reinterpret_cast<long>(&standard), 0, sizeof standard.mask);
    StartReport told = {-1, ESRCH};
    if (rawCall(SYS_prctl, PR_SET_PDEATHSIG, SIGKILL) == 0 && rawCall(SYS_getppid) == plan.host) {
        area.execError = 0;
        // The C library's clone, for the new stack; it touches errno only when it fails.
        int child = area.clone(programChild, area.childStack, CLONE_VM | CLONE_VFORK | SIGCHLD, &area);
        told.pid = child;
        told.error = child < 0 ? EAGAIN : area.execError;
        if (child > 0 && told.error != 0) {
            int status;
            rawCall(SYS_wait4, child, reinterpret_cast<long>(&status), 0, 0);
            told.pid = -1;
        }
    }
    rawCall(SYS_write, report, reinterpret_cast<long>(&told), sizeof told);
    if (told.pid > 0) {
        // From here on nothing of the plan: it is gone with the starting thread's frame.
        int status = 0;
        long done;
        do {
            done = rawCall(SYS_wait4, told.pid, reinterpret_cast<long>(&status), 0, 0);
        } while (done == -EINTR);
        if (done == told.pid) {
            area.waitStatus = status;
            area.hasStatus = 1;
        }
    }
    rawCall(SYS_exit_group, 0);
    return 0;
}

// The C library's own clone: a sanitizer's interceptor of clone takes every child for a
// fork, which a process sharing our memory is not.
CloneCall libcClone()
{
    static const CloneCall call = [] {
        CloneCall found = nullptr;
        if (void *libc = dlopen(LIBC_SO, RTLD_LAZY | RTLD_NOLOAD)) {
            found = reinterpret_cast<CloneCall>(dlsym(libc, "clone"));
            dlclose(libc);
        }
        return found != nullptr ? found : reinterpret_cast<CloneCall>(&::clone);
    }();
    return call;
}

}  // namespace

// Starts the program of plan through a keeper; see above. 0 with the program's pid, or
// errno.
int CFiExecPipePosix::startChild(void *startPlan, pid_t &pid)
{
    StartPlan &plan = *static_cast<StartPlan *>(startPlan);
    int report[2];
    if (pipe2(report, O_CLOEXEC) != 0) {
        return errno;
    }
    void *mapping = mmap(nullptr, kAreaSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED) {
        int error = errno;
        closeDescriptor(report[0]);
        closeDescriptor(report[1]);
        return error;
    }
    KeeperArea *area = static_cast<KeeperArea *>(mapping);
    char *base = static_cast<char *>(mapping);
    area->plan = &plan;
    area->clone = libcClone();
    area->childStack = base + kAreaSize;
    plan.host = getpid();
    plan.report = report[1];

    // Every signal blocked across the start, so that no handler of the host runs in the
    // keeper or in the child before it has set its own.
    unsigned long all = ~0UL;
    unsigned long before = 0;
    rawCall(SYS_rt_sigprocmask, SIG_SETMASK, reinterpret_cast<long>(&all), reinterpret_cast<long>(&before), sizeof all);
    // The keeper shares memory and descriptors: it holds no copy of the host's files, so a
    // pipe or socket the host closes is closed.
    const int flags = CLONE_VM | CLONE_FILES;
    int keeperFd = -1;
    char *keeperStack = base + 4096 + kStackSize;
    int started = libcClone()(keeper, keeperStack, flags | CLONE_PIDFD, area, &keeperFd);
    if (started < 0 && errno == EINVAL) {
        // A kernel without process descriptors: the end is then found by polling.
        keeperFd = -1;
        started = libcClone()(keeper, keeperStack, flags, area);
    }
    int error = started < 0 ? errno : 0;
    rawCall(SYS_rt_sigprocmask, SIG_SETMASK, reinterpret_cast<long>(&before), 0, sizeof before);
    if (started < 0) {
        closeDescriptor(report[0]);
        closeDescriptor(report[1]);
        munmap(mapping, kAreaSize);
        return error;
    }
    m_keeper = started;
    m_keeperFd = keeperFd;
    m_keeperArea = mapping;

    // The keeper shares our descriptors, so its end closes no pipe: a keeper killed before
    // it reported shows through its process descriptor.
    StartReport told = {-1, ECHILD};
    ssize_t got = -1;
    struct pollfd waitFor[2] = {{report[0], POLLIN, 0}, {m_keeperFd, POLLIN, 0}};
    for (;;) {
        int ready = pollUntil(waitFor, m_keeperFd >= 0 ? 2 : 1, INT32_MAX);
        if (ready > 0 && waitFor[0].revents != 0) {
            do {
                got = read(report[0], &told, sizeof told);
            } while (got < 0 && errno == EINTR);
        }
        if (ready != 0) {
            break;
        }
    }
    closeDescriptor(report[0]);
    closeDescriptor(report[1]);
    if (got != static_cast<ssize_t>(sizeof told) || told.pid <= 0) {
        // The keeper ends by itself after a failed start.
        releaseKeeper(false);
        return told.error != 0 ? told.error : ECHILD;
    }
    pid = told.pid;
    return 0;
}

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
    m_keeper = -1;
    m_keeperFd = -1;
    m_keeperArea = nullptr;
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
        StartPlan plan = {};
        plan.path = program.c_str();
        plan.argv = argv.data();
        plan.envp = environ;
        plan.input = childStdin;
        plan.output = childStdout;
        plan.error = childStderr;
        plan.directory = directory.empty() ? nullptr : directory.c_str();
        plan.asAccount = m_asAccount;
        plan.uid = m_uid;
        plan.gid = m_gid;
        plan.groups = m_groups.data();
        plan.groupCount = m_groups.size();
        error = startChild(&plan, pid);
    }
    if (error != 0) {
        m_lastSystemError = error;
        trace(1, "Failed to create child process");
        throw EFiExecPipe(command, QRN_EXEC_PIPE_CREATE_CHILD_PROCESS_FAILED,
                          CFiStringTool::str2wstr(systemText(error)), error);
    }
    m_pid = pid;
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
    if (m_keeper <= 0) {
        return -1;
    }
    int status = 0;
    pid_t done;
    do {
        // __WALL: the keeper has no exit signal, which a plain wait passes over.
        done = waitpid(m_keeper, &status, WNOHANG | __WALL);
    } while (done < 0 && errno == EINTR);
    if (done == 0) {
        return 0;
    }
    // Gone either way: reaped here, or by a host that waits with __WALL, which takes only
    // a keeper that has ended. The program's status is in our memory all the same.
    m_lastSystemError = done < 0 ? errno : 0;
    finishKeeper(true);
    return 1;
}

void CFiExecPipePosix::releaseKeeper(bool reaped)
{
    if (m_keeper > 0 && !reaped) {
        int status;
        while (waitpid(m_keeper, &status, __WALL) < 0 && errno == EINTR) {
        }
    }
    // Only now: the keeper ran on stacks in this mapping.
    if (m_keeperArea != nullptr) {
        munmap(m_keeperArea, kAreaSize);
        m_keeperArea = nullptr;
    }
    closeDescriptor(m_keeperFd);
    m_keeper = -1;
}

void CFiExecPipePosix::finishKeeper(bool reaped)
{
    const KeeperArea *area = static_cast<const KeeperArea *>(m_keeperArea);
    m_exited = true;
    m_exitStatus = area != nullptr && area->hasStatus == 1 ? decodeStatus(area->waitStatus) : -1;
    if (m_exitStatus < 0) {
        trace(1, "Child %d: its keeper ended without its exit status", static_cast<int>(m_pid));
    }
    releaseKeeper(reaped);
}

void CFiExecPipePosix::endKeeper(bool force)
{
    if (m_keeper <= 0) {
        return;
    }
    if (force) {
        // Through the process descriptor where there is one: it can't hit a process that
        // took over a reused number.
        if (m_keeperFd < 0 || rawCall(SYS_pidfd_send_signal, m_keeperFd, SIGKILL, 0, 0) != 0) {
            kill(m_keeper, SIGKILL);
        }
    }
    finishKeeper(false);
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
        if (m_keeperFd >= 0) {
            struct pollfd end = {m_keeperFd, POLLIN, 0};
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
    endKeeper(true);
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
    // Normally at once; a child stuck in the kernel is left behind rather than waited for:
    // its keeper is killed, which it can't hold up.
    if (waitForExit(toMilliseconds(std::max<int32_t>(wait, 1))) <= 0) {
        endKeeper(true);
    }
    m_exited = true;
    m_exitStatus = QRN_EXEC_PIPE_FORCED_EXIT_STATUS;
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
        if (!childGone && m_keeperFd < 0) {
            childGone = reapNow() != 0;
        }
        struct pollfd ready[2] = {{m_outputRead, POLLIN, 0}, {m_keeperFd, POLLIN, 0}};
        nfds_t count = (!childGone && m_keeperFd >= 0) ? 2 : 1;
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
