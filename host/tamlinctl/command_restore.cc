// restore: disks back to the content of their snapclones, with the copies' progress.
//
// The provider's restore entry starts every pair and then blocks until the last copy has
// ended, so it runs on a thread of its own while this one shows what the provider's trace
// lines tell of it (restore_progress.h). Ctrl-C ends the waiting only: tamlinctl leaves at a
// moment the provider runs no SSSU (before a read of the wait, or during a sleep), so that
// no run is cut short and no script file is left behind; the copies go on on the array.
#include <pthread.h>
#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "cliutil_table.h"
#include "commands.h"
#include "json_writer.h"
#include "provider_session.h"
#include "restore_progress.h"
#include "result_lists.h"
#include "text.h"

namespace {

const int32_t kStartFlags = 0x1;
const int32_t kServeFlag = 16;
const int32_t kLeaveOutSnapshots = 64;
// The exit status of a run whose waiting was stopped, as for a command ended by Ctrl-C.
const int kExitStopped = 130;
const char kHead[] = "HP##HSV##";

struct Pair {
    KnownDisk primary;
    KnownDisk secondary;
};

// A name as people read it: without the HP##HSV## every disk has.
std::string shortName(const std::string &name)
{
    const std::string head = kHead;
    return name.compare(0, head.size(), head) == 0 ? name.substr(head.size()) : name;
}

// The enclosure part of a UDID: UDID##<vendor>##<product>##<enclosure>##<disk>.
std::string enclosureOf(const std::string &udid)
{
    size_t at = 0;
    for (int separators = 0; separators < 3 && at != std::string::npos; ++separators) {
        at = udid.find("##", at);
        at = at == std::string::npos ? at : at + 2;
    }
    if (at == std::string::npos) {
        return std::string();
    }
    const size_t end = udid.find("##", at);
    return udid.substr(at, end == std::string::npos ? std::string::npos : end - at);
}

// The UDIDs of the active disks (no snapshots), from one listing of the provider.
int activeDisks(ProviderSession &session, std::set<std::string> &udids)
{
    qrn_node_list *list = nullptr;
    int32_t count = 0;
    session.beginCall();
    const int32_t result = session.lib()->enumerate_nodes(&list, &count, kServeFlag | kLeaveOutSnapshots, nullptr);
    for (auto *node : result_lists::elements(list)) {
        if (node->id != nullptr && node->id->text != nullptr) {
            udids.insert(toUtf8(node->id->text));
        }
    }
    result_lists::freeList(list);
    return result == 0 ? ProviderSession::kExitOk : session.failure("enumerate_nodes", result);
}

// What the array would refuse halfway, refused before anything is sent: a snapshot on either
// side, a disk twice, two cells, two sizes.
bool checkPairs(const std::vector<Pair> &pairs, const std::set<std::string> &active)
{
    std::set<std::string> seen;
    for (const Pair &pair : pairs) {
        const std::string what = "'" + pair.primary.word + "' from '" + pair.secondary.word + "'";
        for (const KnownDisk *side : {&pair.primary, &pair.secondary}) {
            if (!active.count(side->udid)) {
                fprintf(stderr,
                        "tamlinctl restore: %s: %s is a snapshot; only an active disk is restored, and only from a "
                        "snapclone\n",
                        what.c_str(), shortName(side->name).c_str());
                return false;
            }
            if (!seen.insert(side->udid).second) {
                fprintf(stderr, "tamlinctl restore: %s: %s is named twice; a disk takes part in one pair only\n",
                        what.c_str(), shortName(side->name).c_str());
                return false;
            }
        }
        if (enclosureOf(pair.primary.udid) != enclosureOf(pair.secondary.udid)) {
            fprintf(stderr,
                    "tamlinctl restore: %s: the two disks lie in different arrays; a snapclone restores a disk "
                    "of its own array only\n",
                    what.c_str());
            return false;
        }
        if (pair.primary.size != pair.secondary.size) {
            fprintf(stderr,
                    "tamlinctl restore: %s: the disks differ in size; the array copies only into a disk of the "
                    "snapclone's size\n",
                    what.c_str());
            return false;
        }
    }
    return true;
}

bool confirmed(const std::vector<Pair> &pairs)
{
    fprintf(stderr, "The content of %zu disk%s will be replaced by that of %s snapclone%s:\n", pairs.size(),
            pairs.size() == 1 ? "" : "s", pairs.size() == 1 ? "its" : "their", pairs.size() == 1 ? "" : "s");
    for (const Pair &pair : pairs) {
        fprintf(stderr, "  %s  <-  %s\n", shortName(pair.primary.name).c_str(), shortName(pair.secondary.name).c_str());
    }
    fprintf(stderr, "Hosts lose these disks for a moment: the presentations are removed and given back on the\n"
                    "same LUNs once the copy has started. ");
    return answeredYes("restore");
}

double secondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The progress on standard error: a table redrawn in place on a terminal, else a line for
// each change of a pair's state.
class ProgressView {
public:
    ProgressView(const ProviderSession &session, bool inPlace) : m_session(session), m_inPlace(inPlace) {}

