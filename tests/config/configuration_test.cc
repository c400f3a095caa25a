// The configuration store: the file's round trip through ACE's tree, the failures that are
// results and not exceptions, and a rewrite that never leaves a torn or empty file.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <set>
#include <string>
#include <vector>

#include "cficonfiguration.h"
#include "cficonfigurationpathtool.h"
#include "cfistringtool.h"
#include "temp_install_root.h"

using namespace qorin_pdk_4_4;

namespace {

std::string narrow(const ACE_WString &text)
{
    return CFiStringTool::tstr2str(text);
}

std::wstring wide(const std::string &text)
{
    return CFiStringTool::str2wstr(text);
}

std::string lastErrorText(const CFiConfiguration &config)
{
    return CFiStringTool::wstr2str(std::wstring(config.getLastError().getText()));
}

std::vector<std::string> names(const std::vector<ACE_WString> &sections)
{
    std::vector<std::string> out;
    for (const ACE_WString &s : sections) {
        out.push_back(narrow(s));
    }
    return out;
}

}  // namespace

TEST(Configuration, ProviderFileIsCreatedEmptyAndImportedNextTime)
{
    TempInstallRoot root;
    {
        CFiConfiguration first(ACE_WString(L"tamlin"));
        EXPECT_EQ(narrow(first.getFullPath()), root.path("ConfigFiles/tamlin.conf"));
        EXPECT_NE(lastErrorText(first), "") << "the missing file was noted";
    }
    ASSERT_TRUE(root.exists("ConfigFiles/tamlin.conf"));

    CFiConfiguration second(ACE_WString(L"tamlin"));
    EXPECT_EQ(second.getLastError().getCode(), 0) << lastErrorText(second);
    EXPECT_TRUE(second.enumerateSections(second.configHeap().root_section()).empty());
}

TEST(Configuration, ValuesSurviveExportAndImport)
{
    TempInstallRoot root;
    const std::wstring dir = wide(root.path("ConfigFiles/"));
    {
        CFiConfiguration config(ACE_WString(L"tamlin"));
        ACE_Configuration_Section_Key key;
        ASSERT_EQ(config.openSection(L"DEBUG_TRACE_INFO", key, 1), 0);
        EXPECT_EQ(config.setStringValue(L"TRACEDIR", ACE_WString(L"/var/log/tamlin/")), 0);
        EXPECT_EQ(config.setIntegerValue(L"TRACELEVEL", 6), 0);
        ASSERT_EQ(config.openSection(L"MANAGEMENT_APPLIANCE_INFO\\CV1", key, 1), 0);
        EXPECT_EQ(config.setStringValue(L"HOSTNAME", ACE_WString(L"cv1.example.com")), 0);
        EXPECT_EQ(config.setStringValue(L"PASSWORD", ACE_WString(L"pa ss=wörd\\x")), 0);
        EXPECT_EQ(config.setIntegerValue(L"PORT", 2372), 0);
        // Nothing reaches the disk before the export.
        EXPECT_EQ(root.readFile("ConfigFiles/tamlin.conf").find("TRACELEVEL"), std::string::npos);
        ASSERT_EQ(config.exportConfig(), 0);
    }
    std::string text = root.readFile("ConfigFiles/tamlin.conf");
    EXPECT_NE(text.find("[DEBUG_TRACE_INFO]"), std::string::npos) << text;
    EXPECT_NE(text.find("\"TRACELEVEL\"=dword:"), std::string::npos) << text;
    EXPECT_NE(text.find("[MANAGEMENT_APPLIANCE_INFO\\CV1]"), std::string::npos) << text;

    CFiConfiguration copy(dir.c_str(), L"tamlin.conf", true);
    ASSERT_EQ(copy.getLastError().getCode(), 0) << lastErrorText(copy);
    ACE_WString value;
    unsigned number = 0;
    EXPECT_EQ(copy.getStringValue(L"DEBUG_TRACE_INFO", L"TRACEDIR", value), 0);
    EXPECT_EQ(narrow(value), "/var/log/tamlin/");
    EXPECT_EQ(copy.getIntegerValue(L"DEBUG_TRACE_INFO", L"TRACELEVEL", number), 0);
    EXPECT_EQ(number, 6u);
    EXPECT_EQ(copy.getStringValue(L"MANAGEMENT_APPLIANCE_INFO\\CV1", L"PASSWORD", value), 0);
    EXPECT_EQ(narrow(value), "pa ss=wörd\\x");
    EXPECT_EQ(copy.getIntegerValue(L"PORT", number), 0) << "the section stays current";
    EXPECT_EQ(number, 2372u);
    // A string isn't read as an integer, nor the reverse.
    EXPECT_NE(copy.getIntegerValue(L"HOSTNAME", number), 0);
    EXPECT_NE(copy.getStringValue(L"PORT", value), 0);

    ACE_Configuration_Section_Key key;
    ASSERT_EQ(copy.openSection(L"MANAGEMENT_APPLIANCE_INFO", key, 0), 0);
    EXPECT_EQ(names(copy.enumerateSections()), std::vector<std::string>{"CV1"});
}

