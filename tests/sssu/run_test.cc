// execSSSU and the commands above it with SSSU answered in process: the command line and
// script a run gets, the connection retries and their sleeps (counted, never slept), what
// counts as a failed run, masking, and the names of a cell listing.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <list>
#include <string>
#include <vector>

#include "cfiexecpipeposix.h"
#include "cfiudidexception.h"
#include "efiexecpipe.h"
#include "eva_cells.h"
#include "hpeva_cliexception.h"
#include "hpeva_commandtempfile.h"
#include "qrn_results.h"
#include "sssu_support.h"
#include "test_env.h"

using namespace qorin_pdk_4_4;
using namespace sssu_test;

namespace {

const char kConnection[] = "\n\nError opening https connection\n";

class SssuRun : public ::testing::Test {
protected:
    SssuRun() : sssu(&clock), tool(L"/opt/HP/SSSU/", L"sssu_linux_x64")
    {
        recorder = &processRecorder();
        recorder->clear();
        tmp = makeTempDir("sssu-run");
        setenv("TMPDIR", tmp.c_str(), 1);
        tool.setEnv(&sssu);
    }
    ~SssuRun() override { removeTree(tmp); }

    // One run of a one-command script, as an array operation makes it.
    void run(std::vector<std::string> &lines, const wchar_t *command = L"LS CELL")
    {
        CHpEvaCommandTempFile script(tamlin_test::login(L"cv1", L"admin", L"s3cret word"), ACE_WString(command),
                                     ACE_WString());
        tool.execSSSU(script.getCommandFileOption(), lines, 30);
    }

    tamlin_test::RecordingClock clock;
    tamlin_test::CannedSssu sssu;
    CHpEvaCliTool tool;
    Recorder *recorder = nullptr;
    std::string tmp;
    const SHpEvaCell eva01 = tamlin_test::cell(L"EVA01", L"cvA");
};

}  // namespace

TEST_F(SssuRun, OneArgumentAfterTheToolAMaskedOutputAndNoPasswordInTheTrace)
{
    sssu.answerAll("\n\nSSSU for HP StorageWorks Command View EVA\n"
                   "NoSystemSelected> select manager cv1 user=admin password=s3cret word\n"
                   "\nNoSystemSelected> LS CELL\n\ncell1\n");
    std::vector<std::string> lines;
    std::string scriptPath;
    {
        CHpEvaCommandTempFile script(tamlin_test::login(L"cv1", L"admin", L"s3cret word"), ACE_WString(L"LS CELL"),
                                     ACE_WString());
        scriptPath = CFiStringTool::tstr2str(script.getPath());
        tool.execSSSU(script.getCommandFileOption(), lines, 30);
    }
    ASSERT_EQ(sssu.runs(), 1);
    EXPECT_EQ(CFiExecPipePosix::splitCommandLine(sssu.commandLine(1)),
              (std::vector<std::string>{"/opt/HP/SSSU/sssu_linux_x64", "FILE " + scriptPath}));
    EXPECT_NE(sssu.script(1).find("password=s3cret word\nLS CELL\nexit\n"), std::string::npos);
    EXPECT_EQ(lines, (std::vector<std::string>{"", "", "SSSU for HP StorageWorks Command View EVA",
                                               "NoSystemSelected> select manager cv1 user=admin password=********", "",
                                               "NoSystemSelected> LS CELL", "", "cell1"}));
    EXPECT_TRUE(recorder->traced("Command going to execute is :[\"/opt/HP/SSSU/sssu_linux_x64\"  \"FILE " + scriptPath +
                                 "\"]"));
    EXPECT_TRUE(recorder->traced("execSSSU : Got the lock ."));
    EXPECT_TRUE(recorder->traced("execSSSU : Releasing the lock ."));
    for (const std::string &line : recorder->lines) {
        EXPECT_EQ(line.find("s3cret"), std::string::npos) << line;
    }
    EXPECT_TRUE(filesIn(tmp).empty()) << "the script is gone after the run";
    EXPECT_TRUE(clock.sleeps().empty());
}

