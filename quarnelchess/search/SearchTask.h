// What the threads of a search share: the question, the deadlines, the table, and the flags that end it.
//
// Search fills it in while no worker runs; from then on workers only read it, but for the table, their own node
// counter and the flags, which any thread may touch.
#pragma once

#include "quarnelchess/search/Clock.h"
#include "quarnelchess/search/Handicap.h"
#include "quarnelchess/search/SearchTypes.h"
#include "quarnelchess/search/TimeControl.h"
#include "quarnelchess/search/TranspositionTable.h"

#include <atomic>
#include <cstdint>

namespace quarnel::engine {

struct SearchTask {
    static constexpr int MaxThreads = 64;

    /// On a cache line of its own, since its worker writes it at every node.
    struct alignas(64) NodeCounter {
        std::atomic<std::uint64_t> Count{0};
    };

    explicit SearchTask(Clock& clock) : Time(clock) {}

    Clock& Time;
    TranspositionTable Table;
    NodeCounter Nodes[MaxThreads]; // by worker
    int Threads = 1;

    SearchRoot Root;
    SearchLimits Limits;
    Handicap Weakness;
    std::uint64_t Occasion = 0; // random state of the search, for a player with a handicap
    TimeControl Deadlines;
    SearchInfoCallback Info;

    std::atomic<bool> Stop{false};         // asked for from outside
    std::atomic<bool> LimitReached{false}; // ends the workers, but not a search that answers only when asked to
    std::atomic<bool> Pondering{false};

    bool IsEnding() const {
        return Stop.load(std::memory_order_relaxed) || LimitReached.load(std::memory_order_relaxed);
    }
    /// No limit holds: the answer is wanted only when it is asked for.
    bool IsOpenEnded() const { return Limits.Infinite || Pondering.load(std::memory_order_relaxed); }
    bool OutOfTime() const { return !IsOpenEnded() && Deadlines.HardTimeIsUp(Time.NowMs()); }
    std::uint64_t AllNodes() const {
        std::uint64_t sum = 0;
        for (const NodeCounter& counter : Nodes) sum += counter.Count.load(std::memory_order_relaxed);
        return sum;
    }
};

} // namespace quarnel::engine
