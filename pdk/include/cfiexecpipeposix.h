#ifndef CFIEXECPIPEPOSIX_H
#define CFIEXECPIPEPOSIX_H

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

#include "cfiexecpipebase.h"
#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// The exec pipe on this system. The command line is split into words the way the other
// platform's C runtime splits one (double quotes group, no shell, no search of PATH). The
// child runs in a process group of its own with standard output and standard error on one
// pipe, and standard input on a pipe that Close shuts. Ending a child that doesn't end by
// itself sends SIGINT, then SIGTERM, then SIGKILL to its group; a killed child reports 1067.
// The child has no exit signal, so its status and its end reach this object whatever the
// host does with SIGCHLD (ignore it, or reap with waitpid(-1)), and it is killed when the
// host process dies.
// A user name makes the child run with that account's uid, gid and groups, which needs
// root; without root, or for an unknown account, ExecPipe fails with code 3 and
// getLastError holds code 10. The password is not used on this system.
class QORIN_PDK_API CFiExecPipePosix : public CFiExecPipeBase {
public:
    // Wait of each stage of the kill in Close, in seconds, unless setCloseWait changes it.
    static const int32_t DEFAULT_CLOSE_WAIT = 10;

    explicit CFiExecPipePosix(int closeAfterExec);
    CFiExecPipePosix(std::vector<std::string> arguments, int closeAfterExec);
    // Closes down a child that is still running.
    ~CFiExecPipePosix() override;

    int ExecPipe(std::string command, std::string directory) override;
    // Waits up to seconds (at most 30 after the first stage) for each of three stages: the
    // end, SIGINT, SIGTERM; then SIGKILL. Gives the exit status (128 + the signal for a
    // child ended by a signal), 1067 after SIGKILL, -1 without a status to read.
    int WaitPid(int32_t seconds) override;
    // Closes the pipes and waits for the child with WaitPid; the argument is not used. 0
    // after a zero status; 11 with the status in getLastError; 8 when WaitPid fails.
    // Harmless when called again.
    int Close(int32_t seconds) override;
    int ReadLine(char *line, int size, int *timedOut, int32_t seconds) override;
    // Closes down what a run left open and resets the object.
    void Init() override;

    // Changes the wait of each stage of the kill in Close (and in the destructor).
    void setCloseWait(int32_t seconds) { m_closeWait = seconds; }
    int32_t getCloseWait() const { return m_closeWait; }
    // The running child's process id, also the id of its process group; -1 when none.
    pid_t getChildPid() const { return m_exited ? -1 : m_pid; }

    // The words of a command line: blanks and tabs separate; double quotes group and may
    // stand within a word; 2n backslashes before a double quote give n backslashes, 2n+1
    // give n and a literal quote; "" inside quotes is one literal quote; other backslashes
    // stay. The first word ends at the next quote when it starts with one.
    static std::vector<std::string> splitCommandLine(const std::string &commandLine);

protected:
    // Starts the child on the three descriptors; throws EFiExecPipe with code 4, the
    // system's text and errno when that fails.
    virtual int CreateChildProcess(std::string &command, int childStdin, int childStdout, int childStderr,
                                   std::string directory);
    // Closes each valid descriptor and marks it invalid.
    virtual void FlushHandles(int &childStdin, int &childStdout, int &parentStdin, int &parentStdout);
    // Looks up m_user as the account for the child; throws EFiExecPipe(user, 10) when the
    // process may not change to it.
    virtual int Impersonate();

private:
    enum FillResult { FILL_DATA, FILL_END, FILL_QUIET, FILL_TIMED_OUT };

    void resetState();
    int startChild(void *plan, pid_t &pid);
    FillResult fill(int32_t seconds);
    int takeRest(char *line);
    int reapNow();
    // Reaps the keeper unless that was done, and frees what it held.
    void releaseKeeper(bool reaped);
    // Takes the child's status from the keeper's memory, then releases the keeper.
    void finishKeeper(bool reaped);
    // Waits for the keeper's end, killing it first when force is set.
    void endKeeper(bool force);
    int waitForExit(int64_t milliseconds);
    void signalGroup(int signal);
    void releaseChild();

    int m_lastSystemError;
    pid_t m_pid;
    // The process that starts the child, waits for it and keeps its status (see the
    // source); its descriptor is readable when it has ended, -1 where the kernel offers
    // none. Its memory holds the status and its stacks.
    pid_t m_keeper;
    int m_keeperFd;
    void *m_keeperArea;
    int m_stdinWrite;
    int m_outputRead;
    // The child has ended and its status is known; it waits for Close.
    bool m_exited;
    int m_exitStatus;
    bool m_endOfOutput;
    std::string m_command;
    std::vector<char> m_buffer;
    size_t m_begin;
    size_t m_end;
    int32_t m_closeWait;
    bool m_asAccount;
    uid_t m_uid;
    gid_t m_gid;
    std::vector<gid_t> m_groups;
};

}  // namespace qorin_pdk_4_4

#endif
