#ifndef CFIPBLMOPS_H
#define CFIPBLMOPS_H

#include <bitset>
#include <string>
#include <vector>

#include <ace/Recursive_Thread_Mutex.h>
#include <ace/SString.h>

#include "cfiexport.h"
#include "cfitraceable.h"

namespace qorin_pdk_4_4 {

// The persistent LUN map: which LUN numbers are taken on each enclosure. The truth is a
// tree of small record files below the cache location, one per presented disk:
//
//   <cache>/luns/<enclosure>/<udid>       the disk's LUN number, decimal, no line feed
//   <cache>/devHandle/<enclosure>/<udid>  only ever removed here
//
// Each object reads the tree into memory for the first enclosure it is asked about; later
// enclosures start empty and learn their numbers as they are stored. A record file is
// replaced whole (written beside it, then renamed over it), so a reader in any process sees
// the old record or the new one, never a part.
//
// Results: 0 success, 1 the refresh failed, 3 an argument is missing or out of range,
// 5 no memory, 26 a record can't be read or written.
class QORIN_PDK_API CFiPblmOps : public virtual CFiTraceable {
public:
    // Numbers 0 to 254: one bit each, set when the number is taken.
    static const unsigned MAP_SLOTS = 255;
    // The machine-wide lock (CFiEnv::machineLock) of everyone who picks and records numbers:
    // held from reloadEnclMap to the record written, so that no two disks get one number.
    static const int LOCK_KEY = 1003;

    // The install's cache location (CFiConfigurationPathTool), looked up at each use.
    CFiPblmOps();
    // An explicit cache location, ending in "/".
    explicit CFiPblmOps(const std::string &cacheRoot);
    ~CFiPblmOps() override;

    void setCacheRoot(const std::string &cacheRoot);
    // Empty when neither an explicit location nor an install root is known.
    std::string getCacheRoot() const;

    // A maximum above the map's last slot is bounded to it; maps that exist keep their bits.
    int setLunNumRange(unsigned min, unsigned max);
    unsigned getMinLunNum() const { return m_min; }
    unsigned getMaxLunNum() const { return m_max; }

    // Writes values[0] as the record key, then marks the number taken on the enclosure.
    int setKeyValue(const char *key, std::vector<std::string> values, const char *enclosureId);
    // Stores lun as the record key and drops the disk's devHandle record.
    int setKeyValue(const std::string &key, const ACE_WString &udid, const std::string &enclosureId, int lun);
    // Appends the record's first line; a missing record is no failure and appends nothing.
    int getKeyValue(const char *key, std::vector<std::string> &values);
    // -1 when there is no record or its number is outside 0 to 255.
    int getKeyValue(const char *key, int &value);
    // Reads the enclosure's records again into its map, which then holds exactly the numbers
    // that the record tree holds, whatever other processes stored or removed meanwhile.
    // 1 when the record directory can't be read (the map is then empty), 3 without an id.
    int reloadEnclMap(const char *enclosureId);
    // Every free number of the enclosure in ascending order; always true, and an empty list
    // means that none is free. Marks nothing.
    bool getNewValue(const char *enclosureId, std::vector<std::string> &values);
    // Removes the record, and frees its number when it is a LUN record. 0 also when absent.
    int rmCacheRecord(const char *key);
    // Removes every LUN record of the enclosure that holds lun, with the disks' devHandle records.
    int rmLunCacheRecord(const char *enclosureId, unsigned lun);

    // The record paths of a disk; the directories are made when missing. Throw
    // CFiUdidException for a malformed identity; 3 when there is no cache location.
    int getLunKey(const ACE_WString &udid, std::string &key);
    int getLunKey(const std::string &udid, std::string &key);
    int getDevKey(const ACE_WString &udid, std::string &key);
    int getDevKey(const std::string &udid, std::string &key);

    CFiPblmOps(const CFiPblmOps &) = delete;
    CFiPblmOps &operator=(const CFiPblmOps &) = delete;

private:
    struct lunNum {
        lunNum *next;
        std::bitset<MAP_SLOTS> map;
        std::string enclosureId;
    };

    int allocLunNumEle(lunNum **out);
    // A new, empty map for enclosureId at the head of the list; null when none can be made.
    lunNum *addEnclMap(const char *enclosureId);
    int getCacheRecord(const char *path, std::vector<std::string> &values);
    bool getEnclMap(const char *enclosureId, lunNum **out);
    void fillBitMap(const char *enclosureId, const std::string &path);
    bool scanCache(const char *enclosureId, const std::string &directory, unsigned *lun);
    bool refreshCache(const char *enclosureId, unsigned *lun);
    bool getNewLunNum(const char *enclosureId, std::vector<std::string> &values);
    void resetLunNum(const std::string &path, unsigned number);
    void rmLunPathRecord(const char *enclosureId, const std::string &name, const std::string &path, unsigned *lun);
    int makeKey(const char *tree, const std::string &udid, std::string &key);
    bool inRange(long number) const { return number >= static_cast<long>(m_min) && number <= static_cast<long>(m_max); }

    unsigned m_min;
    unsigned m_max;
    lunNum *m_head;
    std::string m_cacheRoot;
    // Host threads share the plug-in's one map.
    mutable ACE_Recursive_Thread_Mutex m_lock;
};

}  // namespace qorin_pdk_4_4

#endif
