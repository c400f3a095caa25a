// Every XML listing, cut as the provider cuts it, is one well-formed document whose objects carry
// the elements the provider reads, in the real tool's formats.
#include "evasim_harness.h"

#include <gtest/gtest.h>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>

#include <memory>
#include <regex>
#include <set>

#include "tsv_rows.h"

using evasim_test::Harness;
using evasim_test::Outcome;
using namespace xercesc;

namespace {

std::string text(const XMLCh *x)
{
    char *c = XMLString::transcode(x);
    std::string s(c);
    XMLString::release(&c);
    return s;
}

// A parsed listing: each object's elements by name (first occurrence) and the set of all names.
struct Listing {
    bool wellFormed = false;
    std::string error;
    std::vector<std::map<std::string, std::string>> objects;
    std::vector<std::set<std::string>> names;
};

void collect(DOMNode *node, std::map<std::string, std::string> &values, std::set<std::string> &names)
{
    for (DOMNode *c = node->getFirstChild(); c; c = c->getNextSibling()) {
        if (c->getNodeType() != DOMNode::ELEMENT_NODE) {
            continue;
        }
        std::string const name = text(c->getNodeName());
        names.insert(name);
        bool leaf = true;
        for (DOMNode *g = c->getFirstChild(); g; g = g->getNextSibling()) {
            leaf = leaf && g->getNodeType() != DOMNode::ELEMENT_NODE;
        }
        if (leaf && !values.count(name)) {
            values[name] = text(c->getTextContent());
        }
        collect(c, values, names);
    }
}

Listing parse(const Outcome &run)
{
    Listing l;
    std::string const doc = evasim_test::xmlDocument(run.lines());
    XercesDOMParser parser;
    HandlerBase errors;
    parser.setErrorHandler(&errors);
    MemBufInputSource source(reinterpret_cast<const XMLByte *>(doc.data()), doc.size(), "listing");
    try {
        parser.parse(source);
    } catch (const SAXParseException &e) {
        l.error = text(e.getMessage());
        return l;
    }
    DOMDocument *d = parser.getDocument();
    if (!d || !d->getDocumentElement()) {
        return l;
    }
    l.wellFormed = true;
    for (DOMNode *o = d->getDocumentElement()->getFirstChild(); o; o = o->getNextSibling()) {
        if (o->getNodeType() != DOMNode::ELEMENT_NODE) {
            continue;
        }
        std::map<std::string, std::string> values;
        std::set<std::string> names;
        collect(o, values, names);
        l.objects.push_back(values);
        l.names.push_back(names);
    }
    return l;
}

class XmlOutput : public ::testing::Test {
protected:
    static void SetUpTestSuite() { XMLPlatformUtils::Initialize(); }
    static void TearDownTestSuite() { XMLPlatformUtils::Terminate(); }
    void SetUp() override { ASSERT_EQ(h.evasim({"init", "--scenario", Harness::scenario("demo.scn")}).status, 0); }

    Listing list(const std::string &command, const std::string &cell = "EVA-EAST")
    {
        const Outcome r =
            h.sssu({command}, cell, "select manager cv-east.example.com user=administrator password=Secret1");
        EXPECT_EQ(r.status, 0) << r.out;
        return parse(r);
    }

