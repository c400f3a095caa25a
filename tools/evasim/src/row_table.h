// The rows of one table held in memory, with what changed since they were loaded.
#ifndef EVASIM_ROW_TABLE_H
#define EVASIM_ROW_TABLE_H

#include <cstdint>
#include <map>
#include <set>

namespace evasim {

template <class Rec>
class RowTable {
public:
    std::map<int64_t, Rec> rows;

    Rec *find(int64_t id)
    {
        auto it = rows.find(id);
        return it == rows.end() ? nullptr : &it->second;
    }
    const Rec *find(int64_t id) const
    {
        auto it = rows.find(id);
        return it == rows.end() ? nullptr : &it->second;
    }
    // Adds a row under a new id and gives that row.
    Rec &insert(Rec rec)
    {
        rec.id = ++m_lastId;
        m_dirty.insert(rec.id);
        return rows[rec.id] = rec;
    }
    // Takes a row read from the state file.
    void load(const Rec &rec)
    {
        rows[rec.id] = rec;
        if (rec.id > m_lastId) {
            m_lastId = rec.id;
        }
    }
    // Marks a row as changed, so that saving writes it.
    void touch(int64_t id) { m_dirty.insert(id); }
    void erase(int64_t id)
    {
        rows.erase(id);
        m_dirty.erase(id);
        m_removed.insert(id);
    }
    const std::set<int64_t> &dirty() const { return m_dirty; }
    const std::set<int64_t> &removed() const { return m_removed; }
    void clean()
    {
        m_dirty.clear();
        m_removed.clear();
    }

private:
    int64_t m_lastId = 0;
    std::set<int64_t> m_dirty, m_removed;
};

}  // namespace evasim

#endif
