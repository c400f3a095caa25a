#include "history.h"

#include "database.h"
#include "statement.h"
#include "text_util.h"

#include <unistd.h>

#include <chrono>
#include <map>

namespace evasim {

namespace {

double wallClock()
{
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

}  // namespace

std::string History::masked(const std::string &command)
{
    const size_t at = lower(command).find("password=");
    return at == std::string::npos ? command : command.substr(0, at + 9) + "********";
}

int64_t History::start(Database &db, const std::string &script, int64_t keep)
{
    Statement insert(db.handle(),
                     "INSERT INTO runs(started, ended, status, pid, script, note) VALUES(?, 0, -1, ?, ?, '')");
    insert.bind(1, wallClock()).bind(2, int64_t(::getpid())).bind(3, script);
    insert.run();
    const int64_t id = db.lastInsertId();
    if (keep > 0 && id > keep) {
        Statement forget(db.handle(), "DELETE FROM run_commands WHERE run <= ?");
        forget.bind(1, id - keep);
        forget.run();
        Statement forgetRuns(db.handle(), "DELETE FROM runs WHERE id <= ?");
        forgetRuns.bind(1, id - keep);
        forgetRuns.run();
    }
    return id;
}

void History::command(Database &db, int64_t run, const HistoryCommand &c)
{
    Statement s(db.handle(),
                "INSERT INTO run_commands(run, seq, command, outcome, answer, lines) VALUES(?, ?, ?, ?, ?, ?)");
    s.bind(1, run).bind(2, c.seq).bind(3, masked(c.command)).bind(4, c.outcome).bind(5, join(c.answer, "\n"));
    s.bind(6, c.lines);
    s.run();
}

void History::answer(Database &db, int64_t run, const HistoryCommand &c)
{
    Statement s(db.handle(), "UPDATE run_commands SET outcome = ?, answer = ?, lines = ? WHERE run = ? AND seq = ?");
    s.bind(1, c.outcome).bind(2, join(c.answer, "\n")).bind(3, c.lines).bind(4, run).bind(5, c.seq);
    s.run();
}

void History::end(Database &db, int64_t run, int status, const std::string &note)
{
    Statement s(db.handle(), "UPDATE runs SET ended = ?, status = ?, note = ? WHERE id = ?");
    s.bind(1, wallClock()).bind(2, int64_t(status)).bind(3, note).bind(4, run);
    s.run();
}

std::vector<HistoryRun> History::list(Database &db, int64_t last, int64_t only)
{
    std::vector<HistoryRun> runs;
    std::map<int64_t, size_t> index;
    {
        Statement s(db.handle(), only ? "SELECT id, started, ended, status, pid, script, note FROM runs WHERE id = ?"
                                      : "SELECT id, started, ended, status, pid, script, note FROM runs "
                                        "ORDER BY id DESC LIMIT ?");
        s.bind(1, only ? only : (last > 0 ? last : int64_t(-1)));
        while (s.step()) {
            HistoryRun r;
            r.id = s.integer(0);
            r.started = s.real(1);
            r.ended = s.real(2);
            r.status = s.integer(3);
            r.pid = s.integer(4);
            r.script = s.text(5);
            r.note = s.text(6);
            runs.insert(runs.begin(), r);
        }
    }
    for (size_t i = 0; i < runs.size(); ++i) {
        index[runs[i].id] = i;
    }
    if (runs.empty()) {
        return runs;
    }
    Statement s(db.handle(), "SELECT run, seq, command, outcome, answer, lines FROM run_commands "
                             "WHERE run >= ? AND run <= ? ORDER BY run, seq");
    s.bind(1, runs.front().id).bind(2, runs.back().id);
    while (s.step()) {
        auto it = index.find(s.integer(0));
        if (it == index.end()) {
            continue;
        }
        HistoryCommand c;
        c.seq = s.integer(1);
        c.command = s.text(2);
        c.outcome = s.text(3);
        const std::string answer = s.text(4);
        c.lines = s.integer(5);
        if (c.lines > 0) {
            c.answer = split(answer, '\n');
        }
        runs[it->second].commands.push_back(std::move(c));
    }
    return runs;
}

void History::clear(Database &db)
{
    db.exec("DELETE FROM run_commands");
    db.exec("DELETE FROM runs");
}

}  // namespace evasim
