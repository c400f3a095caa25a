#include "cfipblmops.h"

#include <atomic>
#include <cstdlib>

#include <ace/Guard_T.h>
#include <ace/OS_NS_dirent.h>
#include <ace/OS_NS_fcntl.h>
#include <ace/OS_NS_stdio.h>
#include <ace/OS_NS_sys_stat.h>
#include <ace/OS_NS_unistd.h>

#include "cficonfigurationpathtool.h"
#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "cfiudid.h"
#include "qrn_results.h"

namespace qorin_pdk_4_4 {

namespace {

using Guard = ACE_Guard<ACE_Recursive_Thread_Mutex>;

const char kLunTree[] = "luns/";
const char kDevTree[] = "devHandle/";
// Written files start with this, so that scans pass over other writers' unfinished records.
const char kTempMark = '.';
const size_t kRecordLineBytes = 1024;

// The number a record holds: its first line, decimal digits alone (blanks around them
// allowed). Anything else is no number: read as 0, a garbage record would take LUN 0.
bool recordNumber(const std::string &line, int &number)
{
    const size_t begin = line.find_first_not_of(" \t");
    const size_t end = line.find_last_not_of(" \t\r\n");
    if (begin == std::string::npos || end == std::string::npos || end < begin || end - begin >= 9) {
        return false;
    }
    number = 0;
    for (size_t i = begin; i <= end; ++i) {
        if (line[i] < '0' || line[i] > '9') {
            return false;
        }
        number = number * 10 + (line[i] - '0');
    }
    return true;
}

const char *nz(const char *text)
{
    return text != nullptr ? text : "NULL";
}

bool exists(const std::string &path)
{
    ACE_stat st;
    return ACE_OS::stat(path.c_str(), &st) == 0;
}

// Makes path when missing; its parent must exist.
bool makeLevel(const std::string &path)
{
    if (ACE_OS::access(path.c_str(), F_OK) == 0) {
        return true;
    }
    // Another process may have made it in between.
    return ACE_OS::mkdir(path.c_str(), 0755) == 0 || errno == EEXIST;
}

// Every level of dir, which ends in "/".
bool makeDirectories(const std::string &dir)
{
    for (size_t slash = dir.find('/', 1); slash != std::string::npos; slash = dir.find('/', slash + 1)) {
        if (!makeLevel(dir.substr(0, slash))) {
            return false;
        }
    }
    return true;
}

// A path component of identity text: "/" would leave the tree and ":" isn't kept.
std::string component(std::string text, bool replaceColons)
{
    for (char &c : text) {
        if (c == '/' || (replaceColons && c == ':')) {
            c = '_';
        }
    }
    return text;
}

std::string installCacheRoot()
{
    ACE_WString directory;
    CFiConfigurationPathTool::getCacheLocationInfo(directory);
    return CFiStringTool::tstr2str(directory);
}

// Writes text beside path and renames it over path: readers see the old record or the new
// one, and a crash leaves no empty or half-written record. errno tells why on false.
enum WriteStep { WRITE_OK, WRITE_OPEN, WRITE_DATA };
WriteStep replaceFile(const std::string &path, const std::string &text)
{
    static std::atomic<unsigned> serial{0};
    size_t slash = path.rfind('/');
    std::string dir = slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
    std::string name = slash == std::string::npos ? path : path.substr(slash + 1);

    std::string temp;
    ACE_HANDLE handle = ACE_INVALID_HANDLE;
    // A name left by a crashed process of the same id is skipped, not reused.
    for (int attempt = 0; attempt < 100 && handle == ACE_INVALID_HANDLE; ++attempt) {
        temp = dir + kTempMark + name + "." + std::to_string(ACE_OS::getpid()) + "." + std::to_string(serial++);
        handle = ACE_OS::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0644);
        if (handle == ACE_INVALID_HANDLE && errno != EEXIST) {
            break;
        }
    }
    if (handle == ACE_INVALID_HANDLE) {
        return WRITE_OPEN;
    }
    bool written = ACE_OS::write_n(handle, text.data(), text.size()) == static_cast<ssize_t>(text.size()) &&
                   ACE_OS::fsync(handle) == 0;
    written = ACE_OS::close(handle) == 0 && written;
    if (!written || ACE_OS::rename(temp.c_str(), path.c_str()) != 0) {
        ACE_OS::unlink(temp.c_str());
        return WRITE_DATA;
    }
    return WRITE_OK;
}

}  // namespace

