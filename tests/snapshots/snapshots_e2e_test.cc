// Snapshot groups as a backup host runs them: the provider loaded with dlopen, the disks'
// nodes interposed and initialised, select and make on one session against the simulated
// arrays. What the provider sent is read back from evasim's history, what it made from its
// disks, and what it said from the host's callback and the last error.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <regex>
#include <string>
#include <vector>

#include "host_context.h"
#include "lock_directory.h"
#include "provider_fixture.h"
#include "provider_install.h"
#include "qrn_results.h"
#include "snapshot_job.h"
#include "text.h"

using tamlin_test::lastError;

namespace {

const char kCell1[] = "5000-1FE1-5000-0001";
const char kCell2[] = "5000-1FE1-5000-0002";

std::wstring udidOf(const std::string &cell, const std::string &wwlunid)
{
    return fromUtf8(tamlin_test::udidOf(cell, wwlunid));
}

// Disks of the scenario, by the wwlunid it gives them.
std::wstring disk(const char *last)
{
    return udidOf(kCell1, std::string("6005-08b4-0001-0000-0000-0000-0000-") + last);
}

ProviderInstall::Outcome evasim(const std::string &arguments)
{
    return ProviderInstall::evasim(arguments);
}

// The runs since the history was last cleared, one text each: the selected cell, then each
// command the provider sent (logins, options and EXIT left out), joined by " | ".
std::vector<std::string> scripts()
{
    std::map<int, std::string> runs;
    for (const tamlin_test::TsvRow &row : ProviderInstall::history()) {
        std::string command = row.at("command");
        std::smatch cell;
        if (std::regex_match(command, std::regex("(set option|select manager|exit).*", std::regex::icase))) {
            continue;
        }
        if (std::regex_match(command, cell, std::regex("select (cell|system) \"(.*)\"", std::regex::icase))) {
            command = cell[2].str() + ">";
        }
        std::string &run = runs[std::stoi(row.at("run"))];
        run += (run.empty() || run.back() == '>' ? (run.empty() ? "" : " ") : " | ") + command;
    }
    std::vector<std::string> out;
    for (const auto &kv : runs) {
        out.push_back(kv.second);
    }
    return out;
}

// "<cell>:<path>" -> the column of every disk (its wwlunid unless told).
std::map<std::string, std::string> disks(const char *column = "wwlunid")
{
    std::map<std::string, std::string> out;
    for (auto &row : ProviderInstall::table("disks")) {
        out[row["cell"] + ":" + row["path"]] = row[column];
    }
    return out;
}

std::string suspendState(const std::string &group)
{
    for (auto &row : ProviderInstall::table("drgroups")) {
        if (row["name"] == group) {
            return row["suspended"];
        }
    }
    return "<no group " + group + ">";
}

const ::testing::Environment *const kLocks = ::testing::AddGlobalTestEnvironment(new tamlin_test::LockDirectory);

using Pushed = tamlin_test::LastError;

// One provider install for the suite, started once as a host does; every test starts from the
// scenario's world with an empty history.
class Snapshots : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_site = new ProviderInstall({{"cv1", "admin", "secret"}},
                                     ProviderInstall::sourceDir() + "/tests/snapshots/snapshots.scn");
        ASSERT_TRUE(s_site->ok()) << s_site->loadReport();
        s_host = new HostContext("", [](const std::wstring &host, const std::wstring &, int) {
            if (!host.empty()) {
                s_said.push_back(toUtf8(host));
            }
        });
        uint16_t version[4] = {0, 0, 0, 0};
        ASSERT_EQ(provider()->init(s_host->get(), version), QRN_OK);
    }
    static void TearDownTestSuite()
    {
        provider()->fini();
        delete s_host;
        delete s_site;
    }
    void SetUp() override
    {
        ASSERT_EQ(evasim("init --scenario '" + ProviderInstall::sourceDir() + "/tests/snapshots/snapshots.scn'").status,
                  0);
        // The first guarded entry starts the provider's arrays; its runs are not the test's.
        std::unique_ptr<SnapshotJob> warmUp = job("HPEVA_VSnap", {disk("0001")});
        evasim("history --clear");
        s_said.clear();
        lastError();
    }

    std::unique_ptr<SnapshotJob> job(const std::string &method, const std::vector<std::wstring> &udids,
                                     const std::string &session = "")
    {
        std::unique_ptr<SnapshotJob> made(
            new SnapshotJob(provider(), method, session.empty() ? "s-" + std::to_string(++s_sessions) : session));
        for (const std::wstring &udid : udids) {
            EXPECT_EQ(made->add(udid), 0) << toUtf8(udid);
        }
        return made;
    }

    // Select, then make on a new session: the make's result.
    int selectAndMake(const std::string &method, const std::vector<std::wstring> &udids,
                      std::vector<std::wstring> &targets)
    {
        std::unique_ptr<SnapshotJob> made = job(method, udids);
        EXPECT_EQ(made->select(), QRN_OK) << method;
        return made->make(targets);
    }

    static bool said(const std::string &fragment)
    {
        for (const std::string &text : s_said) {
            if (text.find(fragment) != std::string::npos) {
                return true;
            }
        }
        return false;
    }

    static ProviderInstall *s_site;
    static HostContext *s_host;
    static std::vector<std::string> s_said;
    static int s_sessions;
};

