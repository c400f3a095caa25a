// From key to text: the ICU catalog of one language, the manager's choice of catalog, the
// texts it keeps for the host, and the error handler that calls the host back.
#include <gtest/gtest.h>

#include <unicode/fmtable.h>
#include <unicode/locid.h>

#include <map>
#include <string>
#include <vector>

#include "cfiicumessage.h"
#include "cfiicumessagecatalog.h"
#include "cfiicumessagecatalogfactory.h"
#include "cfimessagecatalogmanager.h"
#include "cfistringtool.h"
#include "qrn_results.h"
#include "temp_install_root.h"

using namespace qorin_pdk_4_4;

namespace {

const wchar_t kNoCredentialsRoot[] = L"tamlin: No Command View credentials are configured.";
const wchar_t kNoCredentialsDe[] = L"tamlin: Es sind keine Command-View-Anmeldedaten eingerichtet.";

bool startsWith(const std::wstring &text, const std::wstring &prefix)
{
    return text.compare(0, prefix.size(), prefix) == 0;
}

CFiMessagePtr noCredentials(const std::string &path)
{
    icu::Formattable arg(CFiStringTool::str2ustr(path));
    return CFiMessagePtr(
        new CFiIcuMessage("MSG_ERROR_NO_CREDENTIALS", &arg, 1, QRN_SEVERITY_WARNING, "tests/catalogs", 1));
}

// A bundle under Messages/ and a manager with the provider's factory.
class Catalogs : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(root.installMessages());
        // ICU answers an unknown language with the process's default locale first.
        icu::Locale::setDefault(icu::Locale("en"), status);
        manager = CFiMessageCatalogManagerPtr(new CFiMessageCatalogManager);
        manager->registerFactory(&factory);
    }

    TempInstallRoot root;
    UErrorCode status = U_ZERO_ERROR;
    CFiIcuMessageCatalogFactory factory{L"tamlin", "root"};
    CFiMessageCatalogManagerPtr manager;
};

}  // namespace

TEST(IcuCatalog, InitFollowsTheBundleStatus)
{
    {
        // ICU remembers a bundle it didn't find: this root is never given one.
        TempInstallRoot empty;
        CFiIcuMessageCatalog missing("root", L"tamlin");
        EXPECT_EQ(missing.init(), QRN_ERR_INVALID_ARGUMENT) << "no bundle installed";
        EXPECT_EQ(missing.getMessage("MSG_ERROR_NO_CREDENTIALS", nullptr), L"tamlin: <MSG_ERROR_NO_CREDENTIALS>");
        EXPECT_EQ(missing.getMessage("MSG_ERROR_NO_CREDENTIALS", L"fallback"), L"fallback");
    }
    {
        TempInstallRoot nowhere;
        nowhere.setEnv("QORIN_INSTALL_ROOT", std::nullopt);
        EXPECT_EQ(CFiIcuMessageCatalog("root", L"tamlin").init(), QRN_ERR_INVALID_ARGUMENT) << "no install directory";
    }

    TempInstallRoot root;
    ASSERT_TRUE(root.installMessages());
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(icu::Locale("en"), status);
    CFiIcuMessageCatalog de("de", L"tamlin");
    EXPECT_EQ(de.init(), 0);
    EXPECT_EQ(CFiStringTool::wstr2str(de.getBundlePath()), root.path("Messages/libtamlin"));
    EXPECT_TRUE(startsWith(de.getMessage("MSG_ERROR_NO_CREDENTIALS", nullptr), kNoCredentialsDe));
    EXPECT_EQ(de.getMessage("MSG_NOT_THERE", L"ignored default"), L"ignored default");
    EXPECT_EQ(de.getMessage("MSG_NOT_THERE", nullptr), L"tamlin: <MSG_NOT_THERE>");

    CFiIcuMessageCatalog unknown("fr", L"tamlin");
    EXPECT_EQ(unknown.init(), 0) << "ICU's default serves a language it doesn't have";
    EXPECT_TRUE(startsWith(unknown.getMessage("MSG_ERROR_NO_CREDENTIALS", nullptr), kNoCredentialsRoot));
    CFiIcuMessageCatalog regional("de_AT", L"tamlin");
    EXPECT_EQ(regional.init(), QRN_ERR_INVALID_ARGUMENT) << "served only through its parent";
}

