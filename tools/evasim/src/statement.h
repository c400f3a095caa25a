// One prepared SQLite statement: bind by position, step, read columns.
#ifndef EVASIM_STATEMENT_H
#define EVASIM_STATEMENT_H

#include <cstdint>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace evasim {

class Statement {
public:
    Statement(sqlite3 *db, const std::string &sql);
    ~Statement();
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    Statement &bind(int index, int64_t value);
    Statement &bind(int index, double value);
    Statement &bind(int index, const std::string &value);
    // True while a row is available; throws on an error.
    bool step();
    // Steps once and resets, for statements that give no rows.
    void run();
    void reset();

    int64_t integer(int column) const;
    double real(int column) const;
    std::string text(int column) const;

private:
    sqlite3 *m_db;
    sqlite3_stmt *m_stmt = nullptr;
};

}  // namespace evasim

#endif