ProviderInstall *Snapshots::s_site = nullptr;
HostContext *Snapshots::s_host = nullptr;
std::vector<std::string> Snapshots::s_said;
int Snapshots::s_sessions = 0;

const char kAddData[] = "EVA01> ADD SNAPSHOT \"data_vsnap000\" VDISK=\"\\Virtual Disks\\db\\data\\ACTIVE\" "
                        "ALLOCATION_POLICY=DEMAND  REDUNDANCY=Vraid0 ";

}  // namespace

TEST_F(Snapshots, VsnapsOfTwoDisksExactScriptsAndTheirTargets)
{
    std::vector<std::wstring> targets;
    ASSERT_EQ(selectAndMake("HPEVA_VSnap", {disk("0002"), disk("0001")}, targets), QRN_OK);

    // Selection reads each disk by its identity; creation goes by the session's order (by
    // UDID), each copy on the first free name, added, then read back.
    const std::vector<std::string> expected = {
        "EVA01> REFRESH | FIND VDISK LUNWWID=6005-08b4-0001-0000-0000-0000-0000-0002 XML",
        "EVA01> REFRESH | FIND VDISK LUNWWID=6005-08b4-0001-0000-0000-0000-0000-0001 XML",
        "EVA01> LS VDISK",
        kAddData,
        "EVA01> LS VDISK \"\\Virtual Disks\\db\\data\\data_vsnap000\" XML",
        "EVA01> LS VDISK",
        "EVA01> ADD SNAPSHOT \"logs_vsnap000\" VDISK=\"\\Virtual Disks\\db\\logs\\ACTIVE\" "
        "ALLOCATION_POLICY=DEMAND  REDUNDANCY=Vraid0 ",
        "EVA01> LS VDISK \"\\Virtual Disks\\db\\logs\\logs_vsnap000\" XML",
    };
    EXPECT_EQ(scripts(), expected);

    const std::map<std::string, std::string> now = disks();
    const std::map<std::string, std::string> type = disks("type");
    EXPECT_EQ(type.at("EVA01:\\Virtual Disks\\db\\data\\data_vsnap000"), "vsnap");
    ASSERT_EQ(targets.size(), 2u);
    EXPECT_EQ(targets[0], udidOf(kCell1, now.at("EVA01:\\Virtual Disks\\db\\logs\\logs_vsnap000")))
        << "targets in the order of the list given";
    EXPECT_EQ(targets[1], udidOf(kCell1, now.at("EVA01:\\Virtual Disks\\db\\data\\data_vsnap000")));
    EXPECT_TRUE(s_said.empty()) << s_said.front();
}