TEST_F(Catalogs, LanguagesAndTheirFallbacks)
{
    EXPECT_TRUE(startsWith(manager->getMessage("MSG_ERROR_NO_CREDENTIALS", nullptr, ""), kNoCredentialsRoot));
    EXPECT_TRUE(startsWith(manager->getMessage("MSG_ERROR_NO_CREDENTIALS", nullptr, "root"), kNoCredentialsRoot));
    EXPECT_TRUE(startsWith(manager->getMessage("MSG_ERROR_NO_CREDENTIALS", nullptr, "de"), kNoCredentialsDe));
    // A language without its own catalog is answered by the default language.
    EXPECT_TRUE(startsWith(manager->getMessage("MSG_ERROR_NO_CREDENTIALS", nullptr, "de_AT"), kNoCredentialsRoot));
    // A missing key stays in its language's catalog.
    EXPECT_EQ(manager->getMessage("MSG_NOT_THERE", nullptr, "de"), L"tamlin: <MSG_NOT_THERE>");
    EXPECT_EQ(manager->getMessage("MSG_NOT_THERE", L"given", "de"), L"given");
}

namespace {

// Catalogs whose opening fails until the test allows it, counting the attempts.
class Flaky : public CFiMessageCatalog {
public:
    Flaky(const std::string &language, bool &open) : CFiMessageCatalog(language, L"flaky"), m_open(open) {}
    int init() override { return m_open ? 0 : 3; }
    std::wstring getMessage(const std::string &key, const wchar_t *) const override
    {
        return CFiStringTool::str2wstr(m_language + ":" + key);
    }

private:
    bool &m_open;
};

class FlakyFactory : public CFiMessageCatalogFactory {
public:
    FlakyFactory() : CFiMessageCatalogFactory(L"flaky", "root") {}
    CFiMessageCatalogPtr createCatalog(const char *language) override
    {
        ++attempts[language != nullptr ? language : m_defaultLanguage];
        return CFiMessageCatalogPtr(new Flaky(language != nullptr ? language : m_defaultLanguage, open));
    }
    CFiMessagePtr createMessage(const qrn_msg_info *info) override { return CFiMessagePtr(new CFiIcuMessage(info)); }

    bool open = false;
    std::map<std::string, int> attempts;
};

}  // namespace

TEST(CatalogManager, AFailedLanguageIsTriedAgainAndAnOpenOneIsKept)
{
    CFiMessageCatalogManager manager;
    FlakyFactory factory;
    manager.registerFactory(&factory);
    EXPECT_EQ(factory.attempts["root"], 1) << "registering activates the default language";
    EXPECT_EQ(manager.getMessage("K", nullptr, "de"), L"<K>");
    EXPECT_EQ(factory.attempts["de"], 1);

    factory.open = true;
    EXPECT_EQ(manager.getMessage("K", nullptr, "de"), L"de:K");
    EXPECT_EQ(manager.getMessage("K", nullptr, "de"), L"de:K");
    EXPECT_EQ(factory.attempts["de"], 2) << "opened once, then kept";
    EXPECT_EQ(manager.getMessage("K", nullptr, ""), L"root:K");

    // A language that fails while the default is open is answered by the default.
    factory.open = false;
    EXPECT_EQ(manager.getMessage("K", nullptr, "fr"), L"root:K");
}

