#include "hpeva_clitool_run.h"

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

using hpeva_cli::holds;

// The same test as holds(line, INFORMATION), run on every line of a listing: looking for the
// rare ':' first keeps it from stopping at each 'i'.
bool holdsInformation(const std::string &line)
{
    const size_t before = sizeof(INFORMATION) - 2;
    for (size_t colon = line.find(':', before); colon != std::string::npos; colon = line.find(':', colon + 1)) {
        if (line.compare(colon - before, before + 1, INFORMATION) == 0) {
            return true;
        }
    }
    return false;
}

}  // namespace

void CHpEvaCliTool::massageOutput(std::vector<std::string> &lines)
{
    // SSSU prints a "<name> information:" banner before each object.
    for (std::string &line : lines) {
        if (holdsInformation(line)) {
            line.clear();
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
        lines[i].clear();
    }
    for (size_t i = lastObject + 1; i < lines.size(); ++i) {
        lines[i].clear();
    }
    lines.insert(lines.begin(), DOCUMENT_START);
    lines.push_back(DOCUMENT_END);
}

namespace hpeva_cli {

void runScript(const CHpEvaCliTool &tool, const SFiCredential &credential, const std::vector<ACE_WString> &commands,
               const ACE_WString &cell, std::vector<std::string> &lines, int timeout)
{
    // The file lives exactly as long as the run, and goes on every way out.
    CHpEvaCommandTempFile script(credential, commands, cell);
    tool.execSSSU(script.getCommandFileOption(), lines, timeout);
}

void runScript(const CHpEvaCliTool &tool, const SFiCredential &credential, const ACE_WString &command,
               const ACE_WString &cell, std::vector<std::string> &lines)
{
    runScript(tool, credential, std::vector<ACE_WString>(1, command), cell, lines);
}

void runListing(const CHpEvaCliTool &tool, const SFiCredential &credential, const ACE_WString &command,
                const ACE_WString &cell, CFiSaxParseHandler &handler, const char *file, int line)
{
    processTraceLog()->trace(2, "executing command [%S]", command.c_str());
    std::vector<std::string> lines;
    // Listings run to thousands of lines; start with room for a fair share of them.
    lines.reserve(1024);
    runScript(tool, credential, command, cell, lines);
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

bool holds(const std::string &line, const char *text)
{
    return line.find(text) != std::string::npos;
}

void parseXmlOutput(std::vector<std::string> &lines, CFiSaxParseHandler &handler, const ACE_WString &command,
                    const char *file, int line)
{
    CHpEvaCliTool::massageOutput(lines);
    CFiSaxParser parser(&handler, nullptr);
    parser.parse(lines);
    if (handler.hasLastError()) {
        throw CHpEvaCliException(CHpEvaCliException::CLI_COMMAND_FAILED, command, handler.getLastErrorText(), lines,
                                 file, line);
    }
}

}  // namespace hpeva_cli
