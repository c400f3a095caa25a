// Loads the outside provider as a host would and runs its check: 0 when it passed.
#include <dlfcn.h>

#include <cstdio>

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: load_outside LIBRARY\n");
        return 2;
    }
    void *library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        std::fprintf(stderr, "load_outside: %s\n", dlerror());
        return 1;
    }
    auto check = reinterpret_cast<int (*)()>(dlsym(library, "outside_provider_check"));
    const int result = check != nullptr ? check() : 1;
    if (result != 0) {
        std::fprintf(stderr, "load_outside: the check gave %d\n", result);
    }
    dlclose(library);
    return result;
}
