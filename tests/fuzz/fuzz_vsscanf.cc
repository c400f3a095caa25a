// libFuzzer target for V_sscanf and the number readers.
//
// Input: one selector byte, one byte of destination sizes, then either the text
// (scanned with one of the known formats) or "format\0text". Every buffer is
// allocated at exactly the size the scanner is told about, so AddressSanitizer
// sees any write past it and any read past the text's terminator.
#include "vstring.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr int kSlots = 12;

// Formats with the destination each conversion needs: 's' a string of the
// fuzzed size, a digit the byte width of a number.
struct Known {
    const char *format;
    const char *slots;
};

const Known kKnown[] = {
    {"<SERIALIZED_MESSAGE MSGID=%s SEVERITY=%d>", "s4"},
    {"<ARGVALUE INDEX=%d TYPE=%d>", "44"},
    {"%i%x%o%u%n", "44444"},
    {"%hhd%hd%ld%lld%I64u%p", "124888"},
    {"%f%lf%Le%g", "4884"},
    {"%[^>]>%3c%[a-z-]%*d%hhn", "s1s1"},
    {"%5s %*s %10[^,], %qx %D%O%k", "ss8444"},
};

char *copyOf(const uint8_t *data, size_t size)
{
    char *p = static_cast<char *>(std::malloc(size + 1));
    std::memcpy(p, data, size);
    p[size] = '\0';
    return p;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2) {
        return 0;
    }
    const uint8_t selector = data[0];
    const uint8_t sizes = data[1];
    data += 2;
    size -= 2;

    char *format;
    char *text;
    const char *slots = nullptr;
    if (selector & 1) {
        // A fuzzed format: at most one storing conversion per '%', so kSlots pairs are enough.
        const uint8_t *nul = static_cast<const uint8_t *>(std::memchr(data, 0, size));
        const size_t formatLength = nul ? size_t(nul - data) : size;
        format = copyOf(data, formatLength);
        const size_t rest = nul ? size - formatLength - 1 : 0;
        text = copyOf(nul ? nul + 1 : data + size, rest);
        int percents = 0;
        for (const char *p = format; *p; ++p) {
            percents += *p == '%';
        }
        if (percents > kSlots) {
            std::free(format);
            std::free(text);
            return 0;
        }
    } else {
        const Known &known = kKnown[(selector >> 1) % (sizeof kKnown / sizeof *kKnown)];
        format = copyOf(reinterpret_cast<const uint8_t *>(known.format), std::strlen(known.format));
        text = copyOf(data, size);
        slots = known.slots;
    }

    // Strings get 1..16 bytes; destinations of a fuzzed format get at least 8,
    // the most a number stores, whatever size they are told.
    const size_t known = slots ? std::strlen(slots) : 0;
    void *dst[kSlots];
    int dstSize[kSlots];
    for (int k = 0; k < kSlots; ++k) {
        const int fuzzed = 1 + ((sizes >> (k % 4)) & 15);
        const char kind = !slots ? 'f' : size_t(k) < known ? slots[k] : '8';
        if (kind == 's') {
            dstSize[k] = fuzzed;
        } else if (kind == 'f') {
            dstSize[k] = fuzzed < 8 ? 8 : fuzzed;
        } else {
            dstSize[k] = kind - '0';
        }
        dst[k] = std::malloc(size_t(dstSize[k]));
    }

    const int n = V_sscanf(text, format, dst[0], dstSize[0], dst[1], dstSize[1], dst[2], dstSize[2], dst[3], dstSize[3],
                           dst[4], dstSize[4], dst[5], dstSize[5], dst[6], dstSize[6], dst[7], dstSize[7], dst[8],
                           dstSize[8], dst[9], dstSize[9], dst[10], dstSize[10], dst[11], dstSize[11]);
    if (n < -1 || n > kSlots) {
        std::abort();
    }

    char *end = nullptr;
    const int base = selector % 38 == 1 ? 0 : selector % 38;
    V_strtoimax(text, &end, base);
    if (end < text || end > text + std::strlen(text)) {
        std::abort();
    }
    V_strtoumax(text, &end, base);
    if (end < text || end > text + std::strlen(text)) {
        std::abort();
    }

    for (int k = 0; k < kSlots; ++k) {
        std::free(dst[k]);
    }
    std::free(format);
    std::free(text);
    return 0;
}
