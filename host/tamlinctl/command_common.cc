// What several commands share: starting the provider with the arrays in reach, taking disks
// from the command line, confirming a change, sizes for people.
#include <unistd.h>

#include <cstdio>

#include "commands.h"
#include "provider_session.h"

int startWithArrays(ProviderSession &session)
{
    const int status = session.start();
    if (status != 0) {
        return status;
    }
    return session.initResult() == 0 ? ProviderSession::kExitOk : ProviderSession::kExitFailed;
}

int startAndResolve(ProviderSession &session, DiskResolver &resolver, const char *command,
                    const std::vector<std::string> &words, std::vector<KnownDisk> &disks)
{
    int status = startWithArrays(session);
    if (status != 0) {
        return status;
    }
    status = resolver.resolve(words, disks);
    if (status != 0 && !resolver.error().empty()) {
        fprintf(stderr, "tamlinctl %s: %s\n", command, resolver.error().c_str());
    }
    return status;
}

bool mayConfirm(bool yes, const char *command, const char *change)
{
    if (yes || isatty(STDIN_FILENO)) {
        return true;
    }
    fprintf(stderr, "tamlinctl %s: this %s; give --yes to confirm when standard input is no terminal\n", command,
            change);
    return false;
}

bool answeredYes(const char *action)
{
    fprintf(stderr, "Type yes to %s: ", action);
    char answer[64] = {0};
    if (fgets(answer, sizeof answer, stdin) == nullptr) {
        return false;
    }
    const std::string word(answer);
    return word == "yes\n" || word == "yes";
}

std::string humanSize(uint64_t bytes)
{
    static const char *const units[] = {"B", "KiB", "MiB", "GiB", "TiB", "PiB"};
    double value = static_cast<double>(bytes);
    size_t unit = 0;
    while (value >= 1024.0 && unit + 1 < sizeof units / sizeof units[0]) {
        value /= 1024.0;
        ++unit;
    }
    char buffer[32];
    snprintf(buffer, sizeof buffer, unit == 0 ? "%.0f %s" : "%.1f %s", value, units[unit]);
    return buffer;
}
