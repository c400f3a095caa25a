#include "cficonfigurationpathtool.h"

#include <cstdlib>
#include <cwchar>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ace/OS_NS_stdlib.h>
#include <ace/OS_NS_sys_stat.h>
#include <ace/OS_NS_unistd.h>

#include "cficonfigurationtext.h"
#include "cfistringtool.h"
#include "qorinutil.h"

namespace qorin_pdk_4_4 {

namespace {

const char kDefaultRegistryFile[] = "/etc/qorin/registry.conf";
const char kInstallKey[] = "SOFTWARE\\Orvanta\\Qorin";
const char kInstallValue[] = "InstallDir64";
const char kWindowsKey[] = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion";
const wchar_t kProgramFilesFallback[] = L"/opt";

// The registry stand-in's text values by "section\nname" in lower case, read once per version of the
// file: every location of every operation asks for the install path, and a registry can be
// large.
struct RegistryCache {
    std::mutex lock;
    bool loaded = false;
    std::string file;
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    struct timespec modified = {0, 0};
    std::unordered_map<std::string, std::string> strings;
};

RegistryCache &registryCache()
{
    static RegistryCache cache;
    return cache;
}

bool sameFile(const RegistryCache &cache, const std::string &file, const struct stat &info)
{
    return cache.loaded && cache.file == file && cache.device == info.st_dev && cache.inode == info.st_ino &&
           cache.size == info.st_size && cache.modified.tv_sec == info.st_mtim.tv_sec &&
           cache.modified.tv_nsec == info.st_mtim.tv_nsec;
}

// Reads the file into the cache; a file that can't be read or parsed leaves no values.
void loadRegistry(RegistryCache &cache, const std::string &file)
{
    cache.loaded = false;
    cache.strings.clear();
    int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        return;
    }
    struct stat info;
    std::string text;
    bool good = ::fstat(fd, &info) == 0 && S_ISREG(info.st_mode) &&
                static_cast<uint64_t>(info.st_size) <= CFiConfigurationText::MAX_BYTES;
    if (good) {
        char buffer[65536];
        ssize_t got;
        while ((got = ::read(fd, buffer, sizeof buffer)) > 0 && text.size() <= CFiConfigurationText::MAX_BYTES) {
            text.append(buffer, static_cast<size_t>(got));
        }
        good = got == 0;
    }
    ::close(fd);
    if (!good) {
        return;
    }
    cache.loaded = true;
    cache.file = file;
    cache.device = info.st_dev;
    cache.inode = info.st_ino;
    cache.size = info.st_size;
    cache.modified = info.st_mtim;
    CFiConfigurationText parsed;
    if (!parsed.parse(text)) {
        return;
    }
    for (const CFiConfigurationText::SLine &line : parsed.lines()) {
        if (line.kind == CFiConfigurationText::VALUE && line.value.type == CFiConfigurationText::TEXT) {
            cache.strings[CFiStringTool::tostrlower(line.section + '\n' + line.name)] = line.value.text;
        }
    }
}

// Reads one string of the registry stand-in, never creating anything. 0 on success; -1 when
// the file, the key or the value is missing, or the file is not in the format.
int readRegistryString(const std::string &keyPath, const char *valueName, ACE_WString &value)
{
    const std::string file = CFiStringTool::tstr2str(CFiConfigurationPathTool::registryFile());
    std::vector<std::string> levels;
    std::string reason;
    if (!CFiConfigurationText::splitSection(keyPath, levels, reason)) {
        return -1;
    }
    std::string section;
    for (const std::string &level : levels) {
        section += (section.empty() ? "" : "\\") + level;
    }
    struct stat info;
    if (::stat(file.c_str(), &info) != 0 || ACE_OS::access(file.c_str(), R_OK) != 0) {
        return -1;
    }
    RegistryCache &cache = registryCache();
    std::lock_guard<std::mutex> guard(cache.lock);
    if (!sameFile(cache, file, info)) {
        loadRegistry(cache, file);
    }
    // Registry names are one name in any letter case.
    auto found = cache.strings.find(CFiStringTool::tostrlower(section + '\n' + valueName));
    if (found == cache.strings.end()) {
        return -1;
    }
    value = CFiStringTool::str2tstr(found->second);
    return 0;
}

void endWithSeparator(ACE_WString &path)
{
    if (path.length() > 0 && path[path.length() - 1] != L'/') {
        path += L"/";
    }
}

}  // namespace

