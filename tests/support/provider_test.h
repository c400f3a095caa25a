// A test of the provider loaded through dlopen: started as a host starts it for a job, stopped
// at the end, with the texts it showed the host kept.
#ifndef PROVIDER_TEST_H
#define PROVIDER_TEST_H

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host_context.h"
#include "provider_fixture.h"
#include "text.h"

class ProviderTest : public ::testing::Test {
protected:
    int32_t start()
    {
        uint16_t version[4] = {0, 0, 0, 0};
        started = true;
        return provider()->init(host.get(), version);
    }
    void TearDown() override
    {
        if (started) {
            provider()->fini();
        }
    }

    // Every text shown to the host, one a line (trace lines come without a host text).
    std::string said() const
    {
        std::string all;
        for (const std::string &text : messages) {
            all += text + "\n";
        }
        return all;
    }

    HostContext host{"en", [this](const std::wstring &hostText, const std::wstring &, int) {
                         if (!hostText.empty()) {
                             messages.push_back(toUtf8(hostText));
                         }
                     }};
    std::vector<std::string> messages;
    bool started = false;
};

#endif
