// The clock of one game: how much time each side has left, by the referee's reading.
//
// A side without a clock of its own thinks as long as its other limit lets it. One thread owns the object.
#pragma once

#include "AwakeTime.h"

#include "quarnelchess/board/Types.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quarnel::match {

/// What a player may use up in a game, and what each of his moves gives him back.
struct ClockRules {
    std::int64_t BaseMs = 0; // from 1 on
    std::int64_t IncrementMs = 0;
};

/// "5+0.05" or "5", seconds of at most three decimals; nothing when it is none of these, when the base is 0 or
/// either number is above 100000.
std::optional<ClockRules> ReadClockRules(std::string_view text);
/// "5+0.05", as ReadClockRules() takes it.
std::string WriteClockRules(const ClockRules& rules);

/// What is told to a player who is to move, in milliseconds; nothing of a side without a clock.
struct ClockTimes {
    std::optional<std::int64_t> LeftMs[2]; // by Color, at least 1
    std::int64_t IncrementMs[2] = {};
};

class GameClock {
  public:
    using TimePoint = std::chrono::steady_clock::time_point;
    /// A reading of the time, never less than the one before.
    using Source = std::function<TimePoint()>;

    /// No side has a clock.
    GameClock() = default;
    /// A side may overdraw its clock by `marginMs` milliseconds, the way of its answer to the referee, and has
    /// nothing left then but the increment.
    GameClock(const std::optional<ClockRules>& white, const std::optional<ClockRules>& black, int marginMs,
              Source now = AwakeNow);

    ClockTimes Times() const;
    /// `mover` begins to think.
    void Start(engine::Color mover);
    /// He has answered. Tells how he has overdrawn his clock, if he has: he has lost then, and the clock has no
    /// more meaning. Otherwise he gets his increment.
    std::optional<std::string> Stop();

  private:
    struct Side {
        bool HasClock = false;
        std::chrono::nanoseconds Left{0};
        std::int64_t IncrementMs = 0;
    };

    Side sides_[2]; // by Color
    std::chrono::milliseconds margin_{0};
    Source now_;
    engine::Color mover_ = engine::White;
    TimePoint started_;
};

} // namespace quarnel::match
