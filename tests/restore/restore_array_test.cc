// The array's part of a restore against evasim: what the array holds after each step of the
// restore script fails, and the swap of two disks' identities, each script as it arrives.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "arraycli_support.h"
#include "efiexecpipe.h"
#include "eva_cells.h"
#include "hpeva_cliexception.h"
#include "hpeva_clitool.h"

using arraycli::scriptOf;

namespace {

const char kData[] = "\\Virtual Disks\\db\\data\\ACTIVE";
const char kClone[] = "\\Virtual Disks\\db\\data_clone000\\ACTIVE";
const char kDataWwn[] = "6005-08b4-0001-0000-0000-0000-00aa-0000";
const char kLogin[] = "cvA user=admin password=secret";

// data is presented to three hosts; its snapclone, whose copy has ended, to one of them.
const char kWorld[] = "server cvA user=admin password=secret\n"
                      "cell EVA01 wwn=5000-1FE1-5000-0001 total=1TB servers=cvA\n"
                      "host EVA01 \"\\Hosts\\h1\"\n"
                      "host EVA01 \"\\Hosts\\h2\"\n"
                      "host EVA01 \"\\Hosts\\h3\"\n"
                      "vdisk EVA01 \"\\Virtual Disks\\db\\data\" size=10GB "
                      "wwlunid=6005-08b4-0001-0000-0000-0000-00aa-0000\n"
                      "snapclone EVA01 \"\\Virtual Disks\\db\\data\" data_clone000 state=done\n"
                      "present EVA01 \"\\Virtual Disks\\db\\data\" \"\\Hosts\\h2\" lun=4\n"
                      "present EVA01 \"\\Virtual Disks\\db\\data\" \"\\Hosts\\h1\" lun=7\n"
                      "present EVA01 \"\\Virtual Disks\\db\\data\" \"\\Hosts\\h3\" lun=2\n"
                      "present EVA01 \"\\Virtual Disks\\db\\data_clone000\" \"\\Hosts\\h3\" lun=5\n";

// A disk as `evasim show disks` holds it.
struct Disk {
    std::string type, wwlunid, sharing, parent, presentations, writecache;
};

class ArrayRestore : public ::testing::Test {
protected:
    ArrayRestore() : array(kWorld), tool(array.tool()), eva01(tamlin_test::cell(L"EVA01", L"cvA")) {}
    void SetUp() override { ASSERT_TRUE(array.loaded) << array.evasim("show all"); }

    // The disk at path, its presentations sorted.
    Disk disk(const std::string &path)
    {
        for (const auto &row : array.table("disks")) {
            if (row.at("path") == path) {
                std::vector<std::string> shown = tamlin_test::splitFields(row.at("presentations"), ',');
                std::sort(shown.begin(), shown.end());
                std::string joined;
                for (const std::string &s : shown) {
                    joined += (joined.empty() || s.empty() ? "" : ",") + s;
                }
                return {row.at("type"), row.at("wwlunid"),   row.at("sharing"), row.at("parent"),
                        joined,         row.at("writecache")};
            }
        }
        return {"<no disk>", "", "", "", "", ""};
    }
    SHpEvaVdisk read(const char *path) { return tool.getVirtualDiskDetail(eva01, path); }

    arraycli::Array array;
    CHpEvaCliTool tool;
    SHpEvaCell eva01;
};

}  // namespace

TEST_F(ArrayRestore, EachFailingStepLeavesWhatWasDoneBeforeIt)
{
    struct Row {
        const char *step;
        const char *fault;
        bool rediscover;
        // What the array holds afterwards.
        const char *dataType;
        const char *presentations;
        const char *cloneWritecache;
        bool scriptRan;
    };
    const Row rows[] = {
        {"second DELETE LUN", "--match 'DELETE LUN' --skip 1", false, "active", "\\Hosts\\h2:4,\\Hosts\\h3:2",
         "writeback", false},
        {"item 1, the command delay", "--match 'COMMAND_DELAY='", false, "active", "", "writeback", true},
        {"item 3, into a container", "--match CHANGE_INTO_CONTAINER", false, "active", "", "writeback", true},
        {"item 4, write-through", "--match writethrough", false, "container", "", "writeback", true},
        {"item 5, rediscover", "--match REDISCOVER", true, "container", "", "writethrough", true},
        {"item 6, the second refresh", "--match REFRESH --skip 1", false, "container", "", "writethrough", true},
        {"item 7, the copy", "--match 'ADD COPY'", false, "container", "", "writethrough", true},
        {"item 8, write-back", "--match writeback", false, "snapclone", "", "writethrough", true},
        {"item 9, the second ADD LUN", "--match 'ADD LUN' --skip 1", false, "snapclone", "\\Hosts\\h1:7", "writeback",
         true},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.step);
        array.evasim("init --scenario '" + array.root + "/world.scn'");
        const SHpEvaVdisk primary = read(kData);
        const SHpEvaVdisk secondary = read(kClone);
        const int runsBefore = array.runs();
        array.evasim(std::string("fault error ") + row.fault);
        SHpEvaRestoreSettings settings;
        settings.rediscover = row.rediscover;
        EXPECT_THROW(tool.restore(primary, secondary, settings), CHpEvaCliException);

        const Disk data = disk(kData);
        const Disk clone = disk(kClone);
        EXPECT_EQ(data.type, row.dataType);
        EXPECT_EQ(data.presentations, row.presentations);
        EXPECT_EQ(clone.writecache, row.cloneWritecache);
        const bool copyRuns = std::string(row.dataType) == "snapclone";
        EXPECT_EQ(data.sharing, copyRuns ? "snapclone_in_progress" : "none");
        EXPECT_EQ(data.parent, copyRuns ? kClone : "");
        EXPECT_EQ(array.runs() - runsBefore, row.scriptRan ? 2 : 1) << "a failing DELETE LUN ends the restore at once";
        EXPECT_EQ(array.evasim("show faults --format tsv").find("error"), std::string::npos) << "the fault was used";
    }
}

