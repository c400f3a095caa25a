// The simulator's state file: an SQLite database in WAL mode, shared by every evasim process.
#ifndef EVASIM_DATABASE_H
#define EVASIM_DATABASE_H

#include <cstdint>
#include <string>

struct sqlite3;

namespace evasim {

class Database {
public:
    // Opens (and with 'create' makes) the file and its tables. Throws std::runtime_error, also
    // for a file an older evasim made, unless 'rebuild' lets its tables be made anew.
    Database(const std::string &path, bool create, bool rebuild = false);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    void exec(const std::string &sql);
    // BEGIN IMMEDIATE: the writer's lock is taken before anything is read, so two runs
    // never interleave a read and a write of the same rows.
    void begin();
    void commit();
    void rollback();
    sqlite3 *handle() const { return m_db; }
    int64_t lastInsertId() const;
    // Changes whenever another connection commits; equal values mean nobody else wrote meanwhile.
    int64_t dataVersion();

private:
    void createSchema(const std::string &path, bool rebuild);

    sqlite3 *m_db = nullptr;
    bool m_inTransaction = false;
};

}  // namespace evasim

#endif
