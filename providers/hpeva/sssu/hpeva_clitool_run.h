#ifndef HPEVA_CLITOOL_RUN_H
#define HPEVA_CLITOOL_RUN_H

#include <string>
#include <vector>

#include <ace/SString.h>

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

// One XML listing from start to end: traces the command, runs its script and parses the
// output with handler as parseXmlOutput does.
void runListing(const CHpEvaCliTool &tool, const qorin_pdk_4_4::SFiCredential &credential, const ACE_WString &command,
                const ACE_WString &cell, qorin_pdk_4_4::CFiSaxParseHandler &handler, const char *file, int line);

// `ADD LUN <lun> HOST="<host>"  VDISK="<disk>" `: two blanks before VDISK, one at the end.
ACE_WString addLunCommand(const std::string &disk, const std::string &host, unsigned int lun);

// Whether line holds text anywhere.
bool holds(const std::string &line, const char *text);

// The common tail of every XML listing: massages SSSU's lines into one document and parses
// it with handler. A document that can't be read throws CHpEvaCliException
// (CLI_COMMAND_FAILED) with the parser's message and the massaged lines; the source
// position is the caller's.
void parseXmlOutput(std::vector<std::string> &lines, qorin_pdk_4_4::CFiSaxParseHandler &handler,
                    const ACE_WString &command, const char *file, int line);

}  // namespace hpeva_cli

#endif
