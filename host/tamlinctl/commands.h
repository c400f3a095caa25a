#ifndef COMMANDS_H
#define COMMANDS_H

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

#endif
