// Loads the built provider through dlopen, as a host does.
#ifndef PROVIDER_FIXTURE_H
#define PROVIDER_FIXTURE_H

#include <cstdlib>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "provider_library.h"
#include "test_paths.h"

inline std::string builtProviderPath()
{
    return tamlin_test::buildDir() + "/lib/libtamlin.so";
}

// One library per test program: the provider keeps process-wide state across tests.
inline ProviderLibrary &provider()
{
    static ProviderLibrary library;
    if (!library.isOpen()) {
        if (!library.open(builtProviderPath())) {
            ADD_FAILURE() << library.error();
        }
    }
    return library;
}

namespace tamlin_test {

// The calling thread's last error as the provider serialised it: its key ("<none>" without
// one) and the text of each argument.
struct LastError {
    std::string key;
    std::vector<std::string> arguments;
};

// Reads and deletes it.
inline LastError lastError()
{
    LastError last{"<none>", {}};
    qrn_msg_info *info = nullptr;
    if (provider()->get_last_error(&info) != 0 || info == nullptr) {
        return last;
    }
    const std::string text(info->text, info->length);
    provider()->del_last_error(&info);
    std::smatch found;
    last.key = std::regex_search(text, found, std::regex("MSGID=(\\w+)")) ? found[1].str() : text;
    const std::regex argument("<ARGVALUE INDEX=\\d+ TYPE=\\d+>([\\s\\S]*?)</ARGVALUE>");
    for (std::sregex_iterator it(text.begin(), text.end(), argument), end; it != end; ++it) {
        last.arguments.push_back((*it)[1].str());
    }
    return last;
}

inline std::string lastErrorKey()
{
    return lastError().key;
}

}  // namespace tamlin_test

#endif
