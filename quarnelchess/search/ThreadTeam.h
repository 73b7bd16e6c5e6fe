// Threads that sleep until there is work, and then do it side by side with the thread that calls.
//
// One thread owns a team and calls all of it.
#pragma once

#include "quarnelchess/search/OperatingSystem.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace quarnel::engine {

class ThreadTeam {
  public:
    ThreadTeam() = default;
    ~ThreadTeam();
    ThreadTeam(const ThreadTeam&) = delete;
    ThreadTeam& operator=(const ThreadTeam&) = delete;

    /// Starts helpers until there are so many; fewer when the system grants no more.
    void Grow(std::size_t helpers);
    std::size_t Helpers() const { return helpers_.size(); }

    /// Runs `job(0)` here and `job(1)` to `job(helpers)` on as many helpers; returns when all are done. The job must
    /// not throw.
    void Run(std::size_t helpers, const std::function<void(std::size_t)>& job);

  private:
    struct Helper {
        ThreadTeam* Team = nullptr;
        std::size_t Index = 0; // from 1
        unsigned Round = 0;    // the last one that it has seen
        DeepThread Thread;
    };
    void Loop(Helper& helper);

    std::vector<std::unique_ptr<Helper>> helpers_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::condition_variable done_;
    const std::function<void(std::size_t)>* job_ = nullptr;
    unsigned round_ = 0;
    std::size_t wanted_ = 0;     // helpers, in this round
    std::size_t unfinished_ = 0; // of those
    bool quit_ = false;
};

} // namespace quarnel::engine
