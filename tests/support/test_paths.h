// Where a test finds the build and source trees: the environment's TAMLIN_BUILD_DIR and
// TAMLIN_SOURCE_DIR when set (ctest sets them), else the trees the test was built in, so that
// a test binary also runs on its own: build/bin/<test>.
#ifndef TEST_PATHS_H
#define TEST_PATHS_H

#include <cstdlib>
#include <string>

namespace tamlin_test {

inline std::string envOr(const char *name, const char *builtIn)
{
    const char *value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : builtIn;
}

inline std::string buildDir()
{
    return envOr("TAMLIN_BUILD_DIR", TAMLIN_BUILD_DIR_DEFAULT);
}

inline std::string sourceDir()
{
    return envOr("TAMLIN_SOURCE_DIR", TAMLIN_SOURCE_DIR_DEFAULT);
}

}  // namespace tamlin_test

#endif