TEST_F(SssuRun, AConnectionFailureIsRunThreeTimesAtMostWithASecondAfterEach)
{
    sssu.answerAll(kConnection);
    std::vector<std::string> lines;
    run(lines);
    EXPECT_EQ(sssu.runs(), 3);
    EXPECT_EQ(clock.sleeps(), (std::vector<uint32_t>{1, 1, 1})) << "the third failure sleeps too";
    EXPECT_EQ(recorder->count("returned https connection error, retrying!!! "), 3u);
    // Without "Error: " the last run's output is judged like any other: it passes.
    EXPECT_EQ(lines.back(), "Error opening https connection");
}

TEST_F(SssuRun, ACleanSecondRunLeavesOnlyItsOwnLines)
{
    sssu.answer(1, kConnection);
    sssu.answer(2, "second run\n");
    std::vector<std::string> lines;
    run(lines);
    EXPECT_EQ(sssu.runs(), 2);
    EXPECT_EQ(clock.sleeps(), std::vector<uint32_t>{1});
    EXPECT_EQ(lines, std::vector<std::string>{"second run"});
}

TEST_F(SssuRun, ThePrefixedConnectionErrorOnTheLastRunFails)
{
    sssu.answerAll("Error: Error opening https connection\n");
    std::vector<std::string> lines;
    try {
        run(lines);
        ADD_FAILURE() << "succeeded";
    } catch (const CHpEvaCliException &e) {
        EXPECT_EQ(e.getKind(), CHpEvaCliException::CLI_COMMAND_FAILED);
        EXPECT_EQ(e.getErrorText(), "Error: Error opening https connection");
    }
    EXPECT_EQ(sssu.runs(), 3);
}

TEST_F(SssuRun, StatusAndErrorLinesDecideTogether)
{
    struct Row {
        const char *output;
        int status;
        enum { OK, NO_DATA, COMMAND_FAILED, PIPE } outcome;
        const char *errorText;
    } rows[] = {
        {"", 0, Row::NO_DATA, "SSSU printed nothing and ended with exit status 0"},
        {"", 3, Row::NO_DATA, "SSSU printed nothing and ended with exit status 3"},
        {"fine\n", 0, Row::OK, ""},
        // The deletion and presentation quirks are no failure, wherever they stand in a line.
        {"x\nError: Deletion completed\n", 1, Row::OK, ""},
        {"x\n   Error: Deletion completed now\n", 1, Row::OK, ""},
        {"Error: Error the call to present the virtual disk has failed. [Logical disk Presented]\n", 1, Row::OK, ""},
        {"Error: Deletion completed\nError: Virtual disk busy\n", 1, Row::COMMAND_FAILED, "Error: Virtual disk busy"},
        {"Error: Virtual disk busy\n", 0, Row::COMMAND_FAILED, "Error: Virtual disk busy"},
        // The first line with "Error: " fails the run; other spellings are no error.
        {"error: lower case\ncell> Error: first\nError: second\n", 0, Row::COMMAND_FAILED, "cell> Error: first"},
        {"Error:no blank is no error\n", 1, Row::PIPE, ""},
        {"no error text\n", 1, Row::PIPE, ""},
    };
    for (const Row &row : rows) {
        sssu.answerAll(row.output, row.status);
        std::vector<std::string> lines;
        try {
            run(lines, L"DELETE VDISK x");
            EXPECT_EQ(row.outcome, Row::OK) << row.output;
        } catch (const CHpEvaCliException &e) {
            EXPECT_EQ(row.outcome, e.getKind() == CHpEvaCliException::CLI_NO_DATA ? Row::NO_DATA : Row::COMMAND_FAILED)
                << row.output;
            EXPECT_EQ(e.getErrorText(), row.errorText);
        } catch (const EFiExecPipe &e) {
            EXPECT_EQ(row.outcome, Row::PIPE) << row.output;
            EXPECT_EQ(e.getCode(), QRN_EXEC_PIPE_CMD_FAILED);
            EXPECT_EQ(e.getStatus(), row.status);
            EXPECT_EQ(lines.size(), 1u) << "the caller keeps what was read";
            EXPECT_TRUE(recorder->traced("CLIDATA: [" + lines.at(0) + "]"));
        }
        EXPECT_TRUE(filesIn(tmp).empty()) << "script left behind: " << row.output;
    }
}

