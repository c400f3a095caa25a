// The trace log as an administrator meets it: the settings it writes on a first run, the
// dated file of the next one, level changes while running, and lines that stay whole.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <ctime>
#include <mutex>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "cficonfiguration.h"
#include "cfierrormanager.h"
#include "cfistringtool.h"
#include "cfitracelog.h"
#include "cfitracelogfunction.h"
#include "message_recorder.h"
#include "qrn_results.h"
#include "temp_install_root.h"

using namespace qorin_pdk_4_4;

namespace {

// The frame "<ACE::timestamp> <Pid - p / Thread id - t> " before a line's text. The text is
// the rest of the line, never part of the pattern: std::regex recurses once per character
// and would overflow the stack on a text of 8191 bytes.
const std::regex kFrame(R"(\d{4}-\d{2}-\d{2} \d{2}:\d{2}:\d{2}\.\d{6} <Pid - (\d+) / Thread id - (\d+)> )");

// True when line has the frame; pid and text are taken from it.
bool splitLine(const std::string &line, unsigned long &pid, std::string &text)
{
    std::smatch m;
    if (!std::regex_search(line, m, kFrame, std::regex_constants::match_continuous)) {
        return false;
    }
    pid = std::stoul(m[1]);
    text = m.suffix();
    return true;
}

std::string logName()
{
    return "Logs/tamlin.log." + TempInstallRoot::logDate();
}

std::vector<std::string> lines(const std::string &text)
{
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        out.push_back(line);
    }
    return out;
}

// The text part of each line of the log, checking the line's frame on the way. The empty
// line behind a text that ends in a line feed is skipped.
std::vector<std::string> texts(const TempInstallRoot &root)
{
    std::vector<std::string> out;
    for (const std::string &line : lines(root.readFile(logName()))) {
        if (line.empty()) {
            continue;
        }
        unsigned long pid = 0;
        std::string text;
        EXPECT_TRUE(splitLine(line, pid, text)) << line;
        out.push_back(text);
    }
    return out;
}

bool holds(const std::vector<std::string> &all, const std::string &text)
{
    return std::find(all.begin(), all.end(), text) != all.end();
}

void writeSettings(TempInstallRoot &root, const std::string &values)
{
    root.writeFile("ConfigFiles/tamlin.conf", "[DEBUG_TRACE_INFO]\n" + values);
}

unsigned setting(const TempInstallRoot &root, const wchar_t *name)
{
    CFiConfiguration config(CFiStringTool::str2wstr(root.path("ConfigFiles/")).c_str(), L"tamlin.conf", true);
    unsigned value = 99;
    config.getIntegerValue(L"DEBUG_TRACE_INFO", name, value);
    return value;
}

void setLevel(const TempInstallRoot &root, unsigned level)
{
    CFiConfiguration config(CFiStringTool::str2wstr(root.path("ConfigFiles/")).c_str(), L"tamlin.conf", true);
    ACE_Configuration_Section_Key key;
    config.openSection(L"DEBUG_TRACE_INFO", key, 1);
    config.setIntegerValue(L"TRACELEVEL", level);
    config.exportConfig();
}

CFiTraceLogPtr openLog(bool toStdout = false)
{
    CFiTraceLogPtr log(new CFiTraceLog);
    log->initialize(L"tamlin", ACE_WString(), ACE_WString(), 1, toStdout);
    return log;
}

// The severity of the forwarded line whose text is text.
int severityOf(const tamlin_test::MessageRecorder &handler, const std::string &text)
{
    for (size_t i = 0; i < handler.lines.size(); ++i) {
        const std::string &line = handler.lines[i];
        if (line.size() > text.size() + 1 && line.compare(line.size() - text.size() - 1, text.size(), text) == 0) {
            return handler.severities[i];
        }
    }
    return -1;
}

}  // namespace

TEST(TraceLog, FirstRunWritesTheSettingsAndTracesNothing)
{
    TempInstallRoot root;
    CFiTraceLogPtr log = openLog();
    EXPECT_FALSE(log->isInitialized());
    log->trace(1, "not written");

    std::string conf = root.readFile("ConfigFiles/tamlin.conf");
    EXPECT_NE(conf.find("[DEBUG_TRACE_INFO]"), std::string::npos) << conf;
    EXPECT_NE(conf.find("\"TRACEDIR\"=\"" + root.path("Logs/") + "\""), std::string::npos) << conf;
    EXPECT_NE(conf.find("\"TRACEFILE\"=\"tamlin.log\""), std::string::npos) << conf;
    EXPECT_EQ(setting(root, L"TRACELEVEL"), 1u);
    EXPECT_EQ(setting(root, L"TRACESTDOUT"), 0u);
    EXPECT_EQ(setting(root, L"TRACERUNTIMEUPDATE"), 0u);
    EXPECT_TRUE(root.list("Logs").empty()) << "no log file";

    // The next start finds TRACELEVEL 1 and traces errors.
    CFiTraceLogPtr second = openLog();
    ASSERT_TRUE(second->isInitialized());
    int level = 0;
    second->GetTraceLevels(level);
    EXPECT_EQ(level, 1);
    second->trace(1, "error %d", 7);
    second->trace(2, "warning");
    EXPECT_EQ(texts(root), std::vector<std::string>{"error 7"});
}

