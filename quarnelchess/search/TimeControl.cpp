#include "quarnelchess/search/TimeControl.h"

#include <algorithm>

namespace quarnel::engine {
namespace {

// Milliseconds kept back for the way of the answer to the other end, and for a machine that lets this program wait.
constexpr std::int64_t ReserveMs = 50;
// And for each move to go what that way may cost even on a fair day, as far as the increment does not give it back:
// the 99th percentile measured. Without it a long game without increment is lost in moves of no time at all.
constexpr std::int64_t LagMs = 5;
// Moves that the time left is shared out to: fewer than a game usually has left, so that the early moves get more,
// whose gains count for all that follows, and the later ones share what remains. Up to a time control no more than
// these, for the same reason.
constexpr int UsualMovesToGo = 22;
constexpr int MostMovesToGo = 30;
// Of the increment nearly all is spent at once: the clock settles where the moves use up what they get, and that should
// be near its end.
constexpr int IncrementPercent = 95;
// A move's share is not used up by the soft deadline, because the iteration begun before it goes on after it: by a
// third, as we reckon.
constexpr int SoftPercent = 75;
// An iteration that has become difficult may take four shares, but never more than this part of all that is left, and
// of the last time before the control, all but what a late look at the clock may cost.
constexpr int HardShares = 4;
constexpr int HardPercentOfAll = 50;
constexpr int HardPercentOfLast = 80;
// The soft deadline in percent of itself: a tenth sooner for each iteration that kept the best move.
constexpr int UnsettledPercent = 130;
constexpr int SettledPercent = 70;
constexpr int PercentPerStableIteration = 10;
// Then by the best move's part of the nodes: 1 percent sooner for each percent of them, as planned when it is 60
// percent of them. The other moves of a clear position are refuted with few nodes.
constexpr int NoNodesPercent = 160;
constexpr int MostNodesPercent = 140;
constexpr int LeastNodesPercent = 60;
// But nothing is saved by them before so many iterations have kept the move: one that has just come up takes most of
// the nodes because all of its lines are new.
constexpr int SettledIterations = 3;
// And a percent later for each centipawn that the value has fallen, up to 60.
constexpr int MostDropPercent = 60;

int NodesPercent(int bestMoveNodePermille, int stability) {
    if (bestMoveNodePermille <= 0) return 100;
    const int percent = std::clamp(NoNodesPercent - bestMoveNodePermille / 10, LeastNodesPercent, MostNodesPercent);
    return stability < SettledIterations ? std::max(percent, 100) : percent;
}

} // namespace

TimeControl::TimeControl(const SearchLimits& limits, std::int64_t startMs) : startMs_(startMs) {
    if (limits.MoveTimeMs >= 0) {
        softMs_ = hardMs_ = startMs + limits.MoveTimeMs;
    } else if (limits.RemainingMs >= 0) {
        // A share of what is left, so larger early in the game, and never so much that the next moves starve.
        isFlexible_ = true;
        const int moves = limits.MovesToGo > 0 ? std::min(limits.MovesToGo, MostMovesToGo) : UsualMovesToGo;
        const std::int64_t reserve = ReserveMs + moves * std::max<std::int64_t>(LagMs - limits.IncrementMs, 0);
        const std::int64_t usable = std::max<std::int64_t>(limits.RemainingMs - reserve, 1);
        const std::int64_t share = std::min(usable / moves + limits.IncrementMs * IncrementPercent / 100, usable);
        softMs_ = startMs + share * SoftPercent / 100;
        const int mostPercent = moves == 1 ? HardPercentOfLast : HardPercentOfAll;
        hardMs_ = startMs + std::min(share * HardShares, usable * mostPercent / 100);
    }
}

bool TimeControl::SoftTimeIsUp(std::int64_t nowMs, int stability, int valueDropCp, int bestMoveNodePermille) const {
    if (softMs_ == Never) return false;
    if (!isFlexible_) return nowMs >= softMs_;
    std::int64_t durationMs = softMs_ - startMs_;
    for (const int percent :
         {std::max(SettledPercent, UnsettledPercent - PercentPerStableIteration * stability),
          NodesPercent(bestMoveNodePermille, stability), 100 + std::clamp(valueDropCp, 0, MostDropPercent)})
        durationMs = durationMs * percent / 100;
    return nowMs >= startMs_ + durationMs;
}

} // namespace quarnel::engine
