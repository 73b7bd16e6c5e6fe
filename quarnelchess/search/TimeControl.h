// When a search has to end, and when it had better not start another iteration. Plain values: the clock is the
// caller's, so is the thread.
#pragma once

#include "quarnelchess/search/SearchTypes.h"

#include <cstdint>
#include <limits>

namespace quarnel::engine {

class TimeControl {
  public:
    /// No deadline at all.
    TimeControl() = default;
    /// Deadlines of `limits`, counted from the clock reading `startMs`.
    TimeControl(const SearchLimits& limits, std::int64_t startMs);

    std::int64_t StartMs() const { return startMs_; }
    bool HasDeadline() const { return hardMs_ != Never; }

    /// The search ends at once.
    bool HardTimeIsUp(std::int64_t nowMs) const { return nowMs >= hardMs_; }
    /// No new iteration. On a tournament clock later when the value has fallen by `valueDropCp` since the last
    /// iteration, sooner when `stability` iterations in a row have kept the best move, and sooner or later for the
    /// part of the search's nodes that went below that move, `bestMoveNodePermille`; 0: unknown.
    bool SoftTimeIsUp(std::int64_t nowMs, int stability, int valueDropCp, int bestMoveNodePermille) const;

  private:
    static constexpr std::int64_t Never = std::numeric_limits<std::int64_t>::max();

    std::int64_t startMs_ = 0;
    std::int64_t softMs_ = Never;
    std::int64_t hardMs_ = Never;
    bool isFlexible_ = false; // a tournament clock: what one move saves another may use
};

} // namespace quarnel::engine
