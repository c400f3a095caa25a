#include "cficonfiguration.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <set>

#include <fcntl.h>
#include <stdio.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ace/ACE.h>
#include <ace/OS_NS_fcntl.h>
#include <ace/OS_NS_stdio.h>
#include <ace/OS_NS_stdlib.h>
#include <ace/OS_NS_string.h>
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
const wchar_t kImportFailed[] = L"Import of configuration file failed.";
const wchar_t kExportFailed[] = L"Export of configuration file failed.";

using SLine = CFiConfigurationText::SLine;
using SValue = CFiConfigurationText::SValue;

// ACE's heap keeps each key's full path ("A\B") in the key; this names it.
class PathHeap : public ACE_Configuration_Heap {
public:
    std::string pathOf(const ACE_Configuration_Section_Key &key)
    {
        auto *internal = dynamic_cast<ACE_Configuration_Section_Key_Heap *>(get_internal_key(key));
        return internal != nullptr && internal->path_ != nullptr ? std::string(internal->path_) : std::string();
    }
};

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

std::string join(const std::string &parent, const std::string &name)
{
    return parent.empty() ? name : parent + "\\" + name;
}

std::vector<std::string> levelsOf(const std::string &path)
{
    std::vector<std::string> levels;
    size_t start = 0;
    for (size_t end; (end = path.find('\\', start)) != std::string::npos; start = end + 1) {
        levels.push_back(path.substr(start, end - start));
    }
    levels.push_back(path.substr(start));
    return levels;
}

std::map<std::string, SValue> valuesOf(ACE_Configuration_Heap &heap, const ACE_Configuration_Section_Key &key)
{
    std::map<std::string, SValue> values;
    ACE_TString name;
    ACE_Configuration::VALUETYPE type;
    for (int index = 0; heap.enumerate_values(key, index, name, type) == 0; ++index) {
        SValue value;
        if (type == ACE_Configuration::STRING) {
            ACE_TString text;
            heap.get_string_value(key, name.c_str(), text);
            value.type = CFiConfigurationText::TEXT;
            value.text.assign(text.c_str(), text.length());
        } else if (type == ACE_Configuration::INTEGER) {
            u_int number = 0;
            heap.get_integer_value(key, name.c_str(), number);
            value.type = CFiConfigurationText::NUMBER;
            value.number = number;
        } else if (type == ACE_Configuration::BINARY) {
            void *data = nullptr;
            size_t length = 0;
            if (heap.get_binary_value(key, name.c_str(), data, length) == 0 && data != nullptr) {
                const auto *bytes = static_cast<const unsigned char *>(data);
                value.bytes.assign(bytes, bytes + length);
                delete[] static_cast<char *>(data);
            }
            value.type = CFiConfigurationText::BYTES;
        } else {
            continue;
        }
        values[std::string(name.c_str(), name.length())] = value;
    }
    return values;
}

// Every section below key, parents before children.
void collectSections(ACE_Configuration_Heap &heap, const ACE_Configuration_Section_Key &key, const std::string &path,
                     std::vector<std::pair<std::string, ACE_Configuration_Section_Key>> &out)
{
    std::vector<std::string> names;
    ACE_TString name;
    for (int index = 0; heap.enumerate_sections(key, index, name) == 0; ++index) {
        names.emplace_back(name.c_str(), name.length());
    }
    for (const std::string &child : names) {
        ACE_Configuration_Section_Key sub;
        if (heap.open_section(key, child.c_str(), 0, sub) == 0) {
            out.emplace_back(join(path, child), sub);
            collectSections(heap, sub, join(path, child), out);
        }
    }
}

// ACE checks a path given whole against the length of one name: a deep path is opened level
// by level, each of which is checked on its own.
int openPath(ACE_Configuration_Heap &heap, const ACE_Configuration_Section_Key &parent, const std::string &path,
             int create, ACE_Configuration_Section_Key &key)
{
    ACE_Configuration_Section_Key at = parent;
    for (const std::string &level : levelsOf(path)) {
        ACE_Configuration_Section_Key next;
        const int status = heap.open_section(at, level.c_str(), create != 0, next);
        if (status != 0) {
            return status;
        }
        at = next;
    }
    key = at;
    return 0;
}

