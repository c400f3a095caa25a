// tamlinctl snapshot as an administrator runs it, against the simulator's small world.
#include <gtest/gtest.h>

#include <string>

#include "provider_install.h"
#include "tamlinctl_run.h"

using tamlin_test::CommandRun;
using tamlin_test::holds;
using tamlin_test::tamlinctl;

namespace {

// Each test starts from the small world: EVA01 with d1, f\d2 and f\d3 (which has d3_vsnap000).
class Snapshot : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_site = new ProviderInstall;
        ASSERT_TRUE(s_site->ok()) << s_site->loadReport();
    }
    static void TearDownTestSuite() { delete s_site; }
    void SetUp() override
    {
        ASSERT_EQ(
            s_site->evasim("init --scenario '" + ProviderInstall::sourceDir() + "/tools/evasim/scenarios/small.scn'")
                .status,
            0);
    }

    static ProviderInstall *s_site;
};
ProviderInstall *Snapshot::s_site = nullptr;

}  // namespace

TEST_F(Snapshot, CopiesOfDisksByNameAreShownWithTheirUdidsAndListedAfter)
{
    CommandRun made = tamlinctl("snapshot --method HPEVA_VSnap 'f\\d3' 'EVA01##d1'");
    EXPECT_EQ(made.status, 0) << made.output;
    EXPECT_TRUE(
        holds(made, "HP##HSV##EVA01##f\\d3  HP##HSV##EVA01##f\\d3\\d3_vsnap001  UDID##HP##HSV##5000-1FE1-5000-0001##"))
        << made.output;
    EXPECT_TRUE(holds(made, "HP##HSV##EVA01##d1    HP##HSV##EVA01##d1\\d1_vsnap000")) << made.output;
    EXPECT_TRUE(holds(made, "2 copies made by HPEVA_VSnap")) << made.output;

    CommandRun listed = tamlinctl("disks --no-active");
    EXPECT_TRUE(holds(listed, "HP##HSV##EVA01##d1\\d1_vsnap000")) << listed.output;
    EXPECT_TRUE(holds(listed, "HP##HSV##EVA01##f\\d3\\d3_vsnap001")) << listed.output;

    CommandRun json = tamlinctl("--json snapshot --method HPEVA_Snapclone 'HP##HSV##EVA01##f\\d2' 2>/dev/null");
    EXPECT_EQ(json.status, 0) << json.output;
    EXPECT_EQ(json.output.rfind("{\"method\":\"HPEVA_Snapclone\",\"complete\":true,\"copies\":[{\"source\":{\"name\":"
                                "\"HP##HSV##EVA01##f\\\\d2\",\"udid\":\"UDID##HP##HSV##5000-1FE1-5000-0001##",
                                0),
              0u)
        << json.output;
    EXPECT_TRUE(holds(json, "\"copy\":{\"name\":\"HP##HSV##EVA01##f\\\\d2_clone000\"")) << json.output;
}

TEST_F(Snapshot, RefusalsAreExplainedAndNothingIsMade)
{
    EXPECT_EQ(tamlinctl("snapshot 'f\\d2'").status, 2);
    EXPECT_EQ(tamlinctl("snapshot --method HPEVA_Mirror 'f\\d2'").status, 2);
    EXPECT_EQ(tamlinctl("snapshot --method HPEVA_VSnap").status, 2);
    EXPECT_EQ(tamlinctl("snapshot --method HPEVA_VSnap d2").status, 2) << "a name no disk has";
    EXPECT_EQ(tamlinctl("snapshot --method HPEVA_VSnap d1 'EVA01##d1'").status, 2) << "the same disk twice";

    // The provider's check, in the host's language, ends the command before anything is made.
    CommandRun refused = tamlinctl("--lang de snapshot --method HPEVA_Snapclone 'f\\d3'");
    EXPECT_EQ(refused.status, 1) << refused.output;
    EXPECT_TRUE(holds(refused, "kann für HPEVA_Snapclone_FIM_GROUP kein Snapclone angelegt werden: Die Platte hat "
                               "Snapshots."))
        << refused.output;
    EXPECT_TRUE(holds(refused, "nothing was made")) << refused.output;
    EXPECT_EQ(tamlinctl("disks").output.find("_clone"), std::string::npos);
}

TEST_F(Snapshot, APartialFailureNamesTheCopiesMadeAndTheWayOn)
{
    ASSERT_EQ(s_site->evasim("fault error --match 'ADD SNAPSHOT \"d2'").status, 0);
    CommandRun partial = tamlinctl("snapshot --method HPEVA_VSnap 'f\\d2' d1");
    EXPECT_EQ(partial.status, 1) << partial.output;
    EXPECT_TRUE(holds(partial, "Error: Simulated failure")) << partial.output;
    EXPECT_TRUE(holds(partial, "1 of 2 copies were made and remain on the arrays:")) << partial.output;
    EXPECT_TRUE(holds(partial, "HP##HSV##EVA01##d1  HP##HSV##EVA01##d1\\d1_vsnap000")) << partial.output;
    EXPECT_TRUE(holds(partial, "make the copies still missing:\n  tamlinctl snapshot --method HPEVA_VSnap "
                               "'HP##HSV##EVA01##f\\d2'\n"))
        << partial.output;
    EXPECT_TRUE(holds(partial, "To give it up instead, delete the copies above")) << partial.output;

    CommandRun rest = tamlinctl("snapshot --method HPEVA_VSnap 'HP##HSV##EVA01##f\\d2'");
    EXPECT_EQ(rest.status, 0) << rest.output;
    EXPECT_TRUE(holds(rest, "HP##HSV##EVA01##f\\d2\\d2_vsnap000")) << rest.output;
}

// Slow: the provider's snapclone wait is four real seconds.
TEST_F(Snapshot, SlowASnapcloneWaitIsShownWhileItRuns)
{
    ASSERT_EQ(s_site->evasim("set snapclone_reads=2").status, 0);
    CommandRun clone = tamlinctl("snapshot --method HPEVA_Snapclone 'f\\d2'");
    EXPECT_EQ(clone.status, 0) << clone.output;
    EXPECT_TRUE(holds(clone, "\\Virtual Disks\\f\\d2_clone000\\ACTIVE is still starting its copy; waiting 4 seconds"))
        << clone.output;
}
