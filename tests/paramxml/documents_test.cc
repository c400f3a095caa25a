// The three parameter documents as hosts exchange them: the exact layout the writer gives,
// what the reader makes of what hosts send, and round trips of every kind.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "cficonfigparamdatalist.h"
#include "cficonfigparaminfolist.h"
#include "cfiformatoptionlist.h"
#include "qrn_results.h"

using namespace qorin_pdk_4_4;

namespace {

const std::wstring kDeclaration = L"<?xml version=\"1.0\" standalone=\"yes\" ?>\n";
// Every character the writer escapes, a multibyte one, the text of an escape, and line ends
// that a parser would normalise if they were written as they are.
const char kAwkward[] = "a&b<c>d\"e'f \xC3\xA4\xE2\x82\xAC &lt; \r\n\t";

CFiConfigParamInfoList sampleInfos()
{
    CFiConfigParamInfoList list;
    list.addParamInfo(CFiConfigParamInfo("retries", 3, CFiConfigParamInfo::AUTO, -1, 5, "MSG_RETRIES", false, true));
    list.addParamInfo(CFiConfigParamInfo("ports", 1, CFiConfigParamInfo::SELECT, 1, 4, "MSG_PORTS", true, false));
    list.addParamInfo(CFiConfigParamInfo("wait", true, CFiConfigParamInfo::NO_MODIFY, "MSG_WAIT", false, false));
    list.addParamInfo(CFiConfigParamInfo("flags", false, 7, "MSG_FLAGS", true, false));
    CFiConfigParamInfo names("names", L"\u00e4&<x>", CFiConfigParamInfo::SELECT, kAwkward, true, true);
    names.addSelectionItem(kAwkward);
    names.addSelectionItem("");
    list.addParamInfo(names);
    list.addParamInfo(CFiConfigParamInfo("label", "", CFiConfigParamInfo::AUTO, "", false, false));
    CFiConfigParamInfo odd;
    odd.setKey("odd");
    odd.setValueType(42);
    list.addParamInfo(odd);
    return list;
}

template <class List, class Element>
List sampleValues()
{
    List list;
    list.setValue("single", kAwkward);
    list.setValue("empty", "");
    Element many("many", "ignored");
    many.addValue("1");
    many.addValue(kAwkward);
    many.addValue("");
    list.addParamData(many);
    return list;
}

void expectSameInfo(const CFiConfigParamInfo &a, const CFiConfigParamInfo &b)
{
    EXPECT_EQ(a.getKey(), b.getKey());
    EXPECT_EQ(a.getMessageId(), b.getMessageId());
    EXPECT_EQ(a.getParamType(), std::min(b.getParamType(), 3)) << "a number without a text reads back as unknown";
    EXPECT_EQ(a.getIsSharedParam(), b.getIsSharedParam());
    EXPECT_EQ(a.getValueDefault(), b.getValueDefault());
    EXPECT_EQ(a.getSelectionList(), b.getSelectionList());
}

}  // namespace

