// libFuzzer target for the framework's credential blob.
//
// The parser takes any text: for the closed set every record is a complete login and no login
// comes twice; with a trace log at work, every warning is formatted too.
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "cficredentialsparser.h"
#include "cfierrormanager.h"
#include "cfistringtool.h"
#include "cfitracelog.h"

using namespace qorin_pdk_4_4;

namespace {

void check(bool condition)
{
    if (!condition) {
        __builtin_trap();
    }
}

// Trace lines go to the error manager's handler at every level, formatted; none reaches a file.
class Discard : public CFiErrorHandlerBase {
public:
    int handleText(char *, qrn_eseverity) override { return 0; }
    int handleMessage(CFiMessagePtr) override { return 0; }
};

CFiTraceLogPtr traceLog()
{
    static CFiTraceLogPtr log = [] {
        char root[] = "/tmp/fuzz-credentials-XXXXXX";
        if (mkdtemp(root) == nullptr) {
            abort();
        }
        const std::string dir = std::string(root) + "/";
        setenv("QORIN_INSTALL_ROOT", dir.c_str(), 1);
        setenv("QORIN_REGISTRY", (dir + "registry.conf").c_str(), 1);
        mkdir((dir + "ConfigFiles").c_str(), 0755);
        std::ofstream(dir + "ConfigFiles/tamlin.conf") << "[DEBUG_TRACE_INFO]\n\"TRACELEVEL\"=dword:00000001\n";
        CFiTraceLogPtr made(new CFiTraceLog);
        made->initialize(L"tamlin", ACE_WString(), ACE_WString(), 1, false);
        static CFiErrorManagerPtr errors(new CFiErrorManager);
        static Discard discard;
        errors->registerHandler(&discard);
        made->registerErrorManager(errors);
        return made;
    }();
    return log;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string blob(reinterpret_cast<const char *>(data), size);
    for (bool openArray : {false, true}) {
        CFiCredentialsParser parser;
        parser.setTraceLog(traceLog());
        std::vector<SFiCredential> list;
        check(parser.parse(blob, "HP", "HSV", list, openArray) == 0);
        std::set<std::wstring> seen;
        for (const SFiCredential &record : list) {
            check(openArray || record.isValid());
            check(seen.insert(CFiStringTool::tostrlower(record.hostname) + L'\n' + record.username + L'\n' +
                              record.password + L'\n' + std::to_wstring(record.port) + L'\n' + record.data)
                      .second);
        }
    }
    return 0;
}