TEST_F(Catalogs, MessagesAreFormattedWithTheirArguments)
{
    CFiMessagePtr message = noCredentials("/opt/qorin/ConfigFiles/tamlin.conf");
    EXPECT_EQ(manager->getLocalizedMessage(message, "de"),
              L"tamlin: Es sind keine Command-View-Anmeldedaten eingerichtet. Hinterlegen Sie sie im Framework oder "
              L"im Abschnitt MANAGEMENT_APPLIANCE_INFO von /opt/qorin/ConfigFiles/tamlin.conf.");
    std::wstring english = manager->getLocalizedMessage(message, "");
    EXPECT_NE(english.find(L"MANAGEMENT_APPLIANCE_INFO of /opt/qorin/ConfigFiles/tamlin.conf."), std::wstring::npos)
        << CFiStringTool::wstr2str(english);

    // Numbers keep their digits, without grouping.
    icu::Formattable args[] = {icu::Formattable(static_cast<int32_t>(12345)),
                               icu::Formattable(CFiStringTool::str2ustr("providers/hpeva/hpeva_plugin")),
                               icu::Formattable(static_cast<int32_t>(1234))};
    CFiMessagePtr internal(new CFiIcuMessage("MSG_ERROR_UNHANDLED_INT_EXCEPTION", args, 3, QRN_SEVERITY_ERROR, "x", 1));
    std::wstring text = manager->getLocalizedMessage(internal, "root");
    EXPECT_NE(text.find(L"12345"), std::wstring::npos) << CFiStringTool::wstr2str(text);
    EXPECT_NE(text.find(L"providers/hpeva/hpeva_plugin, line 1234."), std::wstring::npos)
        << CFiStringTool::wstr2str(text);
}

TEST_F(Catalogs, TextsForTheHostLiveUntilDeleted)
{
    wchar_t *native = nullptr;
    manager->getLocalizedMessage("MSG_ERROR_TAMLIN_0006", "native", &native);
    ASSERT_NE(native, nullptr);
    EXPECT_TRUE(startsWith(native, L"tamlin: The operation failed")) << "an empty native language is the default";

    manager->setNativeLanguage("de");
    wchar_t *german = nullptr;
    manager->getLocalizedMessage("MSG_ERROR_TAMLIN_0003", "native", &german);
    EXPECT_TRUE(startsWith(german, L"tamlin: Der Vorgang wurde mit ungültigen Argumenten"));
    wchar_t *again = nullptr;
    manager->getLocalizedMessage("MSG_ERROR_TAMLIN_0003", "de", &again);
    EXPECT_EQ(again, german) << "the same text under the same key keeps its place";

    // An unknown text changes nothing: both texts are still there.
    wchar_t other[] = L"not one of ours";
    wchar_t *otherPtr = other;
    manager->deleteLocalizedMessage(&otherPtr);
    EXPECT_EQ(otherPtr, other);
    manager->deleteLocalizedMessage(nullptr);
    EXPECT_TRUE(startsWith(native, L"tamlin: The operation failed"));
    EXPECT_TRUE(startsWith(german, L"tamlin: Der Vorgang"));
    manager->deleteLocalizedMessage(&native);
    manager->deleteLocalizedMessage(&german);
}

TEST_F(Catalogs, SerialisedMessagesAreReadBackInAnyLanguage)
{
    CFiMessagePtr message = noCredentials("/etc/tamlin.conf");
    qrn_msg_info info = *message->serialize();
    wchar_t *text = nullptr;
    manager->getLocalizedMessage(&info, "de", &text);
    ASSERT_NE(text, nullptr);
    EXPECT_TRUE(startsWith(text, kNoCredentialsDe));
    EXPECT_NE(std::wstring(text).find(L"von /etc/tamlin.conf."), std::wstring::npos);
    // Stored under the serialised text: the same message in another language replaces it.
    manager->getLocalizedMessage(&info, nullptr, &text);
    EXPECT_TRUE(startsWith(text, kNoCredentialsRoot));
    manager->deleteLocalizedMessage(&text);

    // Nothing to read gives an empty text, not a made-up key.
    wchar_t *empty = nullptr;
    manager->getLocalizedMessage(static_cast<const qrn_msg_info *>(nullptr), "de", &empty);
    ASSERT_NE(empty, nullptr);
    EXPECT_STREQ(empty, L"");
    char garbage[] = "no header here";
    qrn_msg_info noHeader = {garbage, static_cast<uint32_t>(sizeof garbage - 1)};
    manager->getLocalizedMessage(&noHeader, "de", &empty);
    EXPECT_STREQ(empty, L"");
}