TEST(ParamDocuments, ParameterDescriptionsHaveTheirExactLayout)
{
    CFiConfigParamInfoList list;
    EXPECT_STREQ(list.getXML(), L"") << "nothing is written before the first change";
    list.updateXML();
    EXPECT_EQ(list.getXML(), kDeclaration + L"<ConfigParamList>\n</ConfigParamList>\n");

    list.addParamInfo(CFiConfigParamInfo("b", 7, CFiConfigParamInfo::AUTO, -1, -1, "M1", false, true));
    list.addParamInfo(CFiConfigParamInfo("a", -2, 9, -1, 5, "M&2", true, false));
    list.addParamInfo(CFiConfigParamInfo("c", "x", CFiConfigParamInfo::SELECT, "M3", true, false));
    EXPECT_EQ(list.getXML(), kDeclaration + L"<ConfigParamList>\n"
                                            L"<ConfigParam>\n"
                                            L"\t<key>a</key>\n"
                                            L"\t<usageType>UNKNOWN</usageType>\n"
                                            L"\t<messageId>M&amp;2</messageId>\n"
                                            L"\t<isSharedParam>false</isSharedParam>\n"
                                            L"\t<dataType>int_list</dataType>\n"
                                            L"<dataRange>\n"
                                            L"\t<rangeMin>-1</rangeMin>\n"
                                            L"\t<rangeMax>5</rangeMax>\n"
                                            L"</dataRange>\n"
                                            L"\t<defaultValue>-2</defaultValue>\n"
                                            L"</ConfigParam>\n"
                                            L"<ConfigParam>\n"
                                            L"\t<key>b</key>\n"
                                            L"\t<usageType>AUTO</usageType>\n"
                                            L"\t<messageId>M1</messageId>\n"
                                            L"\t<isSharedParam>true</isSharedParam>\n"
                                            L"\t<dataType>int</dataType>\n"
                                            L"\t<defaultValue>7</defaultValue>\n"
                                            L"</ConfigParam>\n"
                                            L"<ConfigParam>\n"
                                            L"\t<key>c</key>\n"
                                            L"\t<usageType>SELECT</usageType>\n"
                                            L"\t<messageId>M3</messageId>\n"
                                            L"\t<isSharedParam>false</isSharedParam>\n"
                                            L"\t<dataType>string_list</dataType>\n"
                                            L"<selectionList>\n"
                                            L"</selectionList>\n"
                                            L"\t<defaultValue>x</defaultValue>\n"
                                            L"</ConfigParam>\n"
                                            L"</ConfigParamList>\n");
}

TEST(ParamDocuments, ValuesAndFormatOptionsHaveTheirExactLayout)
{
    CFiConfigParamDataList values;
    values.setValue("k", "v&");
    CFiConfigParamData list("a", "");
    list.addValue("1");
    list.addValue("2");
    values.addParamData(list);
    const std::wstring body = L"\t<dataType></dataType>\n"
                              L"\t<key>a</key>\n"
                              L"<valueList>\n"
                              L"\t<value>1</value>\n"
                              L"\t<value>2</value>\n"
                              L"</valueList>\n";
    const std::wstring single = L"\t<dataType></dataType>\n"
                                L"\t<key>k</key>\n"
                                L"\t<value>v&amp;</value>\n";
    EXPECT_EQ(values.getXML(), kDeclaration + L"<ConfigValueList>\n<ConfigValue>\n" + body +
                                   L"</ConfigValue>\n<ConfigValue>\n" + single +
                                   L"</ConfigValue>\n</ConfigValueList>\n");

    CFiFormatOptionList options;
    options.addParamData(CFiFormatOption("k", "v&"));
    EXPECT_EQ(options.getXML(), kDeclaration + L"<FormatOptionValueList>\n<FormatOptionValue>\n" + single +
                                    L"</FormatOptionValue>\n</FormatOptionValueList>\n");
}

