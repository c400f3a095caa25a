// The argument text of object control: what the parse keeps, where it stops, and the text
// written back. Plus arbitrary input, which must never crash the parse.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "cfiobjctlargs.h"

using namespace qorin_pdk_4_4;

TEST(ObjctlParse, InputsInOrderWithValuesTakenLiterally)
{
    CFiObjctlArgs args(L"<OBJCTL_ARG_LIST> <OBJCTL_INPUT arg=size value=\"10\" type=int /> "
                       L"<OBJCTL_INPUT arg=name value=a=b type=string /> </OBJCTL_ARG_LIST>");
    ASSERT_EQ(args.inputs().size(), 2u);
    EXPECT_EQ(args.inputs()[0].name, L"size");
    EXPECT_EQ(args.inputs()[0].value, L"\"10\"") << "quotes stay part of the value";
    EXPECT_EQ(args.inputs()[0].type, L"int");
    EXPECT_EQ(args.inputs()[1].name, L"name");
    EXPECT_EQ(args.inputs()[1].value, L"a=b") << "a value ends at a blank, not at '='";
    EXPECT_TRUE(args.outputs().empty());
}

TEST(ObjctlParse, AWrongTokenEndsTheParseAndKeepsWhatWasRead)
{
    // Without the header nothing is read at all.
    EXPECT_TRUE(CFiObjctlArgs(L"<OBJCTL_INPUT arg=a value=1 type=t />").inputs().empty());
    EXPECT_TRUE(CFiObjctlArgs(L" <OBJCTL_ARG_LIST>x").inputs().empty());
    EXPECT_TRUE(CFiObjctlArgs(nullptr).inputs().empty());
    EXPECT_TRUE(CFiObjctlArgs(L"").inputs().empty());

    // An input whose "/>" is missing is kept; the parse stops behind it.
    CFiObjctlArgs noClose(
        L"<OBJCTL_ARG_LIST> <OBJCTL_INPUT arg=a value=1 type=t <OBJCTL_INPUT arg=b value=2 type=t />");
    ASSERT_EQ(noClose.inputs().size(), 1u);
    EXPECT_EQ(noClose.inputs()[0].name, L"a");

    // A second input cut short leaves the first.
    CFiObjctlArgs cut(L"<OBJCTL_ARG_LIST> <OBJCTL_INPUT arg=a value=1 type=t /> <OBJCTL_INPUT arg=b value=");
    ASSERT_EQ(cut.inputs().size(), 1u);

    // Unknown attribute names end it too.
    EXPECT_TRUE(CFiObjctlArgs(L"<OBJCTL_ARG_LIST> <OBJCTL_INPUT name=a value=1 type=t />").inputs().empty());
    EXPECT_TRUE(CFiObjctlArgs(L"<OBJCTL_ARG_LIST> <OBJCTL_OUTPUT arg=a value=1 type=t />").inputs().empty());
}

TEST(ObjctlXml, OnlyOutputsAreWrittenBack)
{
    CFiObjctlArgs empty(L"<OBJCTL_ARG_LIST> <OBJCTL_INPUT arg=a value=1 type=t /> </OBJCTL_ARG_LIST>");
    EXPECT_EQ(empty.toXml(), L"<OBJCTL_ARG_LIST> </OBJCTL_ARG_LIST> ");

    CFiObjctlArgs args(nullptr);
    args.addOutput({L"state", L"ok", L"string"});
    args.addOutput({L"n", L"2", L"int"});
    EXPECT_EQ(args.toXml(), L"<OBJCTL_ARG_LIST> <OBJCTL_OUTPUT arg=state value=ok type=string /> "
                            L"<OBJCTL_OUTPUT arg=n value=2 type=int /> </OBJCTL_ARG_LIST> ");
}

TEST(ObjctlRandomInput, NeverCrashesAndInputsHaveNoBlanks)
{
    // Tokens of the grammar mixed with noise, so that random texts get deep into the parse.
    const std::wstring pieces[] = {L"<OBJCTL_ARG_LIST>",
                                   L"</OBJCTL_ARG_LIST>",
                                   L"<OBJCTL_INPUT",
                                   L"arg",
                                   L"value",
                                   L"type",
                                   L"=",
                                   L" ",
                                   L"  ",
                                   L"/>",
                                   L"x",
                                   L"\u00FC",
                                   L"\t",
                                   L"=="};
    std::mt19937 rng(20240611);
    for (int round = 0; round < 20000; ++round) {
        std::wstring text;
        int n = static_cast<int>(rng() % 24);
        for (int i = 0; i < n; ++i) {
            if (rng() % 5 == 0) {
                text.push_back(static_cast<wchar_t>(1 + rng() % 0x10FFFF));
            } else {
                text += pieces[rng() % (sizeof pieces / sizeof pieces[0])];
            }
        }
        CFiObjctlArgs args(text.c_str());
        for (const SFiObjctlArg &in : args.inputs()) {
            ASSERT_EQ(in.name.find(L' '), std::wstring::npos);
            ASSERT_EQ(in.value.find(L' '), std::wstring::npos);
            ASSERT_EQ(in.type.find(L' '), std::wstring::npos);
        }
        if (!args.inputs().empty()) {
            ASSERT_EQ(text.find(L"<OBJCTL_ARG_LIST>"), text.find_first_not_of(L' '));
        }
        ASSERT_EQ(args.toXml(), L"<OBJCTL_ARG_LIST> </OBJCTL_ARG_LIST> ");
    }
}
