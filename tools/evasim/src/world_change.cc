#include "world_change.h"

#include "array_ops.h"
#include "settings.h"
#include "text_util.h"
#include "world.h"

#include <cstdlib>

namespace evasim {

namespace {

const char kSeparator = '\x1f';

struct Kind {
    const char *name;
    size_t names;  // words that name the object
    std::vector<const char *> keys;
};

const std::vector<Kind> &kinds()
{
    static const std::vector<Kind> list{
        {"disk", 2, {"operationalstate", "copy", "copy_reads", "copy_seconds", "written"}},
        {"drgroup", 1, {"operationalstate", "membercondition", "linkstate", "links", "suspended"}},
        {"cell", 1, {"total"}},
    };
    return list;
}

bool number(const std::string &text, double &value)
{
    char *end = nullptr;
    value = std::strtod(text.c_str(), &end);
    return !text.empty() && !*end && value >= 0;
}

}  // namespace

const char *WorldChange::help()
{
    return R"(  disk CELL PATH KEY=VALUE...    a virtual disk:
      operationalstate=TEXT       what listings show (good, failed, ...)
      copy=done|stalled|running|failed
                                  a running copy into the disk ends, stalls, goes on, or stops
                                  unfinished (the disk then reads operationalstate failed)
      copy_reads=N                the copy is done after N more reads
      copy_seconds=S              the copy is done S seconds from now
      written=SIZE                what was written to a demand-allocated snapshot: its space
  drgroup NAME KEY=VALUE...       a DR group: operationalstate=TEXT, membercondition=TEXT,
                                  linkstate=TEXT, links=yes|no (no: it lists no link at all),
                                  suspended=yes|no
  cell NAME total=SIZE            a cell's whole space
)";
}

std::string WorldChange::parse(const std::vector<std::string> &words)
{
    m_words = words;
    m_values.clear();
    if (words.empty()) {
        return "what to change? disk CELL PATH, drgroup NAME or cell NAME, then KEY=VALUE";
    }
    m_kind = lower(words[0]);
    for (const Kind &k : kinds()) {
        if (m_kind != k.name) {
            continue;
        }
        if (words.size() < 1 + k.names + 1) {
            return std::string("usage: ") + k.name + (k.names == 2 ? " CELL PATH" : " NAME") + " KEY=VALUE...";
        }
        for (size_t i = 1 + k.names; i < words.size(); ++i) {
            const size_t eq = words[i].find('=');
            const std::string key = eq == std::string::npos ? "" : lower(words[i].substr(0, eq));
            bool known = false;
            for (const char *allowed : k.keys) {
                known = known || key == allowed;
            }
            if (!known) {
                std::vector<std::string> keys(k.keys.begin(), k.keys.end());
                return "a " + m_kind + " takes " + join(keys, "=, ") + "=, not '" + words[i] + "'";
            }
            m_values.emplace_back(key, words[i].substr(eq + 1));
        }
        return {};
    }
    return "unknown object '" + words[0] + "' (disk, drgroup or cell)";
}

std::string WorldChange::text() const
{
    return join(m_words, std::string(1, kSeparator));
}

std::string WorldChange::fromText(const std::string &text)
{
    return parse(split(text, kSeparator));
}

std::string WorldChange::describe() const
{
    std::vector<std::string> quoted;
    for (const std::string &w : m_words) {
        quoted.push_back(w.find(' ') == std::string::npos ? w : "\"" + w + "\"");
    }
    return join(quoted, " ");
}

std::string WorldChange::apply(World &world, const Settings &settings) const
{
    ArrayOps ops(world, settings);
    if (m_kind == "cell") {
        CellRec *c = world.cellByName(m_words[1]);
        if (!c) {
            return "no cell named '" + m_words[1] + "'";
        }
        uint64_t total = 0;
        if (!parseSize(m_values[0].second, total)) {
            return "total '" + m_values[0].second + "' is not a size such as 4TB";
        }
        c->total = total;
        world.cells.touch(c->id);
        return {};
    }
    if (m_kind == "drgroup") {
        DrGroupRec *g = nullptr;
        for (auto &[id, candidate] : world.drgroups.rows) {
            if (iequals(candidate.name, m_words[1]) || iequals(candidate.path(), m_words[1])) {
                g = &candidate;
            }
        }
        if (!g) {
            return "no DR group named '" + m_words[1] + "'";
        }
        DrGroupRec changed = *g;
        for (const auto &[key, value] : m_values) {
            if (key == "links" && !parseBool(value, changed.hasLink)) {
                return "links is yes or no, not '" + value + "'";
            }
            if (key == "suspended" && !parseBool(value, changed.suspended)) {
                return "suspended is yes or no, not '" + value + "'";
            }
            if (key == "operationalstate") {
                changed.operationalstate = value;
            } else if (key == "membercondition") {
                changed.membercondition = value;
            } else if (key == "linkstate") {
                changed.linkstate = value;
            }
        }
        *g = changed;
        world.drgroups.touch(g->id);
        return {};
    }
    CellRec *c = world.cellByName(m_words[1]);
    if (!c) {
        return "no cell named '" + m_words[1] + "'";
    }
    bool ambiguous = false;
    VdiskRec *d = world.resolveVdisk(c->id, m_words[2], ambiguous);
    if (!d) {
        return "no disk '" + m_words[2] + "' in cell " + c->name;
    }
    VdiskRec changed = *d;
    for (const auto &[key, value] : m_values) {
        if (key == "operationalstate") {
            changed.operationalstate = value;
            continue;
        }
        if (key == "written") {
            uint64_t bytes = 0;
            if (!parseSize(value, bytes) || bytes > d->blocks * 512) {
                return "written is a size up to the disk's capacity, not '" + value + "'";
            }
            if (d->allocation != "demand") {
                return d->path() + " is fully allocated; only a demand-allocated snapshot grows with writes";
            }
            changed.written = bytes;
            continue;
        }
        if (!changed.copySource) {
            return "no copy runs into " + d->path();
        }
        if (key == "copy") {
            const std::string v = lower(value);
            if (v == "done") {
                ops.finishCopy(changed);
            } else if (v == "failed") {
                ops.finishCopy(changed);
                changed.operationalstate = "failed";
            } else if (v == "stalled" && !changed.copyStalled) {
                changed.copyStalled = true;
                if (changed.copyMode == "seconds") {
                    changed.copyEnd = std::max(0.0, changed.copyEnd - settings.now());
                }
            } else if (v == "running" && changed.copyStalled) {
                changed.copyStalled = false;
                if (changed.copyMode == "seconds") {
                    changed.copyEnd += settings.now();
                }
            } else if (v != "stalled" && v != "running") {
                return "copy is done, stalled, running or failed, not '" + value + "'";
            }
            continue;
        }
        long long reads = 0;
        double seconds = 0;
        if (key == "copy_reads" && parseInt(value, reads) && reads >= 0) {
            changed.copyMode = "reads";
            changed.copyReads = reads;
        } else if (key == "copy_seconds" && number(value, seconds)) {
            changed.copyMode = "seconds";
            changed.copyEnd = changed.copyStalled ? seconds : settings.now() + seconds;
        } else {
            return key + " needs a number of 0 or more, not '" + value + "'";
        }
    }
    if (changed.written != d->written && World::allocatedBytes(changed) > World::allocatedBytes(*d) &&
        World::allocatedBytes(changed) - World::allocatedBytes(*d) > world.freeBytes(c->id)) {
        return "Not enough free space in the disk group for what was written to " + d->path();
    }
    *d = changed;
    world.vdisks.touch(d->id);
    return {};
}

}  // namespace evasim
