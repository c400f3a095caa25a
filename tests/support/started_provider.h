// A test suite sharing one provider install, with the provider started once in it (without
// a host context) and stopped after the suite's last test.
#ifndef STARTED_PROVIDER_H
#define STARTED_PROVIDER_H

#include <gtest/gtest.h>

#include "provider_fixture.h"
#include "provider_install.h"

class StartedProvider : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        site = new ProviderInstall;
        ASSERT_TRUE(site->ok()) << site->loadReport();
        ASSERT_TRUE(provider().isOpen());
        uint16_t version[4] = {0, 0, 0, 0};
        ASSERT_EQ(provider()->init(nullptr, version), 0) << "a null host pointer works";
    }
    static void TearDownTestSuite()
    {
        provider()->fini();
        delete site;
        site = nullptr;
    }

    static inline ProviderInstall *site = nullptr;
};

#endif
