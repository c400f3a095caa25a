#include "text.h"

#include <climits>
#include <clocale>
#include <cwchar>
#include <locale.h>

namespace {

// The conversions run under a UTF-8 locale of this thread only, whatever the process's
// locale is.
class Utf8Scope {
public:
    Utf8Scope()
    {
        static locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(0));
        m_previous = utf8 != static_cast<locale_t>(0) ? uselocale(utf8) : static_cast<locale_t>(0);
    }
    ~Utf8Scope()
    {
        if (m_previous != static_cast<locale_t>(0)) {
            uselocale(m_previous);
        }
    }

private:
    locale_t m_previous;
};

}  // namespace

std::string toUtf8(const std::wstring &text)
{
    Utf8Scope scope;
    std::string out;
    mbstate_t state{};
    char buffer[MB_LEN_MAX];
    for (wchar_t c : text) {
        size_t n = wcrtomb(buffer, c, &state);
        if (n == static_cast<size_t>(-1)) {
            state = mbstate_t{};
            n = wcrtomb(buffer, L'\uFFFD', &state);
        }
        out.append(buffer, n);
    }
    return out;
}

std::wstring fromUtf8(const std::string &text)
{
    Utf8Scope scope;
    std::wstring out;
    mbstate_t state{};
    const char *p = text.data();
    size_t left = text.size();
    while (left > 0) {
        wchar_t c;
        size_t n = mbrtowc(&c, p, left, &state);
        if (n == static_cast<size_t>(-1) || n == static_cast<size_t>(-2)) {
            out.push_back(L'\uFFFD');
            state = mbstate_t{};
            ++p;
            --left;
            continue;
        }
        if (n == 0) {
            n = 1;
        }
        out.push_back(c);
        p += n;
        left -= n;
    }
    return out;
}

std::string messageLine(const std::wstring &text)
{
    std::string line = toUtf8(text);
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) {
        line.pop_back();
    }
    static const std::string lead = "tamlin: ";
    if (line.compare(0, lead.size(), lead) == 0) {
        line.erase(0, lead.size());
    }
    return line;
}
