// libFuzzer target for configuration and registry files: the reader every such file goes
// through (CFiConfigurationText) and the store it fills.
//
// Whatever the bytes, the reader and the store agree on what is accepted; an accepted text
// written back reads again to a text that writes the same; and a value set in the store
// comes back after a write and a read.
#include <cstddef>
#include <cstdint>
#include <string>

#include "cficonfiguration.h"
#include "cficonfigurationtext.h"
#include "cfistringtool.h"

using namespace qorin_pdk_4_4;

namespace {

void check(bool condition)
{
    if (!condition) {
        __builtin_trap();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    CFiConfigurationText parsed;
    const bool accepted = parsed.parse(text);
    check(accepted || parsed.errorLine() > 0);

    CFiConfiguration config;
    check((config.importText(text) == 0) == accepted);
    if (!accepted) {
        check(config.importState() == CFiConfiguration::MALFORMED && config.importLine() == parsed.errorLine());
        return 0;
    }
    std::string written;
    check(config.renderText(written));
    CFiConfiguration again;
    check(again.importText(written) == 0);
    std::string rewritten;
    check(again.renderText(rewritten) && rewritten == written);

    // A new value in the first section (or a new one) and a new section.
    std::vector<ACE_WString> top = again.enumerateSections(again.configHeap().root_section());
    const ACE_WString first = top.empty() ? ACE_WString(L"FUZZ_FIRST") : top.front();
    ACE_Configuration_Section_Key key;
    check(again.openSection(first.c_str(), key, 1) == 0);
    check(again.setStringValue(L"FUZZ_VALUE", ACE_WString(L"a \"quoted\" ; value")) == 0);
    check(again.openSection(L"FUZZ_NEW\\SUB", key, 1) == 0);
    check(again.setIntegerValue(L"FUZZ_NUMBER", 42) == 0);
    std::string changed;
    if (!again.renderText(changed)) {
        // Only a name or value the format can't carry is refused: a line break in a value.
        return 0;
    }
    CFiConfiguration back;
    check(back.importText(changed) == 0);
    ACE_WString value;
    unsigned number = 0;
    check(back.getStringValue(first.c_str(), L"FUZZ_VALUE", value) == 0 &&
          CFiStringTool::tstr2str(value) == "a \"quoted\" ; value");
    check(back.getIntegerValue(L"FUZZ_NEW\\SUB", L"FUZZ_NUMBER", number) == 0 && number == 42);
    return 0;
}
