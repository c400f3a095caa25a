// libFuzzer target for the object control argument text.
//
// Each input byte becomes one wide character, so the grammar's blanks, '=' and tags are
// easy to reach; a byte 0x80 and above maps to a character beyond Latin-1 so that wide
// values are covered too.
#include <cstddef>
#include <cstdint>
#include <string>

#include "cfiobjctlargs.h"

using qorin_pdk_4_4::CFiObjctlArgs;
using qorin_pdk_4_4::SFiObjctlArg;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::wstring text;
    text.reserve(size);
    for (size_t i = 0; i < size; ++i) {
        text.push_back(data[i] < 0x80 ? static_cast<wchar_t>(data[i]) : static_cast<wchar_t>(0x10000 + data[i]));
    }
    CFiObjctlArgs args(text.c_str());
    for (const SFiObjctlArg &in : args.inputs()) {
        args.addOutput(in);
    }
    std::wstring xml = args.toXml();
    // What is written back must read again; its outputs are no inputs, so nothing is kept.
    CFiObjctlArgs back(xml.c_str());
    if (!back.inputs().empty()) {
        __builtin_trap();
    }
    return 0;
}
