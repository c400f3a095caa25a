#ifndef HPEVA_CLITOOL_H
#define HPEVA_CLITOOL_H

#include <string>
#include <vector>

#include <ace/SString.h>

// Where SSSU lies, and the one way the provider runs it. A plain value: every operation
// works on its own copy. The directory ends in "/" because the two are joined as they are.
//
// Array operations are members too; each writes one CHpEvaCommandTempFile and runs it
// through execSSSU.
class CHpEvaCliTool {
public:
    // Longest silence of SSSU that nearly every operation accepts, in seconds.
    static const int DEFAULT_TIMEOUT = 600;
    // Key of the machine-wide lock that lets one SSSU run at a time ("qorin-sem-1002").
    static const int SEMAPHORE_KEY = 1002;
    static const int MAX_RUNS = 3;

    CHpEvaCliTool();
    CHpEvaCliTool(const ACE_WString &directory, const ACE_WString &fileName);

    const ACE_WString &getFileName() const { return m_fileName; }
    const ACE_WString &getDirectory() const { return m_directory; }
    void setFileName(const ACE_WString &fileName) { m_fileName = fileName; }
    void setDirectory(const ACE_WString &directory) { m_directory = directory; }
    // Directory and file name joined.
    ACE_WString getPath() const;

    // Runs SSSU with arguments (CHpEvaCommandTempFile::getCommandFileOption) under the
    // machine-wide lock; a run that couldn't reach the Command View server is repeated, up
    // to three runs in all. On return lines holds the last run's output with passwords
    // masked. Throws CHpEvaCliException for no output or an unexpected "Error: " line, and
    // EFiExecPipe for a failed run whose output shows no error. lines keeps what was read.
    void execSSSU(const ACE_WString &arguments, std::vector<std::string> &lines, int timeout) const;

private:
    ACE_WString m_fileName;
    ACE_WString m_directory;
};

#endif
