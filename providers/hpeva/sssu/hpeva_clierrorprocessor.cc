#include "hpeva_clierrorprocessor.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "hpeva_cliexception.h"
#include "hpeva_process.h"

using namespace qorin_pdk_4_4;

namespace {

const char *const kPasswordKey = "password=";
const char *const kErrorMarker = "Error: ";
// SSSU reports these as errors although the command did what was asked.
const char *const kTolerated[] = {
    "Error: Deletion completed",
    "Error: Error the call to present the virtual disk has failed. [Logical disk Presented]",
};

// Where what follows the login's password key starts in line, or npos. SSSU may echo the
// keyword as it was typed or in its own spelling (PASSWORD=). Every line of a listing passes
// here: the rare '=' is looked for first, then the word before it.
size_t afterPasswordKey(std::string_view line)
{
    const size_t word = std::char_traits<char>::length(kPasswordKey) - 1;
    for (size_t equals = line.find('=', word); equals != std::string_view::npos; equals = line.find('=', equals + 1)) {
        if (std::equal(kPasswordKey, kPasswordKey + word, line.begin() + static_cast<std::ptrdiff_t>(equals - word),
                       [](char key, char c) { return std::tolower(static_cast<unsigned char>(c)) == key; })) {
            return equals + 1;
        }
    }
    return std::string_view::npos;
}

const char kMask[] = "********";

}  // namespace

void CHpEvaCliErrorProcessor::cleanPassword(std::vector<std::string> &lines)
{
    for (std::string &line : lines) {
        const size_t after = afterPasswordKey(line);
        if (after != std::string_view::npos) {
            line.erase(after);
            line += kMask;
        }
    }
}

void CHpEvaCliErrorProcessor::cleanPassword(CFiOutputLines &lines)
{
    for (size_t i = 0; i < lines.size(); ++i) {
        const size_t after = afterPasswordKey(lines[i]);
        if (after != std::string_view::npos) {
            lines.replace(i, std::string(lines[i].substr(0, after)) + kMask);
        }
    }
}

bool CHpEvaCliErrorProcessor::processBuffer(const std::vector<std::string> &lines, const ACE_WString &command)
{
    return processBuffer(CFiOutputLines(lines), command);
}

bool CHpEvaCliErrorProcessor::processBuffer(const CFiOutputLines &lines, const ACE_WString &command)
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCliErrorProcessor::processBuffer");
    if (lines.empty()) {
        log->trace(2, "No output was found for command [%S].", command.c_str());
        throw CHpEvaCliException(CHpEvaCliException::CLI_NO_DATA, command, __FILE__, __LINE__);
    }
    bool tolerated = false;
    for (const std::string_view line : lines) {
        if (line.find(kErrorMarker) == std::string_view::npos) {
            continue;
        }
        bool known = false;
        for (const char *text : kTolerated) {
            if (line.find(text) != std::string_view::npos) {
                known = true;
                break;
            }
        }
        if (known) {
            tolerated = true;
            continue;
        }
        const std::string text(line);
        const std::vector<std::string> output = lines.strings();
        log->trace(2,
                   "CHpEvaCliErrorProcessor::processBuffer Found unexpected ERROR in output at line [%s] for "
                   "command [%S].",
                   text.c_str(), command.c_str());
        log->trace(3, "Dumping the command output and throwing exception [\n%s]",
                   CFiStringTool::vec2str(output, "").c_str());
        throw CHpEvaCliException(CHpEvaCliException::CLI_COMMAND_FAILED, command, text, output, __FILE__, __LINE__);
    }
    return tolerated;
}
