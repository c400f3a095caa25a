// The install locations: where the install directory comes from (registry stand-in, then the
// framework), the four locations below it, and that nothing is written without one.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "cficonfigurationpathtool.h"
#include "cfistringtool.h"
#include "temp_install_root.h"

using namespace qorin_pdk_4_4;

namespace {

std::string narrow(const ACE_WString &text)
{
    return CFiStringTool::tstr2str(text);
}

const char kRegistry[] = "[SOFTWARE\\Orvanta\\Qorin]\n"
                         "\"InstallDir64\"=\"/srv/qorin\"\n"
                         "[SOFTWARE\\Orvanta\\Qorin\\acme]\n"
                         "\"InstallDir64\"=\"/srv/acme/\"\n"
                         "[SOFTWARE\\Microsoft\\Windows\\CurrentVersion]\n"
                         "\"ProgramFilesDir\"=\"/usr/local\"\n";

}  // namespace

TEST(PathTool, LocationsAreCreatedBelowTheInstallRootWithMode0755)
{
    TempInstallRoot root;
    ASSERT_TRUE(root.ok());
    mode_t oldMask = umask(022);
    ACE_WString dir;
    ACE_WString file;

    EXPECT_EQ(CFiConfigurationPathTool::getTraceFileInfo(L"tamlin", dir, file), 0);
    EXPECT_EQ(narrow(dir), root.path("Logs/"));
    EXPECT_EQ(narrow(file), "tamlin.log");
    EXPECT_EQ(CFiConfigurationPathTool::getConfigFileInfo(L"tamlin", dir, file), 0);
    EXPECT_EQ(narrow(dir), root.path("ConfigFiles/"));
    EXPECT_EQ(narrow(file), "tamlin.conf");
    EXPECT_EQ(CFiConfigurationPathTool::getMessageFileInfo(L"tamlin", dir, file), 0);
    EXPECT_EQ(narrow(dir), root.path("Messages/"));
    EXPECT_EQ(narrow(file), "libtamlin");
    EXPECT_EQ(CFiConfigurationPathTool::getCacheLocationInfo(dir), 0);
    EXPECT_EQ(narrow(dir), root.path("CacheFiles/"));
    umask(oldMask);

    for (const char *leaf : {"Logs", "ConfigFiles", "Messages", "CacheFiles"}) {
        struct stat info;
        ASSERT_EQ(stat(root.path(leaf).c_str(), &info), 0) << leaf;
        EXPECT_TRUE(S_ISDIR(info.st_mode)) << leaf;
        EXPECT_EQ(info.st_mode & 0777, 0755u) << leaf;
    }
    // An existing location is left as it is, and still answers 0.
    chmod(root.path("Logs").c_str(), 0700);
    EXPECT_EQ(CFiConfigurationPathTool::getTraceFileInfo(L"tamlin", dir, file), 0);
    struct stat info;
    ASSERT_EQ(stat(root.path("Logs").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);
}

TEST(PathTool, RegistryStandInComesBeforeTheFramework)
{
    TempInstallRoot root;
    ACE_WString path;
    // No registry file: the framework's root, and a non-zero status.
    EXPECT_NE(CFiConfigurationPathTool::getInstallPath(path), 0);
    EXPECT_EQ(narrow(path), root.dir());

    root.writeFile("registry.conf", kRegistry);
    path = ACE_WString();
    EXPECT_EQ(CFiConfigurationPathTool::getInstallPath(path), 0);
    EXPECT_EQ(narrow(path), "/srv/qorin/") << "a separator is appended";

    // A consumer name selects the key below.
    root.setEnv("QORIN_CONSUMER", std::string("acme"));
    path = ACE_WString();
    EXPECT_EQ(CFiConfigurationPathTool::getInstallPath(path), 0);
    EXPECT_EQ(narrow(path), "/srv/acme/");

    // A consumer without a key, or a key without the value, falls back to the framework.
    root.setEnv("QORIN_CONSUMER", std::string("other"));
    path = ACE_WString();
    EXPECT_NE(CFiConfigurationPathTool::getInstallPath(path), 0);
    EXPECT_EQ(narrow(path), root.dir());
    root.writeFile("registry.conf", std::string(kRegistry) + "[SOFTWARE\\Orvanta\\Qorin\\other]\n\"Other\"=\"x\"\n");
    path = ACE_WString(L"/kept/");
    EXPECT_NE(CFiConfigurationPathTool::getInstallPath(path), 0);
    EXPECT_EQ(narrow(path), "/kept/") << "a path the caller already holds is kept";

    // The registry is read once, and again when it changes.
    root.setEnv("QORIN_CONSUMER", std::nullopt);
    root.writeFile("registry.conf", "; moved\n[software\\orvanta\\QORIN]  ; ours\n\"installdir64\"=\"/srv/new\"\n");
    path = ACE_WString();
    EXPECT_EQ(CFiConfigurationPathTool::getInstallPath(path), 0);
    EXPECT_EQ(narrow(path), "/srv/new/");
}

// Twenty lines that each hold a NUL byte made ACE's importer copy 2 GiB into a one-byte
// buffer. Such a registry now holds no install path, and the framework's root is used.
TEST(PathTool, AMalformedRegistryIsNoRegistry)
{
    TempInstallRoot root;
    std::string registry = kRegistry;
    for (int i = 0; i < 20; ++i) {
        registry += std::string("\"k\"=\"\0\"\n", 8);
    }
    root.writeFile("registry.conf", registry);
    ACE_WString path;
    EXPECT_NE(CFiConfigurationPathTool::getInstallPath(path), 0);
    EXPECT_EQ(narrow(path), root.dir());
}

TEST(PathTool, WithoutAnInstallDirectoryNothingIsCreated)
{
    TempInstallRoot root;
    root.setEnv("QORIN_INSTALL_ROOT", std::nullopt);
    char cwd[4096];
    ASSERT_NE(getcwd(cwd, sizeof cwd), nullptr);
    ASSERT_EQ(chdir(root.dir().c_str()), 0);

    // The locations answer 0 with their file names, as with a root, and an empty directory
    // instead of one relative to the working directory.
    ACE_WString dir(L"stale");
    ACE_WString file(L"stale");
    EXPECT_EQ(CFiConfigurationPathTool::getConfigFileInfo(L"tamlin", dir, file), 0);
    EXPECT_EQ(dir.length(), 0u);
    EXPECT_EQ(narrow(file), "tamlin.conf");
    EXPECT_EQ(CFiConfigurationPathTool::getTraceFileInfo(L"tamlin", dir, file), 0);
    EXPECT_EQ(dir.length(), 0u);
    EXPECT_EQ(narrow(file), "tamlin.log");
    EXPECT_EQ(CFiConfigurationPathTool::getMessageFileInfo(L"tamlin", dir, file), 0);
    EXPECT_EQ(dir.length(), 0u);
    EXPECT_EQ(narrow(file), "libtamlin");
    dir = ACE_WString(L"stale");
    EXPECT_EQ(CFiConfigurationPathTool::getCacheLocationInfo(dir), 0);
    EXPECT_EQ(dir.length(), 0u);
    EXPECT_TRUE(root.list("").empty()) << "nothing below the working directory";
    ASSERT_EQ(chdir(cwd), 0);
}
