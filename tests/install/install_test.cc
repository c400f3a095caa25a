// Tamlin as an administrator installs it: `cmake --install` into a staging directory, then the
// installed tamlinctl, found through nothing but the registry stand-in, against the simulator;
// and a provider of another vendor built on the installed kit.
#include <gtest/gtest.h>

#include <pwd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "scratch_files.h"
#include "temp_install_root.h"
#include "test_paths.h"

namespace {

namespace fs = std::filesystem;

using Outcome = tamlin_test::CommandRun;

// Standard output and error together.
Outcome shell(const std::string &command)
{
    return tamlin_test::runCommand(command + " 2>&1");
}

std::string shellWord(const std::string &word)
{
    std::string out = "'";
    for (char c : word) {
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return out + "'";
}

std::string readFile(const std::string &path)
{
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

void writeFile(const std::string &path, const std::string &text)
{
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path) << text;
}

// Where the build's install rules put things, as configured (below the staging directory).
#define INSTALLED(name) tamlin_test::envOr(#name, name##_DEFAULT)

// One staged install for every test of this program: the default components, as
// `make install DESTDIR=...` makes them.
class Staged : public ::testing::Environment {
public:
    void SetUp() override
    {
        scratch = new TempInstallRoot;
        stage = scratch->path("stage");
        Outcome run = shell("DESTDIR=" + shellWord(stage) + " " + shellWord(INSTALLED(CMAKE)) + " --install " +
                            shellWord(tamlin_test::buildDir()));
        ASSERT_EQ(run.status, 0) << run.output;
        report = run.output;
    }
    void TearDown() override { delete scratch; }

    static std::string at(const std::string &path) { return stage + path; }

    static TempInstallRoot *scratch;
    static std::string stage;
    static std::string report;
};
TempInstallRoot *Staged::scratch = nullptr;
std::string Staged::stage;
std::string Staged::report;
const ::testing::Environment *const kStaged = ::testing::AddGlobalTestEnvironment(new Staged);

// The staged tamlinctl with the environment of a backup host whose registry stand-in is given;
// the test's own install root is not in its environment. Standard input holds input.
Outcome tamlinctl(const std::string &registry, const std::string &arguments, const std::string &input = "")
{
    const std::string file = Staged::scratch->path("stdin");
    writeFile(file, input);
    return shell("env -u QORIN_INSTALL_ROOT -u QORIN_CREDENTIAL_BLOB QORIN_REGISTRY=" + shellWord(registry) + " " +
                 shellWord(Staged::at(INSTALLED(INSTALL_BINDIR)) + "/tamlinctl") + " " + arguments + " <" +
                 shellWord(file));
}

// A registry stand-in that names the root.
std::string registryNaming(std::string root)
{
    if (root.back() != '/') {
        root += '/';
    }
    const std::string file = Staged::scratch->path("registry/registry.conf");
    writeFile(file, "[SOFTWARE\\Orvanta\\Qorin]\n\"InstallDir64\"=\"" + root + "\"\n");
    return file;
}

// SSSU played by the simulator (built, not installed) in the world of small.scn, where server
// cv1 takes the login admin/secret; its path.
std::string simulatedSssu()
{
    const std::string sssu = Staged::scratch->path("sssu/sssu_linux_x64");
    fs::create_directories(fs::path(sssu).parent_path());
    std::error_code ignored;
    fs::create_symlink(tamlin_test::buildDir() + "/bin/evasim", sssu, ignored);
    Staged::scratch->setEnv("EVASIM_HOME", Staged::scratch->path("evasim"));
    Outcome init = shell(shellWord(sssu) + " init --scenario " +
                         shellWord(tamlin_test::sourceDir() + "/tools/evasim/scenarios/small.scn"));
    EXPECT_EQ(init.status, 0) << init.output;
    return sssu;
}

}  // namespace

TEST(Install, LaysOutTheProviderItsToolsAndTheKitButNotTheSimulator)
{
    for (const std::string &path :
         {Staged::at(INSTALLED(INSTALL_BINDIR)) + "/tamlinctl", Staged::at(INSTALLED(INSTALL_LIBDIR)) + "/libtamlin.so",
          Staged::at(INSTALLED(INSTALL_LIBDIR)) + "/libqorinutil.so",
          Staged::at(INSTALLED(INSTALL_MESSAGES)) + "/root.res", Staged::at(INSTALLED(INSTALL_MESSAGES)) + "/de.res",
          Staged::at(INSTALLED(INSTALL_MANDIR)) + "/man1/tamlinctl.1.gz",
          Staged::at(INSTALLED(INSTALL_DATADIR)) + "/bash-completion/completions/tamlinctl",
          Staged::at(INSTALLED(INSTALL_INCLUDEDIR)) + "/cfiplugininterposer.h",
          Staged::at(INSTALLED(INSTALL_CMAKEDIR)) + "/QorinPdkConfig.cmake",
          Staged::at(INSTALLED(INSTALL_CMAKEDIR)) + "/../../pkgconfig/qorinpdk.pc"}) {
        EXPECT_TRUE(fs::exists(path)) << path << "\n" << Staged::report;
    }
    EXPECT_FALSE(fs::exists(Staged::at(INSTALLED(INSTALL_BINDIR)) + "/evasim"));
    EXPECT_FALSE(fs::exists(Staged::at(INSTALLED(INSTALL_MANDIR)) + "/man1/evasim.1.gz"));

    // The sample settings are the owner's alone, and a second install keeps what was written.
    const std::string conf = Staged::at(INSTALLED(INSTALL_CONFIG_DIR)) + "/tamlin.conf";
    struct stat info {};
    ASSERT_EQ(stat(conf.c_str(), &info), 0) << Staged::report;
    EXPECT_EQ(info.st_mode & 0777, 0600u);
    const std::string edited = readFile(conf) + "; the administrator's\n";
    EXPECT_NE(edited.find("[MANAGEMENT_APPLIANCE_INFO]"), std::string::npos);
    writeFile(conf, edited);
    Outcome again = shell("DESTDIR=" + shellWord(Staged::stage) + " " + shellWord(INSTALLED(CMAKE)) + " --install " +
                          shellWord(tamlin_test::buildDir()));
    EXPECT_EQ(again.status, 0) << again.output;
    EXPECT_EQ(readFile(conf), edited);

    // The completion, as bash runs it, offers the commands, options and values of the help texts.
    const std::string completion = Staged::at(INSTALLED(INSTALL_DATADIR)) + "/bash-completion/completions/tamlinctl";
    auto complete = [&](const std::string &words) {
        return shell("bash -c " + shellWord("source " + shellWord(completion) + "; COMP_WORDS=(tamlinctl " + words +
                                            "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _tamlinctl; "
                                            "echo \"${COMPREPLY[*]}\""))
            .output;
    };
    EXPECT_EQ(complete("se"), "setup\n");
    EXPECT_EQ(complete("--json di"), "disks dispose\n");
    EXPECT_EQ(complete("--provider lib.so snapshot --method HPEVA_S"), "HPEVA_Snapshot HPEVA_Snapclone\n");
    EXPECT_EQ(complete("disks --no-"), "--no-active --no-snapshots\n");
}

// The first run on a fresh host: setup takes the installed root, names it in a registry stand-in
// that isn't there yet and writes the login; then the installed tamlinctl finds everything
// through that registry alone.
TEST(Install, SetupTakesTheInstalledRootAndTamlinctlThenListsTheSimulatorsDisks)
{
    if (INSTALLED(INSTALL_LAYOUT) != "opt") {
        GTEST_SKIP() << "the installed root's links lead out of the staging directory";
    }
    const std::string root = Staged::at(INSTALLED(INSTALL_ROOT)) + "/";
    const std::string registry = Staged::scratch->path("etc/qorin/registry.conf");
    Outcome setup =
        tamlinctl(registry, "setup --sssu " + shellWord(simulatedSssu()) + " --server cv1 --user admin", "secret\n");
    ASSERT_EQ(setup.status, 0) << setup.output;
    EXPECT_NE(setup.output.find("install root  " + root + " (as installed)"), std::string::npos) << setup.output;
    EXPECT_NE(setup.output.find("init       ok"), std::string::npos) << setup.output;
    EXPECT_NE(setup.output.find("EVA01"), std::string::npos) << setup.output;
    EXPECT_EQ(readFile(registry), "[SOFTWARE\\Orvanta\\Qorin]\n\"InstallDir64\"=\"" + root + "\"\n");
    struct stat info {};
    ASSERT_EQ(stat(registry.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0644u) << "every backup account reads the registry";
    const std::string conf = readFile(root + "ConfigFiles/tamlin.conf");
    EXPECT_NE(conf.find("; Settings of the Tamlin snapshot provider"), std::string::npos) << conf;
    EXPECT_NE(conf.find("[MANAGEMENT_APPLIANCE_INFO\\cv1]"), std::string::npos) << conf;

    Outcome check = tamlinctl(registry, "check");
    EXPECT_EQ(check.status, 0) << check.output;
    // The provider beside the installed tamlinctl, not the one of the build tree.
    EXPECT_NE(check.output.find("provider   " + Staged::at(INSTALLED(INSTALL_LIBDIR))), std::string::npos)
        << check.output;
    Outcome disks = tamlinctl(registry, "disks");
    EXPECT_EQ(disks.status, 0) << disks.output;
    EXPECT_NE(disks.output.find("UDID##HP##HSV##"), std::string::npos) << disks.output;
    EXPECT_FALSE(fs::is_empty(root + "Logs")) << "the trace log belongs in the installed root";
}

// setup on a host that has a registry and settings already: what it doesn't set stays as it
// was, a server it knows gets its new login, and a refused run changes nothing at all.
TEST(Install, SetupKeepsWhatTheFilesHoldAndChangesNothingWhenRefused)
{
    const std::string root = Staged::scratch->path("qorin/");
    const std::string registry = Staged::scratch->path("machine/registry.conf");
    const std::string others =
        "; the framework's\n[SOFTWARE\\Orvanta\\Qorin\\nightly]\n\"InstallDir64\"=\"/srv/nightly/\"\n";
    writeFile(registry, others);
    const std::string conf = root + "ConfigFiles/tamlin.conf";
    writeFile(conf, "# tuned for the night\n[TUNING_PARAMS]\n\"POST_UNMASK_WAIT_IN_SEC\"=dword:00000005\n\n"
                    "[MANAGEMENT_APPLIANCE_INFO\\primary]\n\"HOSTNAME\"=\"CV1\"\n\"USERNAME\"=\"old\"\n"
                    "\"PASSWORD\"=\"expired\"\n");
    chmod(conf.c_str(), 0644);
    const std::string sssu = simulatedSssu();
    const std::string arguments =
        "setup --root " + shellWord(root) + " --sssu " + shellWord(sssu) + " --server cv1 --user admin";

    // Refused: a password on the command line (never shown back), none on standard input, an
    // account or a server name that can't be used, though the password is there.
    const std::string before = readFile(conf);
    Outcome onCommandLine = tamlinctl(registry, arguments + " --password hunter2", "secret\n");
    EXPECT_EQ(onCommandLine.status, 2) << onCommandLine.output;
    EXPECT_EQ(onCommandLine.output.find("hunter2"), std::string::npos) << onCommandLine.output;
    Outcome noPassword = tamlinctl(registry, arguments, "");
    EXPECT_EQ(noPassword.status, 1) << noPassword.output;
    Outcome noAccount = tamlinctl(registry, arguments + " --owner no-such-account", "secret\n");
    EXPECT_EQ(noAccount.status, 1) << noAccount.output;
    EXPECT_NE(noAccount.output.find("there is no account no-such-account"), std::string::npos) << noAccount.output;
    for (const char *host : {"''", "'cv 2'", "'cv]2'"}) {
        Outcome badHost = tamlinctl(registry, arguments + " --server " + host, "secret\nsecret\n");
        EXPECT_EQ(badHost.status, 2) << host << ": " << badHost.output;
    }
    EXPECT_EQ(readFile(conf), before);
    EXPECT_EQ(readFile(registry), others);
    EXPECT_FALSE(fs::exists(root + "Logs"));

    const bool asRoot = geteuid() == 0;
    Outcome setup = tamlinctl(registry, arguments + (asRoot ? " --owner nobody" : ""), "secret\n");
    ASSERT_EQ(setup.status, 0) << setup.output;
    EXPECT_NE(setup.output.find("login replaced"), std::string::npos) << setup.output;
    EXPECT_NE(setup.output.find("EVA01"), std::string::npos) << setup.output;
    EXPECT_EQ(readFile(registry), others + "\n[SOFTWARE\\Orvanta\\Qorin]\n\"InstallDir64\"=\"" + root + "\"\n");
    const std::string after = readFile(conf);
    for (const char *kept : {"# tuned for the night", "\"POST_UNMASK_WAIT_IN_SEC\"=dword:00000005",
                             "[MANAGEMENT_APPLIANCE_INFO\\primary]", "\"PASSWORD\"=\"secret\""}) {
        EXPECT_NE(after.find(kept), std::string::npos) << kept << " in:\n" << after;
    }
    EXPECT_EQ(after.find("expired"), std::string::npos) << after;
    EXPECT_EQ(after.find("HOSTNAME", after.find("HOSTNAME") + 1), std::string::npos) << "one section per server";
    struct stat info {};
    ASSERT_EQ(stat(conf.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
    EXPECT_TRUE(fs::exists(root + "Messages/libtamlin/root.res"));
    if (asRoot) {
        ASSERT_EQ(stat((root + "Logs").c_str(), &info), 0);
        EXPECT_EQ(info.st_uid, getpwnam("nobody")->pw_uid) << "the backup account writes the log";
    }
}

TEST(Install, AProviderBuiltOnTheInstalledKitLoadsInTamlinctl)
{
    const std::string build = Staged::scratch->path("tiny");
    Outcome configure = shell(
        shellWord(INSTALLED(CMAKE)) + " -S " + shellWord(tamlin_test::sourceDir() + "/tests/install/tiny_provider") +
        " -B " + shellWord(build) + " -DCMAKE_PREFIX_PATH=" + shellWord(Staged::stage + INSTALLED(INSTALL_PREFIX)) +
        " -DTAMLIN_ENTRIES_HEADER=" +
        shellWord(tamlin_test::sourceDir() + "/providers/hpeva/include/tamlin_entries.h"));
    ASSERT_EQ(configure.status, 0) << configure.output;
    Outcome compile = shell(shellWord(INSTALLED(CMAKE)) + " --build " + shellWord(build));
    ASSERT_EQ(compile.status, 0) << compile.output;

    TempInstallRoot root;
    root.installMessages();
    Outcome check =
        tamlinctl(registryNaming(root.path("")), "--provider " + shellWord(build + "/libtiny.so") + " check");
    EXPECT_EQ(check.status, 0) << check.output;
    EXPECT_NE(check.output.find("tiny provider started on the kit"), std::string::npos) << check.output;
    EXPECT_NE(check.output.find("interface  4.4.0.1"), std::string::npos) << check.output;
}