// path below parent with each level in the letter case of a section that is there; levels
// not there stay as given.
std::string spelledAsKept(ACE_Configuration_Heap &heap, const ACE_Configuration_Section_Key &parent,
                          const std::string &path)
{
    std::string spelled;
    ACE_Configuration_Section_Key at = parent;
    bool found = true;
    for (const std::string &level : levelsOf(path)) {
        std::string name = level;
        ACE_Configuration_Section_Key next;
        if (found && heap.open_section(at, level.c_str(), 0, next) != 0) {
            found = false;
            ACE_TString child;
            for (int index = 0; heap.enumerate_sections(at, index, child) == 0; ++index) {
                if (::strcasecmp(child.c_str(), level.c_str()) == 0) {
                    name.assign(child.c_str(), child.length());
                    found = heap.open_section(at, name.c_str(), 0, next) == 0;
                    break;
                }
            }
        }
        at = next;
        spelled = join(spelled, name);
    }
    return spelled;
}

int setValue(ACE_Configuration_Heap &heap, const ACE_Configuration_Section_Key &key, const SLine &line)
{
    switch (line.value.type) {
    case CFiConfigurationText::TEXT:
        return heap.set_string_value(key, line.name.c_str(),
                                     ACE_TString(line.value.text.c_str(), line.value.text.size()));
    case CFiConfigurationText::NUMBER:
        return heap.set_integer_value(key, line.name.c_str(), line.value.number);
    default:
        return heap.set_binary_value(key, line.name.c_str(), line.value.bytes.data(), line.value.bytes.size());
    }
}

std::string systemText(int error)
{
    if (error == EISDIR) {
        return "it is a directory";
    }
    return ACE_OS::strerror(error);
}

}  // namespace