CFiPblmOps::CFiPblmOps() : m_min(0), m_max(MAP_SLOTS - 1), m_head(nullptr) {}

CFiPblmOps::CFiPblmOps(const std::string &cacheRoot) : CFiPblmOps()
{
    setCacheRoot(cacheRoot);
}

CFiPblmOps::~CFiPblmOps()
{
    while (m_head != nullptr) {
        lunNum *next = m_head->next;
        delete m_head;
        m_head = next;
    }
}

void CFiPblmOps::setCacheRoot(const std::string &cacheRoot)
{
    Guard guard(m_lock);
    m_cacheRoot = cacheRoot;
    if (!m_cacheRoot.empty() && m_cacheRoot.back() != '/') {
        m_cacheRoot += '/';
    }
}

std::string CFiPblmOps::getCacheRoot() const
{
    Guard guard(m_lock);
    return m_cacheRoot.empty() ? installCacheRoot() : m_cacheRoot;
}

int CFiPblmOps::setLunNumRange(unsigned min, unsigned max)
{
    Guard guard(m_lock);
    m_min = min;
    if (max >= MAP_SLOTS) {
        m_max = MAP_SLOTS - 1;
        trace(6, "CFiPblmOps::setLunNumRange: bounding to higher limit of [%d].", static_cast<int>(m_max));
    } else {
        m_max = max;
    }
    return 0;
}

int CFiPblmOps::allocLunNumEle(lunNum **out)
{
    // The bits below the minimum are never offered.
    if (m_min > MAP_SLOTS) {
        trace(1, "CFiPblmOps::allocLunNumEle: new memory allocation failure.");
        return QRN_ERR_NO_MEMORY;
    }
    auto *element = new (std::nothrow) lunNum;
    if (element == nullptr) {
        trace(1, "CFiPblmOps::allocLunNumEle: new memory allocation failure.");
        return QRN_ERR_NO_MEMORY;
    }
    element->next = m_head;
    for (unsigned n = 0; n < m_min; ++n) {
        element->map.set(n);
    }
    *out = element;
    return 0;
}

CFiPblmOps::lunNum *CFiPblmOps::addEnclMap(const char *enclosureId)
{
    lunNum *element = nullptr;
    if (allocLunNumEle(&element) != 0) {
        trace(1, "CFiPblmOps::getEnclMap new memory alloc failure.");
        return nullptr;
    }
    element->enclosureId = enclosureId;
    m_head = element;
    return element;
}

int CFiPblmOps::getCacheRecord(const char *path, std::vector<std::string> &values)
{
    FILE *file = path != nullptr ? ACE_OS::fopen(path, "r") : nullptr;
    if (file == nullptr) {
        trace(1, "CFiPblmOps::getCacheRecord ERROR: fopen failure file=[%s]\n", nz(path));
        return QRN_ERR_CACHE_RECORD;
    }
    char line[kRecordLineBytes];
    char *read = ACE_OS::fgets(line, sizeof line, file);
    ACE_OS::fclose(file);
    if (read == nullptr) {
        trace(1, "CFiPblmOps::getCacheRecord ERROR: fgets failure with file=[%s]\n", nz(path));
        return QRN_ERR_CACHE_RECORD;
    }
    values.emplace_back(line);
    trace(6, "CFiPblmOps::getCacheRecord got Cache Record=[%s]\n", line);
    return 0;
}

