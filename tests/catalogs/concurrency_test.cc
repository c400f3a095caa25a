// Eight host threads at once for two seconds: each pushes messages, reads its own last error
// back, asks for texts in several languages and traces. Catalogs are opened, texts stored
// and slots created concurrently; every thread must see only its own messages, and every line
// reach the host. (Whole lines in the file under threads and processes: the trace log's test.)
#include <gtest/gtest.h>

#include <unicode/fmtable.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "cfierrorhandler.h"
#include "cfierrormanager.h"
#include "cfiicumessage.h"
#include "cfiicumessagecatalogfactory.h"
#include "cfimessagecatalogmanager.h"
#include "cfistringtool.h"
#include "cfitracelog.h"
#include "qrn_results.h"
#include "temp_install_root.h"

using namespace qorin_pdk_4_4;

namespace {

std::atomic<int> g_messages{0};
std::atomic<int> g_lines{0};
std::atomic<int> g_badTexts{0};

int32_t countCall(qrn_host_context *, const wchar_t *hostText, const wchar_t *defaultText, int32_t)
{
    if (hostText != nullptr && *hostText != L'\0') {
        ++g_messages;
        if (std::wstring(hostText).rfind(L"tamlin: ", 0) != 0 || std::wstring(defaultText).rfind(L"tamlin: ", 0) != 0) {
            ++g_badTexts;
        }
    } else {
        ++g_lines;
    }
    return 0;
}

}  // namespace

TEST(Concurrency, EightThreadsTracingAndPushing)
{
    TempInstallRoot root;
    ASSERT_TRUE(root.installMessages());
    root.writeFile("ConfigFiles/tamlin.conf",
                   "[DEBUG_TRACE_INFO]\n\"TRACELEVEL\"=dword:00000003\n\"TRACERUNTIMEUPDATE\"=dword:00000001\n");

    CFiIcuMessageCatalogFactory factory(L"tamlin", "root");
    CFiMessageCatalogManagerPtr catalogs(new CFiMessageCatalogManager);
    catalogs->setNativeLanguage("de");
    CFiErrorManagerPtr errors(new CFiErrorManager);
    CFiTraceLogPtr log(new CFiTraceLog);
    log->initialize(L"tamlin", ACE_WString(), ACE_WString(), 1, false);
    ASSERT_TRUE(log->isInitialized());
    log->registerErrorManager(errors);
    qrn_host_language german = {const_cast<char *>("de")};
    qrn_host_context host = {};
    host.callback = countCall;
    host.language = &german;
    CFiErrorHandler handler(&host, catalogs);
    errors->registerHandler(&handler);
    // Registered late, so that the threads race for the first catalogs too.
    catalogs->registerFactory(&factory);

    const char *languages[] = {"de", "root", "", "native", "fr", "de_AT"};
    std::atomic<int> mismatches{0};
    std::vector<int> rounds(8, 0);
    auto end = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; std::chrono::steady_clock::now() < end; ++i) {
                std::string disk = "disk-" + std::to_string(t) + "-" + std::to_string(i);
                icu::Formattable arg(CFiStringTool::str2ustr(disk));
                errors->pushError(CFiMessagePtr(new CFiIcuMessage("MSG_ERROR_VSNAP_CREATION_FAILED", &arg, 1,
                                                                  QRN_SEVERITY_ERROR, "tests/catalogs", __LINE__)));

                const qrn_msg_info *info = errors->getLastError();
                std::string serialised = info != nullptr ? std::string(info->text, info->length) : "";
                if (serialised.find(disk + "</ARGVALUE>") == std::string::npos) {
                    ++mismatches;
                }
                qrn_msg_info copy = {const_cast<char *>(serialised.c_str()), static_cast<uint32_t>(serialised.size())};
                wchar_t *text = nullptr;
                catalogs->getLocalizedMessage(&copy, languages[(t + i) % 6], &text);
                if (text == nullptr || std::wstring(text).find(CFiStringTool::str2wstr(disk)) == std::wstring::npos) {
                    ++mismatches;
                }
                catalogs->deleteLocalizedMessage(&text);

                std::string key = "MSG_UNKNOWN_" + std::to_string(t) + "_" + std::to_string(i % 50);
                catalogs->getLocalizedMessage(key.c_str(), languages[i % 6], &text);
                if (text == nullptr || std::wstring(text).find(CFiStringTool::str2wstr(key)) == std::wstring::npos) {
                    ++mismatches;
                }

                log->trace(3, "T%d %d %s", t, i, disk.c_str());
                log->trace(6, "below the level");
                if (i % 7 == 0) {
                    errors->deleteLastError(nullptr);
                    if (errors->getLastError() != nullptr) {
                        ++mismatches;
                    }
                }
                rounds[t] = i + 1;
            }
        });
    }
    for (std::thread &t : threads) {
        t.join();
    }

    EXPECT_EQ(mismatches.load(), 0);
    EXPECT_EQ(g_badTexts.load(), 0);
    int total = 0;
    for (int r : rounds) {
        EXPECT_GT(r, 0);
        total += r;
    }
    EXPECT_EQ(g_messages.load(), total);
    EXPECT_EQ(g_lines.load(), 2 * total) << "every trace line reaches the handler, whatever its level";
}