TEST_F(Snapshots, NamesSkipTakenOnesAndCountInHexadecimal)
{
    std::vector<std::wstring> targets;
    ASSERT_EQ(selectAndMake("HPEVA_Snapshot", {disk("0011")}, targets), QRN_OK);
    ASSERT_EQ(selectAndMake("HPEVA_VSnap", {disk("0021")}, targets), QRN_OK);

    const std::vector<std::string> runs = scripts();
    ASSERT_EQ(runs.size(), 8u);
    EXPECT_EQ(runs[2], "EVA01> ADD SNAPSHOT \"web_snap001\" VDISK=\"\\Virtual Disks\\app\\web\\ACTIVE\" "
                       "ALLOCATION_POLICY=FULLY  REDUNDANCY=Vraid0 ");
    EXPECT_EQ(runs[6], "EVA01> ADD SNAPSHOT \"h_vsnap00a\" VDISK=\"\\Virtual Disks\\hex\\h\\ACTIVE\" "
                       "ALLOCATION_POLICY=DEMAND  REDUNDANCY=Vraid0 ");
    EXPECT_EQ(disks("type").at("EVA01:\\Virtual Disks\\app\\web\\web_snap001"), "snapshot");
    EXPECT_EQ(targets.at(0), udidOf(kCell1, disks().at("EVA01:\\Virtual Disks\\hex\\h\\h_vsnap00a")));
}

TEST_F(Snapshots, ASnapcloneBesideItsFamilyWithItsWaitEndingAtTheFirstRead)
{
    std::vector<std::wstring> targets;
    ASSERT_EQ(selectAndMake("HPEVA_Snapclone", {disk("0013")}, targets), QRN_OK);

    // The read-back finds the copy starting (snapclone_reads=1); the wait's first read finds it
    // done, so nothing sleeps.
    const std::vector<std::string> expected = {
        "EVA01> REFRESH | FIND VDISK LUNWWID=6005-08b4-0001-0000-0000-0000-0000-0013 XML",
        "EVA01> LS VDISK",
        "EVA01> ADD COPY \"conf_clone000\" VDISK=\"\\Virtual Disks\\app\\conf\\ACTIVE\"",
        "EVA01> LS VDISK \"\\Virtual Disks\\app\\conf_clone000\\ACTIVE\" XML",
        "EVA01> LS VDISK \"\\Virtual Disks\\app\\conf_clone000\\ACTIVE\" XML",
    };
    EXPECT_EQ(scripts(), expected);
    EXPECT_EQ(disks("sharing").at("EVA01:\\Virtual Disks\\app\\conf_clone000\\ACTIVE"), "none");
    EXPECT_EQ(targets.at(0), udidOf(kCell1, disks().at("EVA01:\\Virtual Disks\\app\\conf_clone000\\ACTIVE")));
    EXPECT_EQ(s_site->log().find("snapclone_in_progress, sleeping"), std::string::npos);
}

TEST_F(Snapshots, ADrGroupIsSuspendedOnceForItsRemoteCopiesAndResumedBeforeTheWait)
{
    std::vector<std::wstring> targets;
    ASSERT_EQ(selectAndMake("HPEVA_DRGroup_Snapclone", {disk("0031"), disk("0032"), disk("0033")}, targets), QRN_OK);

    std::vector<std::string> expected = {
        "EVA01> REFRESH | FIND VDISK LUNWWID=6005-08b4-0001-0000-0000-0000-0000-0031 XML",
        "EVA01> LS DR_GROUP \"\\Data Replication\\DRG1\" XML",
        "EVA01> REFRESH | FIND VDISK LUNWWID=6005-08b4-0001-0000-0000-0000-0000-0032 XML",
        "EVA01> REFRESH | FIND VDISK LUNWWID=6005-08b4-0001-0000-0000-0000-0000-0033 XML",
        "EVA01> SET DR_GROUP \"\\Data Replication\\DRG1\" SUSPEND",
    };
    for (const char *n : {"1", "2", "3"}) {
        const std::string remote = std::string("\\Virtual Disks\\r\\dr") + n;
        expected.push_back("EVA02> LS VDISK \"" + remote + "\\ACTIVE\" XML");
        expected.push_back("EVA02> LS VDISK");
        expected.push_back("EVA02> ADD COPY \"dr" + std::string(n) + "_drclone000\" VDISK=\"" + remote + "\\ACTIVE\"");
        expected.push_back("EVA02> LS VDISK \"" + remote + "_drclone000\\ACTIVE\" XML");
    }
    expected.push_back("EVA01> SET DR_GROUP \"\\Data Replication\\DRG1\" NOSUSPEND");
    for (const char *n : {"1", "2", "3"}) {
        expected.push_back(std::string("EVA02> LS VDISK \"\\Virtual Disks\\r\\dr") + n + "_drclone000\\ACTIVE\" XML");
    }
    EXPECT_EQ(scripts(), expected);
    EXPECT_EQ(suspendState("DRG1"), "no");
    ASSERT_EQ(targets.size(), 3u);
    EXPECT_EQ(targets[1], udidOf(kCell2, disks().at("EVA02:\\Virtual Disks\\r\\dr2_drclone000\\ACTIVE")))
        << "the target names the remote cell";
}

