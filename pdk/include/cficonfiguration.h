#ifndef CFICONFIGURATION_H
#define CFICONFIGURATION_H

#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include <ace/Configuration.h>
#include <ace/SString.h>

#include "cficonfigurationtext.h"
#include "cfiexport.h"
#include "cfilasterror.h"
#include "cfitraceable.h"
#include "sficredential.h"

namespace qorin_pdk_4_4 {

// One configuration file held in memory as ACE's section tree. The file's text is read and
// written here (CFiConfigurationText), never by ACE's importer: a "[SECTION\SUB]" line per
// section, then "name"="text" or "name"=dword:<hex> per value. Setters change the memory copy
// only; exportConfig writes it back.
//
// A file the administrator wrote is never lost: an export rewrites only a file that this
// object read whole (or that doesn't exist yet), keeps its comments, blank lines and the order
// of what it held, changes only the lines of changed values, adds new values at the end of
// their section and new sections at the end, and writes through a symbolic link. Sections
// enumerate in the order they first appear in the file, then in the order they were made.
//
// Failures are results, never exceptions: the text of the last one is in CFiLastError, and
// importState, importLine and importProblem tell what an import found.
// An object is used by one thread; objects in several threads or processes may share a file,
// and the last export wins.
class QORIN_PDK_API CFiConfiguration : public virtual CFiLastError, public virtual CFiTraceable {
public:
    enum ImportState {
        NOT_READ,    // nothing imported yet
        READ,        // the store holds the file (or what this object last wrote to it)
        NO_FILE,     // the directory or the file doesn't exist
        UNREADABLE,  // the file is there but can't be read: a directory, no permission
        MALFORMED    // a line isn't in the format: importLine, importProblem
    };

    // An empty store; import before exporting.
    CFiConfiguration();
    // With import, reads directory + file; otherwise only remembers where the file is.
    CFiConfiguration(const wchar_t *directory, const wchar_t *file, bool import);
    // The provider's file <install>/ConfigFiles/<name>.conf; created from the empty store if
    // it doesn't exist. A file that exists but doesn't import is left as it is.
    explicit CFiConfiguration(const ACE_WString &name);
    ~CFiConfiguration() override;

    CFiConfiguration(const CFiConfiguration &) = delete;
    CFiConfiguration &operator=(const CFiConfiguration &) = delete;

    void setTraceLog(const CFiTraceLogPtr &log) override;

    // Replaces the store by the file's content; on failure the store stays as it was.
    int importConfig(const wchar_t *directory, const wchar_t *file);
    // The same from text that doesn't come from the file; the path stays.
    int importText(const std::string &text);
    // Writes the store over the file it was read from (see above): a complete new file beside
    // the old one renamed over it, so that a reader, another writer or a crash never leaves a
    // torn or empty file behind. Nothing is written when the text wouldn't change.
    int exportConfig();
    // The text exportConfig would write; false (with the reason in CFiLastError) for a name or
    // value that can't be written so that it reads back the same.
    bool renderText(std::string &text);

    ImportState importState() const { return m_state; }
    // MALFORMED: the number of the first bad line (from 1); 0 otherwise.
    size_t importLine() const { return m_problemLine; }
    // UNREADABLE, MALFORMED: what is wrong, in words that never quote the file (it may hold
    // passwords); empty otherwise.
    const std::string &importProblem() const { return m_problem; }

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
    // section in this file, in the file's order. A host already known (in any letter case) is
    // not added again. openArray chooses the sub-sections whose name holds "OPENARRAY", or
    // the others.
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
    int failImport(ImportState state, int code, const wchar_t *text, int line, size_t fileLine,
                   const std::string &problem);
    // Fills a fresh heap from text; the state and problem on failure.
    int load(const std::string &text);
    std::string pathOf(const ACE_Configuration_Section_Key &key);
    void noteSection(const std::string &path);
    void noteValue(const wchar_t *name);
    size_t sectionRank(const std::string &path) const;
    int writeFile(const std::string &text);

    std::unique_ptr<ACE_Configuration_Heap> m_heap;
    ACE_WString m_name;
    ACE_WString m_directory;
    ACE_WString m_fileName;
    ACE_WString m_fullPath;
    ACE_Configuration_Section_Key m_current;
    bool m_hasCurrent;

    ImportState m_state = NOT_READ;
    size_t m_problemLine = 0;
    std::string m_problem;
    // Whether the store holds what the file at the full path held: only then may an export
    // replace that file.
    bool m_fileRead = false;
    // The text last read or written, and its lines: what an export writes over.
    std::string m_read;
    CFiConfigurationText m_text;
    // Every section path (levels joined by "\") in the order it first appeared.
    std::vector<std::string> m_sectionOrder;
    std::unordered_map<std::string, size_t> m_sectionRank;
    // Per section, the names of values set here, in the order they were first set.
    std::map<std::string, std::vector<std::string>> m_valueOrder;
};

}  // namespace qorin_pdk_4_4

#endif
