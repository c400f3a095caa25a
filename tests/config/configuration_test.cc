// The configuration store: the file's round trip through ACE's tree, the failures that are
// results and not exceptions, and a rewrite that never leaves a torn or empty file.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
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

TEST(Configuration, AFileThatDoesNotImportIsNeverRewrittenAndItsBadLineIsNamed)
{
    TempInstallRoot root;
    const std::string good = "; the administrator's file\n"
                             "[CLI_TOOL_INFO]\n"
                             "\"FILEPATH\"=\"/opt/HP/SSSU/\"\n"
                             "\n"
                             "[MANAGEMENT_APPLIANCE_INFO\\cv1]\n"
                             "\"PASSWORD\"=\"s3cret\"\n";
    struct Row {
        std::string text;
        size_t line;
        const char *problem;
    } rows[] = {
        {"[BROKEN_SECTION\n" + good, 1, "a section header has no closing ]"},
        {good + "[" + std::string(5000, 'X') + "]\n", 7, "a section name is longer than 255 characters"},
        {"\"k\"=\"v\"\n" + good, 1, "a value before the first section header"},
        {good + "TRACELEVEL=6\n", 7, "a line that is neither a section header, a value nor a comment"},
        {good + "\"PASSWORD\"=\"unclosed\n", 7, "a text value has no closing double quote"},
        {good + "\"TRACELEVEL\"=dword:6x\n", 7, "text after a value that is not a comment"},
        {good + "[A\\\\B]\n", 7, "a section path with an empty level"},
        {good + "\"k\"=\"\xff\"\n", 7, "text that is not UTF-8"},
        // ACE's importer copied 2 GiB into a one-byte buffer for twenty of these.
        {good +
             [] {
                 std::string lines;
                 for (int i = 0; i < 20; ++i) {
                     lines += std::string("\"k\"=\"\0\"\n", 8);
                 }
                 return lines;
             }(),
         7, "a NUL character"},
    };
    for (const Row &row : rows) {
        root.writeFile("ConfigFiles/tamlin.conf", row.text);
        CFiConfiguration config(ACE_WString(L"tamlin"));
        EXPECT_EQ(config.importState(), CFiConfiguration::MALFORMED) << row.problem;
        EXPECT_EQ(lastErrorText(config), "Import of configuration file failed.");
        EXPECT_EQ(config.importLine(), row.line) << row.problem;
        EXPECT_EQ(config.importProblem().rfind(row.problem, 0), 0u) << config.importProblem();
        EXPECT_EQ(config.importProblem().find("s3cret"), std::string::npos) << "the file's text is never quoted";
        EXPECT_NE(config.exportConfig(), 0) << "a file that wasn't read whole is not replaced";
        EXPECT_EQ(root.readFile("ConfigFiles/tamlin.conf"), row.text) << "left byte for byte: " << row.problem;
    }

    // A directory in the file's place can't be read; the constructor doesn't touch it.
    std::filesystem::remove(root.path("ConfigFiles/tamlin.conf"));
    std::filesystem::create_directories(root.path("ConfigFiles/tamlin.conf"));
    CFiConfiguration config(ACE_WString(L"tamlin"));
    EXPECT_EQ(config.importState(), CFiConfiguration::UNREADABLE);
    EXPECT_EQ(config.importProblem(), "it is a directory");
    EXPECT_TRUE(std::filesystem::is_directory(root.path("ConfigFiles/tamlin.conf")));

    // An import that fails leaves the store as the good one gave it.
    const std::wstring dir = wide(root.path("ConfigFiles/"));
    root.writeFile("ConfigFiles/good.conf", good);
    ASSERT_EQ(config.importConfig(dir.c_str(), L"good.conf"), 0);
    root.writeFile("ConfigFiles/bad.conf", "[B]\n[C\n");
    EXPECT_NE(config.importConfig(dir.c_str(), L"bad.conf"), 0);
    ACE_WString value;
    EXPECT_EQ(config.getStringValue(L"CLI_TOOL_INFO", L"FILEPATH", value), 0);
    EXPECT_EQ(names(config.enumerateSections(config.configHeap().root_section())),
              (std::vector<std::string>{"CLI_TOOL_INFO", "MANAGEMENT_APPLIANCE_INFO"}));
}

