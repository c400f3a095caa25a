// Where the state file lies: $EVASIM_HOME/evasim.db, else evasim.d/evasim.db beside the program.
// "Beside the program" is the directory of the path it was started by, not of a symlink's target:
// argv[0] when it holds a '/', else the first match of argv[0] on $PATH, else /proc/self/exe.
// So an SSSU name that links to evasim keeps its own state beside the link.
#pragma once

#include <string>

namespace evasim {

class StateLocation {
public:
    static std::string directory(char const *argv0);
    static std::string database(char const *argv0);
    // Makes the directory if it is missing; throws std::runtime_error when it can't.
    static void ensureDirectory(std::string const &dir);
};

} // namespace evasim