TEST_F(SssuRun, APasswordEchoIsMaskedInTheExceptionTheMessageAndTheTrace)
{
    sssu.answerAll("NoSystemSelected> select manager cv1 user=admin password=s3cret word\n"
                   "Error: Login failed\n");
    std::vector<std::string> lines;
    try {
        run(lines);
        ADD_FAILURE() << "succeeded";
    } catch (const CHpEvaCliException &e) {
        EXPECT_EQ(e.getOutput()[0], "NoSystemSelected> select manager cv1 user=admin password=********");
        EXPECT_EQ(e.report(), QRN_ERR_FAILED);
    }
    ASSERT_EQ(recorder->messages.size(), 1u);
    const qrn_msg_info *pushed = recorder->messages[0]->serialize();
    std::string text(pushed->text, pushed->length);
    EXPECT_NE(text.find("password=********"), std::string::npos);
    EXPECT_EQ(text.find("s3cret"), std::string::npos);
    for (const std::string &line : recorder->lines) {
        EXPECT_EQ(line.find("s3cret"), std::string::npos) << line;
    }
}

TEST_F(SssuRun, CellNamesEndAtTheEchoOfExitAndCellsWithoutAWwnAreAllKept)
{
    // A cell that tells no WWN can't be matched with another.
    sssu.answer(1, "\nSystems available on this Manager:\nX1\n  X2 \nNoSystemSelected> exit");
    sssu.answer(2, "X1 information:\n<object>\n<objectname>X1</objectname>\n</object>\nNoSystemSelected> exit");
    sssu.answer(3, "X2 information:\n<object>\n<objectname>X2</objectname>\n</object>\nNoSystemSelected> exit");
    const std::vector<SHpEvaCell> cells = tool.enumerateCells({tamlin_test::login(L"cvA")});
    ASSERT_EQ(cells.size(), 2u);
    EXPECT_EQ(cells[0].cellname, L"X1");
    EXPECT_EQ(cells[1].cellname, L"X2");
    EXPECT_EQ(sssu.runs(), 3);
    EXPECT_NE(sssu.script(3).find("select manager cvA user=admin password=secret\nLS CELL \"X2\" XML\nexit\n"),
              std::string::npos);
}

// A list of names needs its marker, and SSSU seen to the end of its script: a host missing
// from a cut list would be taken for one the array doesn't know.
TEST_F(SssuRun, NameListsNeedTheirMarkerAndTheirEnd)
{
    sssu.answer(1, "\n\nSSSU for HP StorageWorks Command View EVA\nEVA01> LS HOST\n\nnothing\nEVA01> exit");
    const std::string hosts = "EVA01> LS HOST\n\nHosts available on this Cell:\n\\Hosts\\a\n\\Hosts\\b\n";
    sssu.answer(2, hosts);
    for (const char *expected : {"available on this Cell:", "SSSU stopped before the end of its script"}) {
        try {
            tool.listHosts(eva01);
            ADD_FAILURE() << expected;
        } catch (const CHpEvaCliException &e) {
            EXPECT_EQ(e.getKind(), std::string(expected).find(':') != std::string::npos
                                       ? CHpEvaCliException::CLI_NO_DATA
                                       : CHpEvaCliException::CLI_COMMAND_FAILED);
            EXPECT_EQ(e.getErrorText().rfind(expected, 0), 0u) << e.getErrorText();
        }
    }
    sssu.answer(3, "EVA01> LS HOST\n\nHosts available on this Cell:\nEVA01> exit");
    EXPECT_TRUE(tool.listHosts(eva01).empty());
    sssu.answer(4, hosts + "EVA01> exit");
    EXPECT_EQ(tool.listHosts(eva01), (std::vector<std::string>{"\\Hosts\\a", "\\Hosts\\b"}));

    // Cells: the server's cut list is reported and none of its cells is taken.
    sssu.answer(5, "\nSystems available on this Manager:\nX1\n");
    EXPECT_TRUE(tool.enumerateCells({eva01}).empty());
    EXPECT_EQ(sssu.runs(), 5);
    EXPECT_EQ(recorder->keys, std::vector<std::string>{"MSG_ERROR_CLI_COMMAND_FAILED"});
}

