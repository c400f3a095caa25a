#ifndef CFICONFIGURATIONPATHTOOL_H
#define CFICONFIGURATIONPATHTOOL_H

#include <string>

#include <ace/SString.h>

#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// Where the provider's files live. Everything lies below one install directory, named by the
// registry stand-in (an ACE_Registry_ImpExp file at $QORIN_REGISTRY, else
// /etc/qorin/registry.conf) or else by the framework (qorin_get_install_root):
//
//   <install>/Logs/          trace logs            getTraceFileInfo
//   <install>/ConfigFiles/   <name>.conf           getConfigFileInfo
//   <install>/Messages/      lib<name> bundles     getMessageFileInfo
//   <install>/CacheFiles/    LUN record files      getCacheLocationInfo
//
// A location's directory is created with mode 0755 when it is missing. Its result is 0
// whether or not that worked, and also without a known install directory: the directory is
// then empty, which callers test, so that nothing is ever written relative to the working
// directory. Every directory ends in "/", so directory + file is the path.
class QORIN_PDK_API CFiConfigurationPathTool {
public:
    // 0 when the registry stand-in names the directory; otherwise its non-zero status, and
    // path (if empty) is taken from the framework, which may leave it empty.
    static int getInstallPath(ACE_WString &path);
    // The registry stand-in's key that names the install directory (its value "InstallDir64"):
    // the framework's own, below it the consumer's when the framework names one.
    static std::string installKey();
    // 0 if the path exists.
    static int verify(const wchar_t *path);
    // The registry's "ProgramFilesDir" and "ProgramFilesDir (x86)"; when missing, "/opt"
    // with a non-zero result.
    static int getProgramFilesDir(ACE_WString &path);
    static int getProgramFilesX86Dir(ACE_WString &path);

    static int getTraceFileInfo(const ACE_WString &name, ACE_WString &directory, ACE_WString &file);
    static int getConfigFileInfo(const ACE_WString &name, ACE_WString &directory, ACE_WString &file);
    static int getMessageFileInfo(const ACE_WString &name, ACE_WString &directory, ACE_WString &file);
    static int getCacheLocationInfo(ACE_WString &directory);

    // The registry stand-in's file.
    static ACE_WString registryFile();

private:
    // <install>/<leaf>, created if missing; empty without an install directory. Always 0.
    static int location(const wchar_t *leaf, ACE_WString &directory);
};

}  // namespace qorin_pdk_4_4

#endif
