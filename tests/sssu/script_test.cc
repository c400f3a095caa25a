// The SSSU script file and the scanner of SSSU's output: exact script text, the private
// file's life, refusal of values that would inject a command, password masking and which
// "Error: " lines fail a run.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "cfiicumessage.h"
#include "eva_cells.h"
#include "hpeva_clierrorprocessor.h"
#include "hpeva_cliexception.h"
#include "hpeva_commandtempfile.h"
#include "hpeva_guard.h"
#include "hpeva_plugin.h"
#include "qrn_results.h"
#include "sssu_support.h"

using namespace qorin_pdk_4_4;
using namespace sssu_test;

namespace {

const std::string kPrelude =
    "set option NOCOMMAND_DELAY\nset option DISPLAY_WIDTH=200\nset option ON_ERROR=EXIT_ON_ERROR\n";

using tamlin_test::login;

class ScriptFile : public ::testing::Test {
protected:
    void SetUp() override
    {
        recorder = &processRecorder();
        recorder->clear();
    }
    std::string text(const CHpEvaCommandTempFile &file) const
    {
        return readFile(CFiStringTool::tstr2str(file.getPath()));
    }

    StandIn site;  // for its private TMPDIR
    Recorder *recorder = nullptr;
};

}  // namespace

TEST_F(ScriptFile, PrivateFileInTmpdirThatGoesWithItsObject)
{
    std::string path;
    {
        CHpEvaCommandTempFile file;
        path = CFiStringTool::tstr2str(file.getPath());
        EXPECT_EQ(text(file), kPrelude + "exit\n");
        EXPECT_EQ(path.rfind(site.tmp + "/omx_fi", 0), 0u) << path;
        struct stat st;
        ASSERT_EQ(stat(path.c_str(), &st), 0);
        EXPECT_EQ(st.st_mode & 0777, 0600u) << "the script holds a password";
        EXPECT_EQ(CFiStringTool::tstr2str(file.getCommandFileOption()), " \"FILE " + path + "\"");
        CHpEvaCommandTempFile second;
        EXPECT_NE(second.getPath(), file.getPath());
    }
    EXPECT_NE(access(path.c_str(), F_OK), 0) << "removed at scope end";
    EXPECT_TRUE(filesIn(site.tmp).empty());
}

TEST_F(ScriptFile, ScriptsOfProcessesThatAreGoneGoAtTheNextStart)
{
    CHpEvaCommandTempFile mine;
    const std::string own = CFiStringTool::tstr2str(mine.getPath()).substr(site.tmp.size() + 1);
    EXPECT_EQ(own.rfind("omx_fi" + std::to_string(getpid()) + "_", 0), 0u) << "the name carries the owner: " << own;

    pid_t gone = fork();
    if (gone == 0) {
        _exit(0);
    }
    ASSERT_GT(gone, 0);
    int status;
    ASSERT_EQ(waitpid(gone, &status, 0), gone);
    const std::string left = "omx_fi" + std::to_string(gone) + "_Ab12Cd";
    const std::vector<std::string> kept = {
        "omx_fi1_Ab12Cd",                               // a process that runs
        "omx_fiAb12Cd",                                 // no owner in the name
        "omx_fi" + std::to_string(gone) + "_notes.txt"  // not a script's name
    };
    writeFile(site.tmp + "/" + left, "select manager cv user=u password=p\n");
    for (const std::string &name : kept) {
        writeFile(site.tmp + "/" + name, "x");
    }

    // Through a start of the plug-in, which fails here for want of SSSU and cleans all the same.
    CHpEvaPlugin plugin;
    plugin.init();
    std::vector<std::string> names = filesIn(site.tmp);
    std::sort(names.begin(), names.end());
    std::vector<std::string> expected = kept;
    expected.push_back(own);
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(names, expected);
    EXPECT_EQ(CHpEvaCommandTempFile::removeLeftovers(), 0);
}

TEST_F(ScriptFile, LoginCellAndCommandsAsTheyStand)
{
    std::vector<ACE_WString> commands{L"ls cell", L"ls  vdisk \"\\Virtual Disks\\a b\\ACTIVE\" xml", L"refresh"};
    CHpEvaCommandTempFile file(login(L"cv1.example.com", L"admin", L"pa ss wörd"), commands, L"Cell One");
    EXPECT_EQ(text(file), kPrelude + "select manager cv1.example.com user=admin password=pa ss wörd\n"
                                     "select cell \"Cell One\"\n"
                                     "ls cell\n"
                                     "ls  vdisk \"\\Virtual Disks\\a b\\ACTIVE\" xml\n"
                                     "refresh\n"
                                     "exit\n");
    EXPECT_TRUE(recorder->traced("select cell [Cell One]."));
    EXPECT_TRUE(recorder->traced("Command: [refresh]."));
    EXPECT_FALSE(recorder->traced("wörd")) << "the password never reaches the trace";
}

TEST_F(ScriptFile, AnEmptyLoginFieldDropsTheLoginAndNamesOnlyTheFirstGap)
{
    struct Row {
        SFiCredential login;
        const char *message;
    } rows[] = {
        {login(L"", L"", L""), "hostname is empty"},
        {login(L"h", L"", L"secret"), "username is empty"},
        {login(L"h", L"u", L""), "password is empty"},
    };
    for (const Row &row : rows) {
        recorder->clear();
        CHpEvaCommandTempFile file(row.login, ACE_WString(L"ls cell"), ACE_WString(L"c"));
        EXPECT_EQ(text(file), kPrelude + "select cell \"c\"\nls cell\nexit\n") << row.message;
        EXPECT_EQ(recorder->count("Invalid array credentials"), 1u) << row.message;
        EXPECT_TRUE(recorder->traced(std::string("Invalid array credentials, ") + row.message));
    }
}