std::unique_ptr<ACE_Configuration_Heap> CFiConfiguration::newHeap()
{
    std::unique_ptr<ACE_Configuration_Heap> heap(new PathHeap);
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
    // Only a missing file is made; one that is there but doesn't import stays as it is.
    if (importConfig(directory.c_str(), file.c_str()) != 0 && m_state == NO_FILE) {
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
    ACE_WString path = m_directory + m_fileName;
    if (path != m_fullPath) {
        m_fileRead = false;
    }
    m_fullPath = path;
}

int CFiConfiguration::fail(int code, const wchar_t *text, int line, const wchar_t *function)
{
    setLastError(CFiError(code, text, kSourceFile, line, function));
    // A result, not an error of the library: callers decide (a first run has no file yet).
    trace(3, "CFiConfiguration: %ls [%ls] (%d)", text, m_fullPath.c_str(), code);
    return code;
}

int CFiConfiguration::failImport(ImportState state, int code, const wchar_t *text, int line, size_t fileLine,
                                 const std::string &problem)
{
    m_state = state;
    m_problemLine = fileLine;
    m_problem = problem;
    setLastError(CFiError(code, text, kSourceFile, line, L"importConfig"));
    if (problem.empty()) {
        trace(3, "CFiConfiguration: %ls [%ls] (%d)", text, m_fullPath.c_str(), code);
    } else if (fileLine == 0) {
        trace(1, "CFiConfiguration: %ls [%ls]: %s", text, m_fullPath.c_str(), problem.c_str());
    } else {
        trace(1, "CFiConfiguration: %ls [%ls] line %d: %s", text, m_fullPath.c_str(), static_cast<int>(fileLine),
              problem.c_str());
    }
    return code;
}

int CFiConfiguration::load(const std::string &text)
{
    CFiConfigurationText parsed;
    if (!parsed.parse(text)) {
        return failImport(MALFORMED, -3, kImportFailed, __LINE__, parsed.errorLine(), parsed.errorReason());
    }
    std::unique_ptr<ACE_Configuration_Heap> fresh = newHeap();
    if (fresh == nullptr) {
        return failImport(UNREADABLE, -1, L"Failed to open configuration heap", __LINE__, 0, "no memory");
    }
    std::vector<std::string> order;
    std::unordered_map<std::string, size_t> rank;
    ACE_Configuration_Section_Key section;
    size_t number = 0;
    for (const SLine &line : parsed.lines()) {
        ++number;
        if (line.kind == CFiConfigurationText::SECTION) {
            if (openPath(*fresh, fresh->root_section(), line.section, 1, section) != 0) {
                return failImport(MALFORMED, -3, kImportFailed, __LINE__, number,
                                  "a section name that is not accepted");
            }
            std::string path;
            for (const std::string &level : levelsOf(line.section)) {
                path = join(path, level);
                if (rank.emplace(path, order.size()).second) {
                    order.push_back(path);
                }
            }
        } else if (line.kind == CFiConfigurationText::VALUE && setValue(*fresh, section, line) != 0) {
            return failImport(MALFORMED, -4, kImportFailed, __LINE__, number, "a value name that is not accepted");
        }
    }
    m_heap = std::move(fresh);
    m_current = ACE_Configuration_Section_Key();
    m_hasCurrent = false;
    m_sectionOrder.swap(order);
    m_sectionRank.swap(rank);
    m_valueOrder.clear();
    m_text = std::move(parsed);
    m_read = text;
    m_state = READ;
    m_problemLine = 0;
    m_problem.clear();
    return 0;
}

int CFiConfiguration::importConfig(const wchar_t *directory, const wchar_t *file)
{
    CFiTraceLogFunction fn(m_traceLog, "qorin_pdk_4_4::CFiConfiguration::importConfig");
    setPaths(directory, file);
    int status = CFiConfigurationPathTool::verify(m_directory.c_str());
    if (status != 0) {
        return failImport(NO_FILE, status, L"Configuration path verification failed", __LINE__, 0, "");
    }
    status = CFiConfigurationPathTool::verify(m_fullPath.c_str());
    if (status != 0) {
        return failImport(NO_FILE, status, L"Configuration path succeeded but no configuration file exists.", __LINE__,
                          0, "");
    }
    // Non-blocking, so that a pipe put in the file's place can't hold the host.
    ACE_HANDLE fd = ACE_OS::open(narrow(m_fullPath).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd == ACE_INVALID_HANDLE) {
        const int error = errno;
        return failImport(UNREADABLE, error != 0 ? error : -1, kImportFailed, __LINE__, 0, systemText(error));
    }
    struct stat info;
    std::string problem;
    if (::fstat(fd, &info) != 0) {
        problem = systemText(errno);
    } else if (S_ISDIR(info.st_mode)) {
        problem = systemText(EISDIR);
    } else if (!S_ISREG(info.st_mode)) {
        problem = "it is not a regular file";
    } else if (static_cast<uint64_t>(info.st_size) > CFiConfigurationText::MAX_BYTES) {
        problem = "the file is larger than 16 MB";
    }
    std::string text;
    if (problem.empty()) {
        char buffer[65536];
        for (;;) {
            const ssize_t got = ::read(fd, buffer, sizeof buffer);
            if (got < 0 && errno == EINTR) {
                continue;
            }
            if (got < 0) {
                problem = systemText(errno);
                break;
            }
            if (got == 0) {
                break;
            }
            text.append(buffer, static_cast<size_t>(got));
            if (text.size() > CFiConfigurationText::MAX_BYTES) {
                problem = "the file is larger than 16 MB";
                break;
            }
        }
    }
    ACE_OS::close(fd);
    if (!problem.empty()) {
        return failImport(UNREADABLE, -1, kImportFailed, __LINE__, 0, problem);
    }
    status = load(text);
    if (status == 0) {
        m_fileRead = true;
    }
    return status;
}

int CFiConfiguration::importText(const std::string &text)
{
    const int status = load(text);
    if (status == 0) {
        // The store no longer holds what the file holds.
        m_fileRead = false;
    }
    return status;
}

std::string CFiConfiguration::pathOf(const ACE_Configuration_Section_Key &key)
{
    return m_heap != nullptr ? static_cast<PathHeap &>(*m_heap).pathOf(key) : std::string();
}

void CFiConfiguration::noteSection(const std::string &path)
{
    if (path.empty()) {
        return;
    }
    std::string prefix;
    for (const std::string &level : levelsOf(path)) {
        prefix = join(prefix, level);
        if (m_sectionRank.emplace(prefix, m_sectionOrder.size()).second) {
            m_sectionOrder.push_back(prefix);
        }
    }
}

void CFiConfiguration::noteValue(const wchar_t *name)
{
    std::vector<std::string> &names = m_valueOrder[pathOf(m_current)];
    const std::string text = narrow(name);
    if (std::find(names.begin(), names.end(), text) == names.end()) {
        names.push_back(text);
    }
}

size_t CFiConfiguration::sectionRank(const std::string &path) const
{
    auto found = m_sectionRank.find(path);
    return found != m_sectionRank.end() ? found->second : SIZE_MAX;
}

bool CFiConfiguration::renderText(std::string &out)
{
    if (m_heap == nullptr) {
        fail(-1, L"Failed to open configuration heap", __LINE__, L"renderText");
        return false;
    }
    std::vector<std::pair<std::string, ACE_Configuration_Section_Key>> sections;
    collectSections(*m_heap, m_heap->root_section(), std::string(), sections);
    std::map<std::string, std::map<std::string, SValue>> values;
    std::set<std::string> parents;
    for (const auto &section : sections) {
        values[section.first] = valuesOf(*m_heap, section.second);
        const size_t slash = section.first.rfind('\\');
        if (slash != std::string::npos) {
            parents.insert(section.first.substr(0, slash));
        }
    }

    const std::vector<SLine> &lines = m_text.lines();
    // A section's new values go behind its last line in the file.
    std::map<std::string, size_t> lastLine;
    std::map<std::pair<std::string, std::string>, size_t> lastValue;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].kind != CFiConfigurationText::OTHER) {
            lastLine[lines[i].section] = i;
        }
        if (lines[i].kind == CFiConfigurationText::VALUE) {
            lastValue[{lines[i].section, lines[i].name}] = i;
        }
    }

    std::vector<std::string> result;
    std::string problem;
    auto valueLine = [&](const std::string &name, const SValue &value, const std::string &comment) {
        std::string line;
        if (!CFiConfigurationText::formatValue(name, value, line, problem)) {
            return false;
        }
        result.push_back(line + comment);
        return true;
    };
    // The values of a section that the file doesn't hold: first those set here, in that order.
    auto addNewValues = [&](const std::string &path) {
        const std::map<std::string, SValue> &all = values[path];
        std::vector<std::string> names;
        auto noted = m_valueOrder.find(path);
        if (noted != m_valueOrder.end()) {
            for (const std::string &name : noted->second) {
                if (all.count(name) != 0) {
                    names.push_back(name);
                }
            }
        }
        for (const auto &value : all) {
            if (std::find(names.begin(), names.end(), value.first) == names.end()) {
                names.push_back(value.first);
            }
        }
        for (const std::string &name : names) {
            if (lastValue.count({path, name}) == 0 && !valueLine(name, all.at(name), std::string())) {
                return false;
            }
        }
        return true;
    };

    for (size_t i = 0; i < lines.size(); ++i) {
        const SLine &line = lines[i];
        if (line.kind == CFiConfigurationText::OTHER) {
            result.push_back(line.raw);
            continue;
        }
        auto section = values.find(line.section);
        if (section == values.end()) {
            continue;  // the section is gone, and its values with it
        }
        if (line.kind == CFiConfigurationText::SECTION) {
            result.push_back(line.raw);
        } else {
            auto value = section->second.find(line.name);
            if (value == section->second.end()) {
                continue;
            }
            // An earlier line of the same name never counted; the last one is what was read.
            if (lastValue[{line.section, line.name}] != i || value->second == line.value) {
                result.push_back(line.raw);
            } else if (!valueLine(line.name, value->second, line.comment)) {
                break;
            }
        }
        if (lastLine[line.section] == i && !addNewValues(line.section)) {
            break;
        }
    }

    std::vector<const std::string *> fresh;
    for (const auto &section : sections) {
        if (lastLine.count(section.first) == 0) {
            fresh.push_back(&section.first);
        }
    }
    std::stable_sort(fresh.begin(), fresh.end(), [this](const std::string *a, const std::string *b) {
        const size_t ra = sectionRank(*a);
        const size_t rb = sectionRank(*b);
        return ra != rb ? ra < rb : *a < *b;
    });
    for (const std::string *path : fresh) {
        if (!problem.empty()) {
            break;
        }
        // A new parent without values of its own is written by its children's headers.
        if (values[*path].empty() && parents.count(*path) != 0) {
            continue;
        }
        std::string header;
        if (!CFiConfigurationText::formatSection(levelsOf(*path), header, problem)) {
            break;
        }
        if (!result.empty() && !result.back().empty()) {
            result.emplace_back();
        }
        result.push_back(header);
        addNewValues(*path);
    }
    if (!problem.empty()) {
        fail(-1, CFiStringTool::str2wstr("Export of configuration file failed: " + problem + ".").c_str(), __LINE__,
             L"exportConfig");
        return false;
    }
    out.clear();
    for (const std::string &line : result) {
        out += line;
        out += m_text.lineEnd();
    }
    return true;
}

