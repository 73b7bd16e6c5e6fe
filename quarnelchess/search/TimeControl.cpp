#include "quarnelchess/search/TimeControl.h"

#include <algorithm>

namespace quarnel::engine {
namespace {

// Milliseconds kept back for the way of the answer to the other end.
constexpr std::int64_t LagMs = 30;
// Moves that the time left has to last for: a game's usual rest, or what is left to the time control, but no more
// than these, since a game seldom gets so far.
constexpr int UsualMovesToGo = 30;
constexpr int MostMovesToGo = 40;
// Of the increment three quarters are spent at once; the rest builds a reserve.
constexpr int IncrementPercent = 75;
// A move's share is not used up by the soft deadline, because the iteration begun before it goes on after it.
constexpr int SoftPercent = 60;
// An iteration that has become difficult may take four shares, but never more than this part of all that is left.
constexpr int HardShares = 4;
constexpr int HardPercentOfAll = 80;
// The soft deadline in percent of itself: a tenth sooner for each iteration that kept the best move, down to 60.
constexpr int UnsettledPercent = 125;
constexpr int SettledPercent = 60;
constexpr int PercentPerStableIteration = 10;
// And a percent later for each centipawn that the value has fallen, up to 60.
constexpr int MostDropPercent = 60;

} // namespace

TimeControl::TimeControl(const SearchLimits& limits, std::int64_t startMs) : startMs_(startMs) {
    if (limits.MoveTimeMs >= 0) {
        softMs_ = hardMs_ = startMs + limits.MoveTimeMs;
    } else if (limits.RemainingMs >= 0) {
        // An even share of what is left, and never so much that the next moves starve.
        isFlexible_ = true;
        const int moves = limits.MovesToGo > 0 ? std::min(limits.MovesToGo, MostMovesToGo) : UsualMovesToGo;
        const std::int64_t usable = std::max<std::int64_t>(limits.RemainingMs - LagMs, 1);
        const std::int64_t share = std::min(usable / moves + limits.IncrementMs * IncrementPercent / 100, usable);
        softMs_ = startMs + share * SoftPercent / 100;
        hardMs_ = startMs + std::min(share * HardShares, usable * HardPercentOfAll / 100);
    }
}

bool TimeControl::SoftTimeIsUp(std::int64_t nowMs, int stability, int valueDropCp) const {
    if (softMs_ == Never) return false;
    if (!isFlexible_) return nowMs >= softMs_;
    const int percent = std::max(SettledPercent, UnsettledPercent - PercentPerStableIteration * stability) +
                        std::clamp(valueDropCp, 0, MostDropPercent);
    return nowMs >= startMs_ + (softMs_ - startMs_) * percent / 100;
}

} // namespace quarnel::engine
