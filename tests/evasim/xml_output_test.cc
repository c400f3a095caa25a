// Every XML listing, cut as the provider cuts it, is one well-formed document in the real tool's
// format (what the provider reads from it: tests/arraycli).
#include "evasim_harness.h"

#include <gtest/gtest.h>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>

using evasim_test::Harness;
using evasim_test::Outcome;
using namespace xercesc;

namespace {

const std::string kLogin = "select manager cv-east.example.com user=administrator password=Secret1";

std::string text(const XMLCh *x)
{
    char *c = XMLString::transcode(x);
    std::string s(c);
    XMLString::release(&c);
    return s;
}

// A parsed listing: whether it is well-formed, and how many objects the root holds.
struct Listing {
    bool wellFormed = false;
    std::string error;
    size_t objects = 0;
};

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
    l.objects = d->getDocumentElement()->getChildElementCount();
    return l;
}

class XmlOutput : public ::testing::Test {
protected:
    static void SetUpTestSuite() { XMLPlatformUtils::Initialize(); }
    static void TearDownTestSuite() { XMLPlatformUtils::Terminate(); }
    void SetUp() override { ASSERT_EQ(h.evasim({"init", "--scenario", Harness::scenario("demo.scn")}).status, 0); }

    Harness h;
};

TEST_F(XmlOutput, InformationLinesStandBeforeEachObjectAndCanBeSwitchedOff)
{
    const Outcome with = h.sssu({"LS HOST FULL XML"}, "EVA-EAST", kLogin);
    EXPECT_TRUE(with.has("\n\\Hosts\\Linux\\apphost02 information:\n<object>\n"));
    ASSERT_EQ(h.evasim({"set", "info_lines=off"}).status, 0);
    const Outcome without = h.sssu({"LS HOST FULL XML"}, "EVA-EAST", kLogin);
    EXPECT_FALSE(without.has("information:"));
    EXPECT_TRUE(without.has("EVA-EAST> LS HOST FULL XML\n\n<object>\n  <objectid>"));
}

TEST_F(XmlOutput, NamesWithMarkupCharactersAreEscaped)
{
    const Outcome add = h.sssu({"ADD VDISK \"\\Virtual Disks\\R&D <x>\" SIZE=1GB"}, "EVA-EAST", kLogin);
    ASSERT_EQ(add.status, 0) << add.out;
    const Outcome r = h.sssu({"LS VDISK \"\\Virtual Disks\\R&D <x>\\ACTIVE\" XML"}, "EVA-EAST", kLogin);
    const Listing l = parse(r);
    ASSERT_TRUE(l.wellFormed) << l.error;
    EXPECT_EQ(evasim_test::element(r.out, "familyname"), "R&amp;D &lt;x&gt;");
}

TEST_F(XmlOutput, LargeGeneratedListingIsWellFormed)
{
    ASSERT_EQ(h.evasim({"init", "--cells", "1", "--disks", "300", "--snapshots", "20", "--presented", "30"}).status, 0);
    const Outcome r = h.sssu({"LS VDISK FULL XML"}, "EVA01", "select manager cv1 user=evasim password=evasim");
    const Listing l = parse(r);
    ASSERT_TRUE(l.wellFormed) << l.error;
    EXPECT_EQ(l.objects, 320u);
}

}  // namespace
