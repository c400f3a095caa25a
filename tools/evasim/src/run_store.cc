#include "run_store.h"

#include "array_ops.h"
#include "fault_store.h"

namespace evasim {

namespace {

// Runs the history keeps.
constexpr int64_t kHistoryRuns = 1000;

}  // namespace

RunStore::RunStore(const std::string &database, const std::string &script, const std::vector<std::string> &lines) :
    m_db(std::make_unique<Database>(database, false))
{
    m_db->begin();
    m_settings.load(*m_db);
    m_runFaults = FaultStore::takeRunFaults(*m_db, lines);
    m_run = History::start(*m_db, script, kHistoryRuns);
    m_world.load(*m_db);
    m_version = m_db->dataVersion();
    m_db->commit();
}

RunStore::~RunStore()
{
    abandonCommand();
}

void RunStore::beginCommand(const std::string &command)
{
    m_db->begin();
    m_open = true;
    const int64_t version = m_db->dataVersion();
    if (version != m_version) {
        m_world = World();
        m_world.load(*m_db);
        m_settings = Settings();
        m_settings.load(*m_db);
        m_version = version;
    }
    ArrayOps(m_world, m_settings).settleCopies();
    m_commandFaults.clear();
    for (const Fault &f : FaultStore::list(*m_db)) {
        if (!f.perRun()) {
            m_commandFaults.push_back(f);
        }
    }
    m_current = HistoryCommand();
    m_current.seq = ++m_seq;
    m_current.command = command;
    m_current.outcome = "running";
}

void RunStore::commitCommand()
{
    if (!m_open) {
        return;
    }
    m_world.save(*m_db);
    FaultStore::saveUses(*m_db, m_commandFaults);
    History::command(*m_db, m_run, m_current);
    m_db->commit();
    m_open = false;
    m_committed = true;
}

void RunStore::answer(const std::string &outcome, std::vector<std::string> lines, int64_t count)
{
    if (!m_committed) {
        return;
    }
    m_current.outcome = outcome;
    m_current.answer = std::move(lines);
    m_current.lines = count;
    m_db->begin();
    History::answer(*m_db, m_run, m_current);
    m_db->commit();
    m_committed = false;
}

void RunStore::abandonCommand()
{
    if (m_open) {
        m_db->rollback();
        m_open = false;
        m_world = World();
        m_version = -1;
    }
}

void RunStore::finish(int status, const std::string &note)
{
    abandonCommand();
    m_db->begin();
    History::end(*m_db, m_run, status, note);
    m_db->commit();
}

}  // namespace evasim
