#ifndef CFITRACELOG_H
#define CFITRACELOG_H

#include <cstdarg>
#include <cstdint>

#include <ace/SString.h>
#include <ace/Thread_Mutex.h>

#include "cfiexport.h"
#include "cfirefcount.h"
#include "cfismartptr.h"

namespace qorin_pdk_4_4 {

class CFiErrorManager;
class CFiTraceLog;

using CFiErrorManagerPtr = CFiSmartPtr<CFiErrorManager, CFiContextSingletonAllocator<CFiErrorManager>>;
using CFiTraceLogPtr = CFiSmartPtr<CFiTraceLog, CFiContextSingletonAllocator<CFiTraceLog>>;

// The library's one diagnostic channel: a dated log file below the install root, optional
// standard output, and every line forwarded to the error manager's handlers. Settings come
// from the section "DEBUG_TRACE_INFO" of the provider's configuration file.
class QORIN_PDK_API CFiTraceLog : public virtual CFiRefCount {
public:
    CFiTraceLog();
    ~CFiTraceLog() override;

    void initialize(const ACE_WString &providerName, ACE_WString directory, ACE_WString file, int level,
                    bool toStdout);
    bool isInitialized() const { return m_initialized; }
    void GetTraceLevels(int &level) const { level = m_level; }
    void registerErrorManager(const CFiErrorManagerPtr &errorManager);

    void trace(int level, const char *format, ...) __attribute__((format(printf, 3, 4)));
    void vtrace(int level, const char *format, va_list args);

    void initTraceSettings(ACE_WString &directory, ACE_WString &file, int &level);
    void loadFromConfigFile(ACE_WString &directory, ACE_WString &file, int &level);
    int updateConfigFile(const ACE_WString &directory, const ACE_WString &file, const int &level);
    void updateTraceLevelFromConfigFile();

    // Where lines go now; empty until initialized.
    ACE_WString getFullPath() const;

private:
    static ACE_WString currentDate();
    void rebuildFullPathLocked();
    void writeLine(const char *line, size_t length);

    ACE_WString m_providerName;
    ACE_WString m_fileName;
    ACE_WString m_directory;
    ACE_WString m_fullPath;
    ACE_WString m_date;
    CFiErrorManagerPtr m_errorManager;
    bool m_initialized;
    bool m_stdout;
    bool m_runtimeUpdate;
    volatile int m_level;
    // Date and path are rebuilt by whichever thread notices a new day.
    mutable ACE_Thread_Mutex m_pathLock;
};

}  // namespace qorin_pdk_4_4

#endif