TEST_F(Snapshots, AFailureHalfwayKeepsEarlierCopiesAndASecondMakeTakesUpTheRest)
{
    ASSERT_EQ(evasim("fault error --match 'ADD COPY \"dr2_drclone'").status, 0);
    std::unique_ptr<SnapshotJob> dr = job("HPEVA_DRGroup_Snapclone", {disk("0031"), disk("0032"), disk("0033")});
    ASSERT_EQ(dr->select(), QRN_OK);
    evasim("history --clear");
    std::vector<std::wstring> targets;
    EXPECT_EQ(dr->make(targets), QRN_ERR_FAILED);
    EXPECT_TRUE(targets.empty());

    // The failed copy's SSSU line reaches the host; the copy made before is named to it; the
    // group is resumed all the same, once.
    const Pushed cause = lastError();
    EXPECT_EQ(cause.key, "MSG_ERROR_CLI_COMMAND_FAILED");
    ASSERT_EQ(cause.arguments.size(), 5u);
    EXPECT_EQ(cause.arguments[3], "Error: Simulated failure");
    EXPECT_TRUE(said("1 of the 3 copies of this snapshot were made before it failed")) << s_said.size();
    EXPECT_TRUE(said("\\Virtual Disks\\r\\dr1_drclone000\\ACTIVE (UDID##HP##HSV##5000-1FE1-5000-0002##"));
    std::vector<std::string> runs = scripts();
    EXPECT_EQ(runs.front(), "EVA01> SET DR_GROUP \"\\Data Replication\\DRG1\" SUSPEND");
    EXPECT_EQ(runs.back(), "EVA01> SET DR_GROUP \"\\Data Replication\\DRG1\" NOSUSPEND");
    EXPECT_EQ(runs.size(), 1 + 4 + 3 + 1u) << "dr1 made, dr2's list and failed add, resumed";
    EXPECT_EQ(suspendState("DRG1"), "no");
    const std::map<std::string, std::string> after = disks();
    EXPECT_EQ(after.count("EVA02:\\Virtual Disks\\r\\dr1_drclone000\\ACTIVE"), 1u);
    EXPECT_EQ(after.count("EVA02:\\Virtual Disks\\r\\dr3_drclone000\\ACTIVE"), 0u);

    evasim("history --clear");
    ASSERT_EQ(dr->make(targets), QRN_OK);
    runs = scripts();
    EXPECT_EQ(runs.at(0), "EVA01> SET DR_GROUP \"\\Data Replication\\DRG1\" SUSPEND");
    EXPECT_EQ(runs.at(1), "EVA02> LS VDISK \"\\Virtual Disks\\r\\dr2\\ACTIVE\" XML") << "dr1 is done";
    EXPECT_EQ(runs.size(), 1 + 4 + 4 + 1 + 2u) << "two copies and their waits";
    ASSERT_EQ(targets.size(), 3u);
    const std::map<std::string, std::string> now = disks();
    EXPECT_EQ(targets[0], udidOf(kCell2, now.at("EVA02:\\Virtual Disks\\r\\dr1_drclone000\\ACTIVE")));
    EXPECT_EQ(targets[2], udidOf(kCell2, now.at("EVA02:\\Virtual Disks\\r\\dr3_drclone000\\ACTIVE")));
}