ACE_WString CFiConfigurationPathTool::registryFile()
{
    const char *fromEnvironment = ACE_OS::getenv("QORIN_REGISTRY");
    return CFiStringTool::str2tstr(fromEnvironment != nullptr && *fromEnvironment != '\0' ? fromEnvironment
                                                                                          : kDefaultRegistryFile);
}

std::string CFiConfigurationPathTool::installKey()
{
    std::string key = kInstallKey;
    wchar_t *consumer = nullptr;
    qorin_get_consumer_name(&consumer);
    if (consumer != nullptr) {
        if (*consumer != L'\0') {
            key += "\\" + CFiStringTool::wstr2str(consumer);
        }
        qorin_free_buf(consumer, (wcslen(consumer) + 1) * sizeof(wchar_t));
    }
    return key;
}

int CFiConfigurationPathTool::getInstallPath(ACE_WString &path)
{
    ACE_WString fromRegistry;
    int status = readRegistryString(installKey(), kInstallValue, fromRegistry);
    if (status == 0) {
        path = fromRegistry;
    } else if (path.length() == 0) {
        wchar_t *root = nullptr;
        qorin_get_install_root(&root);
        if (root != nullptr) {
            path = ACE_WString(root);
            qorin_free_buf(root, (wcslen(root) + 1) * sizeof(wchar_t));
        }
    }
    // The locations are joined to it without a separator of their own.
    endWithSeparator(path);
    return status;
}

int CFiConfigurationPathTool::verify(const wchar_t *path)
{
    if (path == nullptr || *path == L'\0') {
        return -1;
    }
    return ACE_OS::access(CFiStringTool::wstr2str(path).c_str(), F_OK);
}

int CFiConfigurationPathTool::getProgramFilesDir(ACE_WString &path)
{
    int status = readRegistryString(kWindowsKey, "ProgramFilesDir", path);
    if (status != 0) {
        path = kProgramFilesFallback;
    }
    return status;
}

int CFiConfigurationPathTool::getProgramFilesX86Dir(ACE_WString &path)
{
    int status = readRegistryString(kWindowsKey, "ProgramFilesDir (x86)", path);
    if (status != 0) {
        path = kProgramFilesFallback;
    }
    return status;
}

int CFiConfigurationPathTool::location(const wchar_t *leaf, ACE_WString &directory)
{
    ACE_WString install;
    getInstallPath(install);
    if (install.length() == 0) {
        // Never a path relative to the working directory: a daemon's is often "/".
        directory = ACE_WString();
        return 0;
    }
    directory = install;
    directory += leaf;
    if (verify(directory.c_str()) != 0) {
        // A failed creation shows later, when the file itself can't be opened.
        ACE_OS::mkdir(CFiStringTool::tstr2str(directory).c_str(), 0755);
    }
    return 0;
}

int CFiConfigurationPathTool::getTraceFileInfo(const ACE_WString &name, ACE_WString &directory, ACE_WString &file)
{
    file = name + ACE_WString(L".log");
    return location(L"Logs/", directory);
}

int CFiConfigurationPathTool::getConfigFileInfo(const ACE_WString &name, ACE_WString &directory, ACE_WString &file)
{
    file = name + ACE_WString(L".conf");
    return location(L"ConfigFiles/", directory);
}

int CFiConfigurationPathTool::getMessageFileInfo(const ACE_WString &name, ACE_WString &directory, ACE_WString &file)
{
    file = ACE_WString(L"lib") + name;
    return location(L"Messages/", directory);
}

int CFiConfigurationPathTool::getCacheLocationInfo(ACE_WString &directory)
{
    return location(L"CacheFiles/", directory);
}

}  // namespace qorin_pdk_4_4
