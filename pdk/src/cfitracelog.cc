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

#include "cficonfiguration.h"
#include "cficonfigurationpathtool.h"
#include "cfierror.h"
#include "cfierrormanager.h"
#include "cfistringtool.h"
#include "qrn_results.h"
#include "vstring.h"

namespace qorin_pdk_4_4 {

namespace {

const wchar_t kSection[] = L"DEBUG_TRACE_INFO";
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
        return QRN_SEVERITY_ERROR;
    case 2:
        return QRN_SEVERITY_WARNING;
    case 3:
        return QRN_SEVERITY_INFO;
    default:
        return QRN_SEVERITY_DETAIL;
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
    m_fullPath = m_directory;
    if (m_directory.length() == 0 || m_directory[m_directory.length() - 1] != L'/') {
        m_fullPath += L"/";
    }
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
    if (directory.length() > 0 && file.length() > 0) {
        updateConfigFile(directory, file, level);
    }
    try {
        loadFromConfigFile(directory, file, level);
    } catch (const CFiError &) {
        // The defaults stay in force.
    }
}

void CFiTraceLog::loadFromConfigFile(ACE_WString &directory, ACE_WString &file, int &level)
{
    const int given = level;
    CFiConfigurationPathTool::getTraceFileInfo(m_providerName, directory, file);
    CFiConfiguration config;
    if (!importSettings(config)) {
        // Nothing to read and nowhere to write: stay off.
        level = 0;
        return;
    }

    unsigned read = 0;
    ACE_Configuration_Section_Key key;
    if (config.openSection(kSection, key, 0) != 0) {
        updateConfigFile(directory, file, given);
    } else {
        ACE_WString text;
        if (config.getStringValue(L"TRACEDIR", text) == 0) {
            directory = text;
        } else {
            config.setStringValue(L"TRACEDIR", directory);
            config.exportConfig();
        }
        if (config.getStringValue(L"TRACEFILE", text) == 0) {
            file = text;
        } else {
            config.setStringValue(L"TRACEFILE", file);
            config.exportConfig();
        }
        if (!readNumber(config, L"TRACELEVEL", read)) {
            read = 0;
            config.setIntegerValue(L"TRACELEVEL", static_cast<unsigned>(given));
            config.exportConfig();
        }
        loadFlag(config, L"TRACESTDOUT", m_stdout);
        loadFlag(config, L"TRACERUNTIMEUPDATE", m_runtimeUpdate);
    }
    level = read <= 1 ? static_cast<int>(read) : 1;
}

bool CFiTraceLog::importSettings(CFiConfiguration &config) const
{
    ACE_WString directory;
    ACE_WString file;
    CFiConfigurationPathTool::getConfigFileInfo(m_providerName, directory, file);
    if (directory.length() == 0) {
        return false;
    }
    if (config.importConfig(directory.c_str(), file.c_str()) == 0) {
        return true;
    }
    // A file that is there but can't be read is the administrator's: rewriting it from an
    // empty tree would lose every other section.
    return CFiConfigurationPathTool::verify(config.getFullPath().c_str()) != 0;
}

bool CFiTraceLog::readNumber(CFiConfiguration &config, const wchar_t *name, unsigned &value)
{
    if (config.getIntegerValue(name, value) == 0) {
        return true;
    }
    // Accept a hand-written "TRACELEVEL"="6" as well.
    ACE_WString text;
    if (config.getStringValue(name, text) != 0) {
        return false;
    }
    std::string digits = CFiStringTool::tstr2str(text);
    if (digits.empty() || !CFiStringTool::isDigit(digits)) {
        return false;
    }
    value = CFiStringTool::str2uint(digits);
    return true;
}

void CFiTraceLog::loadFlag(CFiConfiguration &config, const wchar_t *name, std::atomic<bool> &flag)
{
    unsigned value = 0;
    if (!readNumber(config, name, value)) {
        value = flag ? 1 : 0;
        config.setIntegerValue(name, value);
        config.exportConfig();
    }
    // A 0 never clears a flag the caller set.
    if (value == 1) {
        flag = true;
    }
}

int CFiTraceLog::updateConfigFile(const ACE_WString &directory, const ACE_WString &file, const int &level)
{
    CFiConfiguration config;
    if (!importSettings(config)) {
        return -1;
    }
    ACE_Configuration_Section_Key key;
    if (config.openSection(kSection, key, 1) == 0) {
        config.setStringValue(L"TRACEDIR", directory);
        config.setStringValue(L"TRACEFILE", file);
        config.setIntegerValue(L"TRACELEVEL", static_cast<unsigned>(level));
        config.setIntegerValue(L"TRACESTDOUT", 0);
        config.setIntegerValue(L"TRACERUNTIMEUPDATE", 0);
    }
    return config.exportConfig();
}

void CFiTraceLog::updateTraceLevelFromConfigFile()
{
    CFiConfiguration config;
    ACE_WString directory;
    ACE_WString file;
    CFiConfigurationPathTool::getConfigFileInfo(m_providerName, directory, file);
    if (directory.length() == 0) {
        return;
    }
    config.importConfig(directory.c_str(), file.c_str());
    ACE_Configuration_Section_Key key;
    if (config.openSection(kSection, key, 1) != 0) {
        m_level = 1;
        return;
    }
    unsigned level = 0;
    if (readNumber(config, L"TRACELEVEL", level)) {
        m_level = static_cast<int>(level);
    }
}

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
        std::string line = timestamp + " <Pid - " + std::to_string(pid) + " / Thread id - " + std::to_string(thread) +
                           "> " + text + "\n";
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
