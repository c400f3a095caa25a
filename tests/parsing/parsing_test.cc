// The SAX frame, the massaging of SSSU's output and the four output handlers, on texts made
// here in the shape SSSU prints.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <xercesc/sax/SAXParseException.hpp>

#include "cfisaxparsehandler.h"
#include "cfisaxparser.h"
#include "hpeva_cliexception.h"
#include "hpeva_clitool.h"
#include "hpeva_clitool_run.h"
#include "hpeva_lscellhandler.h"
#include "hpeva_lsdrgrouphandler.h"
#include "hpeva_lshosthandler.h"
#include "hpeva_lsvdiskhandler.h"

using namespace qorin_pdk_4_4;

namespace {

// Collects every element's text through the base class's appending buffer.
class TextCollector : public CFiSaxParseHandler {
public:
    void startElement(const XMLCh *const, const XMLCh *const, const XMLCh *const, const xercesc::Attributes &) override
    {
        m_text.clear();
    }
    void endElement(const XMLCh *const, const XMLCh *const, const XMLCh *const qname) override
    {
        texts.push_back(toString(qname) + "=" + m_text);
        m_text.clear();
    }
    std::vector<std::string> texts;
};

template <class Handler>
void parseMassaged(std::vector<std::string> lines, Handler &handler)
{
    hpeva_cli::parseXmlOutput(lines, handler, ACE_WString(L"LS TEST XML"), __FILE__, __LINE__);
}

std::string vdiskObject(const std::string &name, const std::string &type, const std::string &wwn,
                        const std::string &blocks, const std::string &presentations)
{
    return "<object>\n"
           "  <objectname>" +
           name +
           "</objectname>\n"
           "  <objecttype>" +
           type +
           "</objecttype>\n"
           "  <objectwwn>6005-0000-0000-0000</objectwwn>\n"
           "  <familyname>fam</familyname>\n"
           "  <wwlunid>" +
           wwn +
           "</wwlunid>\n"
           "  <requestedcapacityblocks>" +
           blocks +
           "</requestedcapacityblocks>\n"
           "  <sharingrelationship>none</sharingrelationship>\n"
           "  <sharinginformation>\n"
           "    <parentvdiskname>n/a</parentvdiskname>\n"
           "    <childvdiskname>n/a</childvdiskname>\n"
           "  </sharinginformation>\n"
           "  <presentations>" +
           presentations +
           "</presentations>\n"
           "</object>";
}

std::vector<std::string> splitLines(const std::string &text)
{
    std::vector<std::string> lines;
    size_t begin = 0;
    for (size_t end; (end = text.find('\n', begin)) != std::string::npos; begin = end + 1) {
        lines.push_back(text.substr(begin, end - begin));
    }
    lines.push_back(text.substr(begin));
    return lines;
}

SHpEvaCell someCell()
{
    SHpEvaCell cell;
    cell.hostname = L"cv1";
    cell.username = L"admin";
    cell.password = L"secret";
    cell.cellname = L"EVA01";
    cell.objectwwn = "5000-1FE1-5000-0001";
    return cell;
}

}  // namespace

TEST(SaxFrame, MalformedTextIsReportedToTheHandlerAndParseReturns)
{
    TextCollector handler;
    CFiSaxParser parser(&handler, nullptr);
    for (const char *text : {"<a><b>x</a>", "", "no xml at all", "<a>&undefined;</a>", "<a></a><b/>"}) {
        SCOPED_TRACE(text);
        TextCollector fresh;
        CFiSaxParser own(&fresh, nullptr);
        own.parse(std::string(text));
        EXPECT_TRUE(fresh.hasLastError());
        EXPECT_FALSE(fresh.getLastErrorText().empty());
        EXPECT_THROW(fresh.throwLastError(), xercesc::SAXParseException);
    }
    parser.parse(std::string("<a>fine</a>"));
    EXPECT_FALSE(handler.hasLastError());
    EXPECT_NO_THROW(handler.throwLastError());
    EXPECT_EQ(handler.getLastErrorText(), "");
}

