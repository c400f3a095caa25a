#include "cfitracelog.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <cwchar>
#include <string>

#include <ace/ACE.h>
#include <ace/Guard_T.h>
#include <ace/OS_NS_Thread.h>
#include <ace/OS_NS_fcntl.h>
#include <ace/OS_NS_sys_time.h>
#include <ace/OS_NS_unistd.h>

#include "cfierrormanager.h"
#include "cfistringtool.h"
#include "vstring.h"

namespace qorin_pdk_4_4 {

namespace {

const size_t kFirstBuffer = 1024;
const size_t kLongestBuffer = 8192;

std::string toUtf8(const wchar_t *text)
{
    return text != nullptr ? CFiStringTool::wstr2str(text) : std::string();
}

qrn_eseverity severityOfLevel(int level)
{
    switch (level) {
    case 1:
        return 3;
    case 2:
        return 2;
    case 3:
        return 1;
    default:
        return 4;
    }
}

}  // namespace

CFiTraceLog::CFiTraceLog() : m_initialized(false), m_stdout(false), m_runtimeUpdate(false), m_level(12345) {}

CFiTraceLog::~CFiTraceLog() = default;

ACE_WString CFiTraceLog::currentDate()
{
    time_t now = time(nullptr);
    struct tm local;
    localtime_r(&now, &local);
    wchar_t buffer[64];
    size_t n = wcsftime(buffer, 64, L"%m%d%y", &local);
    buffer[n] = 0;
    return ACE_WString(buffer);
}

void CFiTraceLog::rebuildFullPathLocked()
{
    // A directory that already ends in a separator gets a second one; harmless on this system.
    m_fullPath = m_directory;
    m_fullPath += L"/";
    m_fullPath += m_fileName;
    m_fullPath += L".";
    m_fullPath += m_date;
}

ACE_WString CFiTraceLog::getFullPath() const
{
    ACE_Guard<ACE_Thread_Mutex> guard(m_pathLock);
    return m_initialized ? m_fullPath : ACE_WString();
}

void CFiTraceLog::initialize(const ACE_WString &providerName, ACE_WString directory, ACE_WString file, int level,
                             bool toStdout)
{
    m_providerName = providerName;
    m_stdout = toStdout;
    try {
        initTraceSettings(directory, file, level);
    } catch (...) {
        printf("ERROR: CFiTraceLog: Failed to initialize log settings\n");
    }
    std::string path;
    {
        ACE_Guard<ACE_Thread_Mutex> guard(m_pathLock);
        m_fileName = file;
        m_directory = directory;
        m_level = level;
        m_date = currentDate();
        rebuildFullPathLocked();
        path = toUtf8(m_fullPath.c_str());
    }
    if (level == 0) {
        return;
    }
    // Without a directory and a file there is nowhere sensible to write.
    FILE *probe = (directory.length() > 0 && file.length() > 0) ? fopen(path.c_str(), "a+") : nullptr;
    if (probe == nullptr) {
        printf("[CFiTraceLog] Error: Tracefile [%ls] initialization failed.[%ls][%ls]\n", m_fullPath.c_str(),
               file.c_str(), directory.c_str());
        return;
    }
    fclose(probe);
    m_initialized = true;
    updateTraceLevelFromConfigFile();
}

void CFiTraceLog::registerErrorManager(const CFiErrorManagerPtr &errorManager)
{
    m_errorManager = errorManager;
}

void CFiTraceLog::initTraceSettings(ACE_WString &directory, ACE_WString &file, int &level)
{
    (void)directory;
    (void)file;
    (void)level;
}

void CFiTraceLog::loadFromConfigFile(ACE_WString &directory, ACE_WString &file, int &level)
{
    (void)directory;
    (void)file;
    (void)level;
}

int CFiTraceLog::updateConfigFile(const ACE_WString &directory, const ACE_WString &file, const int &level)
{
    (void)directory;
    (void)file;
    (void)level;
    return 0;
}

void CFiTraceLog::updateTraceLevelFromConfigFile() {}

void CFiTraceLog::trace(int level, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    vtrace(level, format, args);
    va_end(args);
}

void CFiTraceLog::writeLine(const char *line, size_t length)
{
    // One write on a descriptor opened for append: concurrent threads and processes
    // interleave whole lines only.
    std::string path;
    {
        ACE_Guard<ACE_Thread_Mutex> guard(m_pathLock);
        ACE_WString today = currentDate();
        if (today != m_date) {
            m_date = today;
            rebuildFullPathLocked();
        }
        path = toUtf8(m_fullPath.c_str());
    }
    ACE_HANDLE fd = ACE_OS::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    if (fd == ACE_INVALID_HANDLE) {
        return;
    }
    ACE_OS::write(fd, line, length);
    ACE_OS::close(fd);
}

void CFiTraceLog::vtrace(int level, const char *format, va_list args)
{
    if (m_runtimeUpdate) {
        updateTraceLevelFromConfigFile();
    }
    if (format == nullptr || *format == '\0' || !m_initialized) {
        return;
    }

    size_t size = kFirstBuffer;
    char *text = static_cast<char *>(malloc(size));
    if (text == nullptr) {
        return;
    }
    for (;;) {
        va_list copy;
        va_copy(copy, args);
        int n = V_vsnprintf(text, size, format, copy);
        va_end(copy);
        if (n < 0) {
            free(text);
            return;
        }
        if (static_cast<size_t>(n) < size - 1 || size * 2 > kLongestBuffer) {
            break;
        }
        char *bigger = static_cast<char *>(realloc(text, size * 2));
        if (bigger == nullptr) {
            free(text);
            return;
        }
        text = bigger;
        size *= 2;
    }

    auto thread = static_cast<unsigned>(ACE_OS::thr_self());
    auto pid = static_cast<unsigned long>(ACE_OS::getpid());
    char stamp[258];
    std::string timestamp = ACE::timestamp(ACE_OS::gettimeofday(), stamp, sizeof stamp) != nullptr
                                ? std::string(stamp)
                                : std::string("<time error>");

    if (level <= m_level) {
        std::string line = timestamp + " <Pid - " + std::to_string(pid) + " / Thread id - " +
                           std::to_string(thread) + "> " + text + "\n";
        writeLine(line.data(), line.size());
        if (m_stdout) {
            std::string provider = toUtf8(m_providerName.c_str());
            fprintf(stdout, "%s:%s", provider.c_str(), line.c_str());
            fflush(stdout);
        }
    }

    if (!m_errorManager.isNull()) {
        std::string handlerLine = toUtf8(m_providerName.c_str()) + ":" + timestamp + " <Thread id - " +
                                  std::to_string(thread) + "> " + text + "\n";
        m_errorManager->pushError(&handlerLine[0], severityOfLevel(level));
    }
    free(text);
}

}  // namespace qorin_pdk_4_4
