#ifndef COMMANDS_H
#define COMMANDS_H

#include <cstdint>
#include <string>
#include <vector>

#include "cli_options.h"
#include "disk_resolver.h"

class ProviderSession;

// The commands of tamlinctl. Each returns the program's exit status.
int runCheck(CliOptions &options);
int runInfo(CliOptions &options);
int runEnclosures(CliOptions &options);
int runHosts(CliOptions &options);
int runDisks(CliOptions &options);
int runErrmsg(CliOptions &options);
int runConfig(CliOptions &options);
int runRestore(CliOptions &options);
int runSnapshot(CliOptions &options);
int runPresent(CliOptions &options);
int runUnpresent(CliOptions &options);
int runDispose(CliOptions &options);
int runLeftovers(CliOptions &options);
int runSetup(CliOptions &options);

// The provider's disks, as `disks` lists them, for resolving the DISK words of a command.
DiskResolver::Lister diskLister(ProviderSession &session);

// Starts the provider for a command that needs the arrays: 0, or the exit status (a failed
// init has been reported).
int startWithArrays(ProviderSession &session);
// That, and the DISK words resolved by resolver: 0, or the exit status, having said why.
int startAndResolve(ProviderSession &session, DiskResolver &resolver, const char *command,
                    const std::vector<std::string> &words, std::vector<KnownDisk> &disks);
// Whether a command that changes what change says may go on: --yes was given, or standard
// input is a terminal to ask on. Says what to do otherwise.
bool mayConfirm(bool yes, const char *command, const char *change);
// Asks to type yes to action, on standard error, and reads the answer.
bool answeredYes(const char *action);

// Sizes for people: binary units with one decimal.
std::string humanSize(uint64_t bytes);

#endif