TEST(ParamDocuments, EveryKindSurvivesParseWriteParse)
{
    const CFiConfigParamInfoList infos = sampleInfos();
    CFiConfigParamInfoList infosBack;
    ASSERT_EQ(infosBack.parse(infos.getXML()), QRN_OK) << infosBack.getParseError().describe();
    EXPECT_STREQ(infosBack.getXML(), infos.getXML());
    ASSERT_EQ(infosBack.size(), infos.size());
    for (const auto &kv : infos.params()) {
        SCOPED_TRACE(kv.first);
        const CFiConfigParamInfo &back = infosBack.getParamInfo(kv.first.c_str());
        expectSameInfo(back, kv.second);
        // An unknown type number comes back as the one unknown type; ranges exist on int types only.
        EXPECT_EQ(back.getValueType(), kv.second.getValueType() > 5 ? 6 : kv.second.getValueType());
        const bool ranged = kv.second.getValueType() == CFiConfigParamInfo::INT ||
                            kv.second.getValueType() == CFiConfigParamInfo::INT_LIST;
        EXPECT_EQ(back.getRangeMin(), ranged ? kv.second.getRangeMin() : -1);
        EXPECT_EQ(back.getRangeMax(), ranged ? kv.second.getRangeMax() : -1);
    }
    EXPECT_EQ(infosBack.getParamInfo("names").getSelectionList(), (std::vector<std::string>{kAwkward, ""}));
    EXPECT_EQ(infosBack.getParamInfo("names").getValueDefault(), "\xC3\xA4&<x>");

    const auto values = sampleValues<CFiConfigParamDataList, CFiConfigParamData>();
    CFiConfigParamDataList valuesBack(values.getXML());
    EXPECT_STREQ(valuesBack.getXML(), values.getXML());
    EXPECT_EQ(valuesBack.getValue("single"), kAwkward);
    EXPECT_EQ(valuesBack.getParamData("many").getValueList(), (std::vector<std::string>{"1", kAwkward, ""}));
    EXPECT_EQ(valuesBack.getKeys(), (std::vector<std::string>{"empty", "many", "single"}));

    const auto options = sampleValues<CFiFormatOptionList, CFiFormatOption>();
    CFiFormatOptionList optionsBack;
    ASSERT_EQ(optionsBack.parse(options.getXML()), QRN_OK);
    EXPECT_STREQ(optionsBack.getXML(), options.getXML());
    EXPECT_EQ(optionsBack.getParamData("many").getValueList(), (std::vector<std::string>{"1", kAwkward, ""}));

    // A copy is a list of its own.
    CFiConfigParamDataList copy(valuesBack);
    copy.setValue("single", "changed");
    EXPECT_EQ(valuesBack.getValue("single"), kAwkward);
}

TEST(ParamDocuments, ReaderTakesWhatHostsWrite)
{
    // Another writer's layout: no declaration, attributes, comments, CDATA, character
    // references, children out of order, elements we don't know, a value outside any list.
    CFiConfigParamDataList values;
    ASSERT_EQ(values.parse(L"<ConfigValueList version='2'><!-- from the host -->"
                           L"<ConfigValue><value>first</value><value>&#x41;<![CDATA[<b>]]></value><key>k1</key>"
                           L"<extra><key>ignored?</key></extra></ConfigValue>"
                           L"<ConfigValue><key>list</key><valueList><value>x</value><value/></valueList>"
                           L"<value>after</value></ConfigValue>"
                           L"<ConfigValue><value>no key</value></ConfigValue>"
                           L"<ConfigValue><key>k1</key><value>second k1</value></ConfigValue>"
                           L"</ConfigValueList>"),
              QRN_OK);
    // Only the unknown element itself is ignored: the "key" inside it still names the value.
    EXPECT_EQ(values.getKeys(), (std::vector<std::string>{"", "ignored?", "k1", "list"}));
    EXPECT_EQ(values.getValue("k1"), "second k1") << "a later element of a key replaces the earlier";
    EXPECT_EQ(values.getValue(""), "no key");
    EXPECT_EQ(values.getParamData("list").getValueList(), (std::vector<std::string>{"x", ""}));
    EXPECT_EQ(values.getValue("list"), "after");
    EXPECT_EQ(values.getValue("ignored?"), "A<b>");

    CFiConfigParamInfoList infos;
    ASSERT_EQ(infos.parse(L"<ConfigParamList><ConfigParam><key>a</key><usageType>auto</usageType>"
                          L"<isSharedParam>yes</isSharedParam><dataType>int</dataType>"
                          L"<dataRange><rangeMin></rangeMin><rangeMax>12abc</rangeMax></dataRange></ConfigParam>"
                          L"<ConfigParam><key>b</key><usageType>NO_MODIFY</usageType><isSharedParam>1</isSharedParam>"
                          L"<dataType>boolean_list</dataType></ConfigParam>"
                          L"<ConfigParam><key>c</key><isSharedParam>TRUE</isSharedParam><dataType>float</dataType>"
                          L"</ConfigParam><ConfigParam/></ConfigParamList>"),
              QRN_OK);
    const CFiConfigParamInfo &a = infos.getParamInfo("a");
    EXPECT_EQ(a.getParamType(), CFiConfigParamInfo::UNKNOWN_USAGE) << "usage texts are upper case";
    EXPECT_TRUE(a.getIsSharedParam());
    EXPECT_EQ(a.getRangeMin(), -1) << "an empty number keeps the field";
    EXPECT_EQ(a.getRangeMax(), 12);
    EXPECT_EQ(infos.getParamInfo("b").getParamType(), CFiConfigParamInfo::NO_MODIFY);
    EXPECT_EQ(infos.getParamInfo("b").getValueType(), CFiConfigParamInfo::BOOLEAN_LIST);
    EXPECT_TRUE(infos.getParamInfo("b").getIsSharedParam());
    EXPECT_FALSE(infos.getParamInfo("c").getIsSharedParam());
    EXPECT_EQ(infos.getParamInfo("c").getValueType(), CFiConfigParamInfo::UNKNOWN_VALUE);
    EXPECT_EQ(infos.getParamInfo("").getParamType(), CFiConfigParamInfo::UNKNOWN_USAGE) << "an empty parameter";
    EXPECT_EQ(infos.size(), 4u);

    // A document of another kind reads as an empty list of this one.
    CFiFormatOptionList options;
    EXPECT_EQ(options.parse(values.getXML()), QRN_OK);
    EXPECT_EQ(options.size(), 0u);
}

