/*
 * vstring: bounded text functions of the provider kit.
 *
 * The scanner follows the scanf family with one deliberate difference: every
 * storing conversion takes its destination pointer followed by a size, an int
 * in its own argument slot.
 *
 *     char key[1024]; int severity;
 *     V_sscanf(text, "<SERIALIZED_MESSAGE MSGID=%s SEVERITY=%d>",
 *              key, (int)sizeof key, &severity, (int)sizeof severity);
 *
 * Sizes only bound %s and %[ (at most size - 1 characters plus a terminator;
 * the rest of the field is read and dropped). For %c, numbers and %n the size
 * is taken and ignored: the modifier alone decides how many bytes are stored.
 * A conversion with '*' takes no argument at all.
 *
 * Integer modifiers: hh = 8 bits, h = 16, none and l = 32, ll, q, z, t, j, L,
 * I64 = 64. %p stores 64 bits. Floating conversions (e E f g G) store a float,
 * or a double with l, ll or L. Modifiers on s, c and [ are accepted and ignored
 * (all text is narrow). D and O are ld and lo; any other conversion character
 * scans a signed decimal, as ld when it is an upper-case letter.
 *
 * Numbers are read into a field of at most 512 characters (a larger or missing
 * width counts as 512). Floating numbers are decimal only: no hex, inf or nan.
 *
 * Result: the number of assignments. Running out of input where a character is
 * needed gives that number, or -1 when it is 0. A format that ends inside a
 * conversion gives -1.
 */
#ifndef TAMLIN_VSTRING_H
#define TAMLIN_VSTRING_H

#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>
#include <wchar.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A read-only input over memory; the scanner never looks at or behind data[length]. */
typedef struct V_input {
    const char *data;
    size_t length;
    size_t position; /* characters consumed so far */
} V_input;

int V_sscanf(const char *text, const char *format, ...);
int V_vsscanf(const char *text, const char *format, va_list args);
/* The scanner core. On return input->position is where the scan stopped. */
int V_vfscanf(V_input *input, const char *format, va_list args);

/*
 * As strtoll/strtoull: white space, one sign, base 0 detects 0x/0 prefixes,
 * base 16 accepts 0x. On overflow the digits are still consumed, errno becomes
 * ERANGE (34) and the limit is returned. V_strtoumax negates after a minus
 * sign when nothing overflowed. A base other than 0 or 2..36 gives 0 and EINVAL.
 */
intmax_t V_strtoimax(const char *text, char **end, int base);
uintmax_t V_strtoumax(const char *text, char **end, int base);

/*
 * A null buffer or a size of 0 gives -1. A text that fits gives its length;
 * otherwise the text is cut, the last byte is the terminator and the result is
 * size - 1 (never the length that was wanted). A formatting error leaves an
 * empty text and gives -1.
 */
int V_snprintf(char *buffer, size_t size, const char *format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 3, 4)))
#endif
    ;
int V_vsnprintf(char *buffer, size_t size, const char *format, va_list args);

/*
 * A size of 0 gives -1. Otherwise the buffer receives at most size - 1
 * characters and a terminator; the result is the length of the text, or
 * negative when it did not fit (or could not be formatted).
 */
int V_swprintf(wchar_t *buffer, size_t size, const wchar_t *format, ...);
int V_vswprintf(wchar_t *buffer, size_t size, const wchar_t *format, va_list args);

/* Copies at most size - 1 characters and terminates; gives the number copied.
   A size of 0 or a null pointer gives 0 and writes nothing. */
size_t V_wcslcpy(wchar_t *target, const wchar_t *source, size_t size);

/*
 * n = min(count, size). Copies up to n characters, stopping at the source's
 * terminator, and zero-fills the rest of the n. If n == size the last
 * character becomes 0 and the result is size - 1; else target[n] becomes 0 and
 * the result is n. A size of 0 or a null pointer gives 0 and writes nothing.
 */
size_t V_wcsncpy(wchar_t *target, const wchar_t *source, size_t count, size_t size);

#ifdef __cplusplus
}
#endif

#endif /* TAMLIN_VSTRING_H */
