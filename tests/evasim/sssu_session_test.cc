// What a run prints around its commands: banner, prompts, echo, logins, selection, options,
// errors and the exit status.
#include "evasim_harness.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include "scratch_files.h"

using evasim_test::Harness;
using evasim_test::Outcome;

namespace {

class SssuSession : public ::testing::Test {
protected:
    void SetUp() override { h.init(); }
    Harness h;
};

TEST_F(SssuSession, BannerPromptsAndEchoHaveTheToolsShape)
{
    std::string const script = h.sssuScript({"ls cell"}, "");
    const Outcome r = h.evasim({"FILE " + script});
    ASSERT_EQ(r.status, 0);
    std::string const expected = "\n\nSSSU for HP StorageWorks Command View EVA\nVersion: 8.0.2 \nBuild: 080206A\n\n"
                                 "NoSystemSelected> file " +
                                 script +
                                 "\n"
                                 "NoSystemSelected> set option NOCOMMAND_DELAY\n\n"
                                 "NoSystemSelected> set option DISPLAY_WIDTH=200\n\n"
                                 "NoSystemSelected> set option ON_ERROR=EXIT_ON_ERROR\n\n"
                                 "NoSystemSelected> ls cell\n\nSystems available on this Manager:\nEVA01\nEVA02\n"
                                 "NoSystemSelected> exit";
    EXPECT_EQ(r.out, expected);
}

TEST_F(SssuSession, PromptCarriesTheSelectedSystemAndScriptWithoutExitEndsWithoutLineFeed)
{
    std::string const file =
        h.script({"select manager cv1 user=admin password=secret", "SELECT SYSTEM EVA02", "refresh"});
    const Outcome r = h.evasim({"FILE", file});  // the two-argument form
    ASSERT_EQ(r.status, 0);
    EXPECT_TRUE(r.has("NoSystemSelected> SELECT SYSTEM EVA02\n\nEVA02> refresh\n"));
    std::string const tail = "EVA02> refresh\n";
    EXPECT_EQ(r.out.substr(r.out.size() - tail.size()), tail) << "the last result, an empty line, has no line feed";
}

TEST_F(SssuSession, FailedLoginsPrintTheConnectionErrorRunNothingElseAndExitZero)
{
    struct Case {
        const char *login;
        const char *why;
    } const cases[] = {
        {"select manager nosuch user=admin password=secret", "unknown server"},
        {"select manager cv1 user=admin password=wrong", "wrong password"},
        {"select manager cv1 user=root password=secret", "wrong user"},
        {"select manager cv2 user=admin password=secret", "unreachable server"},
    };
    for (const Case &c : cases) {
        const Outcome r = h.sssu({"ls cell"}, "EVA01", c.login);
        EXPECT_EQ(r.status, 0) << c.why;
        const std::vector<std::string> lines = r.lines();
        EXPECT_EQ(lines.back(), "Error opening https connection") << c.why;
        EXPECT_FALSE(r.has("select cell")) << c.why;
        EXPECT_FALSE(r.has("ls cell")) << c.why;
    }
}

// SSSU's login keyword is USERNAME=; any unique beginning of a keyword stands for it.
TEST_F(SssuSession, KeywordsTakeAnyUniqueBeginningAndAnAmbiguousOneIsAnError)
{
    for (const char *login : {"select manager cv1 USERNAME=admin PASSWORD=secret", "sel man cv1 u=admin pass=secret",
                              "SELECT MANAGER cv1 user=admin password=secret"}) {
        const Outcome r = h.sssu({"ls vd", "LS H \"h1\" X", "ADD SNAP \"s1\" VD=\"d1\" ALLOC=FULLY RED=Vraid0", "ex"},
                                 "EVA01", login);
        EXPECT_EQ(r.status, 0) << login << "\n" << r.out;
        EXPECT_TRUE(r.has("Vdisks available on this Cell:")) << login;
        EXPECT_TRUE(r.has("<objectname>\\Hosts\\h1</objectname>")) << login;
        EXPECT_EQ(h.disk("\\Virtual Disks\\d1\\s1").at("type"), "snapshot") << login;
        EXPECT_TRUE(r.has("EVA01> ex")) << login;
        ASSERT_EQ(h.sssu({"DELETE VDISK \"\\Virtual Disks\\d1\\s1\""}).status, 0);
    }
    const Outcome ambiguous = h.sssu({"LS D"});
    EXPECT_EQ(ambiguous.status, 1);
    const std::vector<std::string> l = ambiguous.lines();
    EXPECT_EQ(l[l.size() - 2], std::string(10, ' ') + "^");
    EXPECT_EQ(l.back(), "Error: Ambiguous keyword at or near here");
    EXPECT_EQ(h.sssu({"S OPTION ON_ERROR=CONTINUE"}).lines().back(), "Error: Ambiguous keyword at or near here");
}

TEST_F(SssuSession, ALoginWithoutUserOrPasswordIsAnErrorOfItsOwn)
{
    const Outcome noUser = h.sssu({"ls cell"}, "", "select manager cv1 password=secret");
    EXPECT_EQ(noUser.status, 1) << "an error, under EXIT_ON_ERROR";
    EXPECT_EQ(noUser.lines().back(), "Error: SELECT MANAGER needs a user: USERNAME=<user>");
    EXPECT_FALSE(noUser.has("https"));
    EXPECT_EQ(h.sssu({"ls cell"}, "", "select manager cv1 user=admin").lines().back(),
              "Error: SELECT MANAGER needs a password: PASSWORD=<password>");
}

TEST_F(SssuSession, CommandsBeforeTheirSelectionAreRefused)
{
    const Outcome noManager = h.sssu({"ls cell"}, "", "");
    EXPECT_EQ(noManager.status, 1);
    EXPECT_TRUE(noManager.has("\nError: Command not valid until a manager is selected (SELECT MANAGER)"));

    const Outcome noSystem = h.sssu({"ls vdisk"}, "");
    EXPECT_EQ(noSystem.status, 1);
    EXPECT_TRUE(noSystem.has(
        "NoSystemSelected> ls vdisk\n\nError: Command not valid until a system is selected (SELECT SYSTEM)"));

    const Outcome unknownCell = h.sssu({"ls vdisk"}, "NOSUCH");
    EXPECT_EQ(unknownCell.status, 1);
    EXPECT_TRUE(unknownCell.has("Error: NOSUCH not found"));
}

TEST_F(SssuSession, ACellOfAnotherManagerCannotBeSelected)
{
    ASSERT_EQ(h.evasim({"init", "--scenario", Harness::scenario("demo.scn")}).status, 0);
    const Outcome r =
        h.sssu({"ls vdisk"}, "EVA-WEST", "select manager cv-east.example.com user=administrator password=Secret1");
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.has("Error: EVA-WEST not found"));
}