TEST(Configuration, ImportFailuresAreResultsWithTheirTexts)
{
    TempInstallRoot root;
    const std::wstring dir = wide(root.path("ConfigFiles/"));
    CFiConfiguration config;

    EXPECT_NE(config.importConfig(wide(root.path("nowhere/")).c_str(), L"tamlin.conf"), 0);
    EXPECT_EQ(lastErrorText(config), "Configuration path verification failed");

    root.writeFile("ConfigFiles/other.conf", "");
    EXPECT_NE(config.importConfig(dir.c_str(), L"tamlin.conf"), 0);
    EXPECT_EQ(lastErrorText(config), "Configuration path succeeded but no configuration file exists.");

    root.writeFile("ConfigFiles/good.conf", "[A]\n\"k\"=\"v\"\n");
    ASSERT_EQ(config.importConfig(dir.c_str(), L"good.conf"), 0);
    // A header without its bracket, and a value before any section.
    for (const char *bad : {"[B]\n\"k\"=\"v\"\n[C\n\"k\"=\"v\"\n", "\"k\"=\"v\"\n[B]\n"}) {
        root.writeFile("ConfigFiles/bad.conf", bad);
        EXPECT_NE(config.importConfig(dir.c_str(), L"bad.conf"), 0) << bad;
        EXPECT_EQ(lastErrorText(config), "Import of configuration file failed.");
    }
    // The store still holds what the good file gave, and nothing of the bad one.
    ACE_WString value;
    EXPECT_EQ(config.getStringValue(L"A", L"k", value), 0);
    EXPECT_EQ(narrow(value), "v");
    EXPECT_EQ(names(config.enumerateSections(config.configHeap().root_section())), std::vector<std::string>{"A"});
}

TEST(Configuration, ExportNeedsAPathAndKeepsTheFileMode)
{
    TempInstallRoot root;
    CFiConfiguration pathless;
    EXPECT_NE(pathless.exportConfig(), 0);

    const std::wstring dir = wide(root.path("ConfigFiles/"));
    root.writeFile("ConfigFiles/t.conf", "[A]\n\"k\"=\"v\"\n");
    ASSERT_EQ(chmod(root.path("ConfigFiles/t.conf").c_str(), 0640), 0);
    CFiConfiguration config(dir.c_str(), L"t.conf", true);
    ASSERT_EQ(config.exportConfig(), 0);
    struct stat info;
    ASSERT_EQ(stat(root.path("ConfigFiles/t.conf").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0640u);
    EXPECT_EQ(root.list("ConfigFiles"), std::vector<std::string>{"t.conf"}) << "no temporary file is left";

    // A new file holds passwords: private to its owner.
    CFiConfiguration fresh(dir.c_str(), L"new.conf", false);
    ASSERT_EQ(fresh.exportConfig(), 0);
    ASSERT_EQ(stat(root.path("ConfigFiles/new.conf").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0077, 0u);
}

// Two processes rewrite one file as fast as they can while this one reads it; then both are
// killed in the middle of their work. Every read, and the file left behind, is one writer's
// complete file.
TEST(Configuration, ConcurrentExportsNeverLeaveATornFile)
{
    TempInstallRoot root;
    const std::wstring dir = wide(root.path("ConfigFiles/"));
    const int kValues = 400;
    root.writeFile("ConfigFiles/shared.conf", "");

    std::vector<pid_t> writers;
    for (char who : {'A', 'B'}) {
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            CFiConfiguration config(dir.c_str(), L"shared.conf", false);
            ACE_Configuration_Section_Key key;
            config.openSection(L"LOAD", key, 1);
            for (int i = 0; i < kValues; ++i) {
                config.setStringValue(wide("K" + std::to_string(i)).c_str(),
                                      CFiStringTool::str2tstr(std::string(20, who)));
            }
            for (;;) {
                config.exportConfig();
            }
        }
        writers.push_back(pid);
    }

    std::set<std::string> seen;
    int reads = 0;
    auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(1500);
    while (std::chrono::steady_clock::now() < end) {
        std::string text = root.readFile("ConfigFiles/shared.conf");
        ++reads;
        if (text.find("[LOAD]") == std::string::npos) {
            EXPECT_EQ(text.find("\"K"), std::string::npos) << "values without their section";
            continue;  // the empty file written before the writers started
        }
        bool a = text.find(std::string(20, 'A')) != std::string::npos;
        bool b = text.find(std::string(20, 'B')) != std::string::npos;
        EXPECT_NE(a, b) << "two writers in one file";
        EXPECT_NE(text.find("\"K" + std::to_string(kValues - 1) + "\""), std::string::npos) << "torn file";
        size_t lines = std::count(text.begin(), text.end(), '\n');
        EXPECT_GE(lines, static_cast<size_t>(kValues + 1));
        seen.insert(a ? "A" : "B");
    }
    for (pid_t pid : writers) {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
    EXPECT_GT(reads, 10);
    EXPECT_EQ(seen.size(), 2u) << "both writers got their turn";

    CFiConfiguration after(dir.c_str(), L"shared.conf", true);
    ASSERT_EQ(after.getLastError().getCode(), 0) << lastErrorText(after);
    ACE_WString value;
    EXPECT_EQ(after.getStringValue(L"LOAD", wide("K" + std::to_string(kValues - 1)).c_str(), value), 0);
}
