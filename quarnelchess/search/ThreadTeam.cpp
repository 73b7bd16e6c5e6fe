#include "quarnelchess/search/ThreadTeam.h"

#include <new>

namespace quarnel::engine {

ThreadTeam::~ThreadTeam() {
    {
        const std::lock_guard lock(mutex_);
        quit_ = true;
    }
    wake_.notify_all();
    helpers_.clear(); // joins them
}

void ThreadTeam::Grow(std::size_t helpers) {
    try {
        helpers_.reserve(helpers);
        while (helpers_.size() < helpers) {
            auto helper = std::make_unique<Helper>();
            helper->Team = this;
            helper->Index = helpers_.size() + 1;
            helper->Round = round_;
            const auto body = [](void* self) {
                auto& started = *static_cast<Helper*>(self);
                started.Team->Loop(started);
            };
            if (!helper->Thread.Start(body, helper.get())) return;
            helpers_.push_back(std::move(helper));
        }
    } catch (const std::bad_alloc&) {
        // Those that there are will do.
    }
}

void ThreadTeam::Run(std::size_t helpers, const std::function<void(std::size_t)>& job) {
    if (helpers > 0) {
        const std::lock_guard lock(mutex_);
        job_ = &job;
        wanted_ = unfinished_ = helpers;
        ++round_;
        wake_.notify_all();
    }
    job(0);
    std::unique_lock lock(mutex_);
    done_.wait(lock, [this] { return unfinished_ == 0; });
}

void ThreadTeam::Loop(Helper& helper) {
    std::unique_lock lock(mutex_);
    while (true) {
        wake_.wait(lock, [&] { return quit_ || round_ != helper.Round; });
        if (quit_) return;
        helper.Round = round_;
        if (helper.Index > wanted_) continue;
        const auto& job = *job_;
        lock.unlock();
        job(helper.Index);
        lock.lock();
        if (--unfinished_ == 0) done_.notify_one();
    }
}

} // namespace quarnel::engine