// What the provider adds at its first start lands in the administrator's own file: through
// its symbolic link, with every comment, blank line and value where it was.
TEST(Configuration, AddedSettingsKeepTheFileItsCommentsAndItsLink)
{
    TempInstallRoot root;
    const std::string original = "; Tamlin on backup01 -- ask the storage team before changing\r\n"
                                 "[DEBUG_TRACE_INFO]\r\n"
                                 "\"TRACELEVEL\"=dword:00000003   ; 6 for everything\r\n"
                                 "\r\n"
                                 "# the primary server first\r\n"
                                 "[MANAGEMENT_APPLIANCE_INFO\\zeta]\r\n"
                                 "\"HOSTNAME\"=\"cv-z\"\r\n"
                                 "[MANAGEMENT_APPLIANCE_INFO\\alpha]\r\n"
                                 "\"HOSTNAME\"=\"cv-a\"\r\n";
    root.writeFile("elsewhere/tamlin.conf", original);
    std::filesystem::create_directories(root.path("ConfigFiles"));
    std::filesystem::create_symlink(root.path("elsewhere/tamlin.conf"), root.path("ConfigFiles/tamlin.conf"));
    {
        CFiConfiguration config(ACE_WString(L"tamlin"));
        ASSERT_EQ(config.importState(), CFiConfiguration::READ);
        ASSERT_EQ(config.exportConfig(), 0);
        EXPECT_EQ(root.readFile("elsewhere/tamlin.conf"), original) << "an unchanged store changes nothing";

        ACE_Configuration_Section_Key key;
        ASSERT_EQ(config.openSection(L"DEBUG_TRACE_INFO", key, 0), 0);
        config.setIntegerValue(L"TRACELEVEL", 6);
        config.setStringValue(L"TRACEFILE", ACE_WString(L"tamlin.log"));
        config.setStringValue(L"TRACEDIR", ACE_WString(L"/var/log/"));
        ASSERT_EQ(config.openSection(L"TUNING_PARAMS", key, 1), 0);
        config.setIntegerValue(L"POST_UNMASK_WAIT_IN_SEC", 5);
        ASSERT_EQ(config.exportConfig(), 0);
    }
    EXPECT_TRUE(std::filesystem::is_symlink(root.path("ConfigFiles/tamlin.conf")));
    EXPECT_EQ(root.readFile("elsewhere/tamlin.conf"), "; Tamlin on backup01 -- ask the storage team before changing\r\n"
                                                      "[DEBUG_TRACE_INFO]\r\n"
                                                      "\"TRACELEVEL\"=dword:00000006   ; 6 for everything\r\n"
                                                      "\"TRACEFILE\"=\"tamlin.log\"\r\n"
                                                      "\"TRACEDIR\"=\"/var/log/\"\r\n"
                                                      "\r\n"
                                                      "# the primary server first\r\n"
                                                      "[MANAGEMENT_APPLIANCE_INFO\\zeta]\r\n"
                                                      "\"HOSTNAME\"=\"cv-z\"\r\n"
                                                      "[MANAGEMENT_APPLIANCE_INFO\\alpha]\r\n"
                                                      "\"HOSTNAME\"=\"cv-a\"\r\n"
                                                      "\r\n"
                                                      "[TUNING_PARAMS]\r\n"
                                                      "\"POST_UNMASK_WAIT_IN_SEC\"=dword:00000005\r\n");
    EXPECT_EQ(root.list("elsewhere"), std::vector<std::string>{"tamlin.conf"}) << "no temporary file is left";
}

// Administrators list the primary server first: sections come back in the file's order,
// whatever their names, and new ones after them in the order they were made.
TEST(Configuration, SectionsEnumerateInTheFilesOrder)
{
    TempInstallRoot root;
    const std::vector<std::string> servers = {"primary", "zz9", "backup", "cv10", "a", "cv2", "M", "x-1", "cv1"};
    std::string text;
    for (const std::string &server : servers) {
        text += "[MANAGEMENT_APPLIANCE_INFO\\" + server + "]\n\"HOSTNAME\"=\"" + server +
                ".example.com\"\n\"USERNAME\"=\"u\"\n\"PASSWORD\"=\"p\"\n";
    }
    // Names in another letter case are the same names, as in ACE's tree and the registry.
    text += "[Management_Appliance_Info\\PRIMARY]\n\"hostname\"=\"first.example.com\"\n";
    root.writeFile("ConfigFiles/tamlin.conf", text + "[AFTER]\n");
    CFiConfiguration config(ACE_WString(L"tamlin"));
    ACE_Configuration_Section_Key key;
    ASSERT_EQ(config.openSection(L"MANAGEMENT_APPLIANCE_INFO", key, 0), 0);
    EXPECT_EQ(names(config.enumerateSections()), servers);
    ASSERT_EQ(config.openSection(L"MANAGEMENT_APPLIANCE_INFO\\new", key, 1), 0);
    ASSERT_EQ(config.openSection(L"MANAGEMENT_APPLIANCE_INFO", key, 0), 0);
    EXPECT_EQ(names(config.enumerateSections()).back(), "new");
    EXPECT_EQ(names(config.enumerateSections(config.configHeap().root_section())),
              (std::vector<std::string>{"MANAGEMENT_APPLIANCE_INFO", "AFTER"}));
    ACE_WString value;
    EXPECT_EQ(config.getStringValue(L"management_appliance_info\\PRIMARY", L"HostName", value), 0);
    EXPECT_EQ(narrow(value), "first.example.com");

    std::vector<std::string> hosts;
    for (const SFiCredential &c :
         config.importCredentials("HP", "HSV", ACE_WString(L"MANAGEMENT_APPLIANCE_INFO"), false)) {
        hosts.push_back(narrow(ACE_WString(c.hostname.c_str())));
    }
    ASSERT_EQ(hosts.size(), servers.size());
    EXPECT_EQ(hosts[0], "first.example.com");
    for (size_t i = 1; i < servers.size(); ++i) {
        EXPECT_EQ(hosts[i], servers[i] + ".example.com");
    }
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
            CFiConfiguration config(dir.c_str(), L"shared.conf", true);
            ACE_Configuration_Section_Key key;
            config.openSection(L"LOAD", key, 1);
            for (int i = 0; i < kValues; ++i) {
                config.setStringValue(wide("K" + std::to_string(i)).c_str(),
                                      CFiStringTool::str2tstr(std::string(20, who)));
            }
            // A value that changes each time, since an export that changes nothing writes nothing.
            for (unsigned n = 0;; ++n) {
                config.setIntegerValue(L"ROUND", n);
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