    void draw(const RestoreProgress &progress, double now)
    {
        if (!m_inPlace) {
            for (size_t i = 0; i < progress.pairs().size(); ++i) {
                const RestoreProgress::Pair &pair = progress.pairs()[i];
                const std::string state = RestoreProgress::describe(pair);
                if (m_shown.size() <= i) {
                    m_shown.resize(i + 1);
                }
                if (m_shown[i] != state) {
                    m_shown[i] = state;
                    fprintf(stderr, "%6s  %s <- %s: %s\n", RestoreProgress::elapsed(pair, now).c_str(),
                            shortName(pair.primary).c_str(), shortName(pair.secondary).c_str(), state.c_str());
                }
            }
            return;
        }
        cliutil::Table table({"DISK", "FROM SNAPCLONE", "STATE", "ELAPSED"});
        table.alignRight(3);
        for (const RestoreProgress::Pair &pair : progress.pairs()) {
            table.addRow({shortName(pair.primary), shortName(pair.secondary), RestoreProgress::describe(pair),
                          RestoreProgress::elapsed(pair, now)});
        }
        const std::string text = table.aligned();
        if (text == m_drawn && m_session.printedLines() == m_printedAt) {
            return;
        }
        m_drawn = text;
        std::string out;
        // Up over the last drawing, unless the provider printed something below it.
        if (m_lines > 0 && m_session.printedLines() == m_printedAt) {
            out += "\033[" + std::to_string(m_lines) + "A";
        }
        m_lines = 0;
        size_t start = 0;
        while (start < text.size()) {
            const size_t end = text.find('\n', start);
            out += "\r\033[2K" + text.substr(start, end - start) + "\n";
            ++m_lines;
            start = end == std::string::npos ? text.size() : end + 1;
        }
        fputs(out.c_str(), stderr);
        fflush(stderr);
        m_printedAt = m_session.printedLines();
    }

