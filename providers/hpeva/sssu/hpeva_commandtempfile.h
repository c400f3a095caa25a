#ifndef HPEVA_COMMANDTEMPFILE_H
#define HPEVA_COMMANDTEMPFILE_H

#include <vector>

#include <ace/SString.h>

#include "sficredential.h"

// The script of one SSSU run: the fixed options, the login to a Command View server, the
// storage cell, the operation's commands and "exit". The file is private to its owner
// (mode 0600: it holds the password), is removed when the object goes, and its name
// "omx_fi<pid>_XXXXXX" in $TMPDIR (else /tmp) carries the process id of its owner.
//
// A value holding a line feed or carriage return would put a second command into the
// script; the constructors refuse it with CHpEvaCliException (CLI_COMMAND_FAILED) before
// any file exists. Failing to make the file throws the same.
class CHpEvaCommandTempFile {
public:
    // Only the option lines and "exit", for the version query.
    CHpEvaCommandTempFile();
    CHpEvaCommandTempFile(const qorin_pdk_4_4::SFiCredential &credential, const ACE_WString &command,
                          const ACE_WString &cell);
    CHpEvaCommandTempFile(const qorin_pdk_4_4::SFiCredential &credential, const std::vector<ACE_WString> &commands,
                          const ACE_WString &cell);
    ~CHpEvaCommandTempFile();

    // Removes the scripts that processes which no longer run left behind (a host killed
    // during a run leaves its script, password and all): the files "omx_fi<pid>_XXXXXX" in
    // the script directory that belong to this account and name a process that is gone.
    // Gives how many went.
    static int removeLeftovers();

    // The tool's argument: ` "FILE <path>"`, with the leading blank.
    ACE_WString getCommandFileOption() const;
    const ACE_WString &getPath() const { return m_path; }

    CHpEvaCommandTempFile(const CHpEvaCommandTempFile &) = delete;
    CHpEvaCommandTempFile &operator=(const CHpEvaCommandTempFile &) = delete;

private:
    void write(const qorin_pdk_4_4::SFiCredential *credential, const std::vector<ACE_WString> &commands,
               const ACE_WString &cell);

    bool m_created;
    ACE_WString m_path;
};

#endif
