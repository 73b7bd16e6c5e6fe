#include "AwakeTime.h"

#include <mutex>
#include <thread>

namespace quarnel::match {
namespace {

constexpr std::chrono::milliseconds LookEvery{10};

class Watch {
  public:
    AwakeTime::TimePoint Now() {
        const std::lock_guard lock(mutex_);
        return time_.At(std::chrono::steady_clock::now());
    }

  private:
    void LookAgainAndAgain(const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            std::this_thread::sleep_for(LookEvery);
            const std::lock_guard lock(mutex_);
            time_.Look(std::chrono::steady_clock::now());
        }
    }

    std::mutex mutex_; // guards the time
    AwakeTime time_{std::chrono::steady_clock::now()};
    std::jthread looking_{[this](const std::stop_token& stop) { LookAgainAndAgain(stop); }};
};

} // namespace

AwakeTime::TimePoint AwakeNow() {
    static Watch watch;
    return watch.Now();
}

} // namespace quarnel::match
