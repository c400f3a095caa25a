// tamlinctl as an administrator runs it.
#include <gtest/gtest.h>

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
    std::string command = std::string(getenv("TAMLINCTL")) + " " + args + " 2>&1";
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
    CtlRun run = tamlinctl(std::string("--provider ") + getenv("PARTIAL_PROVIDER") + " check");
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
    EXPECT_NE(command.out.find("Usage: tamlinctl [--provider PATH] [--lang LANG] check"), std::string::npos);
    CtlRun viaHelp = tamlinctl("help check");
    EXPECT_EQ(viaHelp.out, command.out);
}
