#include "cficonfigurationpathtool.h"

#include <cstdlib>
#include <cwchar>
#include <string>

#include <ace/Configuration.h>
#include <ace/Configuration_Import_Export.h>
#include <ace/OS_NS_stdlib.h>
#include <ace/OS_NS_sys_stat.h>
#include <ace/OS_NS_unistd.h>

#include "cfistringtool.h"
#include "qorinutil.h"

namespace qorin_pdk_4_4 {

namespace {

const char kDefaultRegistryFile[] = "/etc/qorin/registry.conf";
const char kInstallKey[] = "SOFTWARE\\Orvanta\\Qorin";
const char kInstallValue[] = "InstallDir64";
const char kWindowsKey[] = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion";
const wchar_t kProgramFilesFallback[] = L"/opt";

// Reads one string of the registry stand-in, never creating anything. 0 on success; -1 when
// the file, the key or the value is missing.
int readRegistryString(const std::string &keyPath, const char *valueName, ACE_WString &value)
{
    std::string file = CFiStringTool::tstr2str(CFiConfigurationPathTool::registryFile());
    if (ACE_OS::access(file.c_str(), R_OK) != 0) {
        return -1;
    }
    ACE_Configuration_Heap heap;
    if (heap.open() != 0) {
        return -1;
    }
    ACE_Registry_ImpExp reader(heap);
    if (reader.import_config(file.c_str()) != 0) {
        return -1;
    }
    ACE_Configuration_Section_Key key;
    if (heap.open_section(heap.root_section(), keyPath.c_str(), 0, key) != 0) {
        return -1;
    }
    ACE_TString text;
    if (heap.get_string_value(key, valueName, text) != 0) {
        return -1;
    }
    value = CFiStringTool::str2tstr(std::string(text.c_str(), text.length()));
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

int CFiConfigurationPathTool::getInstallPath(ACE_WString &path)
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

    ACE_WString fromRegistry;
    int status = readRegistryString(key, kInstallValue, fromRegistry);
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
        directory = ACE_WString();
        return 2;
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
    int status = location(L"Logs/", directory);
    file = status == 0 ? name + ACE_WString(L".log") : ACE_WString();
    return status;
}

int CFiConfigurationPathTool::getConfigFileInfo(const ACE_WString &name, ACE_WString &directory, ACE_WString &file)
{
    int status = location(L"ConfigFiles/", directory);
    file = status == 0 ? name + ACE_WString(L".conf") : ACE_WString();
    return status;
}

int CFiConfigurationPathTool::getMessageFileInfo(const ACE_WString &name, ACE_WString &directory, ACE_WString &file)
{
    int status = location(L"Messages/", directory);
    file = status == 0 ? ACE_WString(L"lib") + name : ACE_WString();
    return status;
}

int CFiConfigurationPathTool::getCacheLocationInfo(ACE_WString &directory)
{
    return location(L"CacheFiles/", directory);
}

}  // namespace qorin_pdk_4_4
