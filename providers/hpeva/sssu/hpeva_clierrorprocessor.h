#ifndef HPEVA_CLIERRORPROCESSOR_H
#define HPEVA_CLIERRORPROCESSOR_H

#include <string>
#include <vector>

#include <ace/SString.h>

#include "cfioutputlines.h"

// Reads SSSU's output for the lines that decide whether a run failed.
class CHpEvaCliErrorProcessor {
public:
    // Masks every login echo: a line holding "password=" keeps what precedes it and that
    // text, followed by "********"; the rest of the line goes.
    static void cleanPassword(std::vector<std::string> &lines);
    static void cleanPassword(qorin_pdk_4_4::CFiOutputLines &lines);

    // True if a tolerated "Error: " line was seen, false if there is no "Error: " at all.
    // Throws CHpEvaCliException: CLI_NO_DATA for no lines, CLI_COMMAND_FAILED for the first
    // line that holds any other "Error: ".
    static bool processBuffer(const std::vector<std::string> &lines, const ACE_WString &command);
    static bool processBuffer(const qorin_pdk_4_4::CFiOutputLines &lines, const ACE_WString &command);
};

#endif
