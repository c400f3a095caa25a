#include "cfiobjctlargs.h"

#include <cstdlib>
#include <cwchar>

namespace qorin_pdk_4_4 {

namespace {

// One token of the argument text; an absent token reads as null.
const wchar_t *next(wchar_t *start, const wchar_t *delimiters, wchar_t **state)
{
    return wcstok(start, delimiters, state);
}

bool is(const wchar_t *token, const wchar_t *expected)
{
    return token != nullptr && wcscmp(token, expected) == 0;
}

}  // namespace

CFiObjctlArgs::CFiObjctlArgs(const wchar_t *xml)
{
    if (xml == nullptr) {
        return;
    }
    wchar_t *copy = wcsdup(xml);
    if (copy == nullptr) {
        return;
    }
    // A missing or wrong token ends the parse; what was read so far stays.
    wchar_t *state = nullptr;
    if (is(next(copy, L" ", &state), L"<OBJCTL_ARG_LIST>")) {
        for (;;) {
            if (!is(next(nullptr, L" ", &state), L"<OBJCTL_INPUT")) {
                break;
            }
            SFiObjctlArg arg;
            if (!is(next(nullptr, L"=", &state), L"arg")) {
                break;
            }
            const wchar_t *name = next(nullptr, L" ", &state);
            if (name == nullptr || !is(next(nullptr, L"=", &state), L"value")) {
                break;
            }
            const wchar_t *value = next(nullptr, L" ", &state);
            if (value == nullptr || !is(next(nullptr, L"=", &state), L"type")) {
                break;
            }
            const wchar_t *type = next(nullptr, L" ", &state);
            if (type == nullptr) {
                break;
            }
            arg.name = name;
            arg.value = value;
            arg.type = type;
            m_inputs.push_back(arg);
            if (!is(next(nullptr, L" ", &state), L"/>")) {
                break;
            }
        }
    }
    free(copy);
}

std::wstring CFiObjctlArgs::toXml() const
{
    std::wstring xml = L"<OBJCTL_ARG_LIST>";
    for (const SFiObjctlArg &arg : m_outputs) {
        xml += L" <OBJCTL_OUTPUT arg=" + arg.name + L" value=" + arg.value + L" type=" + arg.type + L" />";
    }
    xml += L" </OBJCTL_ARG_LIST> ";
    return xml;
}

}  // namespace qorin_pdk_4_4
