// The simulator's own settings: banner, how long copies run, which quirks of the real tool show,
// which rules of the array hold, and the simulated clock.
#ifndef EVASIM_SETTINGS_H
#define EVASIM_SETTINGS_H

#include <string>
#include <vector>

namespace evasim {

class Database;

class Settings {
public:
    struct Key {
        const char *name;
        const char *fallback;
        const char *help;
    };
    static const std::vector<Key> &keys();

    // Every key at its default.
    Settings();
    void load(Database &db);
    void save(Database &db) const;

    // Checks the key and the value's form; gives an error text, empty on success.
    std::string set(const std::string &key, const std::string &value);
    std::string get(const std::string &key) const;

    std::string version() const { return get("version"); }
    std::string build() const { return get("build"); }
    long long integer(const std::string &key) const;
    double seconds(const std::string &key) const;
    bool flag(const std::string &key) const;
    // A rule of the array (Rules) is on unless 'rules_off' names it.
    bool ruleOn(const std::string &rule) const;
    // The simulated clock: the real one moved by clock_offset, in seconds since the epoch.
    double now() const;

private:
    std::vector<std::pair<std::string, std::string>> m_values;
};

}  // namespace evasim

#endif
