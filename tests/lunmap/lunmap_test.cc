// The persistent LUN map: which numbers are offered, how storing and removing records moves
// them, and that the record files carry the map from one process to the next, whole.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "cfipblmops.h"
#include "cfistringtool.h"
#include "cfiudid.h"
#include "qrn_results.h"
#include "scratch_files.h"

namespace fs = std::filesystem;
using namespace qorin_pdk_4_4;

namespace {

const char kEnclosure[] = "5000-1FE1-5000-A9F0";
const char kOtherEnclosure[] = "5000-1FE1-5000-B000";

std::string udidOf(const std::string &enclosure, int disk)
{
    return "UDID##HP##HSV##" + enclosure + "##6005-08B4-" + std::to_string(disk);
}

std::vector<std::string> range(int from, int to)
{
    std::vector<std::string> numbers;
    for (int n = from; n <= to; ++n) {
        numbers.push_back(std::to_string(n));
    }
    return numbers;
}

using tamlin_test::readFile;
using tamlin_test::writeFile;

class LunMap : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_dir = tamlin_test::makeTempDir("lunmap");
        ASSERT_FALSE(m_dir.empty());
        cache = m_dir + "/CacheFiles/";
    }
    void TearDown() override { tamlin_test::removeTree(m_dir); }

    // A map as the provider sets it up, with the record directory of kEnclosure in place.
    std::unique_ptr<CFiPblmOps> providerMap()
    {
        auto map = std::make_unique<CFiPblmOps>(cache);
        map->setLunNumRange(1, 254);
        std::string key;
        EXPECT_EQ(map->getLunKey(udidOf(kEnclosure, 0), key), 0);
        return map;
    }
    std::string lunKey(CFiPblmOps &map, const std::string &enclosure, int disk)
    {
        std::string key;
        EXPECT_EQ(map.getLunKey(udidOf(enclosure, disk), key), 0);
        return key;
    }
    std::vector<std::string> offered(CFiPblmOps &map, const char *enclosure = kEnclosure)
    {
        std::vector<std::string> values;
        EXPECT_TRUE(map.getNewValue(enclosure, values));
        return values;
    }

    std::string m_dir;
    std::string cache;
};

}  // namespace

TEST_F(LunMap, RecordKeysLieBelowTheCacheLocationByTreeAndEnclosure)
{
    CFiPblmOps map(cache);
    std::string key;
    ASSERT_EQ(map.getLunKey(std::string("xUDID##HP##HSV##ENC1##6005:ab"), key), 0);
    EXPECT_EQ(key, cache + "luns/ENC1/xUDID##HP##HSV##ENC1##6005_ab") << "the whole text names the file";
    EXPECT_TRUE(fs::is_directory(cache + "luns/ENC1"));
    ASSERT_EQ(map.getDevKey(ACE_WString(L"UDID##HP##HSV##ENC1##7"), key), 0);
    EXPECT_EQ(key, cache + "devHandle/ENC1/UDID##HP##HSV##ENC1##7");
    EXPECT_TRUE(fs::is_directory(cache + "devHandle/ENC1"));

    ASSERT_EQ(map.getLunKey(std::string("UDID##HP##HSV##../x##7"), key), 0);
    EXPECT_EQ(fs::path(key).parent_path(), fs::path(cache + "luns/.._x")) << "an identity can't leave the tree";

    EXPECT_THROW(map.getLunKey(std::string("UDID##HP##HSV"), key), CFiUdidException);
    EXPECT_THROW(map.getDevKey(ACE_WString(L"no identity"), key), CFiUdidException);
}

TEST_F(LunMap, AFreshEnclosureOffersTheWholeRangeLowestFirstAndMarksNothing)
{
    auto map = providerMap();
    EXPECT_EQ(offered(*map), range(1, 254)) << "0 is below the minimum";
    EXPECT_EQ(offered(*map), range(1, 254)) << "offering a number doesn't take it";

    CFiPblmOps noDirectory(m_dir + "/elsewhere/");
    EXPECT_TRUE(offered(noDirectory).empty()) << "without a record directory there is no map";
}

