// Load and unload hooks of libtamlin.so.
#include <unicode/uclean.h>

namespace {

__attribute__((constructor)) void onLoad() {}

// ICU keeps caches for the life of the process; a host that unloads the provider gets
// them back.
__attribute__((destructor)) void onUnload()
{
    u_cleanup();
}

}  // namespace
