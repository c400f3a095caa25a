#include "hpeva_clitool_run.h"

#include <algorithm>
#include <string_view>

#include "cfisaxparser.h"
#include "cfistringtool.h"
#include "hpeva_cliexception.h"
#include "hpeva_commandtempfile.h"
#include "hpeva_process.h"

using namespace qorin_pdk_4_4;

namespace {

const char INFORMATION[] = "information:";
const char OBJECT_START[] = "<object>";
const char OBJECT_END[] = "</object>";
const char DOCUMENT_START[] = "<?xml version=\"1.0\" standalone=\"yes\" ?><hpeva_dataset>";
const char DOCUMENT_END[] = "</hpeva_dataset>";
const char TRIM[] = " \t\r\n";
// The last line of every script; SSSU echoes it when it gets there.
const char LAST_COMMAND[] = "exit";
const char CONNECTION_FAILED[] = "Error opening https connection";
const char NO_LOGIN[] = "SSSU could not log in to the Command View server";
const char CUT_SHORT[] = "SSSU stopped before the end of its script (its last command, exit, was never echoed), so "
                         "what it listed may be incomplete";

using hpeva_cli::holds;

// The same test as holds(line, INFORMATION), run on every line of a listing: looking for the
// rare ':' first keeps it from stopping at each 'i'.
bool holdsInformation(std::string_view line)
{
    const size_t before = sizeof(INFORMATION) - 2;
    for (size_t colon = line.find(':', before); colon != std::string_view::npos; colon = line.find(':', colon + 1)) {
        if (line.compare(colon - before, before + 1, INFORMATION) == 0) {
            return true;
        }
    }
    return false;
}

// A listing of nothing (a cell without hosts) prints prompts and the echo of its commands,
// and nothing else after the banner: an empty document. Any other text goes to the parser,
// which names what is wrong with it.
bool listsNothing(const CFiOutputLines &lines)
{
    bool prompted = false;
    for (const std::string_view line : lines) {
        if (line.find('<') != std::string_view::npos) {
            return false;
        }
        if (line.find('>') != std::string_view::npos) {
            prompted = true;
        } else if (prompted && line.find_first_not_of(TRIM) != std::string_view::npos) {
            return false;
        }
    }
    return prompted;
}

template <class Lines>
size_t lastLine(const Lines &lines)
{
    for (size_t i = lines.size(); i > 0; --i) {
        if (std::string_view(lines[i - 1]).find_first_not_of(TRIM) != std::string_view::npos) {
            return i - 1;
        }
    }
    return lines.size();
}

template <class Lines>
bool ranToEnd(const Lines &lines)
{
    const size_t last = lastLine(lines);
    if (last == lines.size()) {
        return false;
    }
    const std::string text = CFiStringTool::trim(std::string(lines[last]), TRIM);
    const size_t prompt = text.rfind('>');
    return prompt != std::string::npos &&
           CFiStringTool::CompareNoCase(CFiStringTool::trim(text.substr(prompt + 1), TRIM), std::string(LAST_COMMAND));
}

template <class Lines>
void runOneScript(const CHpEvaCliTool &tool, const SFiCredential &credential, const std::vector<ACE_WString> &commands,
                  const ACE_WString &cell, Lines &lines, int timeout)
{
    // The file lives exactly as long as the run, and goes on every way out.
    CHpEvaCommandTempFile script(credential, commands, cell);
    tool.execSSSU(script.getCommandFileOption(), lines, timeout);
}

// A listing's lines as strings for the caller that asked for them so, whichever way the
// listing ends.
template <class Run>
void asStrings(std::vector<std::string> &lines, CFiOutputLines &output, Run run)
{
    try {
        run(output);
    } catch (...) {
        lines = output.strings();
        throw;
    }
    lines = output.strings();
}

}  // namespace

void CHpEvaCliTool::massageOutput(std::vector<std::string> &lines)
{
    CFiOutputLines output(lines);
    massageOutput(output);
    lines = output.strings();
}

void CHpEvaCliTool::massageOutput(CFiOutputLines &lines)
{
    // SSSU prints a "<name> information:" banner before each object.
    for (size_t i = 0; i < lines.size(); ++i) {
        if (holdsInformation(lines[i])) {
            lines.replace(i, std::string_view());
        }
    }
    size_t last = lines.size();
    while (last > 0 && !holds(lines[last - 1], OBJECT_END)) {
        --last;
    }
    // Without objects (or with one ending on the first line) the text goes to the parser as
    // it is, and the parser's complaint tells what SSSU said.
    if (last <= 1) {
        return;
    }
    const size_t lastObject = last - 1;
    for (size_t i = 0; i < lines.size() && !holds(lines[i], OBJECT_START); ++i) {
        lines.replace(i, std::string_view());
    }
    for (size_t i = lastObject + 1; i < lines.size(); ++i) {
        lines.replace(i, std::string_view());
    }
    lines.insert(0, DOCUMENT_START);
    lines.push_back(DOCUMENT_END);
}

