#ifndef HPEVA_CLITOOL_RUN_H
#define HPEVA_CLITOOL_RUN_H

#include <string>
#include <string_view>
#include <vector>

#include <ace/SString.h>

#include "cfioutputlines.h"
#include "cfisaxparsehandler.h"
#include "cfitracelog.h"
#include "hpeva_clitool.h"
#include "sficredential.h"

// What the array operations of CHpEvaCliTool share: one script, one run, one parse.
namespace hpeva_cli {

// Writes one script (login of credential, cell selected unless cell is empty) and runs it.
void runScript(const CHpEvaCliTool &tool, const qorin_pdk_4_4::SFiCredential &credential,
               const std::vector<ACE_WString> &commands, const ACE_WString &cell, std::vector<std::string> &lines,
               int timeout = CHpEvaCliTool::DEFAULT_TIMEOUT);
void runScript(const CHpEvaCliTool &tool, const qorin_pdk_4_4::SFiCredential &credential, const ACE_WString &command,
               const ACE_WString &cell, std::vector<std::string> &lines);

// Whether SSSU was seen to the end of a script: its last line echoes the script's last
// command, "exit", behind a prompt ("EVA01> exit"). SSSU that stops early may still exit 0.
bool ranToTheEnd(const std::vector<std::string> &lines);
bool ranToTheEnd(const qorin_pdk_4_4::CFiOutputLines &lines);
// The index of that last line (lines.size() when there is none): a list of names printed by
// the script's last listing ends before it. Names may hold ">" as the prompt does.
size_t lastLineOf(const std::vector<std::string> &lines);
size_t lastLineOf(const qorin_pdk_4_4::CFiOutputLines &lines);

// runScript for a listing: output that doesn't run to the end of the script is a failed
// command (CLI_COMMAND_FAILED), since what it lists may be cut short.
void runListingScript(const CHpEvaCliTool &tool, const qorin_pdk_4_4::SFiCredential &credential,
                      const std::vector<ACE_WString> &commands, const ACE_WString &cell,
                      std::vector<std::string> &lines, const char *file, int line);
void runListingScript(const CHpEvaCliTool &tool, const qorin_pdk_4_4::SFiCredential &credential,
                      const std::vector<ACE_WString> &commands, const ACE_WString &cell,
                      qorin_pdk_4_4::CFiOutputLines &lines, const char *file, int line);

// One XML listing from start to end: traces the command, runs its script to the end and
// parses the output with handler as parseXmlOutput does.
void runListing(const CHpEvaCliTool &tool, const qorin_pdk_4_4::SFiCredential &credential, const ACE_WString &command,
                const ACE_WString &cell, qorin_pdk_4_4::CFiSaxParseHandler &handler, const char *file, int line);

// `ADD LUN <lun> HOST="<host>"  VDISK="<disk>" `: two blanks before VDISK, one at the end.
ACE_WString addLunCommand(const std::string &disk, const std::string &host, unsigned int lun);

// Whether line holds text anywhere.
bool holds(std::string_view line, const char *text);

// The common tail of every XML listing: massages SSSU's lines into one document and parses
// it with handler. Output without any object is an empty listing. A document that can't be
// read throws CHpEvaCliException (CLI_COMMAND_FAILED) with the parser's message and the
// massaged lines; the source position is the caller's.
void parseXmlOutput(std::vector<std::string> &lines, qorin_pdk_4_4::CFiSaxParseHandler &handler,
                    const ACE_WString &command, const char *file, int line);
void parseXmlOutput(qorin_pdk_4_4::CFiOutputLines &lines, qorin_pdk_4_4::CFiSaxParseHandler &handler,
                    const ACE_WString &command, const char *file, int line);

}  // namespace hpeva_cli

#endif
