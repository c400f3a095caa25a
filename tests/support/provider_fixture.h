// Loads the built provider through dlopen, as a host does.
#ifndef PROVIDER_FIXTURE_H
#define PROVIDER_FIXTURE_H

#include <cstdlib>
#include <string>

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

#endif
