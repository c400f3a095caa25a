// How tamlinctl follows a restore from the provider's trace lines, on lines made in the test
// as the host's callback receives them; that the provider writes them so is shown by
// restore_tamlinctl_test against evasim.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "restore_progress.h"

namespace {

using State = RestoreProgress::State;
using Point = RestoreProgress::Point;

std::string line(const std::string &text)
{
    return "tamlin:2026-11-23 16:01:02.000003 <Thread id - 140001> " + text + "\n";
}

std::string copy(const std::string &primary, const std::string &secondary)
{
    return line("executing command [ADD COPY \"" + primary + "\" VDISK=\"" + secondary + "\" CONTAINER=\"" + primary +
                "\"]");
}

std::string read(const std::string &family)
{
    return line("executing command [LS VDISK \"\\Virtual Disks\\db\\" + family + "\\ACTIVE\" XML]");
}

std::string sleeping(const std::string &state, const std::string &family)
{
    return line("[" + state + "], sleeping 4 seconds [\\Virtual Disks\\db\\" + family + "\\ACTIVE]");
}

RestoreProgress twoPairs()
{
    RestoreProgress::Pair data, logs;
    data.primary = "HP##HSV##EVA01##db\\data";
    data.secondary = "HP##HSV##EVA01##db\\data_clone000";
    logs.primary = "HP##HSV##EVA01##db\\logs";
    logs.secondary = "HP##HSV##EVA01##db\\logs_clone000";
    return RestoreProgress({data, logs});
}

}  // namespace

TEST(RestoreProgress, TheProvidersLinesMoveEachPairAlong)
{
    RestoreProgress progress = twoPairs();
    const auto &pairs = progress.pairs();
    EXPECT_EQ(progress.onTrace(copy("data", "data_clone000"), 1), Point::BUSY);
    EXPECT_EQ(progress.onTrace(line("execSSSU : Got the lock ."), 1.5), Point::BUSY);
    EXPECT_EQ(progress.onTrace(copy("logs", "logs_clone000"), 2), Point::BUSY);
    EXPECT_EQ(pairs[1].state, State::STARTED);
    EXPECT_FALSE(progress.waiting());

    EXPECT_EQ(progress.onTrace(read("data_clone000"), 3), Point::BEFORE_READ);
    EXPECT_TRUE(progress.waiting());
    EXPECT_EQ(progress.onTrace(sleeping("parent", "data_clone000"), 3.1), Point::BEFORE_SLEEP);
    EXPECT_EQ(RestoreProgress::describe(pairs[0]), "copying (array: parent)");
    EXPECT_EQ(RestoreProgress::describe(pairs[1]), "copying, not read yet");
    EXPECT_EQ(progress.onTrace(read("data_clone000"), 7), Point::BEFORE_READ);
    EXPECT_EQ(pairs[0].state, State::COPYING);

    // The provider reads the next disk only once the array reports the first copy ended.
    progress.onTrace(read("logs_clone000"), 8);
    EXPECT_EQ(pairs[0].state, State::DONE);
    EXPECT_EQ(RestoreProgress::elapsed(pairs[0], 100), "7s");
    EXPECT_EQ(pairs[1].state, State::COPYING);
    EXPECT_EQ(progress.sent(),
              (std::vector<std::string>{"ADD COPY \"data\" VDISK=\"data_clone000\" CONTAINER=\"data\"",
                                        "ADD COPY \"logs\" VDISK=\"logs_clone000\" CONTAINER=\"logs\""}))
        << "the reads of the wait change nothing";
    progress.finish(0, {16, 16}, 127);
    EXPECT_EQ(pairs[1].state, State::DONE);
    EXPECT_EQ(RestoreProgress::elapsed(pairs[1], 500), "2m05s");
}

TEST(RestoreProgress, TheEntrysResultAndStatusSettleWhatTheLinesLeftOpen)
{
    {
        // A later pair failed to start: the copy before it runs on without being awaited.
        RestoreProgress progress = twoPairs();
        progress.onTrace(copy("data", "data_clone000"), 1);
        progress.finish(6, {16, 0}, 2);
        EXPECT_EQ(progress.pairs()[0].state, State::UNAWAITED);
        EXPECT_EQ(progress.pairs()[1].state, State::FAILED);
    }
    {
        // A read failed during the wait for the second pair: the first copy had ended.
        RestoreProgress progress = twoPairs();
        progress.onTrace(copy("data", "data_clone000"), 1);
        progress.onTrace(copy("logs", "logs_clone000"), 2);
        progress.onTrace(read("data_clone000"), 3);
        progress.onTrace(read("logs_clone000"), 4);
        progress.finish(6, {16, 16}, 5);
        EXPECT_EQ(progress.pairs()[0].state, State::DONE);
        EXPECT_EQ(progress.pairs()[1].state, State::UNAWAITED);
    }
}
