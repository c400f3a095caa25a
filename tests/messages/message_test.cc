// Catalog messages: the serialised text that crosses the entry table, reading it back, and
// filling arguments into a catalog pattern.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "cfiicumessage.h"
#include "cfistringtool.h"
#include "qrn_results.h"

using namespace qorin_pdk_4_4;

namespace {

std::vector<icu::Formattable> argumentsOf(const CFiIcuMessage &message)
{
    int32_t count = 0;
    UErrorCode status = U_ZERO_ERROR;
    const icu::Formattable *args = message.getArguments().getArray(count, status);
    return args != nullptr ? std::vector<icu::Formattable>(args, args + count) : std::vector<icu::Formattable>();
}

std::string textOf(const qrn_msg_info *info)
{
    return info != nullptr && info->text != nullptr ? std::string(info->text, info->length) : std::string();
}

CFiIcuMessage threeKinds()
{
    icu::Formattable args[] = {icu::Formattable(icu::UnicodeString::fromUTF8("disk \xC3\xBC")),
                               icu::Formattable(static_cast<int32_t>(-42)), icu::Formattable(2.5)};
    return CFiIcuMessage("MSG_ERROR_VERSION_CHECK", args, 3, QRN_SEVERITY_ERROR, "providers/hpeva/hpeva_plugin", 12);
}

}  // namespace

TEST(Serialize, OneHeaderOneLinePerArgumentAndAnEnd)
{
    CFiIcuMessage message = threeKinds();
    const qrn_msg_info *info = message.serialize();
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(textOf(info), "<SERIALIZED_MESSAGE MSGID=MSG_ERROR_VERSION_CHECK SEVERITY=3>\n"
                            "\t<ARGVALUE INDEX=0 TYPE=3>disk \xC3\xBC</ARGVALUE>\n"
                            "\t<ARGVALUE INDEX=1 TYPE=2>-42</ARGVALUE>\n"
                            "\t<ARGVALUE INDEX=2 TYPE=1>2.5</ARGVALUE>\n"
                            "</SERIALIZED_MESSAGE>\n");
    EXPECT_EQ(info->text[info->length], '\0');
    EXPECT_EQ(message.serialize(), info) << "the record is the message's own";

    CFiIcuMessage bare("MSG_ERROR_INITIALIZATION_FAILED", nullptr, 0, 2, "f", 1);
    EXPECT_EQ(textOf(bare.serialize()),
              "<SERIALIZED_MESSAGE MSGID=MSG_ERROR_INITIALIZATION_FAILED SEVERITY=2>\n</SERIALIZED_MESSAGE>\n");
    CFiIcuMessage back(bare.serialize());
    EXPECT_EQ(back.getMessageKey(), "MSG_ERROR_INITIALIZATION_FAILED") << "without arguments the key still crosses";
    EXPECT_EQ(back.getSeverity(), 2);
}

// What the text form can't hold: doubles keep six digits, dates come back as doubles, a '<'
// cuts its value, and types it doesn't know are dropped, later arguments moving up.
TEST(Deserialize, ArgumentsTheTextCantHoldAsTheyWere)
{
    icu::Formattable inner[] = {icu::Formattable(static_cast<int32_t>(1))};
    icu::Formattable args[] = {icu::Formattable(3.14159265),
                               icu::Formattable(86400000.0, icu::Formattable::kIsDate),
                               icu::Formattable("a<b"),
                               icu::Formattable(inner, 1),
                               icu::Formattable(static_cast<int64_t>(1) << 40),
                               icu::Formattable("kept")};
    CFiIcuMessage message("K", args, 6, 3, "f", 1);
    const std::string text = textOf(message.serialize());
    EXPECT_NE(text.find("<ARGVALUE INDEX=3 TYPE=4></ARGVALUE>"), std::string::npos) << text;
    EXPECT_NE(text.find("<ARGVALUE INDEX=4 TYPE=5></ARGVALUE>"), std::string::npos) << text;
    auto back = argumentsOf(CFiIcuMessage(message.serialize()));
    ASSERT_EQ(back.size(), 4u);
    EXPECT_DOUBLE_EQ(back[0].getDouble(), 3.14159);
    EXPECT_EQ(back[1].getType(), icu::Formattable::kDouble);
    EXPECT_DOUBLE_EQ(back[1].getDouble(), 8.64e7);
    EXPECT_EQ(back[2].getString(), icu::UnicodeString("a"));
    EXPECT_EQ(back[3].getString(), icu::UnicodeString("kept"));
}

TEST(Deserialize, TextAroundTheMessageAndBrokenTexts)
{
    CFiIcuMessage message(nullptr);
    message.deserialize("noise before <SERIALIZED_MESSAGE MSGID=K1 SEVERITY=4>\n"
                        "\t<ARGVALUE INDEX=9 TYPE=2>5</ARGVALUE>\n");
    EXPECT_EQ(message.getMessageKey(), "K1");
    EXPECT_EQ(message.getSeverity(), QRN_SEVERITY_DETAIL);
    ASSERT_EQ(argumentsOf(message).size(), 1u) << "INDEX is not used, order alone counts";

    message.deserialize("no header here <ARGVALUE INDEX=0 TYPE=2>5</ARGVALUE>");
    EXPECT_EQ(message.getMessageKey(), "");
    EXPECT_TRUE(argumentsOf(message).empty()) << "reading replaces what was there";

    // A text that ends inside a closing tag, or inside a value.
    message.deserialize("<SERIALIZED_MESSAGE MSGID=K SEVERITY=1> <ARGVALUE INDEX=0 TYPE=3>v</ARG");
    EXPECT_EQ(argumentsOf(message).size(), 1u);
    message.deserialize("<SERIALIZED_MESSAGE MSGID=K SEVERITY=1> <ARGVALUE INDEX=0 TYPE=3>open");
    ASSERT_EQ(argumentsOf(message).size(), 1u);
    EXPECT_EQ(argumentsOf(message)[0].getString(), icu::UnicodeString("open"));
    message.deserialize("<SERIALIZED_MESSAGE MSGID=K SEVERITY=1> <ARGVALUE INDEX=0");
    EXPECT_TRUE(argumentsOf(message).empty());
    message.deserialize(nullptr);
    EXPECT_EQ(message.getMessageKey(), "");
}