TEST_F(ScriptFile, ALineBreakInAnyValueIsRefusedBeforeAFileExists)
{
    struct Row {
        SFiCredential login;
        ACE_WString cell;
        std::vector<ACE_WString> commands;
        const char *named;
    } rows[] = {
        {login(L"h\nls cell", L"u", L"p"), L"c", {L"ls cell"}, "manager name \"h\\nls cell\""},
        {login(L"h", L"u\r", L"p"), L"c", {L"ls cell"}, "user name \"u\\r\""},
        {login(L"h", L"u", L"top\nsecret"), L"c", {L"ls cell"}, "password of user \"u\""},
        {login(L"h", L"u", L"p"), L"c\ndelete vdisk x", {L"ls cell"}, "cell name"},
        {login(L"h", L"u", L"p"), L"c", {L"ls cell", L"ls vdisk\r\nexit"}, "command \"ls vdisk\\r\\nexit\""},
    };
    for (const Row &row : rows) {
        try {
            CHpEvaCommandTempFile file(row.login, row.commands, row.cell);
            ADD_FAILURE() << "accepted: " << row.named;
        } catch (const CHpEvaCliException &e) {
            EXPECT_EQ(e.getKind(), CHpEvaCliException::CLI_COMMAND_FAILED);
            EXPECT_NE(e.getErrorText().find(row.named), std::string::npos) << e.getErrorText();
            EXPECT_EQ(e.getErrorText().find("secret"), std::string::npos) << "never the password";
        }
        EXPECT_TRUE(filesIn(site.tmp).empty()) << row.named;
    }
}

TEST_F(ScriptFile, ARefusalReachesTheHostAsACommandFailure)
{
    CFiErrorManagerPtr errors;
    getErrorManagerSingleton(errors, false);
    CFiTraceLogPtr log;
    getTraceLogSingleton(log, false);
    for (bool initialisation : {false, true}) {
        recorder->clear();
        int result = CHpEvaGuard(errors, log, "prepare", "providers/hpeva/site", 9, initialisation).run([] {
            CHpEvaCommandTempFile file(login(L"h", L"u", L"p"), ACE_WString(L"a\nb"), ACE_WString());
            return 0;
        });
        EXPECT_EQ(result, QRN_ERR_FAILED) << "the report's result, also for an initialisation";
        ASSERT_EQ(recorder->keys.size(), 1u);
        EXPECT_EQ(recorder->keys[0], "MSG_ERROR_CLI_COMMAND_FAILED");
    }
}

TEST(CliException, ReportCarriesCommandSiteTextAndTrimmedOutput)
{
    Recorder &recorder = processRecorder();
    recorder.clear();
    CHpEvaCliException e(CHpEvaCliException::CLI_COMMAND_FAILED, ACE_WString(L"LS CELL"), "Error: boom",
                         {"  first \r", "\tsecond line\n", ""}, "providers/hpeva/x.cc", 42);
    EXPECT_EQ(e.report(), QRN_ERR_FAILED);
    ASSERT_EQ(recorder.keys.size(), 1u);
    CFiIcuMessage message(recorder.messages[0]->serialize());
    EXPECT_EQ(message.getMessageKey(), "MSG_ERROR_CLI_COMMAND_FAILED");
    EXPECT_EQ(message.getSeverity(), QRN_SEVERITY_ERROR);
    int32_t count = 0;
    UErrorCode status = U_ZERO_ERROR;
    const icu::Formattable *args = message.getArguments().getArray(count, status);
    ASSERT_EQ(count, 5);
    EXPECT_EQ(CFiStringTool::ustr2str(args[0].getString()), "LS CELL");
    EXPECT_EQ(CFiStringTool::ustr2str(args[1].getString()), "providers/hpeva/x.cc");
    EXPECT_EQ(args[2].getLong(), 42);
    EXPECT_EQ(CFiStringTool::ustr2str(args[3].getString()), "Error: boom");
    EXPECT_EQ(CFiStringTool::ustr2str(args[4].getString()), "first\nsecond line\n\n");
}

TEST(ErrorProcessor, CleanPasswordKeepsTheKeyInAnyCaseAndDropsTheRestOfTheLine)
{
    std::vector<std::string> lines{
        "select manager cv user=admin password=se cret x",
        "password=",
        "a password=one password=two",
        "no secret here",
        "NoSystemSelected> SELECT MANAGER cv USERNAME=admin PASSWORD=upper too",
        "Password=mixed",
    };
    CFiOutputLines text(lines);
    CHpEvaCliErrorProcessor::cleanPassword(lines);
    EXPECT_EQ(lines, (std::vector<std::string>{
                         "select manager cv user=admin password=********",
                         "password=********",
                         "a password=********",
                         "no secret here",
                         "NoSystemSelected> SELECT MANAGER cv USERNAME=admin PASSWORD=********",
                         "Password=********",
                     }));
    // The same for the lines of a listing, kept as one text.
    CHpEvaCliErrorProcessor::cleanPassword(text);
    EXPECT_EQ(text.strings(), lines);
}
