// Load and unload hooks of libtamlin.so.
#include <unicode/uclean.h>

#include "cfisaxparser.h"
#include "hpeva_singletons.h"

namespace {

// Made at load, before any process-wide object, so that its end comes after all of theirs,
// whether the host unloads the library or simply exits: the handlers go once nothing can
// call them, Xerces (kept from the first parse on) before ICU, which it transcodes with, and
// ICU's caches after the last open catalog.
struct LibraryTeardown {
    ~LibraryTeardown()
    {
        releaseErrorHandlers();
        qorin_pdk_4_4::CFiSaxParser::releaseXerces();
        u_cleanup();
    }
};

__attribute__((constructor)) void onLoad()
{
    static LibraryTeardown teardown;
}

}  // namespace
