// The very first call a host makes, seen from a fresh process.
#include <gtest/gtest.h>

#include <dlfcn.h>

#include "provider_fixture.h"
#include "provider_install.h"
#include "qrn_results.h"

namespace {

using LiveObjects = int32_t (*)();

// The kit exports its classes; CFiRefCount counts the kit's objects alive in the process.
LiveObjects liveObjectsOf(ProviderLibrary &)
{
    void *handle = dlopen(builtProviderPath().c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle == nullptr) {
        return nullptr;
    }
    auto fn = reinterpret_cast<LiveObjects>(dlsym(handle, "_ZN13qorin_pdk_4_411CFiRefCount11liveObjectsEv"));
    dlclose(handle);
    return fn;
}

}  // namespace

TEST(FirstCall, InitWithoutVersionBlockCreatesNothing)
{
    ProviderInstall site;
    ASSERT_TRUE(site.ok()) << site.loadReport();
    ProviderLibrary &lib = provider();
    ASSERT_TRUE(lib.isOpen());
    LiveObjects live = liveObjectsOf(lib);
    ASSERT_NE(live, nullptr) << "the kit's classes are exported";
    ASSERT_EQ(live(), 0) << "loading the library creates no object";

    qrn_host_context host = {};
    EXPECT_EQ(lib->init(&host, nullptr), QRN_ERR_NO_VERSION_BLOCK);
    EXPECT_EQ(lib->init(nullptr, nullptr), QRN_ERR_NO_VERSION_BLOCK);
    EXPECT_EQ(live(), 0) << "a refused init creates no singleton";

    uint16_t version[4] = {1, 2, 3, 4};
    EXPECT_EQ(lib->init(nullptr, version), 0);
    EXPECT_EQ(version[0], 7);
    EXPECT_EQ(version[1], 0);
    EXPECT_EQ(version[2], 0);
    EXPECT_EQ(version[3], 0);
    EXPECT_GE(live(), 6) << "the six singletons exist after init";
    lib->fini();
    EXPECT_EQ(live(), 1) << "the session manager alone survives fini";
    for (int cycle = 0; cycle < 3; ++cycle) {
        ASSERT_EQ(lib->init(nullptr, version), 0);
        lib->fini();
    }
    EXPECT_EQ(live(), 1) << "init and fini again leave nothing more behind";
}
