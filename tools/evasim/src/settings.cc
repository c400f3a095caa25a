#include "settings.h"

#include "database.h"
#include "statement.h"
#include "text_util.h"

namespace evasim {

const std::vector<Settings::Key> &Settings::keys()
{
    static const std::vector<Key> list{
        {"version", "8.0.2", "version number on the banner's \"Version: \" line"},
        {"build", "080206A", "text on the banner's \"Build: \" line"},
        {"snapclone_reads", "1", "reads of a new snapclone that still show \"snapclone_in_progress\""},
        {"restore_reads", "2", "reads of a restore copy (ADD COPY ... CONTAINER=) that still show it running"},
        {"quirk_deletion_completed", "off", "print \"Error: Deletion completed\" after a successful delete"},
        {"quirk_present_failed", "off",
         "print \"Error: Error the call to present the virtual disk has failed. [Logical disk Presented]\" "
         "after a successful ADD LUN"},
        {"info_lines", "on", "print an \"<object> information:\" line before each listed object"},
    };
    return list;
}

Settings::Settings()
{
    for (const Key &k : keys()) {
        m_values.emplace_back(k.name, k.fallback);
    }
}

void Settings::load(Database &db)
{
    Statement s(db.handle(), "SELECT key, value FROM settings");
    while (s.step()) {
        std::string const key = s.text(0);
        for (auto &kv : m_values) {
            if (kv.first == key) {
                kv.second = s.text(1);
            }
        }
    }
}

void Settings::save(Database &db) const
{
    Statement s(db.handle(), "INSERT OR REPLACE INTO settings(key, value) VALUES(?, ?)");
    for (const auto &kv : m_values) {
        s.bind(1, kv.first).bind(2, kv.second);
        s.run();
    }
}

std::string Settings::set(const std::string &key, const std::string &value)
{
    std::string const k = lower(trim(key));
    for (auto &kv : m_values) {
        if (kv.first != k) {
            continue;
        }
        if (k == "snapclone_reads" || k == "restore_reads") {
            long long n = 0;
            if (!parseInt(value, n) || n < 0) {
                return "setting " + k + " needs a whole number of 0 or more, not '" + value + "'";
            }
            kv.second = std::to_string(n);
        } else if (k == "quirk_deletion_completed" || k == "quirk_present_failed" || k == "info_lines") {
            bool b = false;
            if (!parseBool(value, b)) {
                return "setting " + k + " needs on or off, not '" + value + "'";
            }
            kv.second = b ? "on" : "off";
        } else {
            if (value.find('\n') != std::string::npos) {
                return "setting " + k + " must be one line";
            }
            kv.second = value;
        }
        return {};
    }
    std::string known;
    for (const Key &kk : keys()) {
        known += std::string(known.empty() ? "" : ", ") + kk.name;
    }
    return "unknown setting '" + key + "' (known: " + known + ")";
}

std::string Settings::get(const std::string &key) const
{
    for (const auto &kv : m_values) {
        if (kv.first == key) {
            return kv.second;
        }
    }
    return {};
}

long long Settings::snapcloneReads() const
{
    long long n = 0;
    return parseInt(get("snapclone_reads"), n) ? n : 1;
}

long long Settings::restoreReads() const
{
    long long n = 0;
    return parseInt(get("restore_reads"), n) ? n : 2;
}

bool Settings::flag(const std::string &key) const
{
    bool b = false;
    return parseBool(get(key), b) && b;
}

}  // namespace evasim
