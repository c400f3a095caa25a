#ifndef CFIEXECPIPEBASE_H
#define CFIEXECPIPEBASE_H

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "cfiexport.h"
#include "cfioutputlines.h"
#include "cfitraceable.h"
#include "efiexecpipe.h"

namespace qorin_pdk_4_4 {

// Runs one command line as a child process and gathers what it writes to standard output
// and standard error, merged, one entry per line. The time-out is the longest silence of
// the child, not the longest run. The outcome is a code; getLastError gives the full record.
// A platform variant supplies process creation, reading, waiting and killing.
//
// One object runs one command at a time; a further Exec on it (a retry) starts afresh.
// An object belongs to one thread; only Abort may come from another.
class QORIN_PDK_API CFiExecPipeBase : public CFiTraceable {
public:
    // Longest piece ExecMain asks ReadLine for; a longer line arrives in several pieces.
    static const int32_t LINE_PIECE_SIZE = 8191;

    explicit CFiExecPipeBase(int closeAfterExec);
    CFiExecPipeBase(std::vector<std::string> arguments, int closeAfterExec);
    ~CFiExecPipeBase() override;

    // Starts the child. 0, or a code; the record is in getLastError.
    virtual int ExecPipe(std::string command, std::string directory) = 0;
    // Waits for the child's end, killing it by stages; its exit status, 1067 for a forced
    // end, -1 if there is no status to read.
    virtual int WaitPid(int32_t seconds) = 0;
    // Ends the run: closes the pipes, waits for the child. 0, 8 or 11.
    virtual int Close(int32_t seconds) = 0;
    // Reads one line, or a piece of at most size bytes of a longer one, without its line
    // end, into line (size + 1 bytes). 1 with text, 0 at the end of output; timedOut is set
    // to 1 when the child was silent for the whole wait.
    virtual int ReadLine(char *line, int size, int *timedOut, int32_t seconds) = 0;

    virtual int IsAbortRequested();
    virtual int IsChildContext();
    virtual int ExecCommandInChildContext(std::string command, std::vector<std::string> &output);
    virtual int ExecMain(std::string command, std::vector<std::string> &output, std::string extra, uint32_t seconds,
                         std::string directory, std::string user, std::string password);
    // Runs command and fills output with its lines. 0 on success; 3 when the child couldn't
    // be started (getLastError holds the real code); 5 on a time-out; 8 or 11 from Close.
    // An empty user runs the child as the caller.
    virtual int Exec(std::string command, std::vector<std::string> &output, std::string extra, uint32_t seconds,
                     std::string directory, std::string user, std::string password);
    // The same, with the lines kept as one text: for output that may run to many megabytes.
    int Exec(std::string command, CFiOutputLines &output, std::string extra, uint32_t seconds, std::string directory,
             std::string user, std::string password);
    // Asks a running Exec to stop before its next line; the child is then closed down.
    virtual void Abort();
    // The most memory the lines of one run may take, in bytes: each line counts its length
    // and its string. 0, the default, sets no limit. A run that passes it is stopped: the
    // child is closed down, ExecMain gives QRN_EXEC_PIPE_CMD_KILLED and output keeps the
    // lines up to the limit.
    void setOutputLimit(uint64_t bytes) { m_outputLimit = bytes; }
    uint64_t getOutputLimit() const { return m_outputLimit; }
    virtual void Init();
    virtual EFiExecPipe getLastError();

    CFiExecPipeBase(const CFiExecPipeBase &) = delete;
    CFiExecPipeBase &operator=(const CFiExecPipeBase &) = delete;

protected:
    std::atomic<int32_t> m_abort;
    std::vector<std::string> m_arguments;
    EFiExecPipe m_lastError;
    std::string m_user;
    std::string m_password;
    std::string m_extra;
    bool m_closeAfterExec;
    uint64_t m_outputLimit = 0;

private:
    // Exec's end for either kind of output: the child closed down when the pipe was made so.
    int closeAfterExec(int result);
    // What ExecMain does, into either kind of output.
    template <class Output>
    int run(const std::string &command, Output &output, const std::string &extra, uint32_t seconds,
            const std::string &directory, const std::string &user, const std::string &password);
};

}  // namespace qorin_pdk_4_4

#endif
