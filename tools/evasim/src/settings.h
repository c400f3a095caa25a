// The simulator's own settings: banner, how long copies run, which quirks of the real tool show.
#pragma once

#include <string>
#include <vector>

namespace evasim {

class Database;

class Settings {
public:
    struct Key {
        char const *name;
        char const *fallback;
        char const *help;
    };
    static std::vector<Key> const &keys();

    // Every key at its default.
    Settings();
    void load(Database &db);
    void save(Database &db) const;

    // Checks the key and the value's form; gives an error text, empty on success.
    std::string set(std::string const &key, std::string const &value);
    std::string get(std::string const &key) const;

    std::string version() const { return get("version"); }
    std::string build() const { return get("build"); }
    long long snapcloneReads() const;
    long long restoreReads() const;
    bool flag(std::string const &key) const;

private:
    std::vector<std::pair<std::string, std::string>> m_values;
};

} // namespace evasim
