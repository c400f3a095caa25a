#include "restore_progress.h"

#include <cstdio>

namespace {

const std::string kThreadMark = "<Thread id - ";
const std::string kExecuting = "executing command [";
const std::string kCopy = "executing command [ADD COPY \"";
const std::string kRead = "executing command [LS VDISK \"";
const std::string kSleep = "], sleeping 4 seconds [";
const std::string kHead = "HP##HSV##";
const std::string kVirtualDisks = "\\Virtual Disks\\";
const std::string kActive = "\\ACTIVE";

// The text of a trace line behind the log's head ("tamlin:<time> <Thread id - N> ").
std::string textOf(const std::string &line)
{
    size_t start = line.find(kThreadMark);
    start = start == std::string::npos ? std::string::npos : line.find("> ", start);
    std::string text = start == std::string::npos ? line : line.substr(start + 2);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) {
        text.pop_back();
    }
    return text;
}

// The path of a disk as tamlinctl shows it, from a listed name or from an array path.
std::string pathOfName(const std::string &name)
{
    std::string rest = name.compare(0, kHead.size(), kHead) == 0 ? name.substr(kHead.size()) : name;
    const size_t separator = rest.find("##");
    return separator == std::string::npos ? rest : rest.substr(separator + 2);
}

std::string pathOfObject(std::string objectname)
{
    if (objectname.compare(0, kVirtualDisks.size(), kVirtualDisks) == 0) {
        objectname.erase(0, kVirtualDisks.size());
    }
    if (objectname.size() > kActive.size() &&
        objectname.compare(objectname.size() - kActive.size(), kActive.size(), kActive) == 0) {
        objectname.erase(objectname.size() - kActive.size());
    }
    return objectname;
}

std::string familyOf(const std::string &name)
{
    const std::string path = pathOfName(name);
    const size_t slash = path.rfind('\\');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// The quoted word that starts at from, up to the next double quote.
std::string quoted(const std::string &text, size_t from)
{
    const size_t end = text.find('"', from);
    return end == std::string::npos ? std::string() : text.substr(from, end - from);
}

}  // namespace

RestoreProgress::RestoreProgress(std::vector<Pair> pairs) : m_pairs(std::move(pairs)) {}

int RestoreProgress::pairOfObject(const std::string &objectname) const
{
    const std::string path = pathOfObject(objectname);
    for (size_t i = 0; i < m_pairs.size(); ++i) {
        if (m_pairs[i].state != State::QUEUED && pathOfName(m_pairs[i].secondary) == path) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

RestoreProgress::Point RestoreProgress::onTrace(const std::string &line, double now)
{
    const std::string text = textOf(line);
    if (text.compare(0, kExecuting.size(), kExecuting) == 0 && text.back() == ']' &&
        text.compare(kExecuting.size(), 9, "FIND VDIS") != 0 && text.compare(0, kRead.size(), kRead) != 0) {
        m_sent.push_back(text.substr(kExecuting.size(), text.size() - kExecuting.size() - 1));
    }
    if (text.compare(0, kCopy.size(), kCopy) == 0) {
        // ADD COPY "<primary family>" VDISK="<secondary family>" CONTAINER=...: the next pair
        // of these families starts.
        const std::string primary = quoted(text, kCopy.size());
        const size_t source = text.find("VDISK=\"");
        const std::string secondary = source == std::string::npos ? std::string() : quoted(text, source + 7);
        for (Pair &pair : m_pairs) {
            if (pair.state == State::QUEUED && familyOf(pair.primary) == primary &&
                familyOf(pair.secondary) == secondary) {
                pair.state = State::STARTED;
                pair.started = now;
                break;
            }
        }
        return Point::BUSY;
    }
    if (text.compare(0, kRead.size(), kRead) == 0) {
        m_waiting = true;
        const int pair = pairOfObject(quoted(text, kRead.size()));
        // The provider moves on to the next disk only once the array reports the copy ended.
        if (m_reading >= 0 && pair != m_reading && m_pairs[m_reading].state == State::COPYING) {
            m_pairs[m_reading].state = State::DONE;
            m_pairs[m_reading].ended = now;
        }
        if (pair >= 0) {
            m_reading = pair;
            if (m_pairs[pair].state == State::STARTED) {
                m_pairs[pair].state = State::COPYING;
            }
        }
        return Point::BEFORE_READ;
    }
    const size_t sleep = text.find(kSleep);
    if (!text.empty() && text[0] == '[' && sleep != std::string::npos) {
        std::string object = text.substr(sleep + kSleep.size());
        if (!object.empty() && object.back() == ']') {
            object.pop_back();
        }
        const int pair = pairOfObject(object);
        if (pair >= 0) {
            m_pairs[pair].arrayState = text.substr(1, sleep - 1);
            m_pairs[pair].state = State::COPYING;
        }
        return Point::BEFORE_SLEEP;
    }
    return Point::BUSY;
}

void RestoreProgress::finish(int32_t result, const std::vector<int32_t> &status, double now)
{
    bool failedSeen = false;
    for (size_t i = 0; i < m_pairs.size(); ++i) {
        Pair &pair = m_pairs[i];
        const bool started = i < status.size() && status[i] == 16;
        if (pair.state == State::DONE) {
            continue;
        }
        if (started && pair.started < 0) {
            pair.started = now;  // a start the trace didn't show
        }
        if (started) {
            pair.state = result == 0 ? State::DONE : State::UNAWAITED;
            pair.ended = now;
        } else {
            pair.state = result != 0 && !failedSeen ? State::FAILED : State::NOT_STARTED;
            failedSeen = true;
        }
    }
}

void RestoreProgress::abandon(double now)
{
    for (Pair &pair : m_pairs) {
        if (pair.state == State::STARTED || pair.state == State::COPYING) {
            pair.state = State::UNAWAITED;
            pair.ended = now;
        }
    }
}

const char *RestoreProgress::stateName(State state)
{
    switch (state) {
    case State::QUEUED:
        return "queued";
    case State::STARTED:
        return "started";
    case State::COPYING:
        return "copying";
    case State::DONE:
        return "done";
    case State::FAILED:
        return "failed";
    case State::NOT_STARTED:
        return "not started";
    case State::UNAWAITED:
        return "unawaited";
    }
    return "";
}

std::string RestoreProgress::describe(const Pair &pair)
{
    const std::string array = pair.arrayState.empty() ? "" : " (array: " + pair.arrayState + ")";
    switch (pair.state) {
    case State::QUEUED:
        return "waiting to start";
    case State::STARTED:
        return "copying, not read yet";
    case State::COPYING:
        return "copying" + array;
    case State::DONE:
        return "done";
    case State::FAILED:
        return "failed, see the message above";
    case State::NOT_STARTED:
        return "not started";
    case State::UNAWAITED:
        return "copy goes on, no longer awaited" + array;
    }
    return "";
}

double RestoreProgress::seconds(const Pair &pair, double now)
{
    if (pair.started < 0) {
        return 0;
    }
    return (pair.ended >= 0 ? pair.ended : now) - pair.started;
}

std::string RestoreProgress::elapsed(const Pair &pair, double now)
{
    if (pair.started < 0) {
        return "-";
    }
    const long total = static_cast<long>(seconds(pair, now));
    char text[32];
    if (total < 60) {
        snprintf(text, sizeof text, "%lds", total);
    } else if (total < 3600) {
        snprintf(text, sizeof text, "%ldm%02lds", total / 60, total % 60);
    } else {
        snprintf(text, sizeof text, "%ldh%02ldm", total / 3600, total / 60 % 60);
    }
    return text;
}
