// What a host sees of a running restore. The provider's restore entry starts every pair and
// then blocks until the last copy has ended; it reports nothing on the way but its trace
// lines, which reach the host through its message callback as they are written. The host
// reads three of them: the copy command of each pair's script (the pair's copy starts), the
// read of a disk whose copy is awaited, and the line before each four-second sleep, which
// carries the state the array reports for that disk. The entry's result and status elements
// settle the outcome at the end.
#ifndef RESTORE_PROGRESS_H
#define RESTORE_PROGRESS_H

#include <cstdint>
#include <string>
#include <vector>

class RestoreProgress {
public:
    enum class State {
        QUEUED,       // not started yet
        STARTED,      // its script ran; its copy runs and hasn't been read yet
        COPYING,      // read while its copy runs
        DONE,         // the array reported the copy ended
        FAILED,       // its start failed or was refused
        NOT_STARTED,  // a pair before it failed
        UNAWAITED,    // its copy goes on, no longer awaited
    };
    struct Pair {
        std::string primary;    // as tamlinctl disks shows it: HP##HSV##<cell>##<path>
        std::string secondary;  // the snapclone, likewise
        State state = State::QUEUED;
        std::string arrayState;  // the secondary's sharing relationship as the array last reported it
        double started = -1;     // seconds since the restore began
        double ended = -1;
    };

    // Where the provider stands at a trace line, for a host that wants to leave without
    // cutting an SSSU run short: BEFORE_READ, the line comes before the script of the read is
    // written; BEFORE_SLEEP, the provider does nothing but sleep up to its next line.
    enum class Point { BUSY, BEFORE_READ, BEFORE_SLEEP };

    explicit RestoreProgress(std::vector<Pair> pairs);

    // One trace line as the host receives it, at now.
    Point onTrace(const std::string &line, double now);
    // Whether the wait has begun, every pair being started.
    bool waiting() const { return m_waiting; }
    // The entry returned result with these status elements (16: started).
    void finish(int32_t result, const std::vector<int32_t> &status, double now);
    // The host stopped waiting: the copies that run go on.
    void abandon(double now);

    const std::vector<Pair> &pairs() const { return m_pairs; }
    // The commands that change the array, as the provider traced them before sending them:
    // after a failure, what the array may hold.
    const std::vector<std::string> &sent() const { return m_sent; }
    // "copying (array: parent)", "done", ...
    static std::string describe(const Pair &pair);
    // A word for scripts: "queued", "started", "copying", "done", "failed", "not started", "unawaited".
    static const char *stateName(State state);
    // Time since the pair's copy started, up to its end or now: "7s", "2m05s", "1h02m"; "-" before.
    static std::string elapsed(const Pair &pair, double now);
    static double seconds(const Pair &pair, double now);

private:
    int pairOfObject(const std::string &objectname) const;

    std::vector<Pair> m_pairs;
    std::vector<std::string> m_sent;
    bool m_waiting = false;
    int m_reading = -1;  // the pair whose copy is awaited now
};

#endif
