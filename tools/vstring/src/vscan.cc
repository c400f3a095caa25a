// The scanner of the vstring family and the 64-bit number readers behind it.
#include "vstring.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <locale.h>

namespace {

// A number field is read into a local buffer of this many characters plus the terminator.
constexpr size_t kNumberField = 512;
// Width digits beyond this stop counting; any such width already means "unbounded".
constexpr size_t kWidthCap = size_t(1) << 40;

// White space and case are tested by hand so that the host's locale can't change a scan.
bool isSpace(int c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}
bool isUpper(int c)
{
    return c >= 'A' && c <= 'Z';
}

int digitValue(int c)
{
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'z') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'Z') {
        return c - 'A' + 10;
    }
    return INT_MAX;
}

// Shared by both readers: the magnitude of the number, checked against the limit
// that belongs to its sign. Digits after an overflow are still consumed.
uint64_t readMagnitude(const char *text, char **end, int base, uint64_t limitPositive, uint64_t limitNegative,
                       bool *negative, bool *overflow)
{
    *negative = false;
    *overflow = false;
    if (base < 0 || base == 1 || base > 36) {
        if (end) {
            *end = const_cast<char *>(text);
        }
        errno = EINVAL;
        return 0;
    }
    const unsigned char *s = reinterpret_cast<const unsigned char *>(text);
    while (isSpace(*s)) {
        ++s;
    }
    if (*s == '+' || *s == '-') {
        *negative = *s == '-';
        ++s;
    }
    // "0x" counts as a prefix only when a hex digit follows; otherwise the number is the 0.
    if ((base == 0 || base == 16) && s[0] == '0' && (s[1] == 'x' || s[1] == 'X') && digitValue(s[2]) < 16) {
        s += 2;
        base = 16;
    } else if (base == 0) {
        base = s[0] == '0' ? 8 : 10;
    }
    const uint64_t limit = *negative ? limitNegative : limitPositive;
    uint64_t value = 0;
    bool any = false;
    for (;; ++s) {
        const int d = digitValue(*s);
        if (d >= base) {
            break;
        }
        any = true;
        if (*overflow) {
            continue;
        }
        if (value > (limit - uint64_t(d)) / uint64_t(base)) {
            *overflow = true;
        } else {
            value = value * uint64_t(base) + uint64_t(d);
        }
    }
    if (end) {
        *end = const_cast<char *>(any ? reinterpret_cast<const char *>(s) : text);
    }
    return value;
}

// Modifiers as written; only the last one counts ("hh" and "ll" are pairs).
enum class Mod { None, HH, H, L, LL, Long64, BigL };

int integerBytes(Mod m)
{
    switch (m) {
    case Mod::HH:
        return 1;
    case Mod::H:
        return 2;
    case Mod::None:
    case Mod::L:
        return 4;
    default:
        return 8;
    }
}

bool floatIsDouble(Mod m)
{
    return m == Mod::L || m == Mod::LL || m == Mod::BigL;
}

// Destinations may be unaligned; copy the low bytes of the value.
void storeInteger(void *dst, uint64_t value, int bytes)
{
    switch (bytes) {
    case 1: {
        uint8_t v = uint8_t(value);
        std::memcpy(dst, &v, 1);
        break;
    }
    case 2: {
        uint16_t v = uint16_t(value);
        std::memcpy(dst, &v, 2);
        break;
    }
    case 4: {
        uint32_t v = uint32_t(value);
        std::memcpy(dst, &v, 4);
        break;
    }
    default:
        std::memcpy(dst, &value, 8);
        break;
    }
}

// strtod must not see a decimal comma because the host switched locales.
double parseDouble(const char *text)
{
    static const locale_t c_locale = newlocale(LC_ALL_MASK, "C", locale_t(0));
    return c_locale ? strtod_l(text, nullptr, c_locale) : std::strtod(text, nullptr);
}

class Reader {
public:
    explicit Reader(V_input *in) : in_(in), start_(in->position) {}
    int peek() const { return in_->position < in_->length ? static_cast<unsigned char>(in_->data[in_->position]) : -1; }
    void next() { ++in_->position; }
    void giveBack() { --in_->position; }
    void skipSpace()
    {
        while (isSpace(peek())) {
            next();
        }
    }
    size_t consumed() const { return in_->position - start_; }

private:
    V_input *in_;
    size_t start_;
};