TEST(SaxFrame, LinesParseAsTheirConcatenationAndTextArrivesWhole)
{
    // A tag and an entity cut across lines, and an entity that Xerces reports in pieces.
    const std::vector<std::string> lines = {"<r><a>Tom &am", "p; Jerry</a><b", ">x\xC3\xA9y</b>", "</r>"};
    std::string joined;
    for (const std::string &line : lines) {
        joined += line;
    }
    TextCollector fromLines;
    TextCollector fromText;
    {
        CFiSaxParser parser(&fromLines, nullptr);
        parser.parse(lines);
    }
    {
        CFiSaxParser parser(&fromText, nullptr);
        parser.parse(joined);
    }
    EXPECT_FALSE(fromLines.hasLastError());
    EXPECT_EQ(fromLines.texts, fromText.texts);
    // UTF-8 in, UTF-8 out, whatever the locale.
    ASSERT_EQ(fromLines.texts.size(), 3u);
    EXPECT_EQ(fromLines.texts[0], "a=Tom & Jerry");
    EXPECT_EQ(fromLines.texts[1], "b=x\xC3\xA9y");
}

TEST(SaxFrame, LinesOfAnyLengthAreReadInPlace)
{
    // One character a line, and a value far longer than the parser's read buffer.
    const std::string big(300000, 'v');
    const std::string text = "<r><a>" + big + "</a><b>tail</b></r>";
    std::vector<std::string> lines;
    for (char c : text.substr(0, 40)) {
        lines.emplace_back(1, c);
    }
    lines.emplace_back();
    lines.push_back(text.substr(40));
    TextCollector handler;
    CFiSaxParser parser(&handler, nullptr);
    parser.parse(lines);
    ASSERT_FALSE(handler.hasLastError()) << handler.getLastErrorText();
    EXPECT_EQ(handler.texts, (std::vector<std::string>{"a=" + big, "b=tail", "r="}));
}

TEST(MassageOutput, KeepsOnlyTheObjectsInOneRoot)
{
    std::vector<std::string> lines = {"",
                                      "SSSU for HP StorageWorks Command View EVA",
                                      "EVA01> LS VDISK FULL XML",
                                      "\\Virtual Disks\\a\\ACTIVE information:",
                                      "<object>",
                                      "  <objectname>a</objectname>",
                                      "</object>",
                                      "\\Virtual Disks\\b\\ACTIVE information:",
                                      "<object>",
                                      "  <objectname>b</objectname>",
                                      "</object>",
                                      "EVA01> exit"};
    CHpEvaCliTool::massageOutput(lines);
    // Blanked: everything before the first object, the banner between objects, the prompt after.
    EXPECT_EQ(lines,
              (std::vector<std::string>{"<?xml version=\"1.0\" standalone=\"yes\" ?><hpeva_dataset>", "", "", "", "",
                                        "<object>", "  <objectname>a</objectname>", "</object>", "", "<object>",
                                        "  <objectname>b</objectname>", "</object>", "", "</hpeva_dataset>"}));

    CHpEvaLsVdiskHandler handler(someCell());
    CFiSaxParser parser(&handler, nullptr);
    parser.parse(lines);
    EXPECT_FALSE(handler.hasLastError()) << handler.getLastErrorText();
}

TEST(MassageOutput, LeavesTextWithoutAUsableObjectEnd)
{
    std::vector<std::string> none = {"Error: something",  "EVA01> exit",    "x information: y", "information:",
                                     "a:b information:c", "informatio: n:", "information"};
    CHpEvaCliTool::massageOutput(none);
    EXPECT_EQ(none, (std::vector<std::string>{"Error: something", "EVA01> exit", "", "", "",
                                              "informatio: n:", "information"}));

    std::vector<std::string> first = {"<object><a>1</a></object>", "EVA01> exit"};
    CHpEvaCliTool::massageOutput(first);
    EXPECT_EQ(first, (std::vector<std::string>{"<object><a>1</a></object>", "EVA01> exit"}));

    // A line with text before "<object>" is kept whole; the parser then sees that text.
    std::vector<std::string> mixed = {"banner", "EVA01> <object>", "<a>1</a>", "</object>"};
    CHpEvaCliTool::massageOutput(mixed);
    ASSERT_EQ(mixed.size(), 6u);
    EXPECT_EQ(mixed[1], "");
    EXPECT_EQ(mixed[2], "EVA01> <object>");
}