    // Takes the drawing away again, where nothing came below it.
    void erase()
    {
        if (!m_inPlace || m_lines == 0 || m_session.printedLines() != m_printedAt) {
            return;
        }
        std::string out = "\033[" + std::to_string(m_lines) + "A";
        for (size_t i = 0; i < m_lines; ++i) {
            out += "\r\033[2K\n";
        }
        out += "\033[" + std::to_string(m_lines) + "A";
        fputs(out.c_str(), stderr);
        fflush(stderr);
        m_lines = 0;
    }

private:
    const ProviderSession &m_session;
    bool m_inPlace;
    size_t m_lines = 0;
    std::string m_drawn;
    unsigned long m_printedAt = 0;
    std::vector<std::string> m_shown;
};

void printOutcome(const CliOptions &options, const std::vector<Pair> &pairs, const RestoreProgress &progress,
                  double now)
{
    if (options.json) {
        JsonWriter json;
        json.beginArray();
        for (size_t i = 0; i < pairs.size(); ++i) {
            const RestoreProgress::Pair &pair = progress.pairs()[i];
            json.beginObject().key("primary").value(pairs[i].primary.name).key("primary_udid");
            json.value(pairs[i].primary.udid).key("secondary").value(pairs[i].secondary.name);
            json.key("secondary_udid").value(pairs[i].secondary.udid);
            json.key("outcome").value(std::string(RestoreProgress::stateName(pair.state)));
            json.key("array_state").value(pair.arrayState);
            json.key("elapsed_seconds").value(static_cast<int64_t>(RestoreProgress::seconds(pair, now))).endObject();
        }
        fprintf(options.out, "%s\n", json.endArray().text().c_str());
        return;
    }
    cliutil::Table table({"DISK", "FROM SNAPCLONE", "OUTCOME", "ELAPSED"});
    table.alignRight(3);
    size_t done = 0;
    for (const RestoreProgress::Pair &pair : progress.pairs()) {
        table.addRow({shortName(pair.primary), shortName(pair.secondary), RestoreProgress::describe(pair),
                      RestoreProgress::elapsed(pair, now)});
        done += pair.state == RestoreProgress::State::DONE ? 1 : 0;
    }
    fputs(table.aligned().c_str(), options.out);
    fprintf(options.out, "%zu of %zu disk%s restored\n", done, pairs.size(), pairs.size() == 1 ? "" : "s");
}

// Between the provider's thread, whose trace lines arrive in the watcher, and this one.
struct Shared {
    std::mutex lock;
    std::condition_variable changed;
    RestoreProgress progress;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    bool returned = false;
    int32_t result = 0;
    bool stopRequested = false;
    bool parked = false;    // the provider's thread waits in the watcher for good
    bool sleeping = false;  // the provider does nothing but sleep up to its next line
    explicit Shared(std::vector<RestoreProgress::Pair> pairs) : progress(std::move(pairs)) {}
};

}  // namespace

