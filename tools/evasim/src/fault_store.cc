#include "fault_store.h"

#include "database.h"
#include "statement.h"
#include "text_util.h"

namespace evasim {

namespace {

Fault readFault(Statement &s)
{
    Fault f;
    f.id = s.integer(0);
    f.kind = s.text(1);
    f.remaining = s.integer(2);
    f.server = s.text(3);
    f.seconds = s.real(4);
    f.line = s.integer(5);
    f.pattern = s.text(6);
    f.text = s.text(7);
    f.status = s.integer(8);
    f.cell = s.text(9);
    f.skip = s.integer(10);
    return f;
}

}  // namespace

const std::vector<std::string> &FaultStore::kinds()
{
    static const std::vector<std::string> list{"https",     "silence",       "ignore-signals", "exit-after",
                                               "no-output", "malformed-xml", "error",          "busy",
                                               "change",    "banner",        "delay"};
    return list;
}

void FaultStore::add(Database &db, const Fault &f)
{
    Statement s(db.handle(),
                "INSERT INTO faults(kind, remaining, server, seconds, line, pattern, text, status, cell, skip) "
                "VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    s.bind(1, f.kind).bind(2, f.remaining).bind(3, f.server).bind(4, f.seconds).bind(5, f.line);
    s.bind(6, f.pattern).bind(7, f.text).bind(8, f.status).bind(9, f.cell).bind(10, f.skip);
    s.run();
}

std::vector<Fault> FaultStore::list(Database &db)
{
    std::vector<Fault> out;
    Statement s(db.handle(), "SELECT id, kind, remaining, server, seconds, line, pattern, text, status, cell, skip "
                             "FROM faults WHERE remaining > 0 ORDER BY id");
    while (s.step()) {
        out.push_back(readFault(s));
    }
    return out;
}

void FaultStore::clear(Database &db)
{
    db.exec("DELETE FROM faults");
}

std::vector<Fault> FaultStore::takeRunFaults(Database &db, const std::vector<std::string> &script)
{
    std::vector<Fault> taken;
    for (const Fault &f : list(db)) {
        if (!f.perRun()) {
            continue;
        }
        // With a pattern the run needs the line it acts at: the first one past those skipped.
        int64_t matching = 0;
        for (const std::string &line : script) {
            matching += !f.pattern.empty() && icontains(line, f.pattern);
        }
        if (!f.pattern.empty() && matching <= f.skip) {
            continue;
        }
        taken.push_back(f);
    }
    std::vector<Fault> used = taken;
    for (Fault &f : used) {
        --f.remaining;
    }
    saveUses(db, used);
    return taken;
}

void FaultStore::saveUses(Database &db, const std::vector<Fault> &faults)
{
    Statement update(db.handle(), "UPDATE faults SET remaining = ? WHERE id = ?");
    Statement remove(db.handle(), "DELETE FROM faults WHERE id = ?");
    for (const Fault &f : faults) {
        if (f.remaining > 0) {
            update.bind(1, f.remaining).bind(2, f.id);
            update.run();
        } else {
            remove.bind(1, f.id);
            remove.run();
        }
    }
}

}  // namespace evasim
