// Where the state file lies: $EVASIM_HOME/evasim.db, else evasim.d/evasim.db beside the program,
// else (a program in a system directory) in the user's state directory.
// "Beside the program" is the directory of the path it was started by, not of a symlink's target:
// argv[0] when it holds a '/', else the first match of argv[0] on $PATH, else /proc/self/exe.
// So an SSSU name that links to evasim keeps its own state beside the link.
#ifndef EVASIM_STATE_LOCATION_H
#define EVASIM_STATE_LOCATION_H

#include <string>

namespace evasim {

class StateLocation {
public:
    static std::string directory(const char *argv0);
    static std::string database(const char *argv0);
    // Makes the directory if it is missing; throws std::runtime_error when it can't.
    static void ensureDirectory(const std::string &dir);
};

}  // namespace evasim

#endif