namespace hpeva_cli {

void runScript(const CHpEvaCliTool &tool, const SFiCredential &credential, const std::vector<ACE_WString> &commands,
               const ACE_WString &cell, std::vector<std::string> &lines, int timeout)
{
    runOneScript(tool, credential, commands, cell, lines, timeout);
}

void runScript(const CHpEvaCliTool &tool, const SFiCredential &credential, const ACE_WString &command,
               const ACE_WString &cell, std::vector<std::string> &lines)
{
    runScript(tool, credential, std::vector<ACE_WString>(1, command), cell, lines);
}

size_t lastLineOf(const std::vector<std::string> &lines)
{
    return lastLine(lines);
}

size_t lastLineOf(const CFiOutputLines &lines)
{
    return lastLine(lines);
}

bool ranToTheEnd(const std::vector<std::string> &lines)
{
    return ranToEnd(lines);
}

bool ranToTheEnd(const CFiOutputLines &lines)
{
    return ranToEnd(lines);
}

void runListingScript(const CHpEvaCliTool &tool, const SFiCredential &credential,
                      const std::vector<ACE_WString> &commands, const ACE_WString &cell,
                      std::vector<std::string> &lines, const char *file, int line)
{
    CFiOutputLines output;
    asStrings(lines, output,
              [&](CFiOutputLines &into) { runListingScript(tool, credential, commands, cell, into, file, line); });
}

void runListingScript(const CHpEvaCliTool &tool, const SFiCredential &credential,
                      const std::vector<ACE_WString> &commands, const ACE_WString &cell, CFiOutputLines &lines,
                      const char *file, int line)
{
    runOneScript(tool, credential, commands, cell, lines, CHpEvaCliTool::DEFAULT_TIMEOUT);
    if (!ranToTheEnd(lines)) {
        const bool login = std::any_of(lines.begin(), lines.end(),
                                       [](std::string_view text) { return holds(text, CONNECTION_FAILED); });
        processTraceLog()->trace(1, "SSSU stopped before the end of the script of [%S]", commands.back().c_str());
        throw CHpEvaCliException(CHpEvaCliException::CLI_COMMAND_FAILED, commands.back(), login ? NO_LOGIN : CUT_SHORT,
                                 lines.strings(), file, line);
    }
}

void runListing(const CHpEvaCliTool &tool, const SFiCredential &credential, const ACE_WString &command,
                const ACE_WString &cell, CFiSaxParseHandler &handler, const char *file, int line)
{
    processTraceLog()->trace(2, "executing command [%S]", command.c_str());
    CFiOutputLines lines;
    runListingScript(tool, credential, std::vector<ACE_WString>(1, command), cell, lines, file, line);
    parseXmlOutput(lines, handler, command, file, line);
}

ACE_WString addLunCommand(const std::string &disk, const std::string &host, unsigned int lun)
{
    // The blanks are SSSU's contract as the provider has always sent it. LUN 0 is written
    // too; the array then chooses the number.
    ACE_WString command(L"ADD LUN ");
    command += CFiStringTool::str2tstr(CFiStringTool::uint2str(static_cast<uint32_t>(lun)));
    command += L" HOST=\"";
    command += CFiStringTool::str2tstr(host);
    command += L"\"  VDISK=\"";
    command += CFiStringTool::str2tstr(disk);
    command += L"\" ";
    return command;
}

bool holds(std::string_view line, const char *text)
{
    return line.find(text) != std::string_view::npos;
}

void parseXmlOutput(std::vector<std::string> &lines, CFiSaxParseHandler &handler, const ACE_WString &command,
                    const char *file, int line)
{
    CFiOutputLines output(lines);
    asStrings(lines, output, [&](CFiOutputLines &into) { parseXmlOutput(into, handler, command, file, line); });
}

void parseXmlOutput(CFiOutputLines &lines, CFiSaxParseHandler &handler, const ACE_WString &command, const char *file,
                    int line)
{
    const bool nothing = listsNothing(lines);
    CHpEvaCliTool::massageOutput(lines);
    CFiSaxParser parser(&handler, nullptr);
    if (!nothing) {
        parser.parse(lines);
    } else {
        parser.parse(std::string(DOCUMENT_START) + DOCUMENT_END);
    }
    if (handler.hasLastError()) {
        throw CHpEvaCliException(CHpEvaCliException::CLI_COMMAND_FAILED, command, handler.getLastErrorText(),
                                 lines.strings(), file, line);
    }
}

}  // namespace hpeva_cli