int CFiPblmOps::getKeyValue(const char *key, std::vector<std::string> &values)
{
    CFiTraceLogFunction traceFunction(m_traceLog, "qorin_pdk_4_4::CFiPblmOps::getKeyValue");
    if (key == nullptr) {
        trace(1, "CFiPblmOps::getKeyValue ERROR: key is NULL");
        return QRN_ERR_INVALID_ARGUMENT;
    }
    if (!exists(key)) {
        trace(6, "CFiPblmOps::getKeyValue No Cache Record");
        return 0;
    }
    int result = getCacheRecord(key, values);
    if (result != 0) {
        trace(1, "CFiPblmOps::getKeyValue ERROR in getCacheRecord err=[%d]\n", result);
    }
    return result;
}

int CFiPblmOps::getKeyValue(const char *key, int &value)
{
    value = -1;
    std::vector<std::string> values;
    int result = getKeyValue(key, values);
    int number = -1;
    if (result == 0 && !values.empty() && recordNumber(values.front(), number)) {
        value = number <= 255 ? number : -1;
    } else if (result == 0 && !values.empty()) {
        trace(2, "CFiPblmOps::getKeyValue record [%s] holds no number; taken as no record", key);
    }
    return result;
}

int CFiPblmOps::setKeyValue(const char *key, std::vector<std::string> values, const char *enclosureId)
{
    CFiTraceLogFunction traceFunction(m_traceLog, "qorin_pdk_4_4::CFiPblmOps::setKeyValue");
    if (key == nullptr) {
        trace(1, "CFiPblmOps::setKeyValue ERROR: fopen failure file=[%s]\n", nz(key));
        return QRN_ERR_CACHE_RECORD;
    }
    if (values.empty()) {
        trace(1, "CFiPblmOps::setKeyValue ERROR: no value to store in file=[%s]\n", key);
        return QRN_ERR_INVALID_ARGUMENT;
    }
    WriteStep step = replaceFile(key, values.front());
    if (step == WRITE_OPEN) {
        trace(1, "CFiPblmOps::setKeyValue ERROR: fopen failure file=[%s]\n", key);
        return QRN_ERR_CACHE_RECORD;
    }
    if (step == WRITE_DATA) {
        trace(1, "CFiPblmOps::setKeyValue ERROR: fputs failure with file=[%s]\n", key);
        return QRN_ERR_CACHE_RECORD;
    }
    // The record stands from here on, whatever the map says.
    if (enclosureId == nullptr) {
        trace(2, "CFiPblmOps::setKeyValue : No entry to be set in the bit Map because enclosureId is passed as "
                 "NULL.\n");
        return QRN_ERR_INVALID_ARGUMENT;
    }
    Guard guard(m_lock);
    lunNum *element = nullptr;
    if (!getEnclMap(enclosureId, &element)) {
        trace(6, "CFiPblmOps::setKeyValue : No bit Map for the enclosureId=[%s].\n", enclosureId);
    } else {
        int number = -1;
        if (recordNumber(values.front(), number) && inRange(number)) {
            element->map.set(static_cast<size_t>(number));
            trace(6, "CFiPblmOps::setKeyValue has set lun num [%d] in the lun map.\n", number);
        }
    }
    return 0;
}

int CFiPblmOps::setKeyValue(const std::string &key, const ACE_WString &udid, const std::string &enclosureId, int lun)
{
    trace(3, "LUNNO passed to setKeyValue is [%d]", lun);
    int result = setKeyValue(key.c_str(), std::vector<std::string>{std::to_string(lun)}, enclosureId.c_str());
    if (result != 0) {
        return result;
    }
    std::string devKey;
    result = getDevKey(udid, devKey);
    if (result != 0) {
        return result;
    }
    trace(3, " getdevKey returned [%s]", devKey.c_str());
    return rmCacheRecord(devKey.c_str());
}