TEST_F(Snapshots, AResumeThatFailsWhileAnotherFailurePassesIsToldAndTheHostLives)
{
    ASSERT_EQ(evasim("fault error --match 'ADD COPY'").status, 0);
    ASSERT_EQ(evasim("fault error --match NOSUSPEND --message 'Link busy'").status, 0);
    std::vector<std::wstring> targets;
    EXPECT_EQ(selectAndMake("HPEVA_DRGroup_Snapclone", {disk("0031"), disk("0032")}, targets), QRN_ERR_FAILED);

    // The copy's failure stays the reason; the group left suspended is told before it.
    const Pushed cause = lastError();
    EXPECT_EQ(cause.key, "MSG_ERROR_CLI_COMMAND_FAILED");
    EXPECT_EQ(cause.arguments.at(3), "Error: Simulated failure");
    EXPECT_NE(cause.arguments.at(4).find("ADD COPY \"dr1_drclone000\""), std::string::npos);
    EXPECT_TRUE(said("The DR group \\Data Replication\\DRG1 on the storage cell EVA01 could not be resumed"));
    EXPECT_EQ(suspendState("DRG1"), "yes");
    EXPECT_EQ(disks().count("EVA02:\\Virtual Disks\\r\\dr1_drclone000\\ACTIVE"), 0u);
}

TEST_F(Snapshots, AResumeThatFailsOnceIsTriedAgainAndTheCopiesAreHandedOutByTheNextMake)
{
    ASSERT_EQ(evasim("fault error --match NOSUSPEND").status, 0);
    std::unique_ptr<SnapshotJob> dr = job("HPEVA_DRGroup_Snapclone", {disk("0031")});
    ASSERT_EQ(dr->select(), QRN_OK);
    std::vector<std::wstring> targets;
    EXPECT_EQ(dr->make(targets), QRN_ERR_FAILED);
    const Pushed cause = lastError();
    EXPECT_EQ(cause.arguments.at(3), "Error: Simulated failure");
    EXPECT_NE(cause.arguments.at(4).find("SET DR_GROUP \"\\Data Replication\\DRG1\" NOSUSPEND"), std::string::npos);
    EXPECT_TRUE(said("1 of the 1 copies of this snapshot were made before it failed"));
    EXPECT_EQ(suspendState("DRG1"), "no") << "resumed by the second try";

    evasim("history --clear");
    ASSERT_EQ(dr->make(targets), QRN_OK);
    EXPECT_TRUE(scripts().empty()) << "nothing was pending";
    EXPECT_EQ(targets.at(0), udidOf(kCell2, disks().at("EVA02:\\Virtual Disks\\r\\dr1_drclone000\\ACTIVE")));
}

