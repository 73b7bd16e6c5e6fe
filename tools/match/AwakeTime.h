// Time that the machine was awake: where a virtual machine is stopped for a minute and goes on, neither a player's
// clock nor the patience with him should have lost that minute.
//
// A thread of the referee looks at the steady clock all the while. What passes between two looks counts for no more
// than a busy machine keeps a thread waiting.
#pragma once

#include <algorithm>
#include <chrono>

namespace quarnel::match {

/// The reckoning itself, for one thread.
class AwakeTime {
  public:
    using TimePoint = std::chrono::steady_clock::time_point;
    /// What counts of the time between two looks, at most.
    static constexpr std::chrono::milliseconds Longest{30};

    explicit AwakeTime(TimePoint now) : looked_(now), awake_(now) {}
    /// The awake time at `now`.
    TimePoint At(TimePoint now) const { return awake_ + std::min<TimePoint::duration>(now - looked_, Longest); }
    void Look(TimePoint now) {
        awake_ = At(now);
        looked_ = now;
    }

  private:
    TimePoint looked_;
    TimePoint awake_;
};

/// The awake time now, from any thread; never less than it was. The first call starts the thread that looks.
AwakeTime::TimePoint AwakeNow();

} // namespace quarnel::match
