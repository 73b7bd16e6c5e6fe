// The search: finds a move for a position, on threads of its own.
//
// Start() returns at once; the search runs until a limit is reached or Stop() is called, and Result()
// tells what it found. Every method is for the one thread that owns the object; only the info callback
// runs elsewhere, on a search thread. All deadlines run on the clock handed in.
#pragma once

#include "quarnelchess/board/Board.h"
#include "quarnelchess/search/Clock.h"
#include "quarnelchess/search/Handicap.h"
#include "quarnelchess/search/TranspositionTable.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace quarnel::engine {

/// What is to be searched: a position and the keys of the positions before it since the last capture or
/// pawn move (older ones do no harm), oldest first, so that repetitions of the game itself count.
struct SearchRoot {
    Board Position = Board::Start();
    std::vector<Key> Earlier;
};

/// A limit that is left alone does not limit.
struct SearchLimits {
    int Depth = MaxPly - 2;
    std::uint64_t Nodes = 0;       // 0: none
    std::int64_t MoveTimeMs = -1;  // from StartMs
    std::int64_t StartMs = -1;     // clock reading that time counts from; -1: the moment of Start()
    std::int64_t RemainingMs = -1; // tournament clock of the side to move
    std::int64_t IncrementMs = 0;
    int MovesToGo = 0;     // 0: for the rest of the game
    bool Infinite = false; // only Stop() ends the search
    bool Ponder = false;   // no deadline holds before PonderHit()
    int MultiPv = 1;
    int Skill = 100;             // 0..100, below 100 plays weaker; does not depend on the machine's speed
    std::vector<Move> OnlyMoves; // empty: all
};

/// One line of play with its value, from the root side's view.
struct SearchLine {
    int Value = 0;
    int Depth = 0;
    int SelectiveDepth = 0;
    std::vector<Move> Moves;
};

struct SearchInfo {
    SearchLine Line;
    int MultiPvIndex = 0;
    std::uint64_t Nodes = 0;
    std::int64_t ElapsedMs = 0;
    int HashPermille = 0;
};

struct SearchResult {
    Move Best;  // no move when the root has none
    Move Reply; // the expected answer, if known
    int Value = 0;
    int Depth = 0;
    std::uint64_t Nodes = 0;
};

class SearchWorker;

class Search {
  public:
    using InfoCallback = std::function<void(const SearchInfo&)>;

    explicit Search(Clock& clock);
    ~Search();
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;

    // Settings: they wait for a running search to end.
    void SetThreads(int count); // 1..64
    /// A new size forgets what the table holds.
    void SetHash(std::size_t megabytes);
    /// Room for pawn structures, shared out among the threads; each has at least 64 kB.
    void SetPawnCache(std::size_t megabytes);
    /// With one thread and a node or depth limit, the same seed searches the same way every time.
    void SetSeed(std::uint64_t seed);
    /// Forgets everything learned.
    void NewGame();

    void Start(const SearchRoot& root, const SearchLimits& limits, InfoCallback info = {});
    bool IsRunning() const { return running_.load(std::memory_order_acquire); }
    void Stop() { stop_.store(true, std::memory_order_relaxed); }
    /// The expected move was played: from now on the deadlines hold. They were set at Start(), so that the time
    /// already spent on this very position counts.
    void PonderHit();
    /// Waits for the search to end.
    SearchResult Result();
    SearchResult Run(const SearchRoot& root, const SearchLimits& limits, InfoCallback info = {}) {
        Start(root, limits, std::move(info));
        return Result();
    }

  private:
    friend class SearchWorker;

    void Loop();
    void RunSearch();
    std::uint64_t Nodes() const;
    bool OutOfTime() const;
    /// Ends the workers, but not a search that answers only when it is asked to.
    void ReachLimit() { limitReached_.store(true, std::memory_order_relaxed); }
    bool IsEnding() const {
        return stop_.load(std::memory_order_relaxed) || limitReached_.load(std::memory_order_relaxed);
    }
    bool HasDeadline() const { return limits_.MoveTimeMs >= 0 || limits_.RemainingMs >= 0; }
    /// No new iteration: later when the best move keeps changing or its value falls, sooner when it stands.
    bool SoftTimeIsUp(int stability, int valueDropCp) const;
    const SearchWorker& BestWorker() const;
    Move ExpectedReply(const std::vector<Move>& line) const;
    void SetDeadlines();
    void ShareOutPawnCache();

    Clock& clock_;
    std::size_t hashMb_ = 16;
    TranspositionTable table_{hashMb_};
    std::vector<std::unique_ptr<SearchWorker>> workers_;
    std::size_t pawnCacheBytes_ = 1 << 20;
    std::uint64_t seed_ = 0;

    SearchRoot root_;
    SearchLimits limits_;
    Handicap handicap_;
    bool forgetTable_ = false;
    std::uint64_t searches_ = 0; // since the seed was set
    std::uint64_t occasion_ = 0; // random state of the search, for a player with a handicap
    InfoCallback info_;
    SearchResult result_;
    std::atomic<bool> stop_{false};
    std::atomic<bool> limitReached_{false};
    std::atomic<bool> running_{false};
    std::atomic<bool> pondering_{false};
    std::int64_t startMs_ = 0;        // what the deadlines are counted from
    std::int64_t softDeadlineMs_ = 0; // no new iteration after this
    std::int64_t hardDeadlineMs_ = 0;

    std::mutex mutex_;
    std::condition_variable wake_;
    std::condition_variable done_;
    bool requested_ = false;
    bool quit_ = false;
    std::thread thread_;
};

} // namespace quarnel::engine
