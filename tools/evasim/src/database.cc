#include "database.h"

#include <sqlite3.h>

#include <stdexcept>

namespace evasim {

namespace {

// Writers wait this long for each other; an SSSU run that holds the state is short, but a
// fault can keep it silent for a while.
constexpr int kBusyTimeoutMs = 15 * 60 * 1000;

// Raised whenever a table changes, so that a file of another layout is never misread.
constexpr int64_t kSchemaVersion = 3;
const char *const kTables[] = {"settings", "servers",  "managed",   "cells",  "diskgroups",   "vdisks", "hosts",
                               "luns",     "drgroups", "drmembers", "faults", "run_commands", "runs"};

const char *const kSchema = R"SQL(
CREATE TABLE IF NOT EXISTS settings(key TEXT PRIMARY KEY, value TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS servers(id INTEGER PRIMARY KEY, host TEXT NOT NULL, user TEXT NOT NULL,
    password TEXT NOT NULL, reachable INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS managed(id INTEGER PRIMARY KEY, server INTEGER NOT NULL, cell INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS cells(id INTEGER PRIMARY KEY, name TEXT NOT NULL, wwn TEXT NOT NULL,
    firmware TEXT NOT NULL, total INTEGER NOT NULL, serial INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS diskgroups(id INTEGER PRIMARY KEY, cell INTEGER NOT NULL, name TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS vdisks(id INTEGER PRIMARY KEY, cell INTEGER NOT NULL, folder TEXT NOT NULL,
    family TEXT NOT NULL, leaf TEXT NOT NULL, container INTEGER NOT NULL, wwlunid TEXT NOT NULL,
    objectid TEXT NOT NULL, blocks INTEGER NOT NULL, redundancy TEXT NOT NULL, allocation TEXT NOT NULL,
    diskgroup INTEGER NOT NULL, parent INTEGER NOT NULL, origin TEXT NOT NULL, copy_source INTEGER NOT NULL,
    copy_reads INTEGER NOT NULL, copy_kind TEXT NOT NULL, writecache TEXT NOT NULL, comments TEXT NOT NULL,
    created INTEGER NOT NULL, modified INTEGER NOT NULL, cloned_from INTEGER NOT NULL, copy_mode TEXT NOT NULL,
    copy_end REAL NOT NULL, copy_stalled INTEGER NOT NULL, operationalstate TEXT NOT NULL, written INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS hosts(id INTEGER PRIMARY KEY, cell INTEGER NOT NULL, path TEXT NOT NULL,
    ports TEXT NOT NULL, os TEXT NOT NULL, objectid TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS luns(id INTEGER PRIMARY KEY, vdisk INTEGER NOT NULL, host INTEGER NOT NULL,
    lun INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS drgroups(id INTEGER PRIMARY KEY, name TEXT NOT NULL, source_cell INTEGER NOT NULL,
    dest_cell INTEGER NOT NULL, writemode TEXT NOT NULL, operationalstate TEXT NOT NULL,
    membercondition TEXT NOT NULL, linkstate TEXT NOT NULL, suspended INTEGER NOT NULL, has_link INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS drmembers(id INTEGER PRIMARY KEY, drgroup INTEGER NOT NULL,
    source_disk INTEGER NOT NULL, dest_disk INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS faults(id INTEGER PRIMARY KEY, kind TEXT NOT NULL, remaining INTEGER NOT NULL,
    server TEXT NOT NULL, seconds REAL NOT NULL, line INTEGER NOT NULL, pattern TEXT NOT NULL,
    text TEXT NOT NULL, status INTEGER NOT NULL, cell TEXT NOT NULL, skip INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS runs(id INTEGER PRIMARY KEY, started REAL NOT NULL, ended REAL NOT NULL,
    status INTEGER NOT NULL, pid INTEGER NOT NULL, script TEXT NOT NULL, note TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS run_commands(id INTEGER PRIMARY KEY, run INTEGER NOT NULL, seq INTEGER NOT NULL,
    command TEXT NOT NULL, outcome TEXT NOT NULL, answer TEXT NOT NULL, lines INTEGER NOT NULL);
CREATE INDEX IF NOT EXISTS run_commands_by_run ON run_commands(run, seq);
)SQL";

}  // namespace

Database::Database(const std::string &path, bool create, bool rebuild)
{
    const int flags = SQLITE_OPEN_READWRITE | (create ? SQLITE_OPEN_CREATE : 0) | SQLITE_OPEN_NOMUTEX;
    if (sqlite3_open_v2(path.c_str(), &m_db, flags, nullptr) != SQLITE_OK) {
        const std::string why = m_db ? sqlite3_errmsg(m_db) : "out of memory";
        sqlite3_close(m_db);
        m_db = nullptr;
        throw std::runtime_error("cannot open the state file " + path + ": " + why);
    }
    sqlite3_busy_timeout(m_db, kBusyTimeoutMs);
    exec("PRAGMA journal_mode=WAL");
    // A killed run must keep what it committed; a machine that loses power may lose a simulated
    // world. So the state is never synced to disk, which spares every run its checkpoint's fsyncs.
    exec("PRAGMA synchronous=OFF");
    // Runs read the whole world; mapping the file spares copying it page by page.
    exec("PRAGMA mmap_size=1073741824");
    createSchema(path, rebuild);
}

Database::~Database()
{
    if (m_inTransaction) {
        sqlite3_exec(m_db, "ROLLBACK", nullptr, nullptr, nullptr);
    }
    sqlite3_close(m_db);
}

void Database::exec(const std::string &sql)
{
    char *error = nullptr;
    if (sqlite3_exec(m_db, sql.c_str(), nullptr, nullptr, &error) != SQLITE_OK) {
        const std::string why = error ? error : "unknown error";
        sqlite3_free(error);
        throw std::runtime_error("state database: " + why);
    }
}

void Database::begin()
{
    exec("BEGIN IMMEDIATE");
    m_inTransaction = true;
}

void Database::commit()
{
    exec("COMMIT");
    m_inTransaction = false;
}

void Database::rollback()
{
    if (!m_inTransaction) {
        return;
    }
    m_inTransaction = false;
    exec("ROLLBACK");
}

int64_t Database::lastInsertId() const
{
    return sqlite3_last_insert_rowid(m_db);
}

int64_t Database::dataVersion()
{
    sqlite3_stmt *s = nullptr;
    int64_t version = 0;
    if (sqlite3_prepare_v2(m_db, "PRAGMA data_version", -1, &s, nullptr) == SQLITE_OK &&
        sqlite3_step(s) == SQLITE_ROW) {
        version = sqlite3_column_int64(s, 0);
    }
    sqlite3_finalize(s);
    return version;
}

void Database::createSchema(const std::string &path, bool rebuild)
{
    sqlite3_stmt *s = nullptr;
    int64_t version = 0, tables = 0;
    if (sqlite3_prepare_v2(m_db,
                           "SELECT (SELECT user_version FROM pragma_user_version), "
                           "(SELECT count(*) FROM sqlite_master WHERE type = 'table')",
                           -1, &s, nullptr) == SQLITE_OK &&
        sqlite3_step(s) == SQLITE_ROW) {
        version = sqlite3_column_int64(s, 0);
        tables = sqlite3_column_int64(s, 1);
    }
    sqlite3_finalize(s);
    if (tables > 0 && version != kSchemaVersion) {
        if (!rebuild) {
            throw std::runtime_error("the state file " + path +
                                     " was made by another version of evasim; run 'evasim init' to make a new world");
        }
        for (const char *table : kTables) {
            exec(std::string("DROP TABLE IF EXISTS ") + table);
        }
    }
    exec(kSchema);
    exec("PRAGMA user_version = " + std::to_string(kSchemaVersion));
}

}  // namespace evasim