TEST_F(Snapshots, EachRefusalOfSelectWithItsKeyAndArguments)
{
    const std::wstring destination = udidOf(kCell2, "6005-08b4-5000-0002-0000-0000-0001-0000");
    struct Case {
        const char *method;
        std::vector<std::wstring> disks;
        const char *change;
        Pushed expected;
    };
    const Case cases[] = {
        {"HPEVA_VSnap",
         {disk("0012")},
         "",
         {"MSG_ERROR_VERIFY_FAILED_OPERATIONS_ON_VSNAP_NOT_SUPPORTED",
          {"\\Virtual Disks\\app\\web\\web_vsnap000", "6005-08B4-0001-0000-0000-0000-0000-0012",
           "HPEVA_VSnap_FIM_GROUP"}}},
        {"HPEVA_Snapclone",
         {disk("0011")},
         "",
         {"MSG_ERROR_VERIFY_FAILED_CREATE_CLONE_WITH_VSNAP_PRESENT_NOT_SUPPORTED",
          {"\\Virtual Disks\\app\\web\\ACTIVE", "6005-08B4-0001-0000-0000-0000-0000-0011",
           "HPEVA_Snapclone_FIM_GROUP"}}},
        {"HPEVA_DRGroup_Snapclone",
         {disk("0041")},
         "",
         {"MSG_ERROR_NO_DR_GROUP_PRESENT_FOR_VDISK", {"\\Virtual Disks\\solo\\ACTIVE"}}},
        {"HPEVA_DRGroup_Snapclone",
         {disk("0031"), disk("0034")},
         "",
         {"MSG_ERROR_DR_GROUP_NAMES_DONT_MATCH",
          {"\\Virtual Disks\\dr\\other\\ACTIVE", "\\Data Replication\\DRG2", "\\Data Replication\\DRG1"}}},
        {"HPEVA_DRGroup_Snapclone",
         {destination},
         "",
         {"MSG_ERROR_DR_GROUP_IS_NOT_SOURCED_ON_THIS_CELL_ERROR",
          {"\\Virtual Disks\\r\\dr1\\ACTIVE", "\\Data Replication\\DRG1", "destination"}}},
        {"HPEVA_DRGroup_Snapclone",
         {disk("0031")},
         "membercondition=degraded",
         {"MSG_ERROR_DR_GROUP_MEMBER_CONDITION_ERROR", {"\\Data Replication\\DRG1", "degraded"}}},
        {"HPEVA_DRGroup_Snapclone",
         {disk("0031")},
         "operationalstate=failed",
         {"MSG_ERROR_DR_GROUP_OPERATIONAL_STATE_ERROR", {"\\Data Replication\\DRG1", "failed"}}},
        {"HPEVA_DRGroup_Snapclone",
         {disk("0031")},
         "links=no",
         {"MSG_ERROR_DR_GROUP_NO_REMOTE_CELL_LINKS_DETECTED", {"\\Data Replication\\DRG1", "EVA01"}}},
        {"HPEVA_DRGroup_Snapclone",
         {disk("0035")},
         "",
         {"MSG_ERROR_DR_GROUP_NO_REMOTE_CELL_LINKS_FOUND", {"\\Data Replication\\DRG3", "EVA03"}}},
    };
    const std::map<std::string, std::string> before = disks();
    for (const Case &c : cases) {
        if (*c.change != '\0') {
            ASSERT_EQ(evasim(std::string("change drgroup DRG1 ") + c.change).status, 0);
        }
        std::unique_ptr<SnapshotJob> refused = job(c.method, c.disks);
        // The entry answers 0 and records the list: the message is what tells the host.
        EXPECT_EQ(refused->select(), QRN_OK) << c.expected.key;
        const Pushed pushed = lastError();
        EXPECT_EQ(pushed.key, c.expected.key);
        EXPECT_EQ(pushed.arguments, c.expected.arguments) << c.expected.key;
        if (*c.change != '\0') {
            evasim("change drgroup DRG1 membercondition=normal operationalstate=good links=yes");
        }
    }
    for (const std::string &run : scripts()) {
        EXPECT_TRUE(run.find("> REFRESH | FIND VDISK") != std::string::npos ||
                    run.find("> LS DR_GROUP") != std::string::npos)
            << run;
    }
    EXPECT_EQ(disks(), before);
}

