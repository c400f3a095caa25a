// Armed faults in the state file, counted down as runs use them.
#ifndef EVASIM_FAULT_STORE_H
#define EVASIM_FAULT_STORE_H

#include "fault.h"

#include <string>
#include <vector>

namespace evasim {

class Database;

class FaultStore {
public:
    static const std::vector<std::string> &kinds();

    static void add(Database &db, const Fault &fault);
    static std::vector<Fault> list(Database &db);
    static void clear(Database &db);
    // Takes one use of every per-run fault that this script meets, removing those used up, and
    // gives them.
    static std::vector<Fault> takeRunFaults(Database &db, const std::vector<std::string> &script);
    // Writes back the remaining uses of faults that hit during a run.
    static void saveUses(Database &db, const std::vector<Fault> &faults);
};

}  // namespace evasim

#endif
