// A clock for tests: it stands still but for what SleepMs() and Advance() add.
#pragma once

#include "quarnelchess/search/Clock.h"

#include <atomic>

namespace quarnel::engine {

class FakeClock final : public Clock {
  public:
    std::int64_t NowMs() override { return now_.load(); }
    void SleepMs(int durationMs) override {
        now_ += durationMs;
        // Leaves the search threads a moment, without which nothing would ever be searched.
        std::this_thread::sleep_for(std::chrono::microseconds(20));
    }
    void Advance(std::int64_t durationMs) { now_ += durationMs; }

  private:
    std::atomic<std::int64_t> now_{1000};
};

} // namespace quarnel::engine