TEST(TraceLog, LevelSixWritesTheDatedFileWithEveryLevel)
{
    TempInstallRoot root;
    writeSettings(root, "\"TRACELEVEL\"=dword:00000006\n");
    CFiTraceLogPtr log = openLog();
    ASSERT_TRUE(log->isInitialized());
    int level = 0;
    log->GetTraceLevels(level);
    EXPECT_EQ(level, 6);
    EXPECT_EQ(CFiStringTool::tstr2str(log->getFullPath()), root.path(logName()));

    for (int i = 1; i <= 6; ++i) {
        log->trace(i, "level %d", i);
    }
    log->trace(7, "level 7");
    const char *empty = "";
    log->trace(1, "%s", empty);
    log->trace(1, empty);
    log->trace(1, nullptr);
    log->trace(1, "ends in a line feed\n");
    {
        CFiTraceLogFunction fn(log, "qorin_pdk_4_4::CFiFoo::bar");
        CFiTraceLogFunction failing(log, "CHpEvaCliTool::baz");
        failing.setResult(29, "version");
    }

    EXPECT_EQ(texts(root),
              (std::vector<std::string>{
                  "level 1", "level 2", "level 3", "level 4", "level 5", "level 6", "", "ends in a line feed",
                  "Entering Function qorin_pdk_4_4::CFiFoo::bar", "Entering Function CHpEvaCliTool::baz",
                  "Exiting Function CHpEvaCliTool::baz [29, version]", "Exiting Function qorin_pdk_4_4::CFiFoo::bar"}));
    // A text that ends in a line feed keeps it: an empty line follows.
    std::vector<std::string> all = lines(root.readFile(logName()));
    ASSERT_EQ(all.size(), 13u);
    EXPECT_EQ(all[8], "");

    unsigned long pid = 0;
    std::string text;
    ASSERT_TRUE(splitLine(all[0], pid, text));
    EXPECT_EQ(pid, static_cast<unsigned long>(getpid()));
}

TEST(TraceLog, LevelZeroStaysOff)
{
    TempInstallRoot root;
    writeSettings(root, "\"TRACELEVEL\"=dword:00000000\n");
    CFiTraceLogPtr log = openLog();
    EXPECT_FALSE(log->isInitialized());
    log->trace(1, "x");
    EXPECT_TRUE(root.list("Logs").empty());
}

TEST(TraceLog, HandlersGetEveryLevelWithItsSeverity)
{
    TempInstallRoot root;
    writeSettings(root, "\"TRACELEVEL\"=dword:00000003\n");
    CFiTraceLogPtr log = openLog();
    CFiErrorManagerPtr errors(new CFiErrorManager);
    tamlin_test::MessageRecorder handler;
    errors->registerHandler(&handler);
    log->registerErrorManager(errors);

    log->trace(1, "one");
    log->trace(2, "two");
    log->trace(3, "three");
    log->trace(4, "four");
    log->trace(6, "six");
    EXPECT_EQ(severityOf(handler, "one"), QRN_SEVERITY_ERROR);
    EXPECT_EQ(severityOf(handler, "two"), 2);
    EXPECT_EQ(severityOf(handler, "three"), QRN_SEVERITY_INFO);
    EXPECT_EQ(severityOf(handler, "four"), QRN_SEVERITY_DETAIL);
    EXPECT_EQ(severityOf(handler, "six"), QRN_SEVERITY_DETAIL) << "above the level, still forwarded";
    EXPECT_EQ(texts(root), (std::vector<std::string>{"one", "two", "three"}));

    // "<provider>:<timestamp> <Thread id - t> <text>\n"
    std::string line = handler.lines.front();
    EXPECT_EQ(line.rfind("tamlin:", 0), 0u) << line;
    EXPECT_TRUE(std::regex_search(line, std::regex(R"( <Thread id - \d+> one\n$)"))) << line;
}

