// The sanitizers' defaults, linked into every program of a sanitized build, so that a test,
// tamlinctl or evasim started by hand is checked as under ctest. Options in the environment
// still come after these and win.

extern "C" {

// GCC 12's LeakSanitizer reads the thread-local block of a library that the process has
// unloaded, and crashes at the exit of every host that unloaded the provider. Without
// thread-local storage as roots it can only report more, never hide a leak.
const char *__lsan_default_options()
{
    return "use_tls=0:suppressions=" TAMLIN_SANITIZER_DIR "/lsan.supp";
}

// The stack of a finding, which ends the program.
const char *__ubsan_default_options()
{
    return "print_stacktrace=1";
}

}  // extern "C"
