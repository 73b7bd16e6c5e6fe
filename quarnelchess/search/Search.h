// The search: finds a move for a position, on threads of its own.
//
// Start() returns at once; the search runs until a limit is reached or Stop() is called, and Result()
// tells what it found. Every method is for the one thread that owns the object; only the info callback
// runs elsewhere, on a search thread. All deadlines run on the clock handed in.
#pragma once

#include "quarnelchess/search/SearchTask.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <span>
#include <thread>
#include <vector>

namespace quarnel::engine {

class SearchWorker;

/// What one search thread has come to: its best move's value and the last depth that it completed.
struct WorkerResult {
    int CompletedDepth = 0;
    int Value = 0;
    bool HasMoves = false;
};
/// Which of the threads to believe: the first one, unless a helper got as far with a better move or further with no
/// worse one.
std::size_t BestResult(std::span<const WorkerResult> results);

class Search {
  public:
    explicit Search(Clock& clock);
    ~Search();
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;

    // Settings: they wait for a running search to end.
    void SetThreads(int count); // 1..64
    /// A new size forgets what the table holds.
    void SetHash(std::size_t megabytes);
    /// With one thread and a node or depth limit, the same seed searches the same way every time.
    void SetSeed(std::uint64_t seed);
    /// Forgets everything learned.
    void NewGame();

    void Start(const SearchRoot& root, const SearchLimits& limits, SearchInfoCallback info = {});
    bool IsRunning() const { return running_.load(std::memory_order_acquire); }
    void Stop() { task_.Stop.store(true, std::memory_order_relaxed); }
    /// The expected move was played: from now on the deadlines hold. They were set at Start(), so that the time
    /// already spent on this very position counts.
    void PonderHit() { task_.Pondering.store(false, std::memory_order_relaxed); }
    /// Waits for the search to end.
    SearchResult Result();
    SearchResult Run(const SearchRoot& root, const SearchLimits& limits, SearchInfoCallback info = {}) {
        Start(root, limits, std::move(info));
        return Result();
    }

  private:
    void Loop();
    void RunSearch();
    void RunWorkers(std::size_t threads);
    SearchResult Conclude(const SearchWorker& worker) const;
    const SearchWorker& BestWorker() const;
    Move ExpectedReply(const std::vector<Move>& line) const;

    std::size_t hashMb_ = 16;
    SearchTask task_;
    std::vector<std::unique_ptr<SearchWorker>> workers_;
    std::uint64_t seed_ = 0;
    std::uint64_t searches_ = 0; // since the seed was set
    bool forgetTable_ = false;
    SearchResult result_;
    std::atomic<bool> running_{false};

    std::mutex mutex_;
    std::condition_variable wake_;
    std::condition_variable done_;
    bool requested_ = false;
    bool quit_ = false;
    std::thread thread_;
};

} // namespace quarnel::engine
