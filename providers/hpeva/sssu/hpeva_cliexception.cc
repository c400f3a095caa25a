#include "hpeva_cliexception.h"

#include <unicode/fmtable.h>

#include "cfistringtool.h"
#include "hpeva_messages.h"
#include "hpeva_process.h"

using namespace qorin_pdk_4_4;

CHpEvaCliException::CHpEvaCliException(Kind kind, const ACE_WString &command, const std::string &errorText,
                                       const std::vector<std::string> &output, const char *sourceFile,
                                       int32_t sourceLine) :
    m_command(command),
    m_kind(kind),
    m_output(output),
    m_errorText(errorText),
    m_sourceFile(sourceFile != nullptr ? sourceFile : ""),
    m_sourceLine(sourceLine)
{
}

CHpEvaCliException::CHpEvaCliException(Kind kind, const ACE_WString &command, const char *sourceFile,
                                       int32_t sourceLine) :
    CHpEvaCliException(kind, command, std::string(), std::vector<std::string>(), sourceFile, sourceLine)
{
}

int CHpEvaCliException::report() const
{
    return report(processErrorManager());
}

namespace {

// SSSU's text as the message shows it: a byte that isn't UTF-8 (a name in another code page)
// becomes U+FFFD instead of emptying the whole argument.
icu::Formattable shown(const std::string &text)
{
    return icu::Formattable(
        icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size()))));
}

}  // namespace

int CHpEvaCliException::report(const CFiErrorManagerPtr &errors) const
{
    std::string output;
    for (const std::string &line : m_output) {
        output += CFiStringTool::trim(line, " \n\t\r");
        output += '\n';
    }
    pushMessage(errors, hpeva_msg::MSG_ERROR_CLI_COMMAND_FAILED, QRN_SEVERITY_ERROR, m_sourceFile.c_str(), m_sourceLine,
                icu::Formattable(CFiStringTool::tstr2ustr(m_command)),
                icu::Formattable(CFiStringTool::str2ustr(m_sourceFile)), icu::Formattable(m_sourceLine),
                shown(m_errorText), shown(output));
    return QRN_ERR_FAILED;
}
