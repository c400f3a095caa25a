#include "settings.h"

#include "database.h"
#include "rules.h"
#include "statement.h"
#include "text_util.h"

#include <chrono>
#include <cstdlib>

namespace evasim {

const std::vector<Settings::Key> &Settings::keys()
{
    static const std::vector<Key> list{
        {"version", "8.0.2", "version number on the banner's \"Version: \" line"},
        {"build", "080206A", "text on the banner's \"Build: \" line"},
        {"copy_progress", "reads", "how a copy's progress counts: reads (listings that show it) or seconds"},
        {"snapclone_reads", "1", "reads of a new snapclone that still show \"snapclone_in_progress\""},
        {"restore_reads", "2", "reads of a restore copy (ADD COPY ... CONTAINER=) that still show it running"},
        {"snapclone_seconds", "8", "seconds a snapclone runs, with copy_progress=seconds"},
        {"restore_seconds", "20", "seconds a restore copy runs, with copy_progress=seconds"},
        {"copy_unit_gb", "0", "0: every copy takes the reads or seconds above; N: that many per N GB of its capacity"},
        {"copies_per_source", "16", "snapshots and running copies a disk may have at once (0: no limit)"},
        {"rules_off", "", "the array's rules (evasim show rules) that don't refuse anything, by name, comma-separated"},
        {"clock_offset", "0", "seconds the simulated clock is ahead of the real one (evasim clock)"},
        {"clock_frozen", "0", "0: the simulated clock runs; else the time it stands at, in seconds since the epoch"},
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
        const std::string key = s.text(0);
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
    const std::string k = lower(trim(key));
    for (auto &kv : m_values) {
        if (kv.first != k) {
            continue;
        }
        if (k == "snapclone_reads" || k == "restore_reads" || k == "copy_unit_gb" || k == "copies_per_source") {
            long long n = 0;
            if (!parseInt(value, n) || n < 0) {
                return "setting " + k + " needs a whole number of 0 or more, not '" + value + "'";
            }
            kv.second = std::to_string(n);
        } else if (k == "snapclone_seconds" || k == "restore_seconds" || k == "clock_offset" || k == "clock_frozen") {
            char *end = nullptr;
            const double v = std::strtod(value.c_str(), &end);
            if (value.empty() || *end || !(v >= (k == "clock_offset" ? -1e12 : 0) && v <= 1e12)) {
                return "setting " + k + " needs a number of seconds" + (k == "clock_offset" ? "" : " of 0 or more") +
                       ", not '" + value + "'";
            }
            kv.second = trim(value);
        } else if (k == "rules_off") {
            std::vector<std::string> names;
            for (const std::string &n : split(value, ',')) {
                if (trim(n).empty()) {
                    continue;
                }
                const Rule *r = Rules::find(trim(n));
                if (!r || !r->assumption) {
                    return "rules_off takes rules that are assumptions (evasim show rules), not '" + trim(n) + "'";
                }
                names.push_back(r->name);
            }
            kv.second = join(names, ",");
        } else if (k == "copy_progress") {
            if (lower(trim(value)) != "reads" && lower(trim(value)) != "seconds") {
                return "setting copy_progress is reads or seconds, not '" + value + "'";
            }
            kv.second = lower(trim(value));
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

long long Settings::integer(const std::string &key) const
{
    long long n = 0;
    return parseInt(get(key), n) ? n : 0;
}

double Settings::seconds(const std::string &key) const
{
    return std::strtod(get(key).c_str(), nullptr);
}

double Settings::now() const
{
    const double frozen = seconds("clock_frozen");
    if (frozen > 0) {
        return frozen;
    }
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count() +
           seconds("clock_offset");
}

bool Settings::ruleOn(const std::string &rule) const
{
    for (const std::string &name : split(get("rules_off"), ',')) {
        if (iequals(trim(name), rule)) {
            return false;
        }
    }
    return true;
}

bool Settings::flag(const std::string &key) const
{
    bool b = false;
    return parseBool(get(key), b) && b;
}

}  // namespace evasim