// Reads the characters that can continue an integer of `base` (0 for %i) into buf.
// Returns false when the field holds no digit. A trailing x of a lone "0x" is given back.
bool readIntegerField(Reader &r, size_t width, int &base, char *buf)
{
    enum { SignOk = 1, NoDigits = 2, NoZeroDigits = 4, PrefixOk = 8 };
    static const int kBaseFix[17] = {10, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    int flags = SignOk | NoDigits | NoZeroDigits | (base == 16 ? PrefixOk : 0);
    size_t p = 0;
    for (; width > 0; --width) {
        const int c = r.peek();
        bool take = false;
        if (c == '0') {
            if (base == 0) {
                base = 8;
                flags |= PrefixOk;
            }
            // A first 0 keeps the prefix possible; a second one ends that chance.
            if (flags & NoZeroDigits) {
                flags &= ~(SignOk | NoZeroDigits | NoDigits);
            } else {
                flags &= ~(SignOk | PrefixOk | NoDigits);
            }
            take = true;
        } else if (c >= '1' && c <= '9') {
            base = kBaseFix[base];
            if (c - '0' < base) {
                flags &= ~(SignOk | PrefixOk | NoDigits | NoZeroDigits);
                take = true;
            }
        } else if ((c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F')) {
            if (base > 10) {
                flags &= ~(SignOk | PrefixOk | NoDigits | NoZeroDigits);
                take = true;
            }
        } else if (c == '+' || c == '-') {
            if (flags & SignOk) {
                flags &= ~SignOk;
                take = true;
            }
        } else if (c == 'x' || c == 'X') {
            if ((flags & PrefixOk) && p > 0 && buf[p - 1] == '0') {
                base = 16;
                flags &= ~PrefixOk;
                take = true;
            }
        }
        if (!take) {
            break;
        }
        buf[p++] = char(c);
        r.next();
    }
    if (flags & NoDigits) {
        return false;
    }
    if (buf[p - 1] == 'x' || buf[p - 1] == 'X') {
        --p;
        r.giveBack();
    }
    buf[p] = '\0';
    return true;
}

// Decimal floating field: sign, digits, one point, exponent. A dangling exponent
// ("1e", "1e+") is given back and the mantissa stands.
bool readFloatField(Reader &r, size_t width, char *buf)
{
    enum { SignOk = 1, NoDigits = 2, PointOk = 4, ExpOk = 8 };
    int flags = SignOk | NoDigits | PointOk | ExpOk;
    size_t p = 0;
    for (; width > 0; --width) {
        const int c = r.peek();
        bool take = false;
        if (c >= '0' && c <= '9') {
            flags &= ~(SignOk | NoDigits);
            take = true;
        } else if (c == '+' || c == '-') {
            if (flags & SignOk) {
                flags &= ~SignOk;
                take = true;
            }
        } else if (c == '.') {
            if (flags & PointOk) {
                flags &= ~(SignOk | PointOk);
                take = true;
            }
        } else if (c == 'e' || c == 'E') {
            if ((flags & (NoDigits | ExpOk)) == ExpOk) {
                flags = (flags & ~(ExpOk | PointOk)) | SignOk | NoDigits;
                take = true;
            }
        }
        if (!take) {
            break;
        }
        buf[p++] = char(c);
        r.next();
    }
    if (flags & NoDigits) {
        if (flags & ExpOk) {
            return false;  // no mantissa digits at all
        }
        if (buf[p - 1] != 'e' && buf[p - 1] != 'E') {
            --p;  // the exponent's sign
            r.giveBack();
        }
        --p;
        r.giveBack();
    }
    buf[p] = '\0';
    return true;
}

// Fills table with the members of a %[ set starting at fmt (behind the '[').
// Returns the format position behind the closing ']' or at the format's end.
const unsigned char *parseSet(const unsigned char *fmt, bool table[256])
{
    bool invert = false;
    if (*fmt == '^') {
        invert = true;
        ++fmt;
    }
    std::memset(table, 0, 256 * sizeof(bool));
    if (*fmt != '\0') {
        int prev = *fmt++;  // the first member may be ']'
        table[prev] = true;
        for (;;) {
            const int c = *fmt;
            if (c == '\0') {
                break;
            }
            ++fmt;
            if (c == ']') {
                break;
            }
            if (c == '-') {
                const int hi = *fmt;
                if (hi != '\0' && hi != ']' && hi >= prev) {
                    ++fmt;
                    for (int k = prev; k <= hi; ++k) {
                        table[k] = true;
                    }
                    prev = hi;
                    continue;
                }
            }
            table[c] = true;
            prev = c;
        }
    }
    if (invert) {
        for (int k = 0; k < 256; ++k) {
            table[k] = !table[k];
        }
    }
    return fmt;
}

// va_list can't portably be passed by pointer when it is a parameter; keep a copy here.
struct Args {
    va_list ap;
    void *pointer() { return va_arg(ap, void *); }
    int size() { return va_arg(ap, int); }
};

// One conversion as written between '%' and its letter.
struct Spec {
    int letter = 0;
    bool suppress = false;
    size_t width = 0;  // 0: none given
    Mod mod = Mod::None;
};

// Reads flags, width and modifiers, in any order, up to the conversion letter.
const unsigned char *parseSpec(const unsigned char *fmt, Spec &spec)
{
    int prev = 0;
    for (;;) {
        const int c = *fmt++;
        if (c == '*') {
            spec.suppress = true;
        } else if (c >= '0' && c <= '9') {
            if (spec.width < kWidthCap) {
                spec.width = spec.width * 10 + size_t(c - '0');
            }
        } else if (c == 'h') {
            spec.mod = prev == 'h' && spec.mod == Mod::H ? Mod::HH : Mod::H;
        } else if (c == 'l') {
            spec.mod = prev == 'l' && spec.mod == Mod::L ? Mod::LL : Mod::L;
        } else if (c == 'L') {
            spec.mod = Mod::BigL;
        } else if (c == 'q' || c == 'z' || c == 't' || c == 'j') {
            spec.mod = Mod::Long64;
        } else if (c == 'I' && fmt[0] == '6' && fmt[1] == '4') {
            spec.mod = Mod::Long64;
            fmt += 2;
        } else {
            spec.letter = c;
            return fmt;
        }
        prev = c;
    }
}

constexpr int kGoOn = INT_MIN;

// Runs one conversion other than %% and %n. Gives kGoOn, or the scan's result when it ends here.
// fmt is advanced past a %[ set.
int convert(Reader &r, Spec spec, const unsigned char *&fmt, Args &args, int &assigned)
{
    const int c = spec.letter;
    int base = 10;
    bool isSigned = true;
    bool isFloat = false;
    bool isPointer = false;
    switch (c) {
    case 'c':
    case 's':
    case '[':
    case 'd':
        break;
    case 'i':
        base = 0;
        break;
    case 'u':
        isSigned = false;
        break;
    case 'o':
        isSigned = false;
        base = 8;
        break;
    case 'x':
    case 'X':
        isSigned = false;
        base = 16;
        break;
    case 'p':
        isSigned = false;
        base = 16;
        isPointer = true;
        break;
    case 'e':
    case 'E':
    case 'f':
    case 'g':
    case 'G':
        isFloat = true;
        break;
    case 'O':
        isSigned = false;
        base = 8;
        [[fallthrough]];
    default:
        // D, O and any upper-case letter read as with 'l': at least 32 bits.
        if (isUpper(c) && (spec.mod == Mod::H || spec.mod == Mod::HH)) {
            spec.mod = Mod::L;
        }
        break;
    }

    if (c != 'c' && c != '[') {
        r.skipSpace();
    }
    if (r.peek() < 0) {
        return assigned ? assigned : -1;
    }

    if (c == 'c') {
        // One character is read and stored, whatever the width.
        const int in = r.peek();
        r.next();
        if (!spec.suppress) {
            char *dst = static_cast<char *>(args.pointer());
            args.size();
            *dst = char(in);
            ++assigned;
        }
        return kGoOn;
    }

    if (c == 's' || c == '[') {
        bool set[256];
        if (c == '[') {
            fmt = parseSet(fmt, set);
        }
        char *dst = nullptr;
        int size = 0;
        if (!spec.suppress) {
            dst = static_cast<char *>(args.pointer());
            size = args.size();
        }
        // Characters that may be stored before the terminator.
        const size_t room = size > 0 ? size_t(size) - 1 : 0;
        size_t left = spec.width ? spec.width : SIZE_MAX;
        size_t read = 0;
        for (; left > 0; --left) {
            const int in = r.peek();
            if (in < 0) {
                break;
            }
            if (c == 's' ? isSpace(in) : !set[in]) {
                break;
            }
            // The field is read to its end; what doesn't fit is dropped.
            if (read < room) {
                dst[read] = char(in);
            }
            ++read;
            r.next();
        }
        if (read == 0) {
            return assigned;
        }
        if (dst) {
            // A size below 1 has no room even for the terminator.
            if (size > 0) {
                dst[read < room ? read : room] = '\0';
            }
            ++assigned;
        }
        return kGoOn;
    }

    const size_t width = spec.width == 0 || spec.width > kNumberField ? kNumberField : spec.width;
    char buf[kNumberField + 1];
    if (isFloat) {
        if (!readFloatField(r, width, buf)) {
            return assigned;
        }
        if (!spec.suppress) {
            void *dst = args.pointer();
            args.size();
            const double value = parseDouble(buf);
            if (floatIsDouble(spec.mod)) {
                std::memcpy(dst, &value, sizeof value);
            } else {
                const float f = float(value);
                std::memcpy(dst, &f, sizeof f);
            }
            ++assigned;
        }
        return kGoOn;
    }

    if (!readIntegerField(r, width, base, buf)) {
        return assigned;
    }
    if (!spec.suppress) {
        void *dst = args.pointer();
        args.size();
        const uint64_t value = isSigned ? uint64_t(V_strtoimax(buf, nullptr, base)) : V_strtoumax(buf, nullptr, base);
        storeInteger(dst, value, isPointer ? 8 : integerBytes(spec.mod));
        ++assigned;
    }
    return kGoOn;
}

int scan(V_input *input, const unsigned char *fmt, Args &args)
{
    Reader r(input);
    int assigned = 0;
    for (;;) {
        int c = *fmt++;
        if (c == '\0') {
            return assigned;
        }
        if (isSpace(c)) {
            r.skipSpace();
            continue;
        }
        if (c == '%') {
            Spec spec;
            fmt = parseSpec(fmt, spec);
            c = spec.letter;
            if (c == '\0') {
                return -1;
            }
            if (c == 'n') {
                if (!spec.suppress) {
                    void *dst = args.pointer();
                    args.size();
                    storeInteger(dst, r.consumed(), integerBytes(spec.mod));
                }
                continue;
            }
            if (c != '%') {
                const int result = convert(r, spec, fmt, args, assigned);
                if (result != kGoOn) {
                    return result;
                }
                continue;
            }
        }
        // A literal character, %% included: no white space is skipped before it.
        const int in = r.peek();
        if (in < 0) {
            return assigned ? assigned : -1;
        }
        if (in != c) {
            return assigned;
        }
        r.next();
    }
}

}  // namespace

extern "C" {

intmax_t V_strtoimax(const char *text, char **end, int base)
{
    bool negative, overflow;
    const uint64_t limit = uint64_t(INT64_MAX);
    const uint64_t value = readMagnitude(text, end, base, limit, limit + 1, &negative, &overflow);
    if (overflow) {
        errno = ERANGE;
        return negative ? INT64_MIN : INT64_MAX;
    }
    if (!negative) {
        return intmax_t(value);
    }
    return value == limit + 1 ? INT64_MIN : -intmax_t(value);
}

uintmax_t V_strtoumax(const char *text, char **end, int base)
{
    bool negative, overflow;
    const uint64_t value = readMagnitude(text, end, base, UINT64_MAX, UINT64_MAX, &negative, &overflow);
    if (overflow) {
        errno = ERANGE;
        return UINT64_MAX;
    }
    return negative ? uint64_t(0) - value : value;
}

int V_vfscanf(V_input *input, const char *format, va_list args)
{
    if (!input || !format || (!input->data && input->length)) {
        return -1;
    }
    if (input->position > input->length) {
        input->position = input->length;
    }
    Args copy;
    va_copy(copy.ap, args);
    const int result = scan(input, reinterpret_cast<const unsigned char *>(format), copy);
    va_end(copy.ap);
    return result;
}

int V_vsscanf(const char *text, const char *format, va_list args)
{
    if (!text || !format) {
        return -1;
    }
    V_input input = {text, std::strlen(text), 0};
    return V_vfscanf(&input, format, args);
}

int V_sscanf(const char *text, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    const int result = V_vsscanf(text, format, args);
    va_end(args);
    return result;
}

}  // extern "C"
