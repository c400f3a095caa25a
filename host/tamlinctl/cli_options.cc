#include "cli_options.h"

bool finishArgs(cliutil::Args &args, const char *command)
{
    if (args.finish()) {
        return true;
    }
    fprintf(stderr, "tamlinctl %s: %s (try tamlinctl %s --help)\n", command, args.error().c_str(), command);
    return false;
}