int CFiConfiguration::exportConfig()
{
    CFiTraceLogFunction fn(m_traceLog, "qorin_pdk_4_4::CFiConfiguration::exportConfig");
    if (m_directory.length() == 0 || m_fileName.length() == 0) {
        return fail(-1, L"Configuration path verification failed", __LINE__, L"exportConfig");
    }
    std::string text;
    if (!renderText(text)) {
        return getLastError().getCode() != 0 ? getLastError().getCode() : -1;
    }
    return writeFile(text);
}

int CFiConfiguration::writeFile(const std::string &text)
{
    std::string target = narrow(m_fullPath);
    struct stat info;
    // Through a symbolic link: the administrator keeps the file where the link says.
    if (::lstat(target.c_str(), &info) == 0 && S_ISLNK(info.st_mode)) {
        char *real = ::realpath(target.c_str(), nullptr);
        if (real == nullptr) {
            return fail(errno != 0 ? errno : -1,
                        L"Export of configuration file failed: its symbolic link leads nowhere.", __LINE__,
                        L"exportConfig");
        }
        target = real;
        free(real);
    }
    const bool exists = ::stat(target.c_str(), &info) == 0;
    if (exists && !m_fileRead) {
        return fail(-1,
                    L"Export of configuration file refused: the file was not read whole, and writing it would lose "
                    L"what it holds.",
                    __LINE__, L"exportConfig");
    }
    if (exists && !S_ISREG(info.st_mode)) {
        return fail(-1, L"Export of configuration file failed: it is not a regular file.", __LINE__, L"exportConfig");
    }
    if (exists && text == m_read) {
        return 0;
    }

    std::string temporary = target + ".XXXXXX";
    ACE_HANDLE fd = ACE_OS::mkstemp(&temporary[0]);
    if (fd == ACE_INVALID_HANDLE) {
        return fail(errno != 0 ? errno : -1, kExportFailed, __LINE__, L"exportConfig");
    }
    // Passwords may be in the file: a new file is private to its owner, a rewritten one keeps
    // the mode and owner it had.
    if (exists) {
        ::fchmod(fd, info.st_mode & 07777);
        if (::geteuid() == 0) {
            (void)::fchown(fd, info.st_uid, info.st_gid);
        }
    }
    int status = ACE::write_n(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size()) ? 0 : -1;
    // On disk before it takes the old file's name, so that a crash can't leave it empty.
    if (status == 0 && ACE_OS::fsync(fd) != 0) {
        status = -1;
    }
    ACE_OS::close(fd);
    bool moved = false;
    if (status == 0) {
        if (exists) {
            moved = ACE_OS::rename(temporary.c_str(), target.c_str()) == 0;
        } else {
            // Never over a file that appeared meanwhile: that one is somebody's.
            moved = ::renameat2(AT_FDCWD, temporary.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0;
            if (!moved && (errno == EINVAL || errno == ENOSYS) && ::link(temporary.c_str(), target.c_str()) == 0) {
                ACE_OS::unlink(temporary.c_str());
                moved = true;
            }
        }
        if (!moved) {
            status = errno != 0 ? errno : -1;
        }
    }
    if (!moved) {
        ACE_OS::unlink(temporary.c_str());
    }
    if (status != 0) {
        return fail(status, kExportFailed, __LINE__, L"exportConfig");
    }
    m_read = text;
    m_text.parse(text);
    m_state = READ;
    m_fileRead = true;
    return 0;
}

int CFiConfiguration::openSection(const ACE_Configuration_Section_Key &parent, const wchar_t *name,
                                  ACE_Configuration_Section_Key &key, int create)
{
    if (name == nullptr || m_heap == nullptr) {
        return -1;
    }
    const std::string path = narrow(name);
    int status = openPath(*m_heap, parent, path, create, key);
    if (status != 0) {
        // ACE finds a section only in the letter case it was made in, yet refuses to make it
        // in another: the one already there is meant.
        const std::string spelled = spelledAsKept(*m_heap, parent, path);
        if (spelled != path) {
            status = openPath(*m_heap, parent, spelled, create, key);
        }
    }
    if (status == 0) {
        m_current = key;
        m_hasCurrent = true;
        noteSection(pathOf(key));
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
        m_heap.reset(new PathHeap);
    }
    return *m_heap;
}

std::vector<ACE_WString> CFiConfiguration::enumerateSections(const ACE_Configuration_Section_Key &key)
{
    std::vector<ACE_WString> names;
    if (m_heap == nullptr) {
        return names;
    }
    std::vector<std::string> found;
    ACE_TString name;
    for (int index = 0; m_heap->enumerate_sections(key, index, name) == 0; ++index) {
        found.emplace_back(name.c_str(), name.length());
    }
    // The heap's order is its hash order: give the file's instead.
    const std::string parent = pathOf(key);
    std::stable_sort(found.begin(), found.end(), [&](const std::string &a, const std::string &b) {
        const size_t ra = sectionRank(join(parent, a));
        const size_t rb = sectionRank(join(parent, b));
        return ra != rb ? ra < rb : a < b;
    });
    for (const std::string &child : found) {
        names.push_back(CFiStringTool::str2tstr(child));
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
    const int status =
        m_heap->set_string_value(m_current, narrow(name).c_str(), ACE_TString(text.c_str(), text.size()));
    if (status == 0) {
        noteValue(name);
    }
    return status;
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
    const int status = m_heap->set_integer_value(m_current, narrow(name).c_str(), value);
    if (status == 0) {
        noteValue(name);
    }
    return status;
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