TEST(ParamValues, LookupsAndReplacement)
{
    CFiConfigParamDataList list;
    CFiConfigParamData listed("k", "v");
    listed.addValue("a");
    list.addParamData(listed);
    std::vector<std::string> items;
    ASSERT_EQ(list.getValue("k", items), QRN_OK);
    EXPECT_EQ(items, (std::vector<std::string>{"a"}));

    list.setValue("k", "12abc");
    EXPECT_TRUE(list.getParamData("k").getValueList().empty()) << "setValue replaces the element whole";
    EXPECT_EQ(list.getXML(), std::wstring(CFiConfigParamDataList(list.getXML()).getXML())) << "text follows the map";
    int32_t number = -5;
    EXPECT_EQ(list.getValue("k", number), QRN_OK);
    EXPECT_EQ(number, 12) << "digits are read as far as they go";
    list.setValue("empty", "");
    number = -5;
    EXPECT_EQ(list.getValue("empty", number), QRN_ERR_INVALID_ARGUMENT) << "an empty value is no number";
    EXPECT_EQ(number, -5);

    std::string text = "kept";
    EXPECT_EQ(list.getValue("missing", text), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(text, "kept");
    EXPECT_EQ(list.getValue("missing", items), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(list.getValue("missing", number), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(list.getValue("missing"), "");
    EXPECT_EQ(list.getValue(nullptr), "");
    EXPECT_EQ(list.getParamData("missing").getKey(), "");

    list.clear();
    EXPECT_EQ(list.size(), 0u);
    EXPECT_STREQ(list.getXML(), L"");
}

TEST(ParamValues, DefaultsFollowTheDescriptionsInKeyOrder)
{
    const CFiConfigParamDataList defaults = sampleInfos().getDefaultDataList();
    EXPECT_EQ(defaults.getKeys(),
              (std::vector<std::string>{"flags", "label", "names", "odd", "ports", "retries", "wait"}));
    EXPECT_EQ(defaults.getValue("retries"), "3");
    EXPECT_EQ(defaults.getValue("flags"), "false");
    EXPECT_EQ(defaults.getValue("wait"), "true");
    EXPECT_EQ(defaults.getValue("names"), "\xC3\xA4&<x>");
    EXPECT_STREQ(CFiConfigParamInfoList().getDefaultDataList().getXML(), L"") << "no parameters, no document";
}