TEST(ParseXmlOutput, UnreadableOutputIsACommandFailureWithTheMassagedLines)
{
    const std::vector<std::vector<std::string>> outputs = {
        {"EVA01> LS VDISK \"x\" XML", "Error: x is not a virtual disk"},
        {"<object>", "  <objectname>a</objectname", "</object>", "EVA01> exit"},
        {"<object>", "  <objectname>a&b</objectname>", "</object>"},
        {"<object>", "</objectX>", "<object>", "</object>"},
    };
    for (const std::vector<std::string> &output : outputs) {
        CHpEvaLsVdiskHandler handler(someCell());
        std::vector<std::string> lines = output;
        try {
            hpeva_cli::parseXmlOutput(lines, handler, ACE_WString(L"LS VDISK FULL XML"), "here.cc", 12);
            ADD_FAILURE() << output[1];
        } catch (const CHpEvaCliException &e) {
            EXPECT_EQ(e.getKind(), CHpEvaCliException::CLI_COMMAND_FAILED);
            EXPECT_EQ(std::wstring(e.getCommand().c_str()), L"LS VDISK FULL XML");
            EXPECT_FALSE(e.getErrorText().empty());
            EXPECT_EQ(e.getOutput(), lines);
            EXPECT_EQ(e.getSourceLine(), 12);
        }
    }
}

TEST(ParseXmlOutput, OutputCutAnywhereParsesOrFailsCleanly)
{
    // SSSU killed mid-listing: every cut either still reads or is a command failure.
    const std::string whole =
        "\\Virtual Disks\\a\\ACTIVE information:\n" +
        vdiskObject("\\Virtual Disks\\a\\ACTIVE", "virtualdisk", "6005-08b4-0001-0000-0000-0000-0001-0000", "2048",
                    "<presentation><hostname>\\Hosts\\h1</hostname><lunnumber>3</lunnumber></presentation>") +
        "\n" + vdiskObject("\\Virtual Disks\\b &amp; c\\ACTIVE", "virtualdisk", "6005-2", "4096", "") + "\nEVA01> exit";
    // A cut reads once an object's end line is whole; what follows it is dropped.
    const size_t firstEnd = whole.find("</object>") + 9;
    const size_t secondEnd = whole.rfind("</object>") + 9;
    for (size_t cut = 0; cut <= whole.size(); ++cut) {
        CHpEvaLsVdiskHandler handler(someCell());
        try {
            parseMassaged(splitLines(whole.substr(0, cut)), handler);
            EXPECT_GE(cut, firstEnd);
            EXPECT_EQ(handler.getVdiskList().size(), cut >= secondEnd ? 2u : 1u) << cut;
        } catch (const CHpEvaCliException &e) {
            EXPECT_LT(cut, firstEnd);
            EXPECT_EQ(e.getKind(), CHpEvaCliException::CLI_COMMAND_FAILED) << cut;
        }
    }
}

