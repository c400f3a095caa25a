// A host that loads, starts, stops and unloads the provider over and over. Each cycle must
// leave nothing behind: once the library is gone, whatever it kept is lost for good, which
// the leak check of the AddressSanitizer run reports, as it reports any use of what one
// load left to the next.
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "provider_fixture.h"
#include "provider_install.h"
#include "qrn_results.h"
#include "test_paths.h"

namespace {

// As registered (a hundred), or as TAMLIN_RELOAD_CYCLES says (the slow set: a thousand).
int cycles()
{
    return std::max(1, std::atoi(tamlin_test::envOr("TAMLIN_RELOAD_CYCLES", TAMLIN_RELOAD_CYCLES_DEFAULT).c_str()));
}

}  // namespace

TEST(Reload, LoadInitFiniUnloadAgainAndAgain)
{
    ProviderInstall site;
    ASSERT_TRUE(site.ok()) << site.loadReport();
    const std::string path = builtProviderPath();
    for (int cycle = 0, end = cycles(); cycle < end; ++cycle) {
        ProviderLibrary library;
        ASSERT_TRUE(library.open(path)) << library.error();
        uint16_t version[4] = {0, 0, 0, 0};
        ASSERT_EQ(library->init(nullptr, version), QRN_OK) << "cycle " << cycle;
        // The catalogs and the error path, which hold the most across calls.
        const wchar_t *text = nullptr;
        library->errmsg(QRN_ERR_VERSION_CHECK, &text);
        ASSERT_NE(text, nullptr);
        library->del_locale_message(const_cast<wchar_t **>(&text));
        qrn_msg_info *last = nullptr;
        library->get_last_error(&last);
        library->fini();
        library.close();
        ASSERT_EQ(dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD), nullptr) << "cycle " << cycle << ": still loaded";
    }
}
