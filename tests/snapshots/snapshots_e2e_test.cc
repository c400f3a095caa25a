// Snapshot groups as a backup host runs them: the provider loaded with dlopen, the disks'
// nodes interposed and initialised, select and make on one session against the simulated
// arrays. What the provider sent is read back from evasim's history, what it made from its
// disks, and what it said from the host's callback and the last error.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "host_context.h"
#include "provider_fixture.h"
#include "provider_install.h"
#include "qrn_results.h"
#include "snapshot_job.h"
#include "text.h"

namespace {

const char kCell1[] = "5000-1FE1-5000-0001";
const char kCell2[] = "5000-1FE1-5000-0002";

std::wstring udidOf(const std::string &cell, const std::string &wwlunid)
{
    std::string text = "UDID##HP##HSV##" + cell + "##" + wwlunid;
    for (char &c : text) {
        c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
    }
    return fromUtf8(text);
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

std::vector<std::string> splitTabs(const std::string &line)
{
    std::vector<std::string> cells;
    std::string cell;
    std::istringstream fields(line);
    while (std::getline(fields, cell, '\t')) {
        cells.push_back(cell);
    }
    if (!line.empty() && line.back() == '\t') {
        cells.push_back("");
    }
    return cells;
}

// The runs since the history was last cleared, one text each: the selected cell, then each
// command the provider sent (logins, options and EXIT left out), joined by " | ".
std::vector<std::string> scripts()
{
    std::istringstream in(evasim("history --last 0 --format tsv").output);
    std::string line;
    std::getline(in, line);
    std::map<int, std::string> runs;
    while (std::getline(in, line)) {
        const std::vector<std::string> row = splitTabs(line);
        if (row.size() < 5) {
            continue;
        }
        std::string command = row[4];
        std::smatch cell;
        if (std::regex_match(command, std::regex("(set option|select manager|exit).*", std::regex::icase))) {
            continue;
        }
        if (std::regex_match(command, cell, std::regex("select (cell|system) \"(.*)\"", std::regex::icase))) {
            command = cell[2].str() + ">";
        }
        std::string &run = runs[std::stoi(row[0])];
        run += (run.empty() || run.back() == '>' ? (run.empty() ? "" : " ") : " | ") + command;
    }
    std::vector<std::string> out;
    for (const auto &kv : runs) {
        out.push_back(kv.second);
    }
    return out;
}

// path -> wwlunid of every disk, and the type of each.
std::map<std::string, std::string> disks(const char *column = "wwlunid")
{
    std::istringstream in(evasim("show disks --format tsv").output);
    std::string line;
    std::vector<std::string> header;
    std::map<std::string, std::string> out;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        const std::vector<std::string> row = splitTabs(line);
        if (header.empty()) {
            header = row;
            continue;
        }
        std::map<std::string, std::string> named;
        for (size_t i = 0; i < header.size() && i < row.size(); ++i) {
            named[header[i]] = row[i];
        }
        out[named["cell"] + ":" + named["path"]] = named[column];
    }
    return out;
}

// The SSSU lock's file is placed once per process, so its directory outlives every test.
class LockDirectory : public ::testing::Environment {
public:
    void SetUp() override
    {
        char pattern[] = "/tmp/tamlin-locks-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        m_dir = pattern;
        setenv("QORIN_LOCK_DIR", m_dir.c_str(), 1);
    }
    void TearDown() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_dir, ignored);
    }

private:
    std::string m_dir;
};
const ::testing::Environment *const kLocks = ::testing::AddGlobalTestEnvironment(new LockDirectory);

// The last error of the calling thread: its key and its arguments.
struct Pushed {
    std::string key;
    std::vector<std::string> arguments;
};

// One provider install for the suite, started once as a host does; every test starts from the
// scenario's world with an empty history.
class Snapshots : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_site = new ProviderInstall({{"cv1", "admin", "secret"}},
                                     ProviderInstall::sourceDir() + "/tests/snapshots/snapshots.scn");
        ASSERT_TRUE(s_site->ok()) << s_site->loadReport();
        s_host = new HostContext("", [](const std::wstring &host, const std::wstring &, int severity) {
            if (!host.empty()) {
                s_said.push_back(toUtf8(host));
            } else if (severity != 0) {
                s_traces.push_back(severity);
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
        dropLastError();
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

    static void dropLastError()
    {
        qrn_msg_info *info = nullptr;
        if (provider()->get_last_error(&info) == 0 && info != nullptr) {
            provider()->del_last_error(&info);
        }
    }

    static Pushed lastError()
    {
        Pushed pushed{"<none>", {}};
        qrn_msg_info *info = nullptr;
        if (provider()->get_last_error(&info) != 0 || info == nullptr) {
            return pushed;
        }
        const std::string text(info->text, info->length);
        provider()->del_last_error(&info);
        std::smatch found;
        if (std::regex_search(text, found, std::regex("MSGID=(\\w+)"))) {
            pushed.key = found[1].str();
        }
        const std::regex argument("<ARGVALUE INDEX=\\d+ TYPE=\\d+>([\\s\\S]*?)</ARGVALUE>");
        for (std::sregex_iterator it(text.begin(), text.end(), argument), end; it != end; ++it) {
            pushed.arguments.push_back((*it)[1].str());
        }
        return pushed;
    }

    static ProviderInstall *s_site;
    static HostContext *s_host;
    static std::vector<std::string> s_said;
    static std::vector<int> s_traces;
    static int s_sessions;
};

ProviderInstall *Snapshots::s_site = nullptr;
HostContext *Snapshots::s_host = nullptr;
std::vector<std::string> Snapshots::s_said;
std::vector<int> Snapshots::s_traces;
int Snapshots::s_sessions = 0;

}  // namespace

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
