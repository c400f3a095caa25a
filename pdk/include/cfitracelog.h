#ifndef CFITRACELOG_H
#define CFITRACELOG_H

#include <atomic>
#include <cstdarg>
#include <cstdint>

#include <ace/SString.h>
#include <ace/Thread_Mutex.h>

#include "cfiexport.h"
#include "cfirefcount.h"
#include "cfismartptr.h"

namespace qorin_pdk_4_4 {

class CFiConfiguration;
class CFiErrorManager;
class CFiTraceLog;

using CFiErrorManagerPtr = CFiSmartPtr<CFiErrorManager, CFiContextSingletonAllocator<CFiErrorManager>>;
using CFiTraceLogPtr = CFiSmartPtr<CFiTraceLog, CFiContextSingletonAllocator<CFiTraceLog>>;

// The library's one diagnostic channel: a dated log file below the install root, optional
// standard output, and every line forwarded to the error manager's handlers. Settings come
// from the section "DEBUG_TRACE_INFO" of <install>/ConfigFiles/<provider>.conf:
//
//   TRACEDIR            log directory, default <install>/Logs/
//   TRACEFILE           file name without date, default <provider>.log
//   TRACELEVEL          0 off, 1 errors, 2 warnings, 3 course, 4 matching, 6 entry and exit
//   TRACESTDOUT         1: also print each line on standard output
//   TRACERUNTIMEUPDATE  1: re-read TRACELEVEL at every trace call
//
// A first run writes the section with TRACELEVEL 1 and stays untraced; the next one traces.
// A line in the file reads "<timestamp> <Pid - p / Thread id - t> <text>", at most 8191
// bytes of text; lines of concurrent threads and processes never mix.
class QORIN_PDK_API CFiTraceLog : public virtual CFiRefCount {
public:
    CFiTraceLog();
    ~CFiTraceLog() override;

    void initialize(const ACE_WString &providerName, ACE_WString directory, ACE_WString file, int level, bool toStdout);
    bool isInitialized() const { return m_initialized; }
    void GetTraceLevels(int &level) const { level = m_level; }
    bool tracesToStdout() const { return m_stdout; }
    bool followsConfigFile() const { return m_runtimeUpdate; }
    void registerErrorManager(const CFiErrorManagerPtr &errorManager);

    void trace(int level, const char *format, ...) __attribute__((format(printf, 3, 4)));
    void vtrace(int level, const char *format, va_list args);

    // Explicit directory and file replace the file's settings; then loadFromConfigFile.
    void initTraceSettings(ACE_WString &directory, ACE_WString &file, int &level);
    // Reads the settings, writing the missing ones. level comes back as 0 (stay off) or 1;
    // a higher configured level takes effect in updateTraceLevelFromConfigFile.
    void loadFromConfigFile(ACE_WString &directory, ACE_WString &file, int &level);
    // Writes all five settings (TRACESTDOUT and TRACERUNTIMEUPDATE as 0); the export's result.
    int updateConfigFile(const ACE_WString &directory, const ACE_WString &file, const int &level);
    void updateTraceLevelFromConfigFile();

    // Where lines go now; empty until initialized.
    ACE_WString getFullPath() const;

private:
    static ACE_WString currentDate();
    // Imports the provider's file into config; false when there is no file location, or a
    // file that exists but can't be read (which is then never rewritten).
    bool importSettings(CFiConfiguration &config) const;
    // An integer value, or a string of digits.
    static bool readNumber(CFiConfiguration &config, const wchar_t *name, unsigned &value);
    // Sets flag on a 1; writes a missing key from the flag.
    static void loadFlag(CFiConfiguration &config, const wchar_t *name, std::atomic<bool> &flag);
    void rebuildFullPathLocked();
    void writeLine(const char *line, size_t length);

    ACE_WString m_providerName;
    ACE_WString m_fileName;
    ACE_WString m_directory;
    ACE_WString m_fullPath;
    ACE_WString m_date;
    CFiErrorManagerPtr m_errorManager;
    // Read by every tracing thread while TRACERUNTIMEUPDATE moves the level.
    std::atomic<bool> m_initialized;
    std::atomic<bool> m_stdout;
    std::atomic<bool> m_runtimeUpdate;
    std::atomic<int> m_level;
    // Date and path are rebuilt by whichever thread notices a new day.
    mutable ACE_Thread_Mutex m_pathLock;
};

}  // namespace qorin_pdk_4_4

#endif
