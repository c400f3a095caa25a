#include "hpeva_clierrorprocessor.h"

#include <algorithm>
#include <cctype>

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

}  // namespace

void CHpEvaCliErrorProcessor::cleanPassword(std::vector<std::string> &lines)
{
    const size_t keyLength = std::char_traits<char>::length(kPasswordKey);
    for (std::string &line : lines) {
        // SSSU may echo the keyword as it was typed or in its own spelling (PASSWORD=).
        const auto at = std::search(line.begin(), line.end(), kPasswordKey, kPasswordKey + keyLength,
                                    [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == b; });
        if (at != line.end()) {
            line.erase(static_cast<size_t>(at - line.begin()) + keyLength);
            line += "********";
        }
    }
}

bool CHpEvaCliErrorProcessor::processBuffer(const std::vector<std::string> &lines, const ACE_WString &command)
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCliErrorProcessor::processBuffer");
    if (lines.empty()) {
        log->trace(2, "No output was found for command [%S].", command.c_str());
        throw CHpEvaCliException(CHpEvaCliException::CLI_NO_DATA, command, __FILE__, __LINE__);
    }
    bool tolerated = false;
    for (const std::string &line : lines) {
        if (line.find(kErrorMarker) == std::string::npos) {
            continue;
        }
        bool known = false;
        for (const char *text : kTolerated) {
            if (line.find(text) != std::string::npos) {
                known = true;
                break;
            }
        }
        if (known) {
            tolerated = true;
            continue;
        }
        log->trace(2,
                   "CHpEvaCliErrorProcessor::processBuffer Found unexpected ERROR in output at line [%s] for "
                   "command [%S].",
                   line.c_str(), command.c_str());
        log->trace(3, "Dumping the command output and throwing exception [\n%s]",
                   CFiStringTool::vec2str(lines, "").c_str());
        throw CHpEvaCliException(CHpEvaCliException::CLI_COMMAND_FAILED, command, line, lines, __FILE__, __LINE__);
    }
    return tolerated;
}