TEST(TraceLog, RuntimeUpdateFollowsTheFile)
{
    TempInstallRoot root;
    writeSettings(root, "\"TRACELEVEL\"=dword:00000002\n\"TRACERUNTIMEUPDATE\"=dword:00000001\n");
    CFiTraceLogPtr log = openLog();
    ASSERT_TRUE(log->followsConfigFile());
    log->trace(3, "before");
    setLevel(root, 3);
    log->trace(3, "after");
    setLevel(root, 1);
    log->trace(2, "lowered");
    log->trace(1, "still errors");
    EXPECT_EQ(texts(root), (std::vector<std::string>{"after", "still errors"}));

    // Without the flag a change waits for the next start.
    writeSettings(root, "\"TRACELEVEL\"=dword:00000001\n\"TRACERUNTIMEUPDATE\"=dword:00000000\n");
    CFiTraceLogPtr fixed = openLog();
    setLevel(root, 6);
    fixed->trace(6, "ignored");
    EXPECT_FALSE(holds(texts(root), "ignored"));
}

TEST(TraceLog, LongMessagesAreCutTo8191Bytes)
{
    TempInstallRoot root;
    writeSettings(root, "\"TRACELEVEL\"=dword:00000001\n");
    CFiTraceLogPtr log = openLog();
    CFiErrorManagerPtr errors(new CFiErrorManager);
    tamlin_test::MessageRecorder handler;
    errors->registerHandler(&handler);
    log->registerErrorManager(errors);

    std::string longText(10000, 'x');
    longText.replace(0, 5, "start");
    log->trace(1, "%s", longText.c_str());
    log->trace(1, "%s", std::string(1500, 'y').c_str());

    std::vector<std::string> got = texts(root);
    ASSERT_EQ(got.size(), 2u);
    EXPECT_EQ(got[0], longText.substr(0, 8191));
    EXPECT_EQ(got[1], std::string(1500, 'y')) << "a text beyond the first buffer is kept whole";
    std::string forwarded = handler.lines.front();
    EXPECT_NE(forwarded.find("> " + longText.substr(0, 8191) + "\n"), std::string::npos);
}

TEST(TraceLog, AFileThatCantBeReadIsNeverRewritten)
{
    TempInstallRoot root;
    const std::string broken = "[DEBUG_TRACE_INFO\n\"TRACELEVEL\"=dword:00000006\n";
    root.writeFile("ConfigFiles/tamlin.conf", broken);
    CFiTraceLogPtr log = openLog();
    EXPECT_FALSE(log->isInitialized());
    EXPECT_EQ(root.readFile("ConfigFiles/tamlin.conf"), broken);
}

TEST(TraceLog, WithoutAnInstallDirectoryNothingIsWritten)
{
    TempInstallRoot root;
    root.setEnv("QORIN_INSTALL_ROOT", std::nullopt);
    CFiTraceLogPtr log = openLog();
    EXPECT_FALSE(log->isInitialized());
    EXPECT_TRUE(root.list("").empty());
}

// Threads of this process and of two children write long lines at once: every line of the
// file is one whole line of one writer.
TEST(TraceLog, ConcurrentWritersNeverMixInsideALine)
{
    TempInstallRoot root;
    writeSettings(root, "\"TRACELEVEL\"=dword:00000003\n\"TRACERUNTIMEUPDATE\"=dword:00000001\n");
    const int kLines = 300;
    const std::string body(3000, '.');

    std::vector<pid_t> children;
    for (int c = 0; c < 2; ++c) {
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            CFiTraceLogPtr log = openLog();
            for (int i = 0; i < kLines; ++i) {
                log->trace(2, "P%d %d %s end", c, i, body.c_str());
            }
            _exit(0);
        }
        children.push_back(pid);
    }
    CFiTraceLogPtr log = openLog();
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < kLines; ++i) {
                log->trace(2, "T%d %d %s end", t, i, body.c_str());
                log->trace(6, "filtered");
            }
        });
    }
    for (std::thread &t : threads) {
        t.join();
    }
    for (pid_t pid : children) {
        int status = 0;
        waitpid(pid, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }

    // "<writer> <n> <body> end", read without std::regex, whose recursion a 3000-byte body
    // would take deep into the stack.
    std::map<std::string, int> counts;
    for (const std::string &t : texts(root)) {
        size_t blank = t.find(' ', 3);
        ASSERT_TRUE(t.size() > 3 && (t[0] == 'P' || t[0] == 'T') && t[2] == ' ' && blank != std::string::npos &&
                    t.compare(blank, std::string::npos, " " + body + " end") == 0)
            << t.substr(0, 80);
        ++counts[t.substr(0, 2)];
    }
    EXPECT_EQ(counts.size(), 10u);
    for (const auto &writer : counts) {
        EXPECT_EQ(writer.second, kLines) << writer.first;
    }
}
