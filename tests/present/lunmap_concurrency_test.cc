// Two processes presenting shared disks of one array at once, to different hosts, so that
// the array would take the same LUN for both: round after round, and once with one of them
// killed halfway. The LUN map must never hold one number for two disks, every record must
// read as a number, and each record must be the LUN the array shows for its disk.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "present_support.h"
#include "provider_fixture.h"

using namespace present_test;
namespace fs = std::filesystem;

namespace {

const ::testing::Environment *const kLocks = ::testing::AddGlobalTestEnvironment(new tamlin_test::LockDirectory);

const int kDisksPerProcess = 6;
const int kRounds = 3;
// Disk numbers of the shared disks: 0x100 on.
const int kFirstShared = 0x100;

std::string world()
{
    std::string extra;
    for (int i = 0; i < 2 * kDisksPerProcess * (kRounds + 2); ++i) {
        char path[64];
        snprintf(path, sizeof path, "\\Virtual Disks\\shared\\s%03d", i);
        extra += "vdisk EVA01 \"" + std::string(path) + "\" size=1GB wwlunid=" + wwlunid(kFirstShared + i) + "\n";
    }
    return scenario(0, extra);
}

std::string narrow(const std::wstring &text)
{
    return std::string(text.begin(), text.end());
}

// One importer process, its output read line by line; it tells its process id first.
class Importer {
public:
    Importer(const std::string &host, int firstDisk, int count = kDisksPerProcess)
    {
        std::string command =
            "exec " + tamlin_test::buildDir() + "/bin/lunmap_importer " + builtProviderPath() + " " + host;
        for (int i = 0; i < count; ++i) {
            command += " '" + narrow(udid(kFirstShared + firstDisk + i)) + "'";
        }
        m_out = popen(command.c_str(), "r");
        char line[64];
        if (m_out != nullptr && fgets(line, sizeof line, m_out) != nullptr) {
            m_pid = atoi(line + 4);
        }
    }
    // Reads up to the n-th "done" line; false when the process ended before.
    bool waitForDone(int n)
    {
        char line[256];
        while (m_done < n && m_out != nullptr && fgets(line, sizeof line, m_out) != nullptr) {
            m_done += std::string(line).rfind("done ", 0) == 0 ? 1 : 0;
        }
        return m_done >= n;
    }
    void kill() { ::kill(m_pid, SIGKILL); }
    // The exit status, or -1 for a process that a signal ended.
    int wait()
    {
        const int status = m_out != nullptr ? pclose(m_out) : -1;
        m_out = nullptr;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    bool started() const { return m_pid > 0; }

private:
    pid_t m_pid = -1;
    FILE *m_out = nullptr;
    int m_done = 0;
};

class LunMapConcurrency : public ::testing::Test {
protected:
    // Every record of the cell: name -> number. A record that doesn't read as a number in
    // the map's range fails the test.
    std::map<std::string, int> records(Site &site)
    {
        std::map<std::string, int> found;
        const fs::path directory = site.root().path("CacheFiles/luns/") + kCellWwn;
        for (const auto &entry : fs::directory_iterator(directory)) {
            const std::string name = entry.path().filename().string();
            if (name[0] == '.') {
                continue;  // a write that never finished is no record
            }
            std::ifstream in(entry.path());
            std::string text;
            std::getline(in, text);
            char *end = nullptr;
            const long number = strtol(text.c_str(), &end, 10);
            EXPECT_TRUE(!text.empty() && *end == '\0' && number >= 1 && number <= 254)
                << name << " holds [" << text << "]";
            found[name] = static_cast<int>(number);
        }
        return found;
    }
    // No number twice, and each record the LUN its disk has on the array.
    void checkRecords(Site &site, size_t expected)
    {
        std::map<std::string, int> found = records(site);
        EXPECT_GE(found.size(), expected);
        std::map<int, std::string> owners;
        for (const auto &[name, number] : found) {
            const auto taken = owners.emplace(number, name);
            EXPECT_TRUE(taken.second) << "LUN " << number << " recorded for " << name << " and " << taken.first->second;
        }
        std::set<std::string> presented = site.presentations();
        for (int i = 0; i < 2 * kDisksPerProcess * (kRounds + 2); ++i) {
            const std::string name = narrow(udid(kFirstShared + i));
            const auto record = found.find(name);
            if (record == found.end()) {
                continue;
            }
            char path[64];
            snprintf(path, sizeof path, "\\Virtual Disks\\shared\\s%03d\\ACTIVE", i);
            const std::string lun = std::to_string(record->second);
            EXPECT_TRUE(presented.count(std::string(path) + "|\\Hosts\\backup01|" + lun) +
                            presented.count(std::string(path) + "|\\Hosts\\lab\\h1|" + lun) ==
                        1)
                << path << " is recorded at " << lun;
        }
    }
};

}  // namespace

TEST_F(LunMapConcurrency, TwoProcessesNeverRecordOneLunTwiceEvenWhenOneIsKilledHalfway)
{
    Site site(world());
    int next = 0;
    for (int round = 0; round < kRounds; ++round) {
        Importer first("backup01", next);
        Importer second("h1", next + kDisksPerProcess);
        next += 2 * kDisksPerProcess;
        ASSERT_TRUE(first.started() && second.started());
        EXPECT_TRUE(first.waitForDone(kDisksPerProcess));
        EXPECT_TRUE(second.waitForDone(kDisksPerProcess));
        EXPECT_EQ(first.wait(), 0) << "round " << round;
        EXPECT_EQ(second.wait(), 0) << "round " << round;
        checkRecords(site, 2u * kDisksPerProcess * (round + 1));
    }

    // One is killed at some moment after a few of its disks: the other finishes, the map stays
    // whole, and the machine-wide lock dies with its holder.
    std::mt19937 random(std::random_device{}());
    {
        // Twice the disks, so that the kill comes while it still imports.
        Importer killed("backup01", next, 2 * kDisksPerProcess);
        Importer survivor("h1", next + 2 * kDisksPerProcess);
        next += 3 * kDisksPerProcess;
        ASSERT_TRUE(killed.started() && survivor.started());
        ASSERT_TRUE(killed.waitForDone(kDisksPerProcess / 2));
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % 150));
        killed.kill();
        EXPECT_EQ(killed.wait(), -1);
        EXPECT_TRUE(survivor.waitForDone(kDisksPerProcess));
        EXPECT_EQ(survivor.wait(), 0);
    }
    checkRecords(site, 2u * kDisksPerProcess * kRounds + kDisksPerProcess + kDisksPerProcess / 2);

    Importer after("backup01", next);
    EXPECT_TRUE(after.waitForDone(kDisksPerProcess));
    EXPECT_EQ(after.wait(), 0);
    checkRecords(site, 2u * kDisksPerProcess * (kRounds + 1) + kDisksPerProcess / 2);
}