TEST_F(SssuRun, ARunStoppedForSilenceOrWithoutOutputSaysWhy)
{
    sssu.answer(1, "\n\nSSSU for HP StorageWorks Command View EVA\n");
    sssu.silence(1);
    sssu.answer(2, "");
    sssu.silence(2);
    for (CHpEvaCliException::Kind kind : {CHpEvaCliException::CLI_COMMAND_FAILED, CHpEvaCliException::CLI_NO_DATA}) {
        std::vector<std::string> lines;
        try {
            run(lines);
            ADD_FAILURE() << "succeeded";
        } catch (const CHpEvaCliException &e) {
            EXPECT_EQ(e.getKind(), kind);
            EXPECT_EQ(e.getErrorText(), "SSSU was silent for 30 seconds and was stopped");
            EXPECT_EQ(e.getOutput(), lines);
        }
    }
}

// SSSU may print names in another code page: the report keeps the parser's reason and the
// output, with the bytes that aren't UTF-8 shown as replacement characters.
TEST_F(SssuRun, AReportKeepsItsReasonAndOutputWhenTheyAreNotUtf8)
{
    sssu.answerAll("EVA01> LS VDISK FULL XML\n<object>\n<objectname>\\Virtual Disks\\caf\xE9</objectname>\n"
                   "</object>\nEVA01> exit");
    std::list<SHpEvaVdisk> disks;
    try {
        tool.getVirtualDiskList(eva01, disks);
        ADD_FAILURE() << "read";
    } catch (const CHpEvaCliException &e) {
        e.report();
    }
    ASSERT_EQ(recorder->messages.size(), 1u);
    const std::string utf8 =
        CFiStringTool::wstr2str(recorder->messages[0]->formatMessage(L"failed: {3}. SSSU printed:\n{4}"));
    EXPECT_NE(utf8.find("failed: invalid byte"), std::string::npos) << utf8;
    EXPECT_NE(utf8.find("<objectname>\\Virtual Disks\\caf\xEF\xBF\xBD</objectname>"), std::string::npos) << utf8;
}

// A disk identity comes from the host: only a world wide LUN name goes into the script.
TEST_F(SssuRun, OnlyAWorldWideLunNameIsLookedFor)
{
    sssu.answerAll("EVA01> FIND VDISK\n<object>\n<objectname>\\Virtual Disks\\d\\ACTIVE</objectname>\n</object>\n"
                   "EVA01> exit");
    EXPECT_EQ(tool.findVirtualDisk(eva01, "6005-08B4-0001-0000-0000-0000-0001-ABCD").objectname,
              "\\Virtual Disks\\d\\ACTIVE");
    EXPECT_NE(sssu.script(1).find("FIND VDISK LUNWWID=6005-08b4-0001-0000-0000-0000-0001-abcd XML\n"),
              std::string::npos);
    for (const char *bad : {"6005-08b4\" DELETE VDISK \"x", "6005-08b4-0001-0000-0000-0000-0001-000", "0000",
                            "6005-08b4-0001-0000-0000-0000-0001-000g", "6005-08b4-0001-0000-0000-0000-0001-0000 "}) {
        EXPECT_THROW(tool.findVirtualDisk(eva01, bad), CFiUdidException) << bad;
    }
    EXPECT_EQ(sssu.runs(), 1) << "no script was run for a bad identity";
}
