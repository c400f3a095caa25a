// A host's view through dlopen: init fails for want of SSSU, and that message reaches the
// host's callback in its language and in the default one; errmsg, get_last_error and
// get_locale_message read the catalog too; without an installed bundle the key comes back.
#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <vector>

#include "host_context.h"
#include "provider_fixture.h"
#include "qrn_results.h"
#include "temp_install_root.h"
#include "text.h"

namespace {

struct Call {
    std::wstring hostText;
    std::wstring defaultText;
    int severity;
};

class Host {
public:
    explicit Host(const std::string &language) :
        context(language, [this](const std::wstring &hostText, const std::wstring &defaultText, int severity) {
            std::lock_guard<std::mutex> guard(lock);
            calls.push_back({hostText, defaultText, severity});
        })
    {
    }

    // The message calls (trace lines come with an empty host text).
    std::vector<Call> messages()
    {
        std::lock_guard<std::mutex> guard(lock);
        std::vector<Call> out;
        for (const Call &c : calls) {
            if (!c.hostText.empty()) {
                out.push_back(c);
            }
        }
        return out;
    }
    bool sawTraceLine(const std::wstring &part, int severity)
    {
        std::lock_guard<std::mutex> guard(lock);
        for (const Call &c : calls) {
            if (c.hostText.empty() && c.severity == severity && c.defaultText.find(part) != std::wstring::npos) {
                return true;
            }
        }
        return false;
    }

    HostContext context;
    std::mutex lock;
    std::vector<Call> calls;
};

std::wstring wide(const std::string &text)
{
    return fromUtf8(text);
}

bool startsWith(const std::wstring &text, const std::wstring &prefix)
{
    return text.compare(0, prefix.size(), prefix) == 0;
}

// An install root whose configuration names an SSSU that isn't there, with tracing on.
void prepare(TempInstallRoot &root, bool withMessages)
{
    if (withMessages) {
        ASSERT_TRUE(root.installMessages());
    }
    root.writeFile("ConfigFiles/tamlin.conf", "[DEBUG_TRACE_INFO]\n\"TRACELEVEL\"=dword:00000001\n"
                                              "[CLI_TOOL_INFO]\n\"FILEPATH\"=\"" +
                                                  root.path("nosssu/") + "\"\n\"FILENAME\"=\"sssu\"\n");
}

std::wstring lastErrorIn(const char *language)
{
    qrn_msg_info *info = nullptr;
    EXPECT_EQ(provider()->get_last_error(&info), 0);
    if (info == nullptr) {
        return L"(no error)";
    }
    wchar_t *text = nullptr;
    EXPECT_EQ(provider()->get_locale_message(nullptr, info, language, &text), 0);
    std::wstring copy = text != nullptr ? text : L"(null)";
    provider()->del_locale_message(&text);
    return copy;
}

std::wstring errmsg(int32_t code)
{
    const wchar_t *text = nullptr;
    EXPECT_EQ(provider()->errmsg(code, &text), 0);
    std::wstring copy = text != nullptr ? text : L"(null)";
    provider()->del_locale_message(const_cast<wchar_t **>(&text));
    return copy;
}

}  // namespace

TEST(CatalogsThroughDlopen, GermanHostGetsGermanAndDefaultTexts)
{
    ASSERT_TRUE(provider().isOpen());
    TempInstallRoot root;
    prepare(root, true);
    Host host("de");
    uint16_t version[4] = {};
    EXPECT_EQ(provider()->init(host.context.get(), version), QRN_ERR_INIT_FAILED) << "no SSSU there";

    const std::wstring dir = wide(root.path("nosssu/"));
    std::vector<Call> messages = host.messages();
    ASSERT_FALSE(messages.empty());
    const Call &first = messages.front();
    EXPECT_EQ(first.hostText, L"tamlin: SSSU ist nicht installiert: Das Verzeichnis " + dir +
                                  L" für das Programm sssu existiert nicht. Installieren Sie HP StorageWorks SSSU "
                                  L"oder setzen Sie CLI_TOOL_INFO in der Konfigurationsdatei des Providers.");
    EXPECT_TRUE(startsWith(first.defaultText,
                           L"tamlin: SSSU is not installed: the directory " + dir + L" for the program sssu"))
        << toUtf8(first.defaultText);
    EXPECT_EQ(first.severity, 2);
    EXPECT_TRUE(host.sawTraceLine(L"Entering Function CHpEvaPlugin::init", 4)) << "trace lines reach the host too";

    // The thread's last error, read back in any language.
    EXPECT_EQ(lastErrorIn("root"), first.defaultText);
    EXPECT_EQ(lastErrorIn("de"), first.hostText);
    EXPECT_EQ(lastErrorIn("native"), first.hostText);

    // Result codes in the host's language; a code with no text gives its key.
    EXPECT_TRUE(startsWith(errmsg(6006), L"tamlin: Der Vorgang ist fehlgeschlagen")) << toUtf8(errmsg(6006));
    EXPECT_EQ(errmsg(6), errmsg(6006));
    EXPECT_TRUE(startsWith(errmsg(30), L"tamlin: Der Provider konnte nicht initialisiert werden"));
    EXPECT_EQ(errmsg(6012), L"tamlin: <MSG_ERROR_TAMLIN_0012>");
    provider()->fini();
}

TEST(CatalogsThroughDlopen, HostWithoutALanguageGetsTheDefaultTwice)
{
    TempInstallRoot root;
    prepare(root, true);
    Host host("");
    uint16_t version[4] = {};
    provider()->init(host.context.get(), version);
    std::vector<Call> messages = host.messages();
    ASSERT_FALSE(messages.empty());
    EXPECT_TRUE(startsWith(messages.front().hostText, L"tamlin: SSSU is not installed"));
    EXPECT_EQ(messages.front().hostText, messages.front().defaultText);
    EXPECT_TRUE(startsWith(errmsg(6006), L"tamlin: The operation failed"));
    provider()->fini();
}

TEST(CatalogsThroughDlopen, WithoutTheBundleTheKeyComesBack)
{
    TempInstallRoot root;
    prepare(root, false);
    Host host("de");
    uint16_t version[4] = {};
    provider()->init(host.context.get(), version);
    std::vector<Call> messages = host.messages();
    ASSERT_FALSE(messages.empty());
    EXPECT_EQ(messages.front().hostText, L"<MSG_ERROR_CLI_NOT_INSTALLED>");
    EXPECT_EQ(messages.front().defaultText, L"<MSG_ERROR_CLI_NOT_INSTALLED>");
    EXPECT_EQ(errmsg(6006), L"<MSG_ERROR_TAMLIN_0006>");
    provider()->fini();
}

TEST(CatalogsThroughDlopen, AnInitAgainReportsToItsOwnHostOnly)
{
    TempInstallRoot root;
    prepare(root, true);
    uint16_t version[4] = {};
    Host first("de");
    provider()->init(first.context.get(), version);
    ASSERT_FALSE(first.messages().empty());
    const size_t heardBefore = first.calls.size();

    // The host tries again with a new context, without fini, and may free the first.
    Host second("");
    provider()->init(second.context.get(), version);
    EXPECT_EQ(first.calls.size(), heardBefore) << "the earlier context is no longer called";
    std::vector<Call> messages = second.messages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_TRUE(startsWith(messages.front().defaultText, L"tamlin: SSSU is not installed"));
    provider()->fini();
}
