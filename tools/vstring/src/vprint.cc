// Bounded formatting and wide copies of the vstring family.
#include "vstring.h"

#include <cstdio>
#include <cstdlib>
#include <cwchar>

extern "C" {

int V_vsnprintf(char *buffer, size_t size, const char *format, va_list args)
{
    if (!buffer || size == 0) {
        return -1;
    }
    if (!format) {
        buffer[0] = '\0';
        return -1;
    }
    va_list copy;
    va_copy(copy, args);
    const int n = std::vsnprintf(buffer, size, format, copy);
    va_end(copy);
    if (n < 0) {
        buffer[0] = '\0';
        return -1;
    }
    if (size_t(n) < size) {
        return n;
    }
    // Callers grow their buffer while the result fills it, so a cut text reports size - 1.
    buffer[size - 1] = '\0';
    return int(size - 1);
}

int V_snprintf(char *buffer, size_t size, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    const int result = V_vsnprintf(buffer, size, format, args);
    va_end(args);
    return result;
}

int V_vswprintf(wchar_t *buffer, size_t size, const wchar_t *format, va_list args)
{
    if (size == 0 || !format) {
        return -1;
    }
    // A scratch array keeps a failed or cut formatting from leaving the caller's
    // buffer unterminated; zeroed so nothing unwritten is ever copied.
    wchar_t *scratch = static_cast<wchar_t *>(std::calloc(size, sizeof(wchar_t)));
    if (!scratch) {
        return -1;
    }
    va_list copy;
    va_copy(copy, args);
    const int n = std::vswprintf(scratch, size, format, copy);
    va_end(copy);
    scratch[size - 1] = L'\0';
    V_wcslcpy(buffer, scratch, size);
    std::free(scratch);
    return n;
}

int V_swprintf(wchar_t *buffer, size_t size, const wchar_t *format, ...)
{
    va_list args;
    va_start(args, format);
    const int result = V_vswprintf(buffer, size, format, args);
    va_end(args);
    return result;
}

size_t V_wcslcpy(wchar_t *target, const wchar_t *source, size_t size)
{
    if (size == 0 || !target || !source) {
        return 0;
    }
    size_t n = 0;
    for (; n + 1 < size && source[n] != L'\0'; ++n) {
        target[n] = source[n];
    }
    target[n] = L'\0';
    return n;
}

size_t V_wcsncpy(wchar_t *target, const wchar_t *source, size_t count, size_t size)
{
    if (size == 0 || !target || !source) {
        return 0;
    }
    const size_t n = count < size ? count : size;
    size_t i = 0;
    for (; i < n && source[i] != L'\0'; ++i) {
        target[i] = source[i];
    }
    for (; i < n; ++i) {
        target[i] = L'\0';
    }
    if (n == size) {
        target[size - 1] = L'\0';
        return size - 1;
    }
    target[n] = L'\0';
    return n;
}

}  // extern "C"