TEST_F(LunMap, StoredNumbersAreTakenAndRemovedRecordsGiveThemBack)
{
    auto map = providerMap();
    std::string first = lunKey(*map, kEnclosure, 1);
    std::string second = lunKey(*map, kEnclosure, 2);
    ASSERT_EQ(map->setKeyValue(first.c_str(), {"1"}, kEnclosure), 0);
    ASSERT_EQ(map->setKeyValue(second.c_str(), {"3", "ignored"}, kEnclosure), 0);
    EXPECT_EQ(readFile(first), "1") << "the number alone, no line feed";
    EXPECT_EQ(readFile(second), "3");
    std::vector<std::string> free = offered(*map);
    ASSERT_FALSE(free.empty());
    EXPECT_EQ(free[0], "2");
    EXPECT_EQ(free[1], "4");
    EXPECT_EQ(free.size(), 252u);

    ASSERT_EQ(map->rmCacheRecord(first.c_str()), 0);
    EXPECT_FALSE(fs::exists(first));
    EXPECT_EQ(offered(*map)[0], "1") << "a removed LUN record frees its number";
    EXPECT_EQ(map->rmCacheRecord(first.c_str()), 0) << "an absent record is no failure";
    EXPECT_EQ(map->rmCacheRecord(nullptr), QRN_ERR_INVALID_ARGUMENT);

    // A devHandle record holding a taken number changes no map when it goes.
    std::string dev;
    ASSERT_EQ(map->getDevKey(udidOf(kEnclosure, 2), dev), 0);
    writeFile(dev, "3");
    ASSERT_EQ(map->rmCacheRecord(dev.c_str()), 0);
    EXPECT_FALSE(fs::exists(dev));
    free = offered(*map);
    EXPECT_EQ(std::count(free.begin(), free.end(), "3"), 0);

    EXPECT_EQ(map->setKeyValue(first.c_str(), {"5"}, nullptr), QRN_ERR_INVALID_ARGUMENT)
        << "the record is written, the map not told";
    EXPECT_EQ(readFile(first), "5");
    free = offered(*map);
    EXPECT_EQ(std::count(free.begin(), free.end(), "5"), 1);
    EXPECT_EQ(map->setKeyValue(nullptr, {"5"}, kEnclosure), QRN_ERR_CACHE_RECORD);
    EXPECT_EQ(map->setKeyValue((cache + "luns/missing-dir/x").c_str(), {"5"}, kEnclosure), QRN_ERR_CACHE_RECORD);
}

TEST_F(LunMap, StoringForADiskDropsItsDevHandleRecord)
{
    auto map = providerMap();
    std::string udid = udidOf(kEnclosure, 4);
    std::string dev;
    ASSERT_EQ(map->getDevKey(udid, dev), 0);
    writeFile(dev, "9");
    std::string key = lunKey(*map, kEnclosure, 4);
    EXPECT_EQ(map->setKeyValue(key, CFiStringTool::str2tstr(udid), kEnclosure, 7), 0);
    EXPECT_EQ(readFile(key), "7");
    EXPECT_FALSE(fs::exists(dev));
    std::vector<std::string> free = offered(*map);
    EXPECT_EQ(std::count(free.begin(), free.end(), "7"), 0);
}

