// libFuzzer target for the readers of the three parameter documents.
//
// The input goes in twice: as bytes straight into the SAX frame, where it may be any byte
// sequence (UTF-8 or not), and widened byte by byte into each list's parse, as a host's
// wide text. A byte 0x80 and above becomes a character beyond the Basic Multilingual Plane
// so that multibyte values are covered too. What a list accepts must write and read back
// to the same document.
#include <cstddef>
#include <cstdint>
#include <string>

#include "cficonfigparamdatalist.h"
#include "cficonfigparamdatalisthandler.h"
#include "cficonfigparaminfolist.h"
#include "cfiformatoptionlist.h"
#include "cfigetconfigparamlisthandler.h"
#include "cfisaxparser.h"

#include <xercesc/util/PlatformUtils.hpp>

using namespace qorin_pdk_4_4;

namespace {

template <class Handler>
void readBytes(const std::string &bytes)
{
    Handler handler;
    {
        CFiSaxParser parser(&handler, nullptr);
        parser.parse(bytes);
    }
    try {
        handler.getList();
    } catch (const xercesc::SAXParseException &) {
    }
}

template <class List>
void readWide(const std::wstring &text)
{
    List list;
    if (list.parse(text.c_str()) != 0) {
        if (!list.getParseError().failed() || list.size() != 0) {
            __builtin_trap();
        }
        return;
    }
    const std::wstring written = list.getXML();
    List again;
    if (again.parse(written.c_str()) != 0 || written != again.getXML() || again.size() != list.size()) {
        __builtin_trap();
    }
}

}  // namespace

// Xerces stays initialised for the whole run, so that each parser's own start and end are
// only counted; otherwise they would take most of the time.
extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    xercesc::XMLPlatformUtils::Initialize();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    readBytes<CFiConfigParamDataListHandler>(bytes);
    readBytes<CFiGetConfigParamListHandler>(bytes);

    std::wstring text;
    text.reserve(size);
    for (size_t i = 0; i < size; ++i) {
        // A NUL would end the wide text early; the parsers never see one from a host.
        if (data[i] != 0) {
            text.push_back(data[i] < 0x80 ? static_cast<wchar_t>(data[i]) : static_cast<wchar_t>(0x10000 + data[i]));
        }
    }
    readWide<CFiConfigParamInfoList>(text);
    readWide<CFiConfigParamDataList>(text);
    readWide<CFiFormatOptionList>(text);
    return 0;
}