TEST_F(SssuSession, OnErrorContinueGoesOnAndExitsZeroExitOnErrorStopsWithOne)
{
    const std::vector<std::string> body{"select manager cv1 user=admin password=secret", "select cell EVA01",
                                        "delete vdisk nosuch", "ls host", "exit"};
    std::vector<std::string> goOn{"set option ON_ERROR=CONTINUE"};
    goOn.insert(goOn.end(), body.begin(), body.end());
    const Outcome cont = h.evasim({"FILE " + h.script(goOn)});
    EXPECT_EQ(cont.status, 0);
    EXPECT_TRUE(cont.has("Error: nosuch not found"));
    EXPECT_TRUE(cont.has("Hosts available on this Cell:"));

    std::vector<std::string> stop{"set option ON_ERROR=EXIT_ON_ERROR"};
    stop.insert(stop.end(), body.begin(), body.end());
    const Outcome halt = h.evasim({"FILE " + h.script(stop)});
    EXPECT_EQ(halt.status, 1);
    EXPECT_EQ(halt.lines().back(), "Error: nosuch not found");
    EXPECT_FALSE(halt.has("ls host"));
}

TEST_F(SssuSession, SyntaxErrorPutsACaretUnderTheOffendingWordCountingThePrompt)
{
    const Outcome r = h.sssu({"ls vdisk \"d1\" bogus"});
    EXPECT_EQ(r.status, 1);
    const std::vector<std::string> l = r.lines();
    ASSERT_GE(l.size(), 3u);
    EXPECT_EQ(l[l.size() - 1], "Error: Syntax error at or near here");
    std::string const echo = "EVA01> ls vdisk \"d1\" bogus";
    EXPECT_EQ(l[l.size() - 2], std::string(echo.find("bogus"), ' ') + "^");

    const Outcome verb = h.sssu({"lss vdisk"});
    EXPECT_EQ(verb.lines()[verb.lines().size() - 2], std::string(7, ' ') + "^");

    const Outcome quote = h.sssu({"ls vdisk \"open"});
    EXPECT_EQ(quote.lines()[quote.lines().size() - 2], std::string(7 + 9, ' ') + "^");

    const Outcome option = h.sssu({"set option ON_ERROR=SOMETIMES"});
    EXPECT_EQ(option.lines()[option.lines().size() - 2], std::string(7 + 11, ' ') + "^");
}

TEST_F(SssuSession, AScriptThatCannotBeReadIsAnError)
{
    const Outcome r = h.evasim({"FILE " + h.home() + "/missing.txt"});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.has("Error: Could not open command file"));
}

TEST_F(SssuSession, StateLiesBesideThePathTheProgramWasStartedByUnlessEvasimHomeIsSetOrThatIsASystemDirectory)
{
    std::string const dir = h.home() + "/opt";
    ASSERT_EQ(::mkdir(dir.c_str(), 0755), 0);
    std::string const link = dir + "/sssu_linux_x64";
    ASSERT_EQ(::symlink(Harness::binary().c_str(), link.c_str()), 0);
    EXPECT_EQ(tamlin_test::capture("env -u EVASIM_HOME " + link + " where"), dir + "/evasim.d/evasim.db\n");
    EXPECT_EQ(h.evasim({"where"}).out, h.home() + "/evasim.db\n");
    // Started from a system directory (as the package installs it), nothing goes beside it.
    const std::string installed = "exec -a /usr/bin/evasim " + Harness::binary() + " where";
    EXPECT_EQ(tamlin_test::capture("env -u EVASIM_HOME -u XDG_STATE_HOME HOME=" + dir + " bash -c '" + installed + "'"),
              dir + "/.local/state/evasim/evasim.db\n");
    EXPECT_EQ(tamlin_test::capture("env -u EVASIM_HOME XDG_STATE_HOME=" + dir + "/xdg bash -c '" + installed + "'"),
              dir + "/xdg/evasim/evasim.db\n");
}

}  // namespace