bool CFiPblmOps::getEnclMap(const char *enclosureId, lunNum **out)
{
    if (enclosureId == nullptr) {
        return false;
    }
    // The record tree is read only while no enclosure is known to this object.
    if (m_head == nullptr) {
        if (!refreshCache(enclosureId, nullptr)) {
            trace(1, "CFiPblmOps::getEnclMap refreshCache returned false.");
            return false;
        }
        if (m_head == nullptr && addEnclMap(enclosureId) == nullptr) {
            return false;
        }
    }
    for (lunNum *element = m_head; element != nullptr; element = element->next) {
        if (CFiStringTool::CompareNoCase(element->enclosureId, std::string(enclosureId))) {
            *out = element;
            trace(6, "CFiPblmOps::getEnclMap got Lun Map for enclId=[%s].\n", enclosureId);
            return true;
        }
    }
    trace(6, "CFiPblmOps::getEnclMap No Lun Map for enclId=[%s].\n", enclosureId);
    lunNum *element = addEnclMap(enclosureId);
    if (element == nullptr) {
        return false;
    }
    *out = element;
    trace(6, "CFiPblmOps::getEnclMap Added a Lun Map for enclId=[%s].\n", enclosureId);
    return true;
}

int CFiPblmOps::reloadEnclMap(const char *enclosureId)
{
    CFiTraceLogFunction traceFunction(m_traceLog, "qorin_pdk_4_4::CFiPblmOps::reloadEnclMap");
    if (enclosureId == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    Guard guard(m_lock);
    lunNum *element = m_head;
    while (element != nullptr && !CFiStringTool::CompareNoCase(element->enclosureId, std::string(enclosureId))) {
        element = element->next;
    }
    if (element == nullptr && (element = addEnclMap(enclosureId)) == nullptr) {
        return QRN_ERR_NO_MEMORY;
    }
    element->map.reset();
    for (unsigned n = 0; n < m_min && n < MAP_SLOTS; ++n) {
        element->map.set(n);
    }
    std::string root = getCacheRoot();
    std::string directory = root.empty() ? std::string() : root + kLunTree + component(enclosureId, false) + "/";
    ACE_DIR *dir = directory.empty() ? nullptr : ACE_OS::opendir(directory.c_str());
    if (dir == nullptr) {
        trace(1, "CFiPblmOps::reloadEnclMap opendir failure for path=[%s].", directory.c_str());
        return QRN_ERR_NOT_DONE;
    }
    for (ACE_DIRENT *entry = ACE_OS::readdir(dir); entry != nullptr; entry = ACE_OS::readdir(dir)) {
        std::string name = entry->d_name;
        if (name.empty() || name[0] == kTempMark) {
            continue;
        }
        std::vector<std::string> values;
        if (getCacheRecord((directory + name).c_str(), values) != 0) {
            continue;
        }
        int number = atoi(values.front().c_str());
        if (inRange(number)) {
            element->map.set(static_cast<size_t>(number));
            trace(6, "CFiPblmOps::reloadEnclMap has set lun num [%d] in the lun map.", number);
        }
    }
    ACE_OS::closedir(dir);
    return 0;
}

bool CFiPblmOps::refreshCache(const char *enclosureId, unsigned *lun)
{
    std::string root = getCacheRoot();
    std::string directory = root.empty() ? std::string() : root + kLunTree + component(enclosureId, false) + "/";
    if (!scanCache(enclosureId, directory, lun)) {
        trace(1, "CFiPblmOps::refreshCache scanCache returned false.");
        return false;
    }
    return true;
}

bool CFiPblmOps::scanCache(const char *enclosureId, const std::string &directory, unsigned *lun)
{
    ACE_DIR *dir = directory.empty() ? nullptr : ACE_OS::opendir(directory.c_str());
    if (dir == nullptr) {
        trace(1, "CFiPblmOps::refreshCache opendir failure for path=[%s].", directory.c_str());
        return false;
    }
    for (ACE_DIRENT *entry = ACE_OS::readdir(dir); entry != nullptr; entry = ACE_OS::readdir(dir)) {
        std::string name = entry->d_name;
        // "." and "..", and records that another writer hasn't finished.
        if (name.empty() || name[0] == kTempMark) {
            continue;
        }
        std::string path = directory + name;
        if (lun == nullptr) {
            fillBitMap(enclosureId, path);
        } else {
            rmLunPathRecord(enclosureId, name, path, lun);
        }
    }
    ACE_OS::closedir(dir);
    return true;
}

void CFiPblmOps::fillBitMap(const char *enclosureId, const std::string &path)
{
    lunNum *element = m_head;
    while (element != nullptr && element->enclosureId != enclosureId) {
        element = element->next;
    }
    if (element == nullptr) {
        if (allocLunNumEle(&element) != 0) {
            trace(1, "CFiPblmOps::fillBitMap new memory alloc failure.");
            return;
        }
        element->enclosureId = enclosureId;
        m_head = element;
    }
    std::vector<std::string> values;
    int result = getCacheRecord(path.c_str(), values);
    if (result != 0) {
        trace(2, "CFiPblmOps::fillBitMap ignore failure in getCacheRecord err=[%d].", result);
        return;
    }
    int number = -1;
    if (!recordNumber(values.front(), number)) {
        trace(2, "CFiPblmOps::fillBitMap record [%s] holds no number; no LUN is taken for it.", path.c_str());
        return;
    }
    if (inRange(number)) {
        element->map.set(static_cast<size_t>(number));
        trace(6, "CFiPblmOps::fillBitMap has set lun num [%d] in the lun map.", number);
    }
}

bool CFiPblmOps::getNewLunNum(const char *enclosureId, std::vector<std::string> &values)
{
    lunNum *element = nullptr;
    if (!getEnclMap(enclosureId, &element)) {
        trace(2, "CFiPblmOps::getNewLunNum No Lun map present on the system.\n");
        return false;
    }
    bool found = false;
    for (unsigned n = m_min; n <= m_max && n < MAP_SLOTS; ++n) {
        if (!element->map.test(n)) {
            if (!found) {
                trace(6, "CFiPblmOps::getNewLunNum got first Lun num=[%d].\n", static_cast<int>(n));
                found = true;
            }
            values.push_back(std::to_string(n));
        }
    }
    if (!found) {
        trace(6, "CFiPblmOps::getNewLunNum LUN num not able to find free LUN num .\n");
    }
    return found;
}

bool CFiPblmOps::getNewValue(const char *enclosureId, std::vector<std::string> &values)
{
    CFiTraceLogFunction traceFunction(m_traceLog, "qorin_pdk_4_4::CFiPblmOps::getNewValue");
    Guard guard(m_lock);
    if (!getNewLunNum(enclosureId, values)) {
        trace(6, "CFiPblmOps::getNewValue - Unable to suggest a new LUN Number.\n");
    }
    return true;
}

int CFiPblmOps::rmCacheRecord(const char *key)
{
    CFiTraceLogFunction traceFunction(m_traceLog, "qorin_pdk_4_4::CFiPblmOps::rmCacheRecord");
    if (key == nullptr) {
        trace(1, "INFO:CFiPblmOps::rmCacheRecord - key is empty, nothing to remove.");
        return QRN_ERR_INVALID_ARGUMENT;
    }
    if (!exists(key)) {
        return 0;
    }
    if (std::string(key).find(std::string("/") + kLunTree) != std::string::npos) {
        std::vector<std::string> values;
        int result = getCacheRecord(key, values);
        if (result != 0) {
            trace(2, "CFiPblmOps::rmCacheRecord ignore failure in getCacheRecord err=[%d].", result);
        } else {
            int number = -1;
            if (recordNumber(values.front(), number) && inRange(number)) {
                Guard guard(m_lock);
                resetLunNum(key, static_cast<unsigned>(number));
                trace(6, "CFiPblmOps::rmCacheRecord has reset lun num [%d] in the lun map.", number);
            }
        }
    }
    if (ACE_OS::unlink(key) == 0) {
        trace(6, "INFO:CFiPblmOps::rmCacheRecord file=[%s] removed successfully", key);
    } else {
        trace(6, "INFO:CFiPblmOps::rmCacheRecord failure for removing file=[%s]", key);
    }
    return 0;
}

void CFiPblmOps::resetLunNum(const std::string &path, unsigned number)
{
    // The enclosure is the directory the record lies in.
    for (lunNum *element = m_head; element != nullptr; element = element->next) {
        if (path.find("/" + component(element->enclosureId, false) + "/") != std::string::npos) {
            if (number < MAP_SLOTS) {
                element->map.reset(number);
            }
            trace(6, "CFiPblmOps::resetLunNum has reset lun num [%d] in the lun map.\n", static_cast<int>(number));
            return;
        }
    }
}

int CFiPblmOps::rmLunCacheRecord(const char *enclosureId, unsigned lun)
{
    CFiTraceLogFunction traceFunction(m_traceLog, "qorin_pdk_4_4::CFiPblmOps::rmLunCacheRecord");
    if (enclosureId == nullptr) {
        trace(1, "INFO:CFiPblmOps::rmLunCacheRecord - enclId is empty, cannot identify the cache record.");
        return QRN_ERR_INVALID_ARGUMENT;
    }
    Guard guard(m_lock);
    if (!inRange(static_cast<long>(lun))) {
        trace(1, "CFiPblmOps::rmLunCacheRecord invalid lun num [%d] specified.\n", static_cast<int>(lun));
        return QRN_ERR_INVALID_ARGUMENT;
    }
    if (!refreshCache(enclosureId, &lun)) {
        trace(1, "CFiPblmOps::rmLunCacheRecord refreshCache returned failure for lun num [%d].\n",
              static_cast<int>(lun));
        return QRN_ERR_NOT_DONE;
    }
    return 0;
}

void CFiPblmOps::rmLunPathRecord(const char *enclosureId, const std::string &name, const std::string &path,
                                 unsigned *lun)
{
    std::vector<std::string> values;
    int result = getCacheRecord(path.c_str(), values);
    if (result != 0) {
        trace(1, "CFiPblmOps::rmLunPathRecord : getCacheRecord returned err=[%d]. Cannot remove the cache record.",
              result);
        return;
    }
    int number = -1;
    if (!recordNumber(values.front(), number) || static_cast<unsigned>(number) != *lun) {
        return;
    }
    trace(6, "CFiPblmOps::rmLunPathRecord got cache record for lun num [%d].", number);
    if (rmCacheRecord(path.c_str()) != 0) {
        trace(1, "CFiPblmOps::rmLunPathRecord failed to remove cache record for lun num [%d].", number);
        return;
    }
    trace(6, "CFiPblmOps::rmLunPathRecord successfully removed cache record for lun num [%d].", number);
    std::string devKey;
    // The record's name is the disk's identity, so it names its devHandle record too.
    if (getDevKey(name, devKey) == 0 && rmCacheRecord(devKey.c_str()) == 0) {
        trace(6, "CFiPblmOps::rmLunPathRecord successfully removed cache record for devicepath=[%s].", name.c_str());
    } else {
        trace(1, "CFiPblmOps::rmLunPathRecord failed to remove cache record for devicepath=[%s].", name.c_str());
    }
}

int CFiPblmOps::makeKey(const char *tree, const std::string &udid, std::string &key)
{
    CFiUdid parsed(udid);
    std::string root = getCacheRoot();
    if (root.empty()) {
        trace(1, "CFiPblmOps: no cache location: the install root is not known");
        return QRN_ERR_INVALID_ARGUMENT;
    }
    std::string directory = root + tree + component(parsed.getEnclosure(), false) + "/";
    if (!makeDirectories(directory)) {
        trace(1, "CFiPblmOps: cannot make the directory [%s]", directory.c_str());
    }
    key = directory + component(udid, true);
    return 0;
}

int CFiPblmOps::getLunKey(const std::string &udid, std::string &key)
{
    return makeKey(kLunTree, udid, key);
}

int CFiPblmOps::getLunKey(const ACE_WString &udid, std::string &key)
{
    return makeKey(kLunTree, CFiStringTool::tstr2str(udid), key);
}

int CFiPblmOps::getDevKey(const std::string &udid, std::string &key)
{
    return makeKey(kDevTree, udid, key);
}

int CFiPblmOps::getDevKey(const ACE_WString &udid, std::string &key)
{
    return makeKey(kDevTree, CFiStringTool::tstr2str(udid), key);
}

}  // namespace qorin_pdk_4_4
