// Armed faults in the state file, counted down as runs use them.
#pragma once

#include "fault.h"

#include <string>
#include <vector>

namespace evasim {

class Database;

class FaultStore {
public:
    static std::vector<std::string> const &kinds();

    static void add(Database &db, Fault const &fault);
    static std::vector<Fault> list(Database &db);
    static void clear(Database &db);
    // Takes one use of every per-run fault, removing those used up, and gives them.
    static std::vector<Fault> takeRunFaults(Database &db);
    // Writes back the remaining uses of faults that hit during a run.
    static void saveUses(Database &db, std::vector<Fault> const &faults);
};

} // namespace evasim