TEST(Deserialize, TheInfoLengthBoundsTheRead)
{
    std::string text = "<SERIALIZED_MESSAGE MSGID=K SEVERITY=3>\n\t<ARGVALUE INDEX=0 TYPE=2>12345</ARGVALUE>\n";
    // The host's buffer is not terminated where the length ends.
    qrn_msg_info info{text.data(), static_cast<uint32_t>(text.find("345"))};
    CFiIcuMessage message(&info);
    ASSERT_EQ(argumentsOf(message).size(), 1u);
    EXPECT_EQ(argumentsOf(message)[0].getLong(), 12);
}

TEST(Deserialize, KeysAreCutAtTheirBuffer)
{
    std::string longKey(3000, 'K');
    CFiIcuMessage message(nullptr);
    message.deserialize(("<SERIALIZED_MESSAGE MSGID=" + longKey + " SEVERITY=2>").c_str());
    EXPECT_EQ(message.getMessageKey(), std::string(1023, 'K'));
    EXPECT_EQ(message.getSeverity(), 2) << "the scan goes on behind the cut field";
}

TEST(FormatMessage, FillsThePatternOrGivesItBackUnchanged)
{
    CFiIcuMessage message = threeKinds();
    EXPECT_EQ(message.formatMessage(L"{0}: {1} after {2} tries \U0001F600"),
              L"disk \u00FC: -42 after 2.5 tries \U0001F600");
    EXPECT_EQ(message.formatMessage(L"no placeholders"), L"no placeholders");
    EXPECT_EQ(message.formatMessage(L"broken {0"), L"broken {0");
    CFiIcuMessage none("K", nullptr, 0, 3, "f", 1);
    EXPECT_EQ(none.formatMessage(L"plain"), L"plain");
}

TEST(RandomInput, DeserializeSurvivesArbitraryBytes)
{
    const std::string pieces[] = {"<SERIALIZED_MESSAGE MSGID=",
                                  " SEVERITY=",
                                  "<ARGVALUE INDEX=",
                                  " TYPE=",
                                  ">",
                                  "<",
                                  "</ARGVALUE>",
                                  "</SERIALIZED_MESSAGE>",
                                  "3",
                                  "2",
                                  "-1",
                                  "999999999999",
                                  "1e308",
                                  "\n",
                                  "\t",
                                  "\xC3",
                                  "\xFF"};
    std::mt19937 rng(4711);
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        int n = static_cast<int>(rng() % 32);
        for (int i = 0; i < n; ++i) {
            if (rng() % 4 == 0) {
                text.push_back(static_cast<char>(1 + rng() % 255));
            } else {
                text += pieces[rng() % (sizeof pieces / sizeof pieces[0])];
            }
        }
        qrn_msg_info info{text.data(), static_cast<uint32_t>(text.size())};
        CFiIcuMessage message(&info);
        // Whatever was read must survive its own round trip. An empty key can't: the scan
        // of the header skips the blank and takes the next word.
        CFiIcuMessage again(message.serialize());
        if (!message.getMessageKey().empty()) {
            ASSERT_EQ(again.getMessageKey(), message.getMessageKey()) << text;
            ASSERT_EQ(again.getSeverity(), message.getSeverity()) << text;
        }
        ASSERT_EQ(argumentsOf(again).size(), argumentsOf(message).size()) << text;
        message.formatMessage(L"{0} {1} {2}");
    }
}

TEST(RandomInput, ValidMessagesRoundTrip)
{
    std::mt19937 rng(99);
    for (int round = 0; round < 2000; ++round) {
        std::vector<icu::Formattable> args;
        int n = static_cast<int>(rng() % 6);
        for (int i = 0; i < n; ++i) {
            switch (rng() % 3) {
            case 0: {
                std::wstring s;
                for (int k = static_cast<int>(rng() % 12); k > 0; --k) {
                    wchar_t c = static_cast<wchar_t>(0x20 + rng() % 0x2FF);
                    s.push_back(c == L'<' ? L'x' : c);
                }
                args.emplace_back(CFiStringTool::tstr2ustr(s));
                break;
            }
            case 1:
                args.emplace_back(static_cast<int32_t>(rng()));
                break;
            default:
                args.emplace_back(static_cast<double>(static_cast<int32_t>(rng() % 100000)));
                break;
            }
        }
        CFiIcuMessage message("MSG_KEY", args.data(), n, static_cast<qrn_eseverity>(1 + rng() % 4), "f", 1);
        auto back = argumentsOf(CFiIcuMessage(message.serialize()));
        ASSERT_EQ(back.size(), args.size());
        for (size_t i = 0; i < args.size(); ++i) {
            ASSERT_TRUE(back[i] == args[i]) << "argument " << i << " of " << textOf(message.serialize());
        }
    }
}
