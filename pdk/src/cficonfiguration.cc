#include "cficonfiguration.h"

#include <cerrno>

#include <sys/stat.h>

#include <ace/Configuration_Import_Export.h>
#include <ace/OS_NS_fcntl.h>
#include <ace/OS_NS_stdio.h>
#include <ace/OS_NS_stdlib.h>
#include <ace/OS_NS_sys_stat.h>
#include <ace/OS_NS_unistd.h>

#include "cficonfigurationpathtool.h"
#include "cficredentialsparser.h"
#include "cfistringtool.h"
#include "cfitracelogfunction.h"

namespace qorin_pdk_4_4 {

namespace {

const wchar_t kSourceFile[] = L"pdk/src/cficonfiguration";
// Small: a provider's file holds a handful of sections.
const size_t kHeapMapSize = 16;
const wchar_t kNone[] = L"<none>";

std::string narrow(const wchar_t *text)
{
    return text != nullptr ? CFiStringTool::wstr2str(std::wstring(text)) : std::string();
}

std::string narrow(const ACE_WString &text)
{
    return CFiStringTool::tstr2str(text);
}

ACE_WString widen(const ACE_TString &text)
{
    return CFiStringTool::str2tstr(std::string(text.c_str(), text.length()));
}

bool usable(const std::wstring &value)
{
    return !value.empty() && value != kNone;
}

}  // namespace

std::unique_ptr<ACE_Configuration_Heap> CFiConfiguration::newHeap()
{
    std::unique_ptr<ACE_Configuration_Heap> heap(new ACE_Configuration_Heap);
    if (heap->open(kHeapMapSize) != 0) {
        return nullptr;
    }
    return heap;
}

void CFiConfiguration::openHeap()
{
    m_heap = newHeap();
    if (m_heap == nullptr) {
        // The object stays in place: every operation on the store then fails with a result.
        fail(-1, L"Failed to open configuration heap", __LINE__, L"CFiConfiguration");
    }
}

CFiConfiguration::CFiConfiguration() : m_hasCurrent(false)
{
    openHeap();
}

CFiConfiguration::CFiConfiguration(const wchar_t *directory, const wchar_t *file, bool import) : m_hasCurrent(false)
{
    openHeap();
    if (import) {
        importConfig(directory, file);
    } else {
        setPaths(directory, file);
    }
}

CFiConfiguration::CFiConfiguration(const ACE_WString &name) : m_name(name), m_hasCurrent(false)
{
    openHeap();
    ACE_WString directory;
    ACE_WString file;
    CFiConfigurationPathTool::getConfigFileInfo(name, directory, file);
    setPaths(directory.c_str(), file.c_str());
    if (importConfig(directory.c_str(), file.c_str()) != 0) {
        exportConfig();
    }
}

CFiConfiguration::~CFiConfiguration() = default;

void CFiConfiguration::setTraceLog(const CFiTraceLogPtr &log)
{
    CFiTraceable::setTraceLog(log);
}

void CFiConfiguration::setPaths(const wchar_t *directory, const wchar_t *file)
{
    m_directory = directory != nullptr ? ACE_WString(directory) : ACE_WString();
    m_fileName = file != nullptr ? ACE_WString(file) : ACE_WString();
    m_fullPath = m_directory + m_fileName;
}

int CFiConfiguration::fail(int code, const wchar_t *text, int line, const wchar_t *function)
{
    setLastError(CFiError(code, text, kSourceFile, line, function));
    // A result, not an error of the library: callers decide (a first run has no file yet).
    trace(3, "CFiConfiguration: %ls [%ls] (%d)", text, m_fullPath.c_str(), code);
    return code;
}

int CFiConfiguration::importConfig(const wchar_t *directory, const wchar_t *file)
{
    CFiTraceLogFunction fn(m_traceLog, "qorin_pdk_4_4::CFiConfiguration::importConfig");
    setPaths(directory, file);
    int status = CFiConfigurationPathTool::verify(m_directory.c_str());
    if (status != 0) {
        return fail(status, L"Configuration path verification failed", __LINE__, L"importConfig");
    }
    status = CFiConfigurationPathTool::verify(m_fullPath.c_str());
    if (status != 0) {
        return fail(status, L"Configuration path succeeded but no configuration file exists.", __LINE__,
                    L"importConfig");
    }
    // Read into a fresh tree, so that a malformed file leaves the store as it was and a key
    // gone from the file is gone from memory too.
    std::unique_ptr<ACE_Configuration_Heap> fresh = newHeap();
    if (fresh == nullptr) {
        return fail(-1, L"Failed to open configuration heap", __LINE__, L"importConfig");
    }
    ACE_Registry_ImpExp reader(*fresh);
    status = reader.import_config(narrow(m_fullPath).c_str());
    if (status != 0) {
        return fail(status, L"Import of configuration file failed.", __LINE__, L"importConfig");
    }
    m_heap = std::move(fresh);
    m_current = ACE_Configuration_Section_Key();
    m_hasCurrent = false;
    return 0;
}

int CFiConfiguration::exportConfig()
{
    CFiTraceLogFunction fn(m_traceLog, "qorin_pdk_4_4::CFiConfiguration::exportConfig");
    if (m_directory.length() == 0 || m_fileName.length() == 0) {
        return fail(-1, L"Configuration path verification failed", __LINE__, L"exportConfig");
    }
    std::string target = narrow(m_fullPath);
    std::string temporary = target + ".XXXXXX";
    ACE_HANDLE fd = ACE_OS::mkstemp(&temporary[0]);
    if (fd == ACE_INVALID_HANDLE) {
        return fail(errno != 0 ? errno : -1, L"Export of configuration file failed.", __LINE__, L"exportConfig");
    }
    ACE_OS::close(fd);
    // Passwords may be in the file: a new file is private to its owner, a rewritten one keeps
    // the mode it had.
    ACE_stat old;
    if (ACE_OS::stat(target.c_str(), &old) == 0) {
        ::chmod(temporary.c_str(), old.st_mode & 07777);
    }

    if (m_heap == nullptr) {
        ACE_OS::unlink(temporary.c_str());
        return fail(-1, L"Failed to open configuration heap", __LINE__, L"exportConfig");
    }
    ACE_Registry_ImpExp writer(*m_heap);
    int status = writer.export_config(temporary.c_str());
    if (status == 0) {
        // On disk before it takes the old file's name, so that a crash can't leave it empty.
        fd = ACE_OS::open(temporary.c_str(), O_RDONLY);
        if (fd == ACE_INVALID_HANDLE || ACE_OS::fsync(fd) != 0) {
            status = -1;
        }
        if (fd != ACE_INVALID_HANDLE) {
            ACE_OS::close(fd);
        }
    }
    if (status == 0 && ACE_OS::rename(temporary.c_str(), target.c_str()) != 0) {
        status = errno != 0 ? errno : -1;
    }
    if (status != 0) {
        ACE_OS::unlink(temporary.c_str());
        return fail(status, L"Export of configuration file failed.", __LINE__, L"exportConfig");
    }
    return 0;
}

int CFiConfiguration::openSection(const ACE_Configuration_Section_Key &parent, const wchar_t *name,
                                  ACE_Configuration_Section_Key &key, int create)
{
    if (name == nullptr || m_heap == nullptr) {
        return -1;
    }
    int status = m_heap->open_section(parent, narrow(name).c_str(), create, key);
    if (status == 0) {
        m_current = key;
        m_hasCurrent = true;
    }
    return status;
}

int CFiConfiguration::openSection(const wchar_t *name, ACE_Configuration_Section_Key &key, int create)
{
    if (m_heap == nullptr) {
        return -1;
    }
    return openSection(m_heap->root_section(), name, key, create);
}

ACE_Configuration_Heap &CFiConfiguration::configHeap()
{
    if (m_heap == nullptr) {
        m_heap = newHeap();
    }
    if (m_heap == nullptr) {
        // Still a heap, if an unopened one: the caller's calls on it fail or stop at ACE's checks.
        m_heap.reset(new ACE_Configuration_Heap);
    }
    return *m_heap;
}

std::vector<ACE_WString> CFiConfiguration::enumerateSections(const ACE_Configuration_Section_Key &key)
{
    std::vector<ACE_WString> names;
    if (m_heap == nullptr) {
        return names;
    }
    ACE_TString name;
    for (int index = 0; m_heap->enumerate_sections(key, index, name) == 0; ++index) {
        names.push_back(widen(name));
    }
    return names;
}

std::vector<ACE_WString> CFiConfiguration::enumerateSections()
{
    if (!m_hasCurrent) {
        return std::vector<ACE_WString>();
    }
    return enumerateSections(m_current);
}

int CFiConfiguration::getStringValue(const wchar_t *name, ACE_WString &value)
{
    if (!m_hasCurrent || name == nullptr) {
        return -1;
    }
    ACE_TString text;
    int status = m_heap->get_string_value(m_current, narrow(name).c_str(), text);
    if (status == 0) {
        value = widen(text);
    }
    return status;
}

int CFiConfiguration::setStringValue(const wchar_t *name, const ACE_WString &value)
{
    if (!m_hasCurrent || name == nullptr) {
        return -1;
    }
    std::string text = narrow(value);
    return m_heap->set_string_value(m_current, narrow(name).c_str(), ACE_TString(text.c_str(), text.size()));
}

int CFiConfiguration::getIntegerValue(const wchar_t *name, unsigned &value)
{
    if (!m_hasCurrent || name == nullptr) {
        return -1;
    }
    u_int number = 0;
    int status = m_heap->get_integer_value(m_current, narrow(name).c_str(), number);
    if (status == 0) {
        value = number;
    }
    return status;
}

int CFiConfiguration::setIntegerValue(const wchar_t *name, unsigned value)
{
    if (!m_hasCurrent || name == nullptr) {
        return -1;
    }
    return m_heap->set_integer_value(m_current, narrow(name).c_str(), value);
}

int CFiConfiguration::getStringValue(const wchar_t *section, const wchar_t *name, ACE_WString &value)
{
    ACE_Configuration_Section_Key key;
    int status = openSection(section, key, 1);
    return status != 0 ? status : getStringValue(name, value);
}

int CFiConfiguration::getIntegerValue(const wchar_t *section, const wchar_t *name, unsigned &value)
{
    ACE_Configuration_Section_Key key;
    int status = openSection(section, key, 1);
    return status != 0 ? status : getIntegerValue(name, value);
}

std::vector<SFiCredential> CFiConfiguration::importCredentials(std::string vendor, std::string product,
                                                               ACE_WString section, bool openArray)
{
    CFiTraceLogFunction fn(m_traceLog, "qorin_pdk_4_4::CFiConfiguration::importCredentials");
    std::vector<SFiCredential> credentials;
    {
        CFiCredentialsParser parser;
        parser.setTraceLog(m_traceLog);
        // A missing or empty blob is no failure: the file still counts.
        parser.parse(vendor, product, credentials, openArray);
    }

    ACE_Configuration_Section_Key parent;
    if (openSection(section.c_str(), parent, 1) == 0) {
        for (const ACE_WString &name : enumerateSections()) {
            ACE_Configuration_Section_Key key;
            if (openSection(parent, name.c_str(), key, 1) != 0) {
                trace(1, "ERROR: [%ls] Importing section [%ls] failed.", getLastError().getText(), name.c_str());
                continue;
            }
            bool isOpenArray = narrow(name).find("OPENARRAY") != std::string::npos;
            if (isOpenArray != openArray) {
                trace(3, "Skipping credentials section [%ls]", name.c_str());
                continue;
            }
            trace(3, "Importing credentials section [%ls]", name.c_str());
            ACE_WString host;
            ACE_WString user;
            ACE_WString password;
            getStringValue(L"HOSTNAME", host);
            getStringValue(L"USERNAME", user);
            getStringValue(L"PASSWORD", password);

            SFiCredential record;
            record.hostname = CFiStringTool::tstr2wstr(host);
            record.username = CFiStringTool::tstr2wstr(user);
            record.password = CFiStringTool::tstr2wstr(password);
            if (!usable(record.hostname) || !usable(record.username) || !usable(record.password)) {
                continue;
            }
            bool known = false;
            for (const SFiCredential &existing : credentials) {
                if (CFiStringTool::CompareNoCase(existing.hostname, record.hostname)) {
                    known = true;
                    break;
                }
            }
            if (!known) {
                credentials.push_back(record);
            }
        }
    }

    if (credentials.empty()) {
        trace(2, "WARNING: No credentials found for %s %s.", vendor.c_str(), product.c_str());
    } else {
        trace(3, "INFO: %d credentials found for %s %s.", static_cast<int>(credentials.size()), vendor.c_str(),
              product.c_str());
    }
    return credentials;
}

}  // namespace qorin_pdk_4_4
