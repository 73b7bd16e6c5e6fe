// The search: finds a move for a position, on threads of its own.
//
// No call but Result() and Settle() waits for anything: a search ends, a table is emptied and the next search begins on
// the search's own threads, in the order of the calls. Result() tells what the last Start() has found. Every method is
// for the one thread that owns the object, but Stop(), which any thread may call; the callbacks run on a search
// thread. All deadlines run on the clock handed in.
//
// What the system refuses makes the search smaller, never fail: fewer threads, a smaller table. Where no thread at
// all can be had, Start() itself looks for a move, for a few milliseconds.
#pragma once

#include "quarnelchess/search/SearchTask.h"
#include "quarnelchess/search/ThreadTeam.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
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
    /// Called with the result of a search before IsRunning() turns false.
    using DoneCallback = std::function<void(const SearchResult&)>;

    explicit Search(Clock& clock);
    ~Search();
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;

    // Settings. They end a running search.
    void SetThreads(int count); // 1..64
    /// A new size forgets what the table holds.
    void SetHash(std::size_t megabytes);
    /// Forgets everything learned.
    void NewGame();
    /// With one thread and a node or depth limit, the same seed searches the same way every time. From the next
    /// search on.
    void SetSeed(std::uint64_t seed);

    void Start(const SearchRoot& root, const SearchLimits& limits, SearchInfoCallback info = {},
               DoneCallback done = {});
    bool IsRunning() const { return running_.load(std::memory_order_acquire); }
    void Stop();
    /// The expected move was played: from now on the deadlines hold. They were set at Start(), so that the time
    /// already spent on this very position counts.
    void PonderHit();
    /// Waits for the search to end.
    SearchResult Result();
    /// Waits until the settings hold, so that no search pays for them out of its time.
    void Settle();
    SearchResult Run(const SearchRoot& root, const SearchLimits& limits, SearchInfoCallback info = {}) {
        Start(root, limits, std::move(info));
        return Result();
    }

  private:
    struct Request {
        SearchRoot Root;
        SearchLimits Limits;
        std::uint64_t Occasion = 0;
        SearchInfoCallback Info;
        DoneCallback Done;
        bool IsStopped = false;
    };
    /// What is to be changed before the next search.
    struct Upkeep {
        int Threads = 0;        // 0: as they are
        std::size_t HashMb = 0; // 0: as it is
        bool Forget = false;

        bool IsDue() const { return Threads != 0 || HashMb != 0 || Forget; }
    };

    bool HasThread();
    void Loop();
    void Work(std::unique_lock<std::mutex>& lock);
    void Order(const Upkeep& upkeep);
    void Maintain(const Upkeep& upkeep);
    void HireWorkers(int threads);
    void ClearTable();
    void TakeRequest();
    SearchResult RunSearch();
    void RunWorkers(std::size_t threads);
    void AwaitNeed();
    SearchResult Conclude(const SearchWorker& worker) const;
    const SearchWorker& BestWorker() const;
    SearchResult FirstMove() const;
    Move ExpectedReply(const std::vector<Move>& line) const;

    // The owner's.
    std::size_t hashMb_ = 0;
    std::uint64_t seed_ = 0;
    std::uint64_t searches_ = 0; // since the seed was set
    Clock& clock_;

    // The search thread's, and the owner's while there is none.
    SearchTask task_;
    std::vector<std::unique_ptr<SearchWorker>> workers_;
    ThreadTeam team_;
    DoneCallback announce_;
    bool forgetTable_ = false;

    // Both threads', under the lock.
    std::mutex mutex_;
    std::condition_variable wake_; // the search thread: there is something to do, or the answer is wanted
    std::condition_variable done_;
    std::optional<Request> request_;
    Upkeep upkeep_;
    bool maintaining_ = false;
    bool quit_ = false;
    SearchResult result_;

    std::atomic<bool> running_{false}; // from Start() until the result is there
    DeepThread thread_;
};

} // namespace quarnel::engine
