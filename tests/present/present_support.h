// What the suites of presenting, deporting and disposing share: a simulated site whose hosts
// include this machine (the host of every road without a host name), node records as a host
// keeps them, and the array's presentations and command history as the simulator tells them.
#ifndef PRESENT_SUPPORT_H
#define PRESENT_SUPPORT_H

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host_node.h"
#include "lock_directory.h"
#include "provider_install.h"
#include "qorinutil.h"
#include "qrn_records.h"

namespace present_test {

const char kCellWwn[] = "5000-1FE1-5000-0001";

// This machine's name as the arrays know hosts: without its domain.
inline std::string machineName()
{
    char name[256] = {0};
    gethostname(name, sizeof name - 1);
    std::string text = name;
    return text.substr(0, text.find('.'));
}

// The world identifier of disk n: 6005-08b4-0001-0000-0000-0000-0000-<n in 4 hex digits>.
inline std::string wwlunid(int n)
{
    char text[64];
    snprintf(text, sizeof text, "6005-08b4-0001-0000-0000-0000-0000-%04x", n);
    return text;
}

inline std::wstring udid(int n)
{
    const std::string text = tamlin_test::udidOf(kCellWwn, wwlunid(n));
    return std::wstring(text.begin(), text.end());
}

// One cell EVA01 with the hosts backup01, lab\h1, lab\h2 and this machine, the source disk
// "\Virtual Disks\db\data" (disk 1) and copies of it: vsnaps data_vsnap000.. (disks 16..),
// which copies(n) adds, and whatever lines extra holds.
inline std::string scenario(int copies, const std::string &extra = "")
{
    std::string text = "server cv1 user=admin password=secret\n"
                       "cell EVA01 wwn=" +
                       std::string(kCellWwn) +
                       " total=4TB servers=cv1\n"
                       "set copies_per_source=0\n"
                       "host EVA01 \"\\Hosts\\backup01\"\n"
                       "host EVA01 \"\\Hosts\\lab\\h1\"\n"
                       "host EVA01 \"\\Hosts\\lab\\h2\"\n"
                       "host EVA01 \"\\Hosts\\" +
                       machineName() +
                       "\"\n"
                       "vdisk EVA01 \"\\Virtual Disks\\db\\data\" size=10GB wwlunid=" +
                       wwlunid(1) + "\n";
    for (int i = 0; i < copies; ++i) {
        char name[32];
        snprintf(name, sizeof name, "data_vsnap%03x", i);
        text +=
            "snapshot EVA01 \"\\Virtual Disks\\db\\data\" " + std::string(name) + " wwlunid=" + wwlunid(16 + i) + "\n";
    }
    return text + extra;
}

// The array path of copy i.
inline std::string copyPath(int i)
{
    char name[64];
    snprintf(name, sizeof name, "\\Virtual Disks\\db\\data\\data_vsnap%03x", i);
    return name;
}

// A scenario line presenting copy i to host ("lab\\h1") on lun.
inline std::string presentLine(int copy, const std::string &host, int lun)
{
    return "present EVA01 \"" + copyPath(copy) + "\" \"\\Hosts\\" + host + "\" lun=" + std::to_string(lun) + "\n";
}

// The LUN map's record of disk n below the install root, as the test writes it.
inline std::string recordPath(int n)
{
    const std::wstring identity = udid(n);
    return "CacheFiles/luns/" + std::string(kCellWwn) + "/" + std::string(identity.begin(), identity.end());
}

// A provider install whose simulated world is written by the test.
class Site : public ProviderInstall {
public:
    explicit Site(const std::string &world) : Site(world, writeScenario(world)) {}
    ~Site() { tamlin_test::removeTree(m_scenario.substr(0, m_scenario.rfind('/'))); }

    // "<disk>|<host>|<lun>" of every presentation of the cell.
    std::set<std::string> presentations() const
    {
        std::set<std::string> found;
        for (const auto &row : table("presentations")) {
            found.insert(row.at("disk") + "|" + row.at("host") + "|" + row.at("lun"));
        }
        return found;
    }
    // The commands the provider's SSSU runs sent, in order, logins left out.
    std::vector<std::string> commands() const
    {
        std::vector<std::string> found;
        for (const tamlin_test::TsvRow &row : history()) {
            if (row.at("command").rfind("select ", 0) != 0) {
                found.push_back(row.at("command"));
            }
        }
        return found;
    }
    // The commands since the count given.
    std::vector<std::string> commandsSince(size_t count) const
    {
        std::vector<std::string> all = commands();
        return std::vector<std::string>(all.begin() + static_cast<long>(std::min(count, all.size())), all.end());
    }
    // The LUN map's record of disk n, or "" when there is none.
    std::string lunRecord(int n) { return root().exists(recordPath(n)) ? root().readFile(recordPath(n)) : ""; }

private:
    static std::string writeScenario(const std::string &text)
    {
        const std::string dir = tamlin_test::makeTempDir("scenario");
        tamlin_test::writeFile(dir + "/world.scn", text);
        return dir + "/world.scn";
    }
    Site(const std::string &, const std::string &file) :
        ProviderInstall({{"cv1", "admin", "secret"}}, file),
        m_scenario(file)
    {
        EXPECT_TRUE(ok()) << loadReport();
    }

    std::string m_scenario;
};

}  // namespace present_test

#endif