TEST(VdiskHandler, DisksInOrderContainersDroppedNothingCarriedOver)
{
    const std::string text =
        "\\Virtual Disks\\a\\ACTIVE information:\n" +
        vdiskObject("\\Virtual Disks\\a\\ACTIVE", "virtualdisk", "6005-08b4-0001-0000-0000-0000-0001-0000", "4194304",
                    "<presentation><hostname>\\Hosts\\h2</hostname><lunnumber>7</lunnumber></presentation>"
                    "<presentation><hostname>\\Hosts\\h1</hostname><lunnumber>3</lunnumber></presentation>") +
        "\n" +
        vdiskObject("\\Virtual Disks\\c\\ACTIVE", "container", "6005-08b4-0001-0000-0000-0000-0002-0000", "2048",
                    "<presentation><hostname>\\Hosts\\h9</hostname><lunnumber>9</lunnumber></presentation>") +
        "\n<object>\n  <objectname>\\Virtual Disks\\d\\ACTIVE</objectname>\n  <objecttype>virtualdisk</objecttype>\n"
        "  <presentations></presentations>\n</object>\nEVA01> exit";
    CHpEvaLsVdiskHandler handler(someCell());
    parseMassaged(splitLines(text), handler);
    const std::list<SHpEvaVdisk> disks = handler.getVdiskList();
    ASSERT_EQ(disks.size(), 2u);
    const SHpEvaVdisk &a = disks.front();
    const SHpEvaVdisk &d = disks.back();
    EXPECT_EQ(a.objectname, "\\Virtual Disks\\a\\ACTIVE");
    EXPECT_EQ(a.familyname, "fam");
    EXPECT_EQ(a.wwlunid, "6005-08b4-0001-0000-0000-0000-0001-0000");
    EXPECT_EQ(a.capacity, 2147483648ull);
    EXPECT_EQ(a.presentations, (std::map<std::string, int32_t>{{"\\Hosts\\h1", 3}, {"\\Hosts\\h2", 7}}));
    // The cell part is the constructor's, not the disk's own objectwwn.
    EXPECT_EQ(a.objectwwn, "5000-1FE1-5000-0001");
    EXPECT_EQ(a.cellname, L"EVA01");
    // The disk behind the container has none of its values.
    EXPECT_EQ(d.objectname, "\\Virtual Disks\\d\\ACTIVE");
    EXPECT_EQ(d.wwlunid, "");
    EXPECT_EQ(d.familyname, "");
    EXPECT_EQ(d.capacity, 0u);
    EXPECT_TRUE(d.presentations.empty());
    EXPECT_EQ(d.objectwwn, "5000-1FE1-5000-0001");
    EXPECT_EQ(handler.getVdisk().objectname, a.objectname);
}

TEST(VdiskHandler, NoObjectGivesTheEmptyRecordAndEntitiesKeepTheWholeValue)
{
    // Only a container: a well-formed document without disks.
    CHpEvaLsVdiskHandler none(someCell());
    parseMassaged({"EVA01> LS VDISK FULL XML", "<object>", "<objectname>c</objectname>",
                   "<objecttype>container</objecttype>", "</object>", "EVA01> exit"},
                  none);
    EXPECT_TRUE(none.getVdiskList().empty());
    const SHpEvaVdisk empty = none.getVdisk();
    EXPECT_EQ(empty.objectname, "");
    EXPECT_EQ(empty.cellname, L"");
    EXPECT_EQ(empty.hostname, L"");

    // Xerces hands a value over in pieces where an entity stands; all of them count.
    CHpEvaLsVdiskHandler split(someCell());
    parseMassaged({"<object>", "<objectname>\\Virtual Disks\\R&amp;D &lt;&quot;x&quot;&gt;\\ACTIVE</objectname>",
                   "<familyname>plain</familyname>",
                   "<presentation><hostname>\\Hosts\\R&amp;D</hostname><lunnumber>4</lunnumber></presentation>",
                   "</object>"},
                  split);
    EXPECT_EQ(split.getVdisk().objectname, "\\Virtual Disks\\R&D <\"x\">\\ACTIVE");
    EXPECT_EQ(split.getVdisk().familyname, "plain");
    EXPECT_EQ(split.getVdisk().presentations, (std::map<std::string, int32_t>{{"\\Hosts\\R&D", 4}}));
}

TEST(CellHandler, ReadsSpaceInBytesAndTheCellsOwnName)
{
    CHpEvaLsCellHandler handler;
    parseMassaged({"", "EVA01 information:", "<object>", "  <objectname>EVA \xC3\xA9st</objectname>",
                   "  <objectwwn>5000-1FE1-5000-0001</objectwwn>", "  <firmwareversion>6220</firmwareversion>",
                   "  <totalstoragespace>1.5</totalstoragespace>",
                   "  <availablestoragespace>981.50</availablestoragespace>", "  <comments></comments>", "</object>",
                   "NoSystemSelected> exit"},
                  handler);
    const SHpEvaCell cell = handler.getCell();
    EXPECT_EQ(cell.cellname, L"EVA \u00e9st");
    EXPECT_EQ(cell.objectwwn, "5000-1FE1-5000-0001");
    EXPECT_EQ(cell.firmwareversion, 6220);
    EXPECT_EQ(cell.totalstoragespace, 1610612736ull);
    EXPECT_EQ(cell.availablestoragespace, 1053877600256ull);
    EXPECT_EQ(cell.hostname, L"");
}

