// tamlinctl present, unpresent, dispose and leftovers as an administrator runs them against
// the simulator: what each prints of the change on the array, and what each refuses before
// anything is sent.
#include <gtest/gtest.h>

#include <string>

#include "present_support.h"
#include "tamlinctl_run.h"

using namespace present_test;
using tamlin_test::holds;
using tamlin_test::tamlinctl;

namespace {

const char kCopy[] = "'db\\data\\data_vsnap000'";

}  // namespace

TEST(PresentCommands, EachPrintsTheHostsAndLunsThatChanged)
{
    Site site(scenario(2, presentLine(0, "lab\\h1", 4)));
    tamlin_test::CommandRun run = tamlinctl(std::string("present ") + kCopy + " --host backup01 --shared --only");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_TRUE(holds(run, "removed    \\Hosts\\lab\\h1        4")) << run.output;
    EXPECT_TRUE(holds(run, "presented  \\Hosts\\backup01      1")) << run.output;
    EXPECT_TRUE(holds(run, "now presented to \\Hosts\\backup01 LUN 1")) << run.output;

    run = tamlinctl(std::string("--json present ") + kCopy + " --host h2 2>/dev/null");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_TRUE(holds(run, "\"added\":[{\"host\":\"\\\\Hosts\\\\lab\\\\h2\",\"lun\":1}],\"removed\":[]")) << run.output;

    run = tamlinctl(std::string("unpresent ") + kCopy + " --all");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_TRUE(holds(run, "removed  \\Hosts\\backup01    1")) << run.output;
    EXPECT_TRUE(holds(run, "removed  \\Hosts\\lab\\h2      1")) << run.output;
    EXPECT_TRUE(site.presentations().empty());

    run = tamlinctl(std::string("unpresent ") + kCopy + " --host nohost");
    EXPECT_EQ(run.status, 1) << run.output;
    EXPECT_TRUE(holds(run, "The host nohost is not known to the storage cell EVA01")) << run.output;
}

TEST(PresentCommands, DisposeTakesOnlyCopiesOnlyWhenConfirmedAndTellsWhatALeftoverHolds)
{
    Site site(scenario(2, presentLine(0, "lab\\h1", 4) + presentLine(1, "backup01", 2)));
    const size_t before = site.commands().size();
    tamlin_test::CommandRun run = tamlinctl("present " + std::string(kCopy) + " --host h1 --only");
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(holds(run, "give --shared too")) << run.output;
    run = tamlinctl("dispose " + std::string(kCopy));
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(holds(run, "give --yes")) << run.output;
    run = tamlinctl("dispose --yes " + std::string(kCopy) + " 'db\\data'");
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(holds(run, "EVA01##db\\data is no copy the provider made")) << run.output;
    for (const std::string &command : site.commandsSince(before)) {
        EXPECT_EQ(command.find("DELETE"), std::string::npos) << "nothing deleted: " << command;
    }

    ASSERT_EQ(ProviderInstall::evasim("fault error --match \"DELETE VDISK\" --skip 0").status, 0);
    run = tamlinctl("dispose --yes " + std::string(kCopy) + " 'db\\data\\data_vsnap001'");
    EXPECT_EQ(run.status, 1) << run.output;
    EXPECT_TRUE(holds(run, "EVA01##db\\data\\data_vsnap000  \\Hosts\\lab\\h1 LUN 4     left on the array, "
                           "presented to no host"))
        << run.output;
    EXPECT_TRUE(holds(run, "EVA01##db\\data\\data_vsnap001  \\Hosts\\backup01 LUN 2  deleted")) << run.output;

    run = tamlinctl("leftovers");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_TRUE(holds(run, "EVA01##db\\data\\data_vsnap000  10.0 GiB  -")) << run.output;
    EXPECT_TRUE(holds(run, "1 copy left on the arrays")) << run.output;
}
