#ifndef HPEVA_CLIEXCEPTION_H
#define HPEVA_CLIEXCEPTION_H

#include <cstdint>
#include <string>
#include <vector>

#include <ace/SString.h>

#include "cfitracelog.h"

// A failed SSSU run or an output that can't be read: what was run, how it failed, the
// line that says so and the whole output, for the administrator.
class CHpEvaCliException {
public:
    enum Kind : int32_t { CLI_NO_DATA = 0, CLI_COMMAND_FAILED = 1 };

    CHpEvaCliException(Kind kind, const ACE_WString &command, const std::string &errorText,
                       const std::vector<std::string> &output, const char *sourceFile, int32_t sourceLine);
    // The short form: no output and no error text.
    CHpEvaCliException(Kind kind, const ACE_WString &command, const char *sourceFile, int32_t sourceLine);

    // Pushes "MSG_ERROR_CLI_COMMAND_FAILED" into the calling thread's error slot of the
    // process's error manager, or of errors; 6.
    int report() const;
    int report(const qorin_pdk_4_4::CFiErrorManagerPtr &errors) const;

    Kind getKind() const { return m_kind; }
    const ACE_WString &getCommand() const { return m_command; }
    const std::vector<std::string> &getOutput() const { return m_output; }
    const std::string &getErrorText() const { return m_errorText; }
    const std::string &getSourceFile() const { return m_sourceFile; }
    int32_t getSourceLine() const { return m_sourceLine; }

private:
    ACE_WString m_command;
    Kind m_kind;
    std::vector<std::string> m_output;
    std::string m_errorText;
    std::string m_sourceFile;
    int32_t m_sourceLine;
};

#endif
