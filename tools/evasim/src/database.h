// The simulator's state file: an SQLite database in WAL mode, shared by every evasim process.
#pragma once

#include <string>

struct sqlite3;

namespace evasim {

class Database {
public:
    // Opens (and with 'create' makes) the file and its tables. Throws std::runtime_error.
    Database(std::string const &path, bool create);
    ~Database();
    Database(Database const &) = delete;
    Database &operator=(Database const &) = delete;

    void exec(std::string const &sql);
    // BEGIN IMMEDIATE: the writer's lock is taken before anything is read, so two runs
    // never interleave a read and a write of the same rows.
    void begin();
    void commit();
    void rollback();
    sqlite3 *handle() const { return m_db; }

private:
    void createSchema();

    sqlite3 *m_db = nullptr;
    bool m_inTransaction = false;
};

} // namespace evasim