TEST_F(LunMap, RangeBoundsAndNumbersOutsideIt)
{
    auto map = providerMap();
    EXPECT_EQ(map->setLunNumRange(1, 255), 0);
    EXPECT_EQ(map->getMaxLunNum(), 254u) << "the map has no slot 255";
    EXPECT_EQ(offered(*map), range(1, 254));
    map->setLunNumRange(1, 10);
    EXPECT_EQ(offered(*map), range(1, 10)) << "a narrower range offers less from the same map";
    map->setLunNumRange(1, 254);

    std::string key = lunKey(*map, kEnclosure, 1);
    ASSERT_EQ(map->setKeyValue(key.c_str(), {"255"}, kEnclosure), 0);
    EXPECT_EQ(readFile(key), "255") << "written all the same";
    ASSERT_EQ(map->setKeyValue(lunKey(*map, kEnclosure, 2).c_str(), {"0"}, kEnclosure), 0);
    EXPECT_EQ(offered(*map), range(1, 254)) << "no bit for a number outside the range";

    for (int n = 1; n <= 254; ++n) {
        ASSERT_EQ(map->setKeyValue(lunKey(*map, kEnclosure, 100 + n).c_str(), {std::to_string(n)}, kEnclosure), 0);
    }
    EXPECT_TRUE(offered(*map).empty()) << "all in use: an empty list, and still true";

    EXPECT_EQ(map->rmLunCacheRecord(kEnclosure, 0), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(map->rmLunCacheRecord(kEnclosure, 255), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(map->rmLunCacheRecord(nullptr, 1), QRN_ERR_INVALID_ARGUMENT);
}

TEST_F(LunMap, ReadingANumberBack)
{
    CFiPblmOps map(cache);
    std::string key = lunKey(map, kEnclosure, 1);
    int value = 0;
    EXPECT_EQ(map.getKeyValue(key.c_str(), value), 0);
    EXPECT_EQ(value, -1) << "no record";
    struct Case {
        std::string content;
        int result;
        int value;
    };
    const std::vector<Case> cases = {
        {"255", 0, 255}, {"256", 0, -1},   {"-3", 0, -1},   {"12\nrest", 0, 12}, {" 7 \r\n", 0, 7},
        {"junk", 0, -1}, {"12abc", 0, -1}, {"0x10", 0, -1}, {"", 26, -1},
    };
    for (const Case &c : cases) {
        writeFile(key, c.content);
        value = 99;
        EXPECT_EQ(map.getKeyValue(key.c_str(), value), c.result) << c.content;
        EXPECT_EQ(value, c.value) << c.content;
    }
    std::vector<std::string> lines;
    EXPECT_EQ(map.getKeyValue(nullptr, lines), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(map.getKeyValue(nullptr, value), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(value, -1);
}

// A record that holds no number is no record: it takes no LUN, not even 0, and removing the
// records of LUN 0 leaves it alone.
TEST_F(LunMap, AGarbageRecordTakesNoNumber)
{
    {
        CFiPblmOps writer(cache);
        writeFile(lunKey(writer, kEnclosure, 1), "junk");
        writeFile(lunKey(writer, kEnclosure, 2), "3 tail");
        writeFile(lunKey(writer, kEnclosure, 3), "4");
    }
    CFiPblmOps map(cache);
    map.setLunNumRange(0, 254);
    std::vector<std::string> free = offered(map);
    ASSERT_EQ(free.size(), 254u);
    EXPECT_EQ(free[0], "0");
    EXPECT_EQ(free[3], "3");
    EXPECT_EQ(std::count(free.begin(), free.end(), "4"), 0);
    EXPECT_EQ(map.rmLunCacheRecord(kEnclosure, 0), 0);
    EXPECT_TRUE(fs::exists(lunKey(map, kEnclosure, 1)));
}

TEST_F(LunMap, EnclosuresByCaseShareAMapAndOnlyTheFirstIsReadFromDisk)
{
    {
        CFiPblmOps earlier(cache);
        earlier.setLunNumRange(1, 254);
        ASSERT_EQ(earlier.setKeyValue(lunKey(earlier, kEnclosure, 1).c_str(), {"1"}, nullptr),
                  QRN_ERR_INVALID_ARGUMENT);
        ASSERT_EQ(earlier.setKeyValue(lunKey(earlier, kOtherEnclosure, 1).c_str(), {"2"}, nullptr),
                  QRN_ERR_INVALID_ARGUMENT);
    }
    CFiPblmOps map(cache);
    map.setLunNumRange(1, 254);
    std::string lower = CFiStringTool::tostrlower(kEnclosure);
    EXPECT_EQ(offered(map)[0], "2") << "the first enclosure is read from its records";
    ASSERT_EQ(map.setKeyValue(lunKey(map, kEnclosure, 2).c_str(), {"2"}, lower.c_str()), 0);
    EXPECT_EQ(offered(map)[0], "3") << "a number stored under another case lands in the same map";
    EXPECT_EQ(offered(map, lower.c_str())[0], "3");
    EXPECT_EQ(offered(map, kOtherEnclosure), range(1, 254)) << "a later enclosure starts empty despite its records";
}

TEST_F(LunMap, AReloadMakesTheMapWhatTheRecordsHoldNow)
{
    auto map = providerMap();
    ASSERT_EQ(map->setKeyValue(lunKey(*map, kEnclosure, 1).c_str(), {"1"}, kEnclosure), 0);
    ASSERT_EQ(offered(*map)[0], "2");
    ASSERT_EQ(offered(*map, kOtherEnclosure)[0], "1");

    // Another process takes 2 and 3 and gives 1 back, here and on the later enclosure.
    CFiPblmOps other(cache);
    other.setLunNumRange(1, 254);
    ASSERT_EQ(other.setKeyValue(lunKey(other, kEnclosure, 2).c_str(), {"2"}, kEnclosure), 0);
    ASSERT_EQ(other.setKeyValue(lunKey(other, kEnclosure, 3).c_str(), {"3"}, kEnclosure), 0);
    ASSERT_EQ(other.rmCacheRecord(lunKey(other, kEnclosure, 1).c_str()), 0);
    ASSERT_EQ(other.setKeyValue(lunKey(other, kOtherEnclosure, 1).c_str(), {"1"}, kOtherEnclosure), 0);
    // An unfinished write of a third is no record.
    writeFile(cache + "luns/" + kEnclosure + "/.UDID##x.77.0", "4");

    EXPECT_EQ(offered(*map)[0], "2") << "this map still holds what it saw";
    EXPECT_EQ(map->reloadEnclMap(kEnclosure), 0);
    std::vector<std::string> free = offered(*map);
    EXPECT_EQ(std::vector<std::string>(free.begin(), free.begin() + 2), (std::vector<std::string>{"1", "4"}));
    EXPECT_EQ(free.size(), 252u);
    EXPECT_EQ(map->reloadEnclMap(kOtherEnclosure), 0);
    EXPECT_EQ(offered(*map, kOtherEnclosure)[0], "2");

    CFiPblmOps noDirectory(m_dir + "/elsewhere/");
    EXPECT_EQ(noDirectory.reloadEnclMap(kEnclosure), QRN_ERR_NOT_DONE);
    EXPECT_EQ(noDirectory.reloadEnclMap(nullptr), QRN_ERR_INVALID_ARGUMENT);
}

TEST_F(LunMap, RemovingANumberTakesEveryRecordThatHoldsItWithTheirDevHandles)
{
    auto map = providerMap();
    std::vector<std::string> keys;
    std::vector<std::string> devs;
    const int numbers[] = {7, 7, 8};
    for (int i = 0; i < 3; ++i) {
        keys.push_back(lunKey(*map, kEnclosure, i));
        ASSERT_EQ(map->setKeyValue(keys[i].c_str(), {std::to_string(numbers[i])}, kEnclosure), 0);
        std::string dev;
        ASSERT_EQ(map->getDevKey(udidOf(kEnclosure, i), dev), 0);
        writeFile(dev, "x");
        devs.push_back(dev);
    }
    EXPECT_EQ(map->rmLunCacheRecord(kEnclosure, 9), 0) << "a number no record holds";
    for (const std::string &key : keys) {
        EXPECT_TRUE(fs::exists(key));
    }
    EXPECT_EQ(map->rmLunCacheRecord(kEnclosure, 7), 0);
    EXPECT_FALSE(fs::exists(keys[0]));
    EXPECT_FALSE(fs::exists(keys[1]));
    EXPECT_FALSE(fs::exists(devs[0]));
    EXPECT_FALSE(fs::exists(devs[1]));
    EXPECT_TRUE(fs::exists(keys[2]));
    EXPECT_TRUE(fs::exists(devs[2]));
    EXPECT_EQ(offered(*map)[6], "7") << "the number is free again";
    EXPECT_EQ(map->rmLunCacheRecord(kOtherEnclosure, 7), QRN_ERR_NOT_DONE)
        << "an enclosure without records can't be scanned";
}

namespace {

// Runs body in a child process that exits with its result; the child never returns here.
template <class Body>
pid_t spawn(Body body)
{
    pid_t pid = fork();
    if (pid == 0) {
        _exit(body());
    }
    return pid;
}

}  // namespace

TEST_F(LunMap, TwoProcessesStoringAtOnceLeaveOnlyWholeRecords)
{
    const int keyCount = 8;
    const int rounds = 300;
    // Values of different lengths, so that any torn or truncated record shows.
    const std::set<std::string> whole = {"7", "213"};
    {
        auto map = providerMap();
    }
    std::vector<pid_t> writers;
    for (const char *value : {"7", "213"}) {
        writers.push_back(spawn([&, value] {
            CFiPblmOps map(cache);
            map.setLunNumRange(1, 254);
            for (int round = 0; round < rounds; ++round) {
                for (int k = 0; k < keyCount; ++k) {
                    std::string key;
                    if (map.getLunKey(udidOf(kEnclosure, k), key) != 0 ||
                        map.setKeyValue(key.c_str(), {value}, kEnclosure) != 0) {
                        return 1;
                    }
                }
            }
            return 0;
        }));
        ASSERT_GT(writers.back(), 0);
    }

    // Read while they write: a record is either absent (not yet written) or whole.
    std::set<std::string> torn;
    std::vector<int> exits(writers.size(), -1);
    const fs::path directory = cache + "luns/" + kEnclosure;
    bool running = true;
    while (running) {
        for (int k = 0; k < keyCount; ++k) {
            fs::path record = directory / udidOf(kEnclosure, k);
            std::ifstream in(record, std::ios::binary);
            if (!in) {
                continue;
            }
            std::ostringstream text;
            text << in.rdbuf();
            if (whole.count(text.str()) == 0) {
                torn.insert("[" + text.str() + "]");
            }
        }
        running = false;
        for (size_t w = 0; w < writers.size(); ++w) {
            if (writers[w] == 0) {
                continue;
            }
            int status = 0;
            pid_t done = waitpid(writers[w], &status, WNOHANG);
            if (done == 0) {
                running = true;
            } else {
                exits[w] = done == writers[w] && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
                writers[w] = 0;
            }
        }
    }
    EXPECT_EQ(exits, (std::vector<int>{0, 0})) << "every store succeeded";
    EXPECT_TRUE(torn.empty()) << "partial records seen: " << *torn.begin();

    std::set<std::string> stored;
    int records = 0;
    for (const auto &entry : fs::directory_iterator(directory)) {
        ++records;
        stored.insert(readFile(entry.path().string()));
    }
    EXPECT_EQ(records, keyCount) << "no scratch files are left behind";
    ASSERT_FALSE(stored.empty());
    for (const std::string &number : stored) {
        EXPECT_EQ(whole.count(number), 1u) << number;
    }

    CFiPblmOps map(cache);
    map.setLunNumRange(1, 254);
    std::vector<std::string> free = offered(map);
    for (const std::string &number : stored) {
        EXPECT_EQ(std::count(free.begin(), free.end(), number), 0) << number << " is stored, so taken";
    }
}
