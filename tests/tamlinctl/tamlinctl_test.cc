// tamlinctl as an administrator runs it.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "provider_install.h"
#include "tamlinctl_run.h"
#include "temp_install_root.h"

using tamlin_test::CommandRun;
using tamlin_test::tamlinctl;

namespace {

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
    CommandRun run = tamlinctl("check");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("entries    70 of 70 resolved"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("interface  7.0.0.0"), std::string::npos) << run.output;
}

TEST(Tamlinctl, CheckNamesEveryMissingEntry)
{
    CommandRun run = tamlinctl(std::string("--provider ") +
                               tamlin_test::envOr("PARTIAL_PROVIDER", PARTIAL_PROVIDER_DEFAULT) + " check");
    EXPECT_EQ(run.status, 3) << run.output;
    EXPECT_NE(run.output.find("lacks 67 of the 70 entries"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("missing entry tamlin_fi_pgn_errmsg"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("missing entry tamlin_fi_pgn_set_restorepaths"), std::string::npos) << run.output;
    EXPECT_EQ(run.output.find("missing entry tamlin_fi_pgn_claim"), std::string::npos) << run.output;
}

TEST(Tamlinctl, HelpEverywhere)
{
    CommandRun main = tamlinctl("--help");
    EXPECT_EQ(main.status, 0);
    EXPECT_NE(main.output.find("Usage: tamlinctl"), std::string::npos);
    EXPECT_NE(main.output.find("check"), std::string::npos);
    CommandRun command = tamlinctl("check --help");
    EXPECT_EQ(command.status, 0);
    EXPECT_NE(command.output.find("Usage: tamlinctl [global options] check"), std::string::npos);
    CommandRun viaHelp = tamlinctl("help check");
    EXPECT_EQ(viaHelp.output, command.output);
}

TEST(Tamlinctl, InfoListsTheMethodsForPeopleAndForScripts)
{
    CommandRun table = tamlinctl("info");
    EXPECT_EQ(table.status, 0) << table.output;
    EXPECT_NE(table.output.find("Provider        tamlin"), std::string::npos) << table.output;
    EXPECT_NE(table.output.find("HPEVA_DRGroup_Snapclone  0,0,1,1,0,0  4.1"), std::string::npos) << table.output;

    // Results go to standard output alone, so a script can parse them whatever the
    // provider prints on its own.
    const std::string json = tamlinctl("--json info 2>/dev/null").output;
    ASSERT_FALSE(json.empty());
    EXPECT_EQ(json.front(), '{') << json;
    EXPECT_EQ(json.substr(json.size() - 2), "}\n") << json;
    EXPECT_NE(json.find("\"claim_patterns\":[\"UDID##HP##HSV##\"]"), std::string::npos) << json;
}

TEST(Tamlinctl, ListingsOfTheSimulatedArraysForPeopleAndScripts)
{
    CommandRun enclosures = tamlinctl("enclosures");
    EXPECT_EQ(enclosures.status, 0) << enclosures.output;
    EXPECT_NE(enclosures.output.find("EVA01  5000-1FE1-5000-0001  HP"), std::string::npos) << enclosures.output;
    EXPECT_NE(enclosures.output.find("2 enclosures"), std::string::npos) << enclosures.output;

    CommandRun hosts = tamlinctl("hosts --enclosure-name EVA01");
    EXPECT_EQ(hosts.status, 0) << hosts.output;
    EXPECT_NE(hosts.output.find("h2    5000-1FE1-5000-0001  10000000C9000002 10000000C9000003"), std::string::npos)
        << hosts.output;

    CommandRun snapshots = tamlinctl("--json disks --no-active 2>/dev/null");
    EXPECT_EQ(snapshots.status, 0) << snapshots.output;
    EXPECT_NE(snapshots.output.find("HP##HSV##EVA01##f\\\\d3\\\\d3_vsnap000"), std::string::npos) << snapshots.output;
    EXPECT_EQ(snapshots.output.find("HP##HSV##EVA01##d1"), std::string::npos) << snapshots.output;

    CommandRun none = tamlinctl("disks --enclosure-name NOWHERE");
    EXPECT_EQ(none.status, 1) << "result 3 is a failure of the entry: " << none.output;
}

TEST(Tamlinctl, AFailedStartIsExplainedInTheHostsLanguage)
{
    Install::site->writeConfig("[CLI_TOOL_INFO]\n\"FILEPATH\"=\"/nonexistent/sssu/\"\n");
    CommandRun run = tamlinctl("--lang de enclosures");
    Install::site->writeConfig("[CLI_TOOL_INFO]\n\"FILEPATH\"=\"" + Install::site->sssuDir() +
                               "\"\n\"FILENAME\"=\"sssu_linux_x64\"\n");
    EXPECT_EQ(run.status, 1) << run.output;
    // Without a FILENAME the search ends in the bridge directory, and that is what is named.
    EXPECT_NE(run.output.find("SSSU ist nicht installiert: Das Verzeichnis /opt/Hewlett-Packard/"), std::string::npos)
        << run.output;
    EXPECT_NE(run.output.find("init failed with result 30: Der Provider konnte nicht initialisiert werden."),
              std::string::npos)
        << run.output;
    EXPECT_EQ(run.output.find("<MSG_"), std::string::npos) << "no bare message keys: " << run.output;
}

// A bad provider path gives 3: a 2 shows that the arguments were refused before the load.
TEST(Tamlinctl, BadUsageIsRefusedBeforeTheProviderIsLoaded)
{
    const std::string bad = "--provider /nonexistent/libtamlin.so ";
    CommandRun missing = tamlinctl(bad + "check");
    EXPECT_EQ(missing.status, 3);
    EXPECT_NE(missing.output.find("cannot load /nonexistent/libtamlin.so"), std::string::npos) << missing.output;
    for (const char *args :
         {"frobnicate", "--bogus check", "check extra", "", "errmsg", "errmsg six", "disks --flags 0x1g",
          "disks --filter enclosure_name", "disks --filter a=b,c=d", "hosts --enclosure-id", "enclosures --udid X"}) {
        EXPECT_EQ(tamlinctl(bad + args).status, 2) << args;
    }
    EXPECT_EQ(tamlinctl("--provider").status, 2);
    EXPECT_EQ(tamlinctl(bad + "disks --enclosure-name EVA1 --no-snapshots").status, 3);
}

TEST(Tamlinctl, ConfigShowsSetsAndExplainsWhatItRefuses)
{
    const TempInstallRoot &root = Install::site->root();
    const std::string node = "'UDID##HP##HSV##5000-1FE1-5000-0001##D1' ";
    root.writeFile("good.xml", "<ConfigValueList><ConfigValue><key>snapshot_resource_spec</key>"
                               "<value>[5000-1FE1-5000-0001##D1;T&amp;2]</value></ConfigValue></ConfigValueList>");
    root.writeFile("bad.xml", "<ConfigValueList>\n<ConfigValue>\n<key>k</key>\n</ConfigValueList>\n");
    root.writeFile("latin1.xml", "<ConfigValueList>\n<k>\xE4</k></ConfigValueList>");

    CommandRun none = tamlinctl("config " + node + "get");
    EXPECT_EQ(none.status, 0) << none.output;
    EXPECT_NE(none.output.find(": no parameter values (mode 1)"), std::string::npos) << none.output;
    CommandRun params = tamlinctl("config " + node + "params --group --mode 0");
    EXPECT_NE(params.output.find(": no parameters described (mode 0, group node)"), std::string::npos) << params.output;

    // What the node holds after the set, indented by level, escapes as written.
    CommandRun set = tamlinctl("config " + node + "set " + root.path("good.xml"));
    EXPECT_EQ(set.status, 0) << set.output;
    EXPECT_NE(set.output.find("<ConfigValueList>\n  <ConfigValue>\n    <dataType></dataType>\n"
                              "    <key>snapshot_resource_spec</key>\n"
                              "    <value>[5000-1FE1-5000-0001##D1;T&amp;2]</value>\n  </ConfigValue>\n"),
              std::string::npos)
        << set.output;
    CommandRun json = tamlinctl("--json config " + node + "set - < " + root.path("good.xml") + " 2>/dev/null");
    EXPECT_EQ(json.output.rfind("{\"node\":\"UDID##HP##HSV##5000-1FE1-5000-0001##D1\",\"operation\":\"set\"", 0), 0u)
        << json.output;
    EXPECT_NE(json.output.find("\\t<value>[5000-1FE1-5000-0001##D1;T&amp;2]</value>\\n"), std::string::npos)
        << json.output;

    // The provider's reason, with the place, in the host's language; the entry failed.
    CommandRun bad = tamlinctl("--lang de config " + node + "set " + root.path("bad.xml"));
    EXPECT_EQ(bad.status, 1) << bad.output;
    EXPECT_NE(bad.output.find("konnte nicht gelesen werden: "), std::string::npos) << bad.output;
    EXPECT_NE(bad.output.find("(Zeile 4, Spalte 14)"), std::string::npos) << bad.output;
    EXPECT_NE(bad.output.find("config failed with result 3"), std::string::npos) << bad.output;

    // A file that is no UTF-8 or can't be read is refused before the provider is loaded.
    const std::string unloadable = "--provider /nonexistent/libtamlin.so config " + node + "set ";
    CommandRun latin1 = tamlinctl(unloadable + root.path("latin1.xml"));
    EXPECT_EQ(latin1.status, 2) << latin1.output;
    EXPECT_NE(latin1.output.find("not UTF-8 text: byte 0xE4 at line 2, column 4"), std::string::npos) << latin1.output;
    EXPECT_EQ(tamlinctl(unloadable + root.path("missing.xml")).status, 2);
    EXPECT_EQ(tamlinctl(unloadable.substr(0, unloadable.size() - 4)).status, 2) << "set without a file";
    EXPECT_EQ(tamlinctl("--provider /nonexistent/libtamlin.so config " + node + "frob").status, 2);
    EXPECT_EQ(tamlinctl("--provider /nonexistent/libtamlin.so config " + node + "get --mode 2").status, 2);
}

// A new user without an install root is told in plain words where tamlinctl looked and how
// to make one, not shown the bare keys of messages that have no catalog.
TEST(Tamlinctl, NoInstallRootIsExplainedInPlainWords)
{
    const CommandRun run =
        tamlin_test::runCommand("env -u QORIN_INSTALL_ROOT QORIN_REGISTRY=/nonexistent/registry.conf " +
                                tamlin_test::tamlinctlProgram() + " disks 2>&1");
    EXPECT_EQ(run.status, 3) << run.output;
    for (const char *said : {"the provider has no install root",
                             "[SOFTWARE\\Orvanta\\Qorin] in the registry file /nonexistent/registry.conf: there is no "
                             "such file",
                             "QORIN_INSTALL_ROOT: it is not set", "tamlinctl setup --root DIR",
                             "export QORIN_INSTALL_ROOT=/opt/tamlin/"}) {
        EXPECT_NE(run.output.find(said), std::string::npos) << said << " in:\n" << run.output;
    }
    EXPECT_EQ(run.output.find("<MSG_"), std::string::npos) << run.output;
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
    CommandRun run = tamlinctl("-vvv disks");
    CommandRun json = tamlinctl("-vvv --json enclosures");
    std::remove(root.credentialBlobFile().c_str());
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("WARNING: Invalid value '********' for key section 'PASSWORD'"), std::string::npos)
        << run.output;
    for (const std::string &output : {run.output, json.output, Install::site->log()}) {
        EXPECT_EQ(output.find("Sesame"), std::string::npos) << output;
        EXPECT_EQ(output.find("secret"), std::string::npos) << output;
    }
}
