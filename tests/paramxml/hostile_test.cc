// Parameter documents meant to hurt: each is refused with a message that says where, the
// lists keep what they held, and nothing crashes or swells (the suite runs under
// AddressSanitizer too).
#include <gtest/gtest.h>

#include <string>

#include "cficonfigparamdatalist.h"
#include "cficonfigparamdatalisthandler.h"
#include "cficonfigparaminfolist.h"
#include "cfiformatoptionlist.h"
#include "cfisaxparser.h"
#include "qrn_results.h"

using namespace qorin_pdk_4_4;

namespace {

// A list that holds one value, so that a refused parse can be seen to change nothing.
void keep(CFiConfigParamInfoList &list)
{
    list.addParamInfo(CFiConfigParamInfo("kept", "yes", 0, "", false, false));
}
template <class List>
void keep(List &list)
{
    list.setValue("kept", "yes");
}
bool kept(const CFiConfigParamInfoList &list)
{
    return list.size() == 1 && list.getParamInfo("kept").getValueDefault() == "yes";
}
template <class List>
bool kept(const List &list)
{
    return list.size() == 1 && list.getValue("kept") == "yes";
}
template <class List>
List holding()
{
    List list;
    keep(list);
    return list;
}

template <class List>
void expectRefused(const std::wstring &xml, const char *fragment)
{
    List list = holding<List>();
    const std::wstring before = list.getXML();
    EXPECT_EQ(list.parse(xml.c_str()), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_TRUE(kept(list));
    EXPECT_EQ(list.getXML(), xml) << "the text is what was passed";
    const SFiXmlParseError &error = list.getParseError();
    EXPECT_NE(error.message.find(fragment), std::string::npos) << error.describe();
    EXPECT_GT(error.line, 0) << error.describe();
    EXPECT_GT(error.column, 0) << error.describe();
    // Once refused, the list still reads a good document.
    EXPECT_EQ(list.parse(before.c_str()), QRN_OK);
    EXPECT_FALSE(list.getParseError().failed());
}

std::wstring entityBomb()
{
    std::wstring doctype = L"<!DOCTYPE ConfigValueList [<!ENTITY a0 \"laugh\">";
    for (int level = 1; level < 10; ++level) {
        doctype += L"<!ENTITY a" + std::to_wstring(level) + L" \"";
        for (int i = 0; i < 10; ++i) {
            doctype += L"&a" + std::to_wstring(level - 1) + L";";
        }
        doctype += L"\">";
    }
    return L"<?xml version=\"1.0\"?>\n" + doctype +
           L"]>\n<ConfigValueList><ConfigValue><key>k</key><value>&a9;</value></ConfigValue></ConfigValueList>";
}

}  // namespace

TEST(HostileDocuments, UnbalancedAndMalformedGiveTheParsersPlace)
{
    expectRefused<CFiConfigParamDataList>(L"<ConfigValueList><ConfigValue><key>k</key></ConfigValueList>", "");
    expectRefused<CFiConfigParamInfoList>(L"<ConfigParamList>\n<ConfigParam>\n</ConfigParamList>", "");
    expectRefused<CFiFormatOptionList>(L"<FormatOptionValueList></FormatOptionValueList></FormatOptionValueList>", "");
    expectRefused<CFiConfigParamDataList>(L"<ConfigValueList><a b='1' b='2'/></ConfigValueList>", "");
    expectRefused<CFiConfigParamDataList>(L"<ConfigValueList>&undeclared;</ConfigValueList>", "");
    expectRefused<CFiConfigParamDataList>(L"just text", "");
    expectRefused<CFiConfigParamDataList>(L"", "");

    CFiConfigParamDataList list = holding<CFiConfigParamDataList>();
    EXPECT_EQ(list.parse(L"<ConfigValueList>\n  <ConfigValue>\n  </Oops>\n</ConfigValueList>"),
              QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(list.getParseError().line, 3) << list.getParseError().describe();
    EXPECT_EQ(list.parse(nullptr), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_STREQ(list.getXML(), L"");
    EXPECT_TRUE(kept(list));
}

TEST(HostileDocuments, EveryTruncationIsRefused)
{
    CFiConfigParamInfoList infos;
    CFiConfigParamInfo info("int", 4, CFiConfigParamInfo::AUTO, 1, 9, "M&", true, true);
    infos.addParamInfo(info);
    CFiConfigParamInfo names("names", "d\xC3\xA4", CFiConfigParamInfo::SELECT, "M", true, false);
    names.addSelectionItem("<one>");
    infos.addParamInfo(names);
    CFiConfigParamDataList values;
    CFiConfigParamData listed("list", "");
    listed.addValue("\xE2\x82\xAC");
    listed.addValue("&");
    values.addParamData(listed);
    values.setValue("single", "'\"");
    CFiFormatOptionList options;
    options.setValue("opt", "v");

    auto everyPrefix = [](const std::wstring &whole, auto fresh) {
        // The last line feed follows the root's closing tag, so a cut just before it is whole.
        const size_t complete = whole.size() - 1;
        for (size_t n = 0; n < complete; ++n) {
            auto list = fresh();
            ASSERT_EQ(list.parse(whole.substr(0, n).c_str()), QRN_ERR_INVALID_ARGUMENT)
                << "cut after " << n << " characters";
            ASSERT_TRUE(list.getParseError().failed());
            ASSERT_TRUE(kept(list));
        }
        auto list = fresh();
        EXPECT_EQ(list.parse(whole.substr(0, complete).c_str()), QRN_OK);
        EXPECT_STREQ(list.getXML(), whole.c_str());
    };
    everyPrefix(std::wstring(infos.getXML()), [] { return holding<CFiConfigParamInfoList>(); });
    everyPrefix(std::wstring(values.getXML()), [] { return holding<CFiConfigParamDataList>(); });
    everyPrefix(std::wstring(options.getXML()), [] { return holding<CFiFormatOptionList>(); });
}

TEST(HostileDocuments, NoDocumentTypeSoNoEntitiesAndNoOutsideFiles)
{
    const char refusal[] = "document type declaration";
    expectRefused<CFiConfigParamDataList>(entityBomb(), refusal);
    expectRefused<CFiConfigParamDataList>(
        L"<!DOCTYPE ConfigValueList [<!ENTITY secret SYSTEM \"file:///etc/passwd\">]>"
        L"<ConfigValueList><ConfigValue><key>k</key><value>&secret;</value></ConfigValue></ConfigValueList>",
        refusal);
    expectRefused<CFiConfigParamInfoList>(L"<!DOCTYPE ConfigParamList SYSTEM \"http://127.0.0.1:9/x.dtd\">"
                                          L"<ConfigParamList/>",
                                          refusal);
    expectRefused<CFiFormatOptionList>(L"<!DOCTYPE FormatOptionValueList []><FormatOptionValueList/>", refusal);

    // A bare name declares nothing; the five predefined entities and character references
    // need no declaration.
    EXPECT_EQ(CFiFormatOptionList().parse(L"<!DOCTYPE FormatOptionValueList><FormatOptionValueList/>"), QRN_OK);
    CFiConfigParamDataList list;
    ASSERT_EQ(list.parse(L"<ConfigValueList><ConfigValue><key>k</key>"
                         L"<value>&amp;&lt;&gt;&quot;&apos;&#65;&#x20AC;</value></ConfigValue></ConfigValueList>"),
              QRN_OK);
    EXPECT_EQ(list.getValue("k"), "&<>\"'A\xE2\x82\xAC");
}

TEST(HostileDocuments, TenMegabytesOfNestingStopAtTheDepthLimit)
{
    const size_t size = 10u << 20;
    std::wstring open;
    open.reserve(size);
    while (open.size() < size) {
        open += L"<ConfigValue>";
    }
    expectRefused<CFiConfigParamDataList>(L"<ConfigValueList>" + open, "nested deeper");

    // Balanced, so well-formed: still refused, at the first element too deep.
    std::wstring balanced;
    balanced.reserve(size);
    const int depth = 400000;
    for (int i = 0; i < depth; ++i) {
        balanced += L"<v>";
    }
    for (int i = 0; i < depth; ++i) {
        balanced += L"</v>";
    }
    ASSERT_GE(balanced.size(), 2800000u);
    expectRefused<CFiConfigParamInfoList>(balanced, "nested deeper");
    CFiConfigParamInfoList infos;
    infos.parse(balanced.c_str());
    EXPECT_EQ(infos.getParseError().column, 1 + 3 * (CFiParamDocumentHandler::MAX_DEPTH + 1));

    // At the limit itself a document still reads.
    std::wstring deepest = L"<ConfigValueList>";
    for (int i = 1; i < CFiParamDocumentHandler::MAX_DEPTH; ++i) {
        deepest += L"<v>";
    }
    for (int i = 1; i < CFiParamDocumentHandler::MAX_DEPTH; ++i) {
        deepest += L"</v>";
    }
    deepest += L"</ConfigValueList>";
    EXPECT_EQ(CFiConfigParamDataList().parse(deepest.c_str()), QRN_OK);
}

TEST(HostileDocuments, TextThatIsNoUnicodeIsRefusedNotReplaced)
{
    // Wide text: a lone surrogate or a code point beyond Unicode would silently become U+FFFD.
    std::wstring surrogate = L"<ConfigValueList>\n<ConfigValue><key>k</key><value>ab";
    surrogate += static_cast<wchar_t>(0xD800);
    surrogate += L"</value></ConfigValue></ConfigValueList>";
    expectRefused<CFiConfigParamDataList>(surrogate, "D800");
    CFiConfigParamDataList list;
    list.parse(surrogate.c_str());
    EXPECT_EQ(list.getParseError().line, 2);
    EXPECT_EQ(list.getParseError().column, 35);

    std::wstring beyond = L"<ConfigParamList><x>";
    beyond += static_cast<wchar_t>(0x110000);
    beyond += L"</x></ConfigParamList>";
    expectRefused<CFiConfigParamInfoList>(beyond, "110000");

    // Characters XML forbids are the parser's to refuse.
    expectRefused<CFiFormatOptionList>(L"<FormatOptionValueList>\x01</FormatOptionValueList>", "");

    // Narrow text straight into the reader: bytes that are no UTF-8.
    const char *const badBytes[] = {"\xFF\xFE", "\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF8\x88\x80\x80\x80"};
    for (const char *bytes : badBytes) {
        CFiConfigParamDataListHandler handler;
        {
            CFiSaxParser parser(&handler, nullptr);
            parser.parse(std::string("<ConfigValueList><ConfigValue><key>") + bytes +
                         "</key></ConfigValue></ConfigValueList>");
        }
        EXPECT_TRUE(handler.hasLastError()) << "bytes " << testing::PrintToString(std::string(bytes));
        EXPECT_THROW(handler.getList(), xercesc::SAXParseException);
    }
}