int runRestore(CliOptions &options)
{
    cliutil::Args args(options.args);
    const bool yes = args.flag("--yes");
    const std::vector<std::string> words = args.positional();
    if (words.empty() || words.size() % 2 != 0) {
        args.fail(words.empty() ? "which disks? give PRIMARY SECONDARY pairs"
                                : "disks come in pairs: PRIMARY SECONDARY [PRIMARY SECONDARY]...");
    }
    if (!finishArgs(args, "restore")) {
        return ProviderSession::kExitUsage;
    }
    if (!mayConfirm(yes, "restore", "replaces the content of disks")) {
        return ProviderSession::kExitUsage;
    }
    ProviderSession session(options);
    DiskResolver resolver(diskLister(session));
    std::vector<KnownDisk> disks;
    int status = startAndResolve(session, resolver, "restore", words, disks);
    if (status != 0) {
        return status;
    }
    std::vector<Pair> pairs;
    for (size_t i = 0; i + 1 < disks.size(); i += 2) {
        pairs.push_back({disks[i], disks[i + 1]});
    }
    std::set<std::string> active;
    status = activeDisks(session, active);
    if (status != 0) {
        return status;
    }
    if (!checkPairs(pairs, active)) {
        return ProviderSession::kExitUsage;
    }
    if (!yes && !confirmed(pairs)) {
        fprintf(stderr, "tamlinctl restore: not confirmed; nothing was changed\n");
        return ProviderSession::kExitFailed;
    }

    std::vector<RestoreProgress::Pair> shown;
    std::vector<std::wstring> texts;
    for (const Pair &pair : pairs) {
        RestoreProgress::Pair one;
        one.primary = pair.primary.name;
        one.secondary = pair.secondary.name;
        shown.push_back(one);
        texts.push_back(fromUtf8(pair.primary.udid));
        texts.push_back(fromUtf8(pair.secondary.udid));
    }
    std::vector<qorin_objid> ids(texts.size());
    std::vector<qorin_objid *> primaries, secondaries;
    for (size_t i = 0; i < texts.size(); ++i) {
        ids[i] = {&texts[i][0], static_cast<uint32_t>((texts[i].size() + 1) * sizeof(wchar_t)), 0};
        (i % 2 == 0 ? primaries : secondaries).push_back(&ids[i]);
    }
    std::vector<int32_t> started(pairs.size(), 0);
    Shared shared(shown);

    session.watchTraces([&shared](const std::wstring &line) {
        std::unique_lock<std::mutex> hold(shared.lock);
        shared.sleeping = false;
        const RestoreProgress::Point point = shared.progress.onTrace(toUtf8(line), secondsSince(shared.start));
        if (shared.stopRequested && point != RestoreProgress::Point::BUSY) {
            // Here the provider has no SSSU run going: hold it while this process ends.
            shared.parked = true;
            shared.changed.notify_all();
            shared.changed.wait(hold, [] { return false; });
        }
        shared.sleeping = point == RestoreProgress::Point::BEFORE_SLEEP;
        shared.changed.notify_all();
    });

    // Ctrl-C reaches this thread alone, as a signal it waits for.
    sigset_t interrupt;
    sigemptyset(&interrupt);
    sigaddset(&interrupt, SIGINT);
    pthread_sigmask(SIG_BLOCK, &interrupt, nullptr);
    session.beginCall();
    std::thread provider([&] {
        const int32_t result =
            session.lib()->restore(primaries.data(), secondaries.data(), static_cast<int32_t>(pairs.size()), nullptr,
                                   nullptr, kStartFlags, started.data());
        std::lock_guard<std::mutex> hold(shared.lock);
        shared.returned = true;
        shared.result = result;
        shared.changed.notify_all();
    });

    ProgressView view(session, isatty(STDERR_FILENO) && options.verbosity == 0);
    // Taken for good when leaving: the provider's thread then stops at its next trace line,
    // before any further SSSU run, and the progress stays as it is printed.
    std::unique_lock<std::mutex> leaving;
    for (;;) {
        {
            std::unique_lock<std::mutex> hold(shared.lock);
            if (shared.returned) {
                break;
            }
            if (shared.stopRequested && (shared.parked || shared.sleeping)) {
                view.draw(shared.progress, secondsSince(shared.start));
                shared.progress.abandon(secondsSince(shared.start));
                leaving = std::move(hold);
                break;
            }
            view.draw(shared.progress, secondsSince(shared.start));
        }
        const timespec tick = {0, 250 * 1000 * 1000};
        if (sigtimedwait(&interrupt, nullptr, &tick) == SIGINT) {
            std::lock_guard<std::mutex> hold(shared.lock);
            if (!shared.stopRequested) {
                shared.stopRequested = true;
                if (!shared.progress.waiting()) {
                    fprintf(stderr, "tamlinctl restore: the restores are being started; the wait stops once all "
                                    "have started\n");
                } else if (!shared.sleeping) {
                    fprintf(stderr, "tamlinctl restore: the wait stops once the array has answered the read in "
                                    "progress\n");
                }
            } else {
                // Leaving in the middle of a run would leave SSSU's script file, with its
                // password, behind; a run ends at the latest at SSSU's time-out.
                fprintf(stderr, "tamlinctl restore: still waiting for the array's answer to the read in progress\n");
            }
        }
    }

    const double now = secondsSince(shared.start);
    if (leaving.owns_lock()) {
        fprintf(stderr, "tamlinctl restore: stopped waiting. The copies go on on the array; to follow them (SHARING "
                        "reads none once a copy has ended):\n");
        for (const Pair &pair : pairs) {
            fprintf(stderr, "  tamlinctl disks --udid '%s'    # %s\n", pair.primary.udid.c_str(),
                    shortName(pair.primary.name).c_str());
        }
        printOutcome(options, pairs, shared.progress, now);
        fflush(options.out);
        fflush(stdout);
        fflush(stderr);
        _exit(kExitStopped);
    }
    provider.join();
    session.watchTraces(nullptr);
    shared.progress.finish(shared.result, started, now);
    if (isatty(fileno(options.out))) {
        view.erase();  // the outcome below says it all
    } else {
        view.draw(shared.progress, now);
    }
    printOutcome(options, pairs, shared.progress, now);
    if (shared.result != 0) {
        const int failed = session.failure("restore", shared.result);
        // Nothing is undone on the array: say what may have been done.
        if (!shared.progress.sent().empty()) {
            fprintf(stderr, "tamlinctl restore: nothing was undone. These commands were sent; the array did those "
                            "before the one that failed:\n");
            for (const std::string &command : shared.progress.sent()) {
                fprintf(stderr, "  %s\n", command.c_str());
            }
        }
        return failed;
    }
    return ProviderSession::kExitOk;
}
