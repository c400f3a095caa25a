// tamlinctl as an administrator runs it.
#include <gtest/gtest.h>

#include "provider_install.h"
#include "temp_install_root.h"
#include "test_paths.h"

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

struct CtlRun {
    int status;
    std::string out;
};

// Runs tamlinctl with arguments; stderr goes into the output too.
CtlRun tamlinctl(const std::string &args)
{
    std::string command = tamlin_test::envOr("TAMLINCTL", TAMLINCTL_DEFAULT) + " " + args + " 2>&1";
    FILE *pipe = popen(command.c_str(), "r");
    CtlRun run{-1, ""};
    if (pipe == nullptr) {
        return run;
    }
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) {
        run.out.append(buffer, n);
    }
    int status = pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

// Every run of this program sees one provider install against the simulator's small world.
class Install : public ::testing::Environment {
public:
    void SetUp() override
    {
        site = new ProviderInstall;
        ASSERT_TRUE(site->ok()) << site->loadReport();
    }
    void TearDown() override { delete site; }

    static ProviderInstall *site;
};
ProviderInstall *Install::site = nullptr;
const ::testing::Environment *const kInstall = ::testing::AddGlobalTestEnvironment(new Install);

}  // namespace

TEST(Tamlinctl, CheckLoadsTheBuiltProvider)
{
    CtlRun run = tamlinctl("check");
    EXPECT_EQ(run.status, 0) << run.out;
    EXPECT_NE(run.out.find("entries    70 of 70 resolved"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("interface  7.0.0.0"), std::string::npos) << run.out;
}

TEST(Tamlinctl, CheckNamesEveryMissingEntry)
{
    CtlRun run = tamlinctl(std::string("--provider ") +
                           tamlin_test::envOr("PARTIAL_PROVIDER", PARTIAL_PROVIDER_DEFAULT) + " check");
    EXPECT_EQ(run.status, 3) << run.out;
    EXPECT_NE(run.out.find("lacks 67 of the 70 entries"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("missing entry tamlin_fi_pgn_errmsg"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("missing entry tamlin_fi_pgn_set_restorepaths"), std::string::npos) << run.out;
    EXPECT_EQ(run.out.find("missing entry tamlin_fi_pgn_claim"), std::string::npos) << run.out;
}

TEST(Tamlinctl, UnloadableLibraryAndBadUsage)
{
    CtlRun missing = tamlinctl("--provider /nonexistent/libtamlin.so check");
    EXPECT_EQ(missing.status, 3);
    EXPECT_NE(missing.out.find("cannot load /nonexistent/libtamlin.so"), std::string::npos) << missing.out;

    EXPECT_EQ(tamlinctl("frobnicate").status, 2);
    EXPECT_EQ(tamlinctl("--bogus check").status, 2);
    EXPECT_EQ(tamlinctl("--provider").status, 2);
    EXPECT_EQ(tamlinctl("check extra").status, 2);
    EXPECT_EQ(tamlinctl("").status, 2) << "no command is a usage error, with the help text";
}

TEST(Tamlinctl, HelpEverywhere)
{
    CtlRun main = tamlinctl("--help");
    EXPECT_EQ(main.status, 0);
    EXPECT_NE(main.out.find("Usage: tamlinctl"), std::string::npos);
    EXPECT_NE(main.out.find("check"), std::string::npos);
    CtlRun command = tamlinctl("check --help");
    EXPECT_EQ(command.status, 0);
    EXPECT_NE(command.out.find("Usage: tamlinctl [global options] check"), std::string::npos);
    CtlRun viaHelp = tamlinctl("help check");
    EXPECT_EQ(viaHelp.out, command.out);
}

TEST(Tamlinctl, InfoListsTheMethodsForPeopleAndForScripts)
{
    CtlRun table = tamlinctl("info");
    EXPECT_EQ(table.status, 0) << table.out;
    EXPECT_NE(table.out.find("Provider        tamlin"), std::string::npos) << table.out;
    EXPECT_NE(table.out.find("HPEVA_DRGroup_Snapclone  0,0,1,1,0,0  4.1"), std::string::npos) << table.out;

    // Results go to standard output alone, so a script can parse them whatever the
    // provider prints on its own.
    std::string command = tamlin_test::envOr("TAMLINCTL", TAMLINCTL_DEFAULT) + " --json info 2>/dev/null";
    FILE *pipe = popen(command.c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    std::string json;
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) {
        json.append(buffer, n);
    }
    pclose(pipe);
    ASSERT_FALSE(json.empty());
    EXPECT_EQ(json.front(), '{') << json;
    EXPECT_EQ(json.substr(json.size() - 2), "}\n") << json;
    EXPECT_NE(json.find("\"claim_patterns\":[\"UDID##HP##HSV##\"]"), std::string::npos) << json;
}

TEST(Tamlinctl, ListingsOfTheSimulatedArraysForPeopleAndScripts)
{
    CtlRun enclosures = tamlinctl("enclosures");
    EXPECT_EQ(enclosures.status, 0) << enclosures.out;
    EXPECT_NE(enclosures.out.find("EVA01  5000-1FE1-5000-0001  HP"), std::string::npos) << enclosures.out;
    EXPECT_NE(enclosures.out.find("2 enclosures"), std::string::npos) << enclosures.out;

    CtlRun hosts = tamlinctl("hosts --enclosure-name EVA01");
    EXPECT_EQ(hosts.status, 0) << hosts.out;
    EXPECT_NE(hosts.out.find("h2    5000-1FE1-5000-0001  10000000C9000002 10000000C9000003"), std::string::npos)
        << hosts.out;

    CtlRun snapshots = tamlinctl("--json disks --no-active 2>/dev/null");
    EXPECT_EQ(snapshots.status, 0) << snapshots.out;
    EXPECT_NE(snapshots.out.find("HP##HSV##EVA01##f\\\\d3\\\\d3_vsnap000"), std::string::npos) << snapshots.out;
    EXPECT_EQ(snapshots.out.find("HP##HSV##EVA01##d1"), std::string::npos) << snapshots.out;

    CtlRun none = tamlinctl("disks --enclosure-name NOWHERE");
    EXPECT_EQ(none.status, 1) << "result 3 is a failure of the entry: " << none.out;
}

TEST(Tamlinctl, AFailedStartIsExplainedInTheHostsLanguage)
{
    Install::site->writeConfig("[CLI_TOOL_INFO]\n\"FILEPATH\"=\"/nonexistent/sssu/\"\n");
    CtlRun run = tamlinctl("--lang de enclosures");
    Install::site->writeConfig("[CLI_TOOL_INFO]\n\"FILEPATH\"=\"" + Install::site->sssuDir() +
                               "\"\n\"FILENAME\"=\"sssu_linux_x64\"\n");
    EXPECT_EQ(run.status, 1) << run.out;
    // Without a FILENAME the search ends in the bridge directory, and that is what is named.
    EXPECT_NE(run.out.find("SSSU ist nicht installiert: Das Verzeichnis /opt/Hewlett-Packard/"), std::string::npos)
        << run.out;
    EXPECT_NE(run.out.find("init failed with result 30: Der Provider konnte nicht initialisiert werden."),
              std::string::npos)
        << run.out;
    EXPECT_EQ(run.out.find("<MSG_"), std::string::npos) << "no bare message keys: " << run.out;
}

TEST(Tamlinctl, CommandArgumentsAreCheckedBeforeTheProviderIsLoaded)
{
    // A bad provider path would give 3: a 2 shows the arguments were refused first.
    const std::string bad = "--provider /nonexistent/libtamlin.so ";
    EXPECT_EQ(tamlinctl(bad + "errmsg").status, 2);
    EXPECT_EQ(tamlinctl(bad + "errmsg six").status, 2);
    EXPECT_EQ(tamlinctl(bad + "disks --flags 0x1g").status, 2);
    EXPECT_EQ(tamlinctl(bad + "disks --filter enclosure_name").status, 2);
    EXPECT_EQ(tamlinctl(bad + "disks --filter a=b,c=d").status, 2);
    EXPECT_EQ(tamlinctl(bad + "hosts --enclosure-id").status, 2);
    EXPECT_EQ(tamlinctl(bad + "enclosures --udid X").status, 2) << "udid is a disk filter only";
    EXPECT_EQ(tamlinctl(bad + "disks --enclosure-name EVA1 --no-snapshots").status, 3);
}

TEST(Tamlinctl, ErrmsgGivesTheSameTextForACodeAndItsOffsetForm)
{
    CtlRun run = tamlinctl("errmsg 6006 6");
    EXPECT_EQ(run.status, 0) << run.out;
    size_t first = run.out.find("6006: ");
    size_t second = run.out.find("\n6: ");
    ASSERT_NE(first, std::string::npos) << run.out;
    ASSERT_NE(second, std::string::npos) << run.out;
    std::string a = run.out.substr(first + 6, run.out.find('\n', first) - first - 6);
    std::string b = run.out.substr(second + 4, run.out.find('\n', second + 1) - second - 4);
    EXPECT_EQ(a, b);
}

TEST(Tamlinctl, ConfigShowsSetsAndExplainsWhatItRefuses)
{
    const TempInstallRoot &root = Install::site->root();
    const std::string node = "'UDID##HP##HSV##5000-1FE1-5000-0001##D1' ";
    root.writeFile("good.xml", "<ConfigValueList><ConfigValue><key>snapshot_resource_spec</key>"
                               "<value>[5000-1FE1-5000-0001##D1;T&amp;2]</value></ConfigValue></ConfigValueList>");
    root.writeFile("bad.xml", "<ConfigValueList>\n<ConfigValue>\n<key>k</key>\n</ConfigValueList>\n");
    root.writeFile("latin1.xml", "<ConfigValueList>\n<k>\xE4</k></ConfigValueList>");

    CtlRun none = tamlinctl("config " + node + "get");
    EXPECT_EQ(none.status, 0) << none.out;
    EXPECT_NE(none.out.find(": no parameter values (mode 1)"), std::string::npos) << none.out;
    CtlRun params = tamlinctl("config " + node + "params --group --mode 0");
    EXPECT_NE(params.out.find(": no parameters described (mode 0, group node)"), std::string::npos) << params.out;

    // What the node holds after the set, indented by level, escapes as written.
    CtlRun set = tamlinctl("config " + node + "set " + root.path("good.xml"));
    EXPECT_EQ(set.status, 0) << set.out;
    EXPECT_NE(set.out.find("<ConfigValueList>\n  <ConfigValue>\n    <dataType></dataType>\n"
                           "    <key>snapshot_resource_spec</key>\n"
                           "    <value>[5000-1FE1-5000-0001##D1;T&amp;2]</value>\n  </ConfigValue>\n"),
              std::string::npos)
        << set.out;
    CtlRun json = tamlinctl("--json config " + node + "set - < " + root.path("good.xml") + " 2>/dev/null");
    EXPECT_EQ(json.out.rfind("{\"node\":\"UDID##HP##HSV##5000-1FE1-5000-0001##D1\",\"operation\":\"set\"", 0), 0u)
        << json.out;
    EXPECT_NE(json.out.find("\\t<value>[5000-1FE1-5000-0001##D1;T&amp;2]</value>\\n"), std::string::npos) << json.out;

    // The provider's reason, with the place, in the host's language; the entry failed.
    CtlRun bad = tamlinctl("--lang de config " + node + "set " + root.path("bad.xml"));
    EXPECT_EQ(bad.status, 1) << bad.out;
    EXPECT_NE(bad.out.find("konnte nicht gelesen werden: "), std::string::npos) << bad.out;
    EXPECT_NE(bad.out.find("(Zeile 4, Spalte 14)"), std::string::npos) << bad.out;
    EXPECT_NE(bad.out.find("config failed with result 3"), std::string::npos) << bad.out;

    // A file that is no UTF-8 or can't be read is refused before the provider is loaded.
    const std::string unloadable = "--provider /nonexistent/libtamlin.so config " + node + "set ";
    CtlRun latin1 = tamlinctl(unloadable + root.path("latin1.xml"));
    EXPECT_EQ(latin1.status, 2) << latin1.out;
    EXPECT_NE(latin1.out.find("not UTF-8 text: byte 0xE4 at line 2, column 4"), std::string::npos) << latin1.out;
    EXPECT_EQ(tamlinctl(unloadable + root.path("missing.xml")).status, 2);
    EXPECT_EQ(tamlinctl(unloadable.substr(0, unloadable.size() - 4)).status, 2) << "set without a file";
    EXPECT_EQ(tamlinctl("--provider /nonexistent/libtamlin.so config " + node + "frob").status, 2);
    EXPECT_EQ(tamlinctl("--provider /nonexistent/libtamlin.so config " + node + "get --mode 2").status, 2);
}

// A new user without an install root is told in plain words where tamlinctl looked and how
// to make one, not shown the bare keys of messages that have no catalog.
TEST(Tamlinctl, NoInstallRootIsExplainedInPlainWords)
{
    CtlRun run{-1, ""};
    const std::string prefix = "env -u QORIN_INSTALL_ROOT QORIN_REGISTRY=/nonexistent/registry.conf ";
    FILE *pipe = popen((prefix + getenv("TAMLINCTL") + " disks 2>&1").c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) {
        run.out.append(buffer, n);
    }
    const int status = pclose(pipe);
    EXPECT_EQ(WEXITSTATUS(status), 3) << run.out;
    for (const char *said : {"the provider has no install root",
                             "[SOFTWARE\\Orvanta\\Qorin] in the registry file /nonexistent/registry.conf: there is no "
                             "such file",
                             "QORIN_INSTALL_ROOT: it is not set", "tamlinctl setup --root DIR",
                             "export QORIN_INSTALL_ROOT=/opt/tamlin/"}) {
        EXPECT_NE(run.out.find(said), std::string::npos) << said << " in:\n" << run.out;
    }
    EXPECT_EQ(run.out.find("<MSG_"), std::string::npos) << run.out;
}

// A blob whose password lines are malformed: no output of the run, at any trace level, and no
// log line carries a password.
TEST(Tamlinctl, NoPasswordOfAMalformedBlobIsEverShown)
{
    TempInstallRoot &root = Install::site->root();
    root.writeFile("credentials.blob", "[STORAGE_MANAGEMENT_SERVICE\\HP_HSV_CV1\\1]\n"
                                       "\"HOSTNAME\"=\"cv1\"\n\"USERNAME\"=\"admin\"\n"
                                       "PASSWORD=\"Sesame-1\"\n\"PASSWORD\"=Sesame-2\n\"Password\"=\"Sesame-3\n"
                                       "password\"=Sesame-4\n\"PASSWORD\"=\"secret\"\n");
    CtlRun run = tamlinctl("-vvv disks");
    CtlRun json = tamlinctl("-vvv --json enclosures");
    std::remove(root.credentialBlobFile().c_str());
    EXPECT_EQ(run.status, 0) << run.out;
    EXPECT_NE(run.out.find("WARNING: Invalid value '********' for key section 'PASSWORD'"), std::string::npos)
        << run.out;
    for (const std::string &output : {run.out, json.out, Install::site->log()}) {
        EXPECT_EQ(output.find("Sesame"), std::string::npos) << output;
        EXPECT_EQ(output.find("secret"), std::string::npos) << output;
    }
}