TEST(HostHandler, NamesBelowHostsPortsPerObjectAndAMissingPathRepeatsTheName)
{
    CHpEvaLsHostHandler handler;
    parseMassaged({"<object>", "<objectname>\\Hosts\\lab\\rack\\db01</objectname>",
                   "<portwwn>1000-0000-C900-0002</portwwn>", "<portwwn>1000-0000-C900-0003</portwwn>", "</object>",
                   "<object>", "<objectname>stray</objectname>", "<portwwn>1000-0000-C900-0009</portwwn>", "</object>",
                   "<object>", "<objectname>\\Hosts\\h1</objectname>", "</object>"},
                  handler);
    const std::vector<SHpEvaHost> hosts = handler.getHostList();
    ASSERT_EQ(hosts.size(), 3u);
    EXPECT_EQ(hosts[0].name, "lab\\rack\\db01");
    EXPECT_EQ(hosts[0].ports, (std::vector<std::string>{"1000-0000-C900-0002", "1000-0000-C900-0003"}));
    EXPECT_EQ(hosts[1].name, "lab\\rack\\db01");
    EXPECT_EQ(hosts[1].ports, (std::vector<std::string>{"1000-0000-C900-0009"}));
    EXPECT_EQ(hosts[2].name, "h1");
    EXPECT_TRUE(hosts[2].ports.empty());
}

TEST(DrGroupHandler, MembersAndLinksKeepToThemselves)
{
    CHpEvaLsDrGroupHandler handler;
    parseMassaged({"<object>", "<members><member><objectname>\\Virtual Disks\\f\\d2\\ACTIVE</objectname>",
                   "<remotevirtualdiskname>\\Virtual Disks\\r\\d2\\ACTIVE</remotevirtualdiskname></member></members>",
                   "<objectname>\\Data Replication\\DRG1</objectname>",
                   "<operationalstate>good</operationalstate><membercondition>normal</membercondition>",
                   "<links><link><scellname>EVA02</scellname><scellid>0800</scellid><linkstate>connected</linkstate>",
                   "<suspendstate>notsuspended</suspendstate><objectname>inside link</objectname></link>",
                   "<link><scellname>EVA03</scellname><linkstate>down</linkstate></link></links>",
                   "<member><objectname>\\Virtual Disks\\f\\d4\\ACTIVE</objectname></member>",
                   "<parentstoragecellname>EVA01</parentstoragecellname><drmmode>source</drmmode>", "</object>"},
                  handler);
    const SHpEvaDrGroup group = handler.getDrGroup();
    EXPECT_EQ(group.objectname, "\\Data Replication\\DRG1");
    EXPECT_EQ(group.members,
              (std::vector<std::string>{"\\Virtual Disks\\f\\d2\\ACTIVE", "\\Virtual Disks\\f\\d4\\ACTIVE"}));
    EXPECT_EQ(group.operationalstate, "good");
    EXPECT_EQ(group.membercondition, "normal");
    EXPECT_EQ(group.parentstoragecellname, "EVA01");
    EXPECT_EQ(group.drmmode, "source");
    ASSERT_EQ(group.links.size(), 2u);
    EXPECT_EQ(group.links[0].scellname, "EVA02");
    EXPECT_EQ(group.links[0].scellid, "0800");
    EXPECT_EQ(group.links[0].suspendstate, "notsuspended");
    // The second link lacks scellid and suspendstate: the first link's values stay.
    EXPECT_EQ(group.links[1].scellname, "EVA03");
    EXPECT_EQ(group.links[1].linkstate, "down");
    EXPECT_EQ(group.links[1].scellid, "0800");
    EXPECT_EQ(group.links[1].suspendstate, "notsuspended");
    EXPECT_EQ(group.remoteCell.cellname, L"");
    EXPECT_EQ(group.remoteCell.objectwwn, "");
}
