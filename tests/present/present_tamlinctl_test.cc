// tamlinctl present, unpresent, dispose and leftovers as an administrator runs them against
// the simulator: what each prints of the change on the array, and what each refuses before
// anything is sent.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdio>
#include <string>

#include "present_support.h"
#include "test_paths.h"

using namespace present_test;

namespace {

struct CtlRun {
    int status;
    std::string out;
};

// Runs tamlinctl with arguments (a shell word list), standard error into the output too;
// standard input is no terminal.
CtlRun tamlinctl(const std::string &args)
{
    const std::string command = tamlin_test::envOr("TAMLINCTL", TAMLINCTL_DEFAULT) + " " + args + " 2>&1 </dev/null";
    CtlRun run{-1, ""};
    FILE *pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return run;
    }
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) {
        run.out.append(buffer, n);
    }
    const int status = pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

// Blanks collapsed, so that a table's column widths don't matter.
std::string collapsed(const std::string &text)
{
    std::string out;
    for (const char c : text) {
        if (c != ' ' || out.empty() || out.back() != ' ') {
            out += c;
        }
    }
    return out;
}

bool holds(const CtlRun &run, const std::string &text)
{
    return collapsed(run.out).find(collapsed(text)) != std::string::npos;
}

const char kCopy[] = "'db\\data\\data_vsnap000'";

}  // namespace

TEST(PresentCommands, EachPrintsTheHostsAndLunsThatChanged)
{
    Site site(scenario(2, presentLine(0, "lab\\h1", 4)));
    CtlRun run = tamlinctl(std::string("present ") + kCopy + " --host backup01 --shared --only");
    EXPECT_EQ(run.status, 0) << run.out;
    EXPECT_TRUE(holds(run, "removed    \\Hosts\\lab\\h1        4")) << run.out;
    EXPECT_TRUE(holds(run, "presented  \\Hosts\\backup01      1")) << run.out;
    EXPECT_TRUE(holds(run, "now presented to \\Hosts\\backup01 LUN 1")) << run.out;

    run = tamlinctl(std::string("--json present ") + kCopy + " --host h2 2>/dev/null");
    EXPECT_EQ(run.status, 0) << run.out;
    EXPECT_TRUE(holds(run, "\"added\":[{\"host\":\"\\\\Hosts\\\\lab\\\\h2\",\"lun\":1}],\"removed\":[]")) << run.out;

    run = tamlinctl(std::string("unpresent ") + kCopy + " --all");
    EXPECT_EQ(run.status, 0) << run.out;
    EXPECT_TRUE(holds(run, "removed  \\Hosts\\backup01    1")) << run.out;
    EXPECT_TRUE(holds(run, "removed  \\Hosts\\lab\\h2      1")) << run.out;
    EXPECT_TRUE(site.presentations().empty());

    run = tamlinctl(std::string("unpresent ") + kCopy + " --host nohost");
    EXPECT_EQ(run.status, 1) << run.out;
    EXPECT_TRUE(holds(run, "The host nohost is not known to the storage cell EVA01")) << run.out;
}

TEST(PresentCommands, DisposeTakesOnlyCopiesOnlyWhenConfirmedAndTellsWhatALeftoverHolds)
{
    Site site(scenario(2, presentLine(0, "lab\\h1", 4) + presentLine(1, "backup01", 2)));
    const size_t before = site.commands().size();
    CtlRun run = tamlinctl("present " + std::string(kCopy) + " --host h1 --only");
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(holds(run, "give --shared too")) << run.out;
    run = tamlinctl("dispose " + std::string(kCopy));
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(holds(run, "give --yes")) << run.out;
    run = tamlinctl("dispose --yes " + std::string(kCopy) + " 'db\\data'");
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(holds(run, "EVA01##db\\data is no copy the provider made")) << run.out;
    for (const std::string &command : site.commandsSince(before)) {
        EXPECT_EQ(command.find("DELETE"), std::string::npos) << "nothing deleted: " << command;
    }

    ASSERT_EQ(ProviderInstall::evasim("fault error --match \"DELETE VDISK\" --skip 0").status, 0);
    run = tamlinctl("dispose --yes " + std::string(kCopy) + " 'db\\data\\data_vsnap001'");
    EXPECT_EQ(run.status, 1) << run.out;
    EXPECT_TRUE(holds(run, "EVA01##db\\data\\data_vsnap000  \\Hosts\\lab\\h1 LUN 4     left on the array, "
                           "presented to no host"))
        << run.out;
    EXPECT_TRUE(holds(run, "EVA01##db\\data\\data_vsnap001  \\Hosts\\backup01 LUN 2  deleted")) << run.out;

    run = tamlinctl("leftovers");
    EXPECT_EQ(run.status, 0) << run.out;
    EXPECT_TRUE(holds(run, "EVA01##db\\data\\data_vsnap000  10.0 GiB  -")) << run.out;
    EXPECT_TRUE(holds(run, "1 copy left on the arrays")) << run.out;
}
