// Time as the engine sees it: milliseconds from an arbitrary start, and pauses.
//
// Search threads and the session share one clock, so an implementation must stand calls from several
// threads at once.
#pragma once

#include <chrono>
#include <cstdint>
#include <thread>

namespace quarnel::engine {

class Clock {
  public:
    virtual ~Clock() = default;
    virtual std::int64_t NowMs() = 0;
    virtual void SleepMs(int durationMs) = 0;
};

class SteadyClock final : public Clock {
  public:
    std::int64_t NowMs() override {
        return std::chrono::duration_cast<std::chrono::milliseconds>(
                   std::chrono::steady_clock::now().time_since_epoch())
            .count();
    }
    void SleepMs(int durationMs) override { std::this_thread::sleep_for(std::chrono::milliseconds(durationMs)); }
};

} // namespace quarnel::engine
