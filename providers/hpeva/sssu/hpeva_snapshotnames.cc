#include "hpeva_snapshotnames.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace hpeva_rules {

namespace {

const char kActive[] = "ACTIVE";

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::string cut(std::string text)
{
    if (text.size() > SNAPSHOT_NAME_MAX) {
        text.resize(SNAPSHOT_NAME_MAX);
    }
    return text;
}

}  // namespace

bool freeSnapshotName(const SHpEvaVdisk &source, bool inFamily, const std::string &suffix,
                      const std::vector<std::string> &existing, std::string &name, std::string &path)
{
    // The last occurrence: a folder or family name may hold the word as well.
    const size_t active = source.objectname.rfind(kActive);
    if (active == std::string::npos) {
        return false;
    }
    const size_t familyFolder = source.familyname.size() + 1 <= active ? active - source.familyname.size() - 1 : 0;
    const std::string folder = source.objectname.substr(0, inFamily ? active : familyFolder);
    // The array tells names apart without regard to case, so a name taken in another case is
    // taken too.
    std::vector<std::string> taken;
    taken.reserve(existing.size());
    for (const std::string &entry : existing) {
        taken.push_back(lower(entry));
    }
    for (unsigned long counter = 0;; ++counter) {
        char number[32];
        snprintf(number, sizeof number, "%03lx", counter);
        name = cut(source.familyname + suffix + number);
        path = cut(folder + name);
        const std::string wanted = lower(path);
        const bool isTaken = std::any_of(taken.begin(), taken.end(), [&](const std::string &entry) {
            return entry.find(wanted) != std::string::npos;
        });
        // A name cut short no longer changes with the counter: the array then refuses it
        // rather than this loop running forever.
        if (!isTaken || (source.familyname + suffix + number).size() > SNAPSHOT_NAME_MAX ||
            (folder + source.familyname + suffix + number).size() > SNAPSHOT_NAME_MAX) {
            return true;
        }
    }
}

}  // namespace hpeva_rules
