#ifndef CFICONFIGURATION_H
#define CFICONFIGURATION_H

#include <memory>
#include <string>
#include <vector>

#include <ace/Configuration.h>
#include <ace/SString.h>

#include "cfiexport.h"
#include "cfilasterror.h"
#include "cfitraceable.h"
#include "sficredential.h"

namespace qorin_pdk_4_4 {

// One configuration file held in memory as ACE's section tree. The file is the text that
// ACE_Registry_ImpExp reads and writes: a "[SECTION\SUB]" line per section, then
// "name"="text" or "name"=dword:<hex> per value. Setters change the memory copy only;
// exportConfig writes the whole tree.
//
// Failures are results, never exceptions: the text of the last one is in CFiLastError.
// An object is used by one thread; objects in several threads or processes may share a file,
// and the last export wins.
class QORIN_PDK_API CFiConfiguration : public virtual CFiLastError, public virtual CFiTraceable {
public:
    // An empty store; import before exporting.
    CFiConfiguration();
    // With import, reads directory + file; otherwise only remembers where the file is.
    CFiConfiguration(const wchar_t *directory, const wchar_t *file, bool import);
    // The provider's file <install>/ConfigFiles/<name>.conf; created from the empty store if
    // it can't be imported.
    explicit CFiConfiguration(const ACE_WString &name);
    ~CFiConfiguration() override;

    CFiConfiguration(const CFiConfiguration &) = delete;
    CFiConfiguration &operator=(const CFiConfiguration &) = delete;

    void setTraceLog(const CFiTraceLogPtr &log) override;

    // Replaces the store by the file's content; on failure the store stays as it was.
    int importConfig(const wchar_t *directory, const wchar_t *file);
    // Writes a complete new file beside the old one and renames it over it, so that a reader,
    // another writer or a crash never leaves a torn or empty file behind.
    int exportConfig();

    // On success key also becomes the current section.
    int openSection(const ACE_Configuration_Section_Key &parent, const wchar_t *name,
                    ACE_Configuration_Section_Key &key, int create);
    int openSection(const wchar_t *name, ACE_Configuration_Section_Key &key, int create);
    std::vector<ACE_WString> enumerateSections(const ACE_Configuration_Section_Key &key);
    std::vector<ACE_WString> enumerateSections();

    // On the current section; 0 for success.
    int getStringValue(const wchar_t *name, ACE_WString &value);
    int setStringValue(const wchar_t *name, const ACE_WString &value);
    int getIntegerValue(const wchar_t *name, unsigned &value);
    int setIntegerValue(const wchar_t *name, unsigned value);
    // Open (creating it in memory) the section below the root, make it current, then read.
    int getStringValue(const wchar_t *section, const wchar_t *name, ACE_WString &value);
    int getIntegerValue(const wchar_t *section, const wchar_t *name, unsigned &value);

    // The section tree itself, for what the operations above don't cover.
    ACE_Configuration_Heap &configHeap();

    // The management server logins: the framework's blob first, then the sub-sections of
    // section in this file. A host already known (in any letter case) is not added again.
    // openArray chooses the sub-sections whose name holds "OPENARRAY", or the others.
    std::vector<SFiCredential> importCredentials(std::string vendor, std::string product, ACE_WString section,
                                                 bool openArray);

    const ACE_WString &getName() const { return m_name; }
    const ACE_WString &getDirectory() const { return m_directory; }
    const ACE_WString &getFileName() const { return m_fileName; }
    const ACE_WString &getFullPath() const { return m_fullPath; }

private:
    // A fresh heap, or null when it can't be opened.
    static std::unique_ptr<ACE_Configuration_Heap> newHeap();
    void openHeap();
    void setPaths(const wchar_t *directory, const wchar_t *file);
    int fail(int code, const wchar_t *text, int line, const wchar_t *function);

    std::unique_ptr<ACE_Configuration_Heap> m_heap;
    ACE_WString m_name;
    ACE_WString m_directory;
    ACE_WString m_fileName;
    ACE_WString m_fullPath;
    ACE_Configuration_Section_Key m_current;
    bool m_hasCurrent;
};

}  // namespace qorin_pdk_4_4

#endif