TEST_F(Snapshots, AMakeAfterAFailedCheckMeetsTheToolsOwnRefusalAndAnUnknownMethodMakesNothing)
{
    // A host that goes on regardless: the snapshot's entry comes first in the session, the
    // tool lists the names and refuses it.
    std::unique_ptr<SnapshotJob> regardless = job("HPEVA_VSnap", {disk("0013"), disk("0012")});
    EXPECT_EQ(regardless->select(), QRN_OK);
    evasim("history --clear");
    s_said.clear();
    std::vector<std::wstring> targets;
    EXPECT_EQ(regardless->make(targets), QRN_ERR_NOT_DONE);
    EXPECT_TRUE(said("Cannot make a snapshot of \\Virtual Disks\\app\\web\\web_vsnap000: it is a snapshot itself."));
    const Pushed failed = lastError();
    EXPECT_EQ(failed.key, "MSG_ERROR_VSNAP_CREATION_FAILED");
    EXPECT_EQ(failed.arguments, std::vector<std::string>{"\\Virtual Disks\\app\\web\\web_vsnap000"});
    EXPECT_EQ(scripts(), std::vector<std::string>{"EVA01> LS VDISK"});

    std::unique_ptr<SnapshotJob> unknown = job("HPEVA_Mirror", {disk("0001")});
    EXPECT_EQ(unknown->select(), QRN_OK) << "checked as a vsnap";
    EXPECT_EQ(unknown->make(targets), QRN_ERR_FAILED);
    const Pushed invalid = lastError();
    EXPECT_EQ(invalid.key, "MSG_ERROR_INVALID_SPLIT_TYPE");
    EXPECT_EQ(invalid.arguments, std::vector<std::string>{"HPEVA_Mirror"});
    for (const std::string &run : scripts()) {
        EXPECT_EQ(run.find("ADD "), std::string::npos) << run;
    }
}

TEST_F(Snapshots, AMakeWithoutSelectInThisProcess)
{
    // A session no select filled: nothing to make, and empty targets.
    std::unique_ptr<SnapshotJob> unselected = job("HPEVA_VSnap", {disk("0001")});
    std::vector<std::wstring> targets;
    EXPECT_EQ(unselected->make(targets), QRN_OK);
    EXPECT_EQ(targets, std::vector<std::wstring>{L""});
    EXPECT_TRUE(scripts().empty());

    // A session filled by the provider before it was finished and started again: the disk
    // kept by select is gone with the old provider objects and is read again by its UDID.
    std::unique_ptr<SnapshotJob> selected = job("HPEVA_Snapclone", {disk("0002")}, "restarted");
    ASSERT_EQ(selected->select(), QRN_OK);
    selected.reset();
    provider()->fini();
    uint16_t version[4] = {0, 0, 0, 0};
    ASSERT_EQ(provider()->init(s_host->get(), version), QRN_OK);
    selected = job("HPEVA_Snapclone", {disk("0002")}, "restarted");
    evasim("history --clear");
    ASSERT_EQ(selected->make(targets), QRN_OK);
    const std::vector<std::string> runs = scripts();
    ASSERT_EQ(runs.size(), 5u) << "the disk read, the list, the copy, its read-back and the wait's read";
    EXPECT_EQ(runs[0], "EVA01> REFRESH | FIND VDISK LUNWWID=6005-08b4-0001-0000-0000-0000-0000-0002 XML");
    EXPECT_EQ(targets.at(0), udidOf(kCell1, disks().at("EVA01:\\Virtual Disks\\db\\logs_clone000\\ACTIVE")));
}

TEST_F(Snapshots, TheArraysOwnRefusalsReachTheHostWithSssusLineAndChangeNothing)
{
    ASSERT_EQ(evasim("set copies_per_source=2").status, 0);
    const std::map<std::string, std::string> before = disks();
    std::vector<std::wstring> targets;
    EXPECT_EQ(selectAndMake("HPEVA_VSnap", {disk("0011")}, targets), QRN_ERR_FAILED);
    Pushed pushed = lastError();
    EXPECT_EQ(pushed.key, "MSG_ERROR_CLI_COMMAND_FAILED");
    EXPECT_EQ(pushed.arguments.at(3), "Error: The Vdisk \\Virtual Disks\\app\\web\\ACTIVE already has the most "
                                      "snapshots and copies allowed (2)");
    EXPECT_EQ(disks(), before);

    ASSERT_EQ(evasim("change cell EVA01 total=55GB").status, 0);
    EXPECT_EQ(selectAndMake("HPEVA_Snapclone", {disk("0001")}, targets), QRN_ERR_FAILED);
    pushed = lastError();
    EXPECT_EQ(pushed.key, "MSG_ERROR_CLI_COMMAND_FAILED");
    EXPECT_EQ(pushed.arguments.at(3).rfind("Error: Not enough free space in the disk group", 0), 0u)
        << pushed.arguments.at(3);
    EXPECT_EQ(disks(), before);
}
