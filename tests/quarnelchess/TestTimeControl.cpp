#include "quarnelchess/search/TimeControl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <vector>

namespace quarnel::engine {
namespace {

constexpr std::int64_t StartMs = 7000;

/// What is known when an iteration ends.
struct Findings {
    int Stability = 3;
    int ValueDropCp = 0;
    int NodePermille = 0;
};

/// Milliseconds after which no new iteration begins, the last of them within the hard deadline.
std::int64_t SoftMs(const TimeControl& control, const Findings& found) {
    std::int64_t nowMs = StartMs;
    while (!control.HardTimeIsUp(nowMs) &&
           !control.SoftTimeIsUp(nowMs, found.Stability, found.ValueDropCp, found.NodePermille))
        ++nowMs;
    return nowMs - StartMs;
}

SearchLimits OnClock(std::int64_t remainingMs, std::int64_t incrementMs, int movesToGo) {
    SearchLimits limits;
    limits.RemainingMs = remainingMs;
    limits.IncrementMs = incrementMs;
    limits.MovesToGo = movesToGo;
    return limits;
}

TEST(TimeControl, ThinksLongerTheLessIsSettled) {
    const TimeControl control(OnClock(60000, 0, 0), StartMs);
    const Findings sooner[] = {{9, 0, 950}, {9, 0, 800}, {9, 0, 0},    {2, 0, 0},
                               {0, 0, 0},   {0, 0, 300}, {0, 20, 300}, {0, 40, 300}};
    for (std::size_t i = 1; i < std::size(sooner); ++i)
        EXPECT_LT(SoftMs(control, sooner[i - 1]), SoftMs(control, sooner[i])) << i;
    // A new best move has many nodes by nature, and a better value than before is no reason to hurry.
    EXPECT_EQ(SoftMs(control, {0, 0, 950}), SoftMs(control, {0, 0, 0}));
    EXPECT_EQ(SoftMs(control, {3, -80, 0}), SoftMs(control, {3, 0, 0}));
    // A time for the move is a time for the move.
    SearchLimits fixed;
    fixed.MoveTimeMs = 100;
    EXPECT_EQ(SoftMs(TimeControl(fixed, StartMs), {9, 0, 950}), 100);
}

TEST(TimeControl, KeepsAReserveWhateverIsLeft) {
    constexpr std::int64_t leastReserveMs = 40;
    for (const std::int64_t remainingMs : {0, 1, 40, 51, 60, 100, 250, 1000, 60000, 7200000})
        for (const std::int64_t incrementMs : {0, 10, 1000, 60000})
            for (const int movesToGo : {0, 1, 2, 30, 400}) {
                const TimeControl control(OnClock(remainingMs, incrementMs, movesToGo), StartMs);
                const std::int64_t mostMs = std::max<std::int64_t>(remainingMs - leastReserveMs, 0);
                EXPECT_TRUE(control.HardTimeIsUp(StartMs + mostMs))
                    << remainingMs << " + " << incrementMs << ", " << movesToGo << " to go";
                EXPECT_FALSE(remainingMs >= 250 && control.HardTimeIsUp(StartMs)) << remainingMs;
            }
}

TEST(TimeControl, SharesOutAWholeGame) {
    const struct {
        std::int64_t BaseMs, IncrementMs;
        int MovesToControl; // 0: none; at the control the base is added again
    } cases[] = {{5000, 50, 0},   {1000, 10, 0},  {10000, 0, 0}, {1000, 0, 0},
                 {60000, 600, 0}, {60000, 0, 40}, {3000, 0, 1}};
    for (const auto& [baseMs, incrementMs, movesToControl] : cases) {
        std::vector<std::int64_t> usedMs;
        std::int64_t leftMs = baseMs;
        std::int64_t leftAtSixtyMs = 0;
        for (int move = 0; move < 120; ++move) {
            const int togo = movesToControl > 0 ? movesToControl - move % movesToControl : 0;
            const TimeControl control(OnClock(leftMs, incrementMs, togo), StartMs);
            // Half of the moves turn out hard; the last iteration goes on for a third of the time.
            const std::int64_t softMs = SoftMs(control, {move % 2 == 0 ? 1 : 6, 0, 0});
            std::int64_t used = softMs;
            while (used < softMs * 4 / 3 && !control.HardTimeIsUp(StartMs + used)) ++used;
            usedMs.push_back(used);
            leftMs -= used + 1; // and the way to the other end
            ASSERT_GE(leftMs, 25) << baseMs << " at move " << move;
            if (move == 60) leftAtSixtyMs = leftMs;
            leftMs += incrementMs + (togo == 1 ? baseMs : 0);
        }
        if (movesToControl > 0) continue;
        EXPECT_LT(leftAtSixtyMs, baseMs / 4) << baseMs;
        EXPECT_GT(usedMs[4], usedMs[34] * 3 / 2) << baseMs;
    }
}

} // namespace
} // namespace quarnel::engine
