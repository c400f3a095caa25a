#include "statement.h"

#include <sqlite3.h>

#include <stdexcept>

namespace evasim {

Statement::Statement(sqlite3 *db, const std::string &sql) : m_db(db)
{
    if (sqlite3_prepare_v2(db, sql.c_str(), -1, &m_stmt, nullptr) != SQLITE_OK) {
        throw std::runtime_error(std::string("state database: ") + sqlite3_errmsg(db) + " in: " + sql);
    }
}

Statement::~Statement()
{
    sqlite3_finalize(m_stmt);
}

Statement &Statement::bind(int index, int64_t value)
{
    sqlite3_bind_int64(m_stmt, index, value);
    return *this;
}

Statement &Statement::bind(int index, double value)
{
    sqlite3_bind_double(m_stmt, index, value);
    return *this;
}

Statement &Statement::bind(int index, const std::string &value)
{
    sqlite3_bind_text(m_stmt, index, value.data(), static_cast<int>(value.size()), SQLITE_TRANSIENT);
    return *this;
}

bool Statement::step()
{
    const int rc = sqlite3_step(m_stmt);
    if (rc == SQLITE_ROW) {
        return true;
    }
    if (rc == SQLITE_DONE) {
        return false;
    }
    throw std::runtime_error(std::string("state database: ") + sqlite3_errmsg(m_db));
}

void Statement::run()
{
    step();
    reset();
}

void Statement::reset()
{
    sqlite3_reset(m_stmt);
    sqlite3_clear_bindings(m_stmt);
}

int64_t Statement::integer(int column) const
{
    return sqlite3_column_int64(m_stmt, column);
}

double Statement::real(int column) const
{
    return sqlite3_column_double(m_stmt, column);
}

std::string Statement::text(int column) const
{
    const auto *p = reinterpret_cast<const char *>(sqlite3_column_text(m_stmt, column));
    return p ? std::string(p, static_cast<size_t>(sqlite3_column_bytes(m_stmt, column))) : std::string();
}

}  // namespace evasim