    Harness h;
};

TEST_F(XmlOutput, EveryVdiskObjectCarriesTheElementsTheProviderKnows)
{
    const Listing l = list("LS VDISK FULL XML");
    ASSERT_TRUE(l.wellFormed) << l.error;
    ASSERT_EQ(l.objects.size(), 6u);
    const std::vector<std::string> wanted = tamlin_test::splitFields(
        "objectid objectname objecttype objectwwn objecthexuid partitionname uid parentstoragecellinfo "
        "storagecellname storagecellid storagecellwwn objectparentuid objectparenthexuid objectparentid "
        "comments creationdatetime timestampmodify familyname wwlunid operationalstate "
        "operationalstatedetail allocatedcapacity allocatedcapacityblocks virtualdisktype "
        "requestedcapacity requestedcapacityblocks sharingrelationship sharinginformation "
        "parentvdiskhexuid parentvdiskid parentvdiskname childvdiskhexuid childvdiskid childvdiskname "
        "redundancy writecacheactual writecache vdisksecondarystate mirrorcache readcache "
        "virtualdiskpresented presentations writeprotect osunitid diskgroupname diskgroupid preferredpath "
        "drmgroupname drmnode remotevirtualdiskname",
        ' ');
    std::regex const lunId("([0-9a-f]{4}-){7}[0-9a-f]{4}");
    for (size_t i = 0; i < l.objects.size(); ++i) {
        const auto &o = l.objects[i];
        for (const std::string &name : wanted) {
            EXPECT_TRUE(l.names[i].count(name)) << name << " in " << o.at("objectname");
        }
        EXPECT_TRUE(std::regex_match(o.at("wwlunid"), lunId)) << o.at("wwlunid");
        EXPECT_EQ(o.at("objectname").rfind("\\Virtual Disks\\", 0), 0u);
        EXPECT_EQ(o.at("objecttype"), "virtualdisk");
        EXPECT_EQ(o.at("storagecellwwn"), "5000-1FE1-5000-A9F0");
    }
    const auto &data = l.objects[3];
    EXPECT_EQ(data.at("objectname"), "\\Virtual Disks\\Oracle\\ora_data\\ACTIVE");
    EXPECT_EQ(data.at("familyname"), "ora_data");
    EXPECT_EQ(data.at("requestedcapacityblocks"), "209715200");
    EXPECT_EQ(data.at("hostname"), "\\Hosts\\Linux\\dbhost01");
    EXPECT_EQ(data.at("lunnumber"), "1");
    EXPECT_EQ(data.at("drmgroupname"), "\\Data Replication\\DRG_Oracle");
    EXPECT_EQ(data.at("drmnode"), "source");
    EXPECT_EQ(data.at("parentvdiskname"), "n/a");
    EXPECT_EQ(data.at("childvdiskname"), "n/a");
    const auto &snap = l.objects[1];
    EXPECT_EQ(snap.at("objectname"), "\\Virtual Disks\\Apps\\app_data\\app_data_snap000");
    EXPECT_EQ(snap.at("parentvdiskname"), "\\Virtual Disks\\Apps\\app_data\\ACTIVE");
}

TEST_F(XmlOutput, CellHostAndDrGroupObjectsCarryTheirElements)
{
    const Listing cell = list("LS CELL \"EVA-EAST\" XML", "");
    ASSERT_TRUE(cell.wellFormed) << cell.error;
    ASSERT_EQ(cell.objects.size(), 1u);
    EXPECT_EQ(cell.objects[0].at("objectname"), "EVA-EAST");
    EXPECT_EQ(cell.objects[0].at("objectwwn"), "5000-1FE1-5000-A9F0");
    EXPECT_EQ(cell.objects[0].at("firmwareversion"), "6220");
    EXPECT_EQ(cell.objects[0].at("totalstoragespace"), "4096.00");
    EXPECT_EQ(cell.objects[0].at("availablestoragespace"), "3796.00");

    const Listing hosts = list("LS HOST FULL XML");
    ASSERT_TRUE(hosts.wellFormed) << hosts.error;
    ASSERT_EQ(hosts.objects.size(), 3u);
    EXPECT_EQ(hosts.objects[2].at("objectname"), "\\Hosts\\Linux\\dbhost01");
    EXPECT_EQ(hosts.objects[2].at("portwwn"), "1000-0000-C9AA-0001");

    const Listing group = list("LS DR_GROUP \"\\Data Replication\\DRG_Oracle\" XML");
    ASSERT_TRUE(group.wellFormed) << group.error;
    ASSERT_EQ(group.objects.size(), 1u);
    for (const char *name : {"objectname", "operationalstate", "membercondition", "parentstoragecellname", "drmmode",
                             "member", "link", "scellname", "scellid", "linkstate", "suspendstate"}) {
        EXPECT_TRUE(group.names[0].count(name)) << name;
    }
    EXPECT_EQ(group.objects[0].at("objectname"), "\\Data Replication\\DRG_Oracle") << "a member's name comes later";
    EXPECT_EQ(group.objects[0].at("operationalstate"), "good");
    EXPECT_EQ(group.objects[0].at("membercondition"), "normal");
    EXPECT_EQ(group.objects[0].at("scellname"), "EVA-DR");
}

TEST_F(XmlOutput, InformationLinesStandBeforeEachObjectAndCanBeSwitchedOff)
{
    const Outcome with = h.sssu({"LS HOST FULL XML"}, "EVA-EAST",
                                "select manager cv-east.example.com user=administrator password=Secret1");
    EXPECT_TRUE(with.has("\n\\Hosts\\Linux\\apphost02 information:\n<object>\n"));
    ASSERT_EQ(h.evasim({"set", "info_lines=off"}).status, 0);
    const Outcome without = h.sssu({"LS HOST FULL XML"}, "EVA-EAST",
                                   "select manager cv-east.example.com user=administrator password=Secret1");
    EXPECT_FALSE(without.has("information:"));
    EXPECT_TRUE(without.has("EVA-EAST> LS HOST FULL XML\n\n<object>\n  <objectid>"));
}

TEST_F(XmlOutput, NamesWithMarkupCharactersAreEscaped)
{
    const Outcome add = h.sssu({"ADD VDISK \"\\Virtual Disks\\R&D <x>\" SIZE=1GB"}, "EVA-EAST",
                               "select manager cv-east.example.com user=administrator password=Secret1");
    ASSERT_EQ(add.status, 0) << add.out;
    const Listing l = list("LS VDISK \"\\Virtual Disks\\R&D <x>\\ACTIVE\" XML");
    ASSERT_TRUE(l.wellFormed) << l.error;
    EXPECT_EQ(l.objects[0].at("familyname"), "R&D <x>");
}

TEST_F(XmlOutput, LargeGeneratedListingIsWellFormed)
{
    ASSERT_EQ(h.evasim({"init", "--cells", "1", "--disks", "300", "--snapshots", "20", "--presented", "30"}).status, 0);
    const Outcome r = h.sssu({"LS VDISK FULL XML"}, "EVA01", "select manager cv1 user=evasim password=evasim");
    const Listing l = parse(r);
    ASSERT_TRUE(l.wellFormed) << l.error;
    EXPECT_EQ(l.objects.size(), 320u);
}

}  // namespace
