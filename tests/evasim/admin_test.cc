// The administration commands: help, init from scenarios and from numbers, scenario errors with
// their lines, show, set, reset.
#include "evasim_harness.h"

#include <gtest/gtest.h>

#include <fstream>

using evasim_test::Harness;
using evasim_test::Outcome;

namespace {

class Admin : public ::testing::Test {
protected:
    std::string write(const std::string &name, const std::string &text)
    {
        std::string const path = h.home() + "/" + name;
        std::ofstream(path) << text;
        return path;
    }
    Harness h;
};

TEST_F(Admin, EveryCommandHasHelpAndBadUsageExitsTwo)
{
    const Outcome top = h.evasim({"--help"});
    EXPECT_EQ(top.status, 0);
    EXPECT_TRUE(top.has("Usage: evasim FILE SCRIPT"));
    for (const char *command : {"init", "show", "fault", "set", "reset", "where"}) {
        const Outcome r = h.evasim({command, "--help"});
        EXPECT_EQ(r.status, 0) << command;
        EXPECT_TRUE(r.has(std::string("Usage: evasim ") + command)) << r.out;
    }
    const Outcome none = h.evasim({});
    EXPECT_EQ(none.status, 2);
    EXPECT_TRUE(none.err.find("Usage:") != std::string::npos);
    const Outcome unknown = h.evasim({"frobnicate"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_NE(unknown.err.find("unknown command 'frobnicate'"), std::string::npos);
    EXPECT_EQ(h.evasim({"init", "--disks"}).status, 2);
    EXPECT_EQ(h.evasim({"init", "--disks", "many"}).status, 2);
    EXPECT_EQ(h.evasim({"init", "--scenario", "x", "--cells", "2"}).status, 2);
    EXPECT_EQ(h.evasim({"reset", "now"}).status, 2);
}

TEST_F(Admin, ScenarioErrorsNameTheLineAndWhatIsWrong)
{
    struct Case {
        const char *text;
        const char *message;
    } const cases[] = {
        {"server a user=u password=p\nfrobnicate x\n", ":2: unknown keyword 'frobnicate'"},
        {"cell C wwn=5000-1FE1-5000-0001 servers=nobody\n", ":1: unknown server 'nobody'"},
        {"cell C wwn=12345\n", ":1: wwn '12345' is not 16 hexadecimal digits in 4 groups"},
        {"cell C wwn=5000-1FE1-5000-0001\n\n# note\nvdisk C \"\\Virtual Disks\\a\" size=lots\n",
         ":4: size 'lots' is not a size such as 100GB"},
        {"cell C wwn=5000-1FE1-5000-0001\nvdisk C a size=1GB\nvdisk C a size=1GB\n",
         ":3: \\Virtual Disks\\a already exists"},
        {"cell C wwn=5000-1FE1-5000-0001\nvdisk C a size=1GB color=red\n", ":2: unknown option 'color'"},
        {"server a user=u password=\"open\n", ":1: unclosed double quote at column 26"},
        {"cell C wwn=5000-1FE1-5000-0001\nvdisk C a size=1GB\nsnapshot C a s1\nsnapshot C \"\\Virtual Disks\\a\\s1\" "
         "s2\n",
         ":4: Cannot create a snapshot of a snapshot"},
        {"set quirk_present_failed=maybe\n", ":1: setting quirk_present_failed needs on or off"},
        {"cell C wwn=5000-1FE1-5000-0001\nhost C h1\nvdisk C a size=1GB\npresent C a h1 lun=1\nvdisk C b size=1GB\n"
         "present C b h1 lun=1\n",
         ":6: LUN 1 is already in use on host \\Hosts\\h1"},
        {"drgroup G source=A destination=B\n", ":1: unknown cell 'A'"},
    };
    for (const Case &c : cases) {
        std::string const file = write("bad.scn", c.text);
        const Outcome r = h.evasim({"init", "--scenario", file});
        EXPECT_EQ(r.status, 1) << c.message;
        EXPECT_NE(r.err.find(file + c.message), std::string::npos) << r.err;
    }
    EXPECT_EQ(h.evasim({"show"}).status, 1) << "a failed init leaves no state behind";
}

TEST_F(Admin, GeneratedWorldHasTheNumbersAskedFor)
{
    const Outcome r = h.evasim({"init", "--servers", "2", "--cells", "2", "--disks", "5", "--hosts", "3", "--snapshots",
                                "2", "--presented", "4", "--set", "version=7.1.0"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(h.table("servers").size(), 2u);
    EXPECT_EQ(h.table("cells").size(), 2u);
    EXPECT_EQ(h.table("disks").size(), 2u * 7);
    EXPECT_EQ(h.table("hosts").size(), 2u * 3);
    EXPECT_EQ(h.table("presentations").size(), 2u * 4);
    EXPECT_EQ(h.evasim({"show", "disks", "--cell", "EVA02", "--format", "tsv"}).lines().size(), 2u + 7 + 1);
    const Outcome login = h.sssu({"LS VDISK"}, "EVA02", "select manager cv2 user=evasim password=evasim");
    EXPECT_TRUE(login.has("\\Virtual Disks\\folder05\\vd00005\\ACTIVE"));
    EXPECT_TRUE(login.has("Version: 7.1.0 "));
    EXPECT_EQ(h.evasim({"init", "--presented", "4", "--hosts", "0"}).status, 2);
}

TEST_F(Admin, SettingsAreCheckedStoredAndShown)
{
    h.init();
    EXPECT_EQ(h.evasim({"set", "snapclone_reads=3", "quirk_deletion_completed=yes"}).status, 0);
    const Outcome shown = h.evasim({"set"});
    EXPECT_TRUE(shown.has("snapclone_reads=3\n"));
    EXPECT_TRUE(shown.has("quirk_deletion_completed=on\n"));
    const Outcome badKey = h.evasim({"set", "colour=blue"});
    EXPECT_EQ(badKey.status, 2);
    EXPECT_NE(badKey.err.find("unknown setting 'colour'"), std::string::npos);
    EXPECT_EQ(h.evasim({"set", "restore_reads=-1"}).status, 2);
    EXPECT_EQ(h.evasim({"set", "version"}).status, 2);
}

TEST_F(Admin, ShowChecksItsArgumentsAndResetRemovesTheState)
{
    h.init();
    EXPECT_EQ(h.evasim({"show", "vdisks"}).status, 2);
    EXPECT_EQ(h.evasim({"show", "disks", "--format", "xml"}).status, 2);
    EXPECT_EQ(h.evasim({"show", "disks", "--cell", "NOSUCH"}).status, 1);
    const Outcome table = h.evasim({"show", "hosts", "--cell", "EVA01"});
    EXPECT_TRUE(table.has("Hosts (2)\ncell   path"));
    const Outcome reset = h.evasim({"reset"});
    EXPECT_EQ(reset.status, 0);
    const Outcome after = h.evasim({"show"});
    EXPECT_EQ(after.status, 1);
    EXPECT_NE(after.err.find("no state yet"), std::string::npos);
}

}  // namespace