// SSSU falls silent before the copy for longer than the script's time-out: the caller is told
// of a failure at once, while the array may still go on. Here the silence ends before SSSU
// is stopped, and the array does the whole script.
TEST_F(ArrayRestore, AScriptThatOutlivesItsTimeOutFailsWhileTheArrayMayFinishIt)
{
    const SHpEvaVdisk primary = read(kData);
    const SHpEvaVdisk secondary = read(kClone);
    array.evasim("fault silence --match 'ADD COPY' --seconds 2");
    SHpEvaRestoreSettings settings;
    settings.timeout = 1;
    try {
        tool.restore(primary, secondary, settings);
        ADD_FAILURE() << "the restore was taken for done";
    } catch (const CHpEvaCliException &e) {
        EXPECT_EQ(e.getErrorText(), "SSSU was silent for 1 second and was stopped");
    }
    const Disk data = disk(kData);
    EXPECT_EQ(data.sharing, "snapclone_in_progress");
    EXPECT_EQ(data.presentations, "\\Hosts\\h1:7,\\Hosts\\h2:4,\\Hosts\\h3:2");
    EXPECT_EQ(disk(kClone).writecache, "writeback");
}

TEST_F(ArrayRestore, SwapTradesTheIdentitiesAndPresentsBothSidesAgain)
{
    const SHpEvaVdisk secondary = read(kClone);
    const std::string cloneWwn = secondary.wwlunid;
    const SHpEvaVdisk primary = read(kData);
    const int before = array.runs();

    tool.restoreSwapBased(primary, secondary);

    ASSERT_EQ(array.runs(), before + 3) << "the primary's presentations, the secondary's, then the swap";
    EXPECT_EQ(array.script(before + 1), scriptOf(kLogin, "EVA01",
                                                 {"DELETE LUN \"\\Hosts\\h1\\7\"", "DELETE LUN \"\\Hosts\\h2\\4\"",
                                                  "DELETE LUN \"\\Hosts\\h3\\2\""}));
    EXPECT_EQ(array.script(before + 2), scriptOf(kLogin, "EVA01", {"DELETE LUN \"\\Hosts\\h3\\5\""}));
    const std::string p = std::string("\"") + kData + "\"";
    const std::string s = std::string("\"") + kClone + "\"";
    EXPECT_EQ(array.script(before + 3),
              scriptOf(kLogin, "EVA01",
                       {
                           "SET VDISK " + p + " WORLD_WIDE_LUN_NAME=6005-08b4-0001-0000-0000-0000-00aa-1111",
                           "SET VDISK " + s + " WORLD_WIDE_LUN_NAME=" + kDataWwn,
                           "SET VDISK " + p + " WORLD_WIDE_LUN_NAME=" + cloneWwn,
                           "SET VDISK " + p + " NAME=\"data_RESTORING\"",
                           "SET VDISK " + s + " NAME=\"data\"",
                           "SET VDISK \"\\Virtual Disks\\db\\data_RESTORING\\ACTIVE\" NAME=\"data_clone000\"",
                           "ADD LUN 7 HOST=\"\\Hosts\\h1\"  VDISK=" + p + " ",
                           "ADD LUN 4 HOST=\"\\Hosts\\h2\"  VDISK=" + p + " ",
                           "ADD LUN 2 HOST=\"\\Hosts\\h3\"  VDISK=" + p + " ",
                           "ADD LUN 5 HOST=\"\\Hosts\\h3\"  VDISK=" + s + " ",
                       }));

    // The clone's content now answers to the primary's name, identity and LUNs; the old
    // primary lies under the clone's. Nothing was copied.
    const Disk data = disk(kData);
    const Disk clone = disk(kClone);
    EXPECT_EQ(data.type, "snapclone");
    EXPECT_EQ(data.wwlunid, kDataWwn);
    EXPECT_EQ(data.presentations, "\\Hosts\\h1:7,\\Hosts\\h2:4,\\Hosts\\h3:2");
    EXPECT_EQ(clone.type, "active");
    EXPECT_EQ(clone.wwlunid, cloneWwn);
    EXPECT_EQ(clone.presentations, "\\Hosts\\h3:5");
    EXPECT_EQ(data.sharing, "none");
    EXPECT_EQ(clone.sharing, "none");
}
