#include "quarnelchess/search/Search.h"

#include "quarnelchess/board/MoveGen.h"
#include "quarnelchess/evaluation/Endgames.h"
#include "quarnelchess/search/SearchWorker.h"

#include <algorithm>
#include <new>
#include <utility>

namespace quarnel::engine {

namespace {

constexpr std::size_t DefaultHashMb = 16;

// On the caller's own stack, which may be small, and in his time.
constexpr int DepthWithoutThread = 3;
constexpr std::uint64_t NodesWithoutThread = 5000;

} // namespace

std::size_t BestResult(std::span<const WorkerResult> results) {
    std::size_t best = 0;
    for (std::size_t i = 1; i < results.size(); ++i) {
        if (!results[i].HasMoves || !results[best].HasMoves) continue;
        const bool deeper = results[i].CompletedDepth > results[best].CompletedDepth;
        const bool asDeep = results[i].CompletedDepth >= results[best].CompletedDepth;
        const int gain = results[i].Value - results[best].Value;
        if ((deeper && gain >= 0) || (asDeep && gain > 0)) best = i;
    }
    return best;
}

Search::Search(Clock& clock) : clock_(clock), task_(clock) {
    workers_.push_back(std::make_unique<SearchWorker>(task_, 0));
    SetHash(DefaultHashMb);
    HasThread();
}

Search::~Search() {
    Stop();
    {
        const std::lock_guard lock(mutex_);
        quit_ = true;
    }
    wake_.notify_all();
    thread_.Join();
}

/// Starts the search thread if there is none yet.
bool Search::HasThread() {
    return thread_.IsStarted() || thread_.Start([](void* self) { static_cast<Search*>(self)->Loop(); }, this);
}

// --- The owner's side -----------------------------------------------------------------------------

void Search::SetThreads(int count) {
    Order({.Threads = std::clamp(count, 1, SearchTask::MaxThreads)});
}

void Search::SetHash(std::size_t megabytes) {
    if (std::exchange(hashMb_, megabytes) != megabytes) Order({.HashMb = megabytes});
}

void Search::NewGame() {
    Order({.Forget = true});
}

void Search::SetSeed(std::uint64_t seed) {
    seed_ = seed;
    searches_ = 0;
}

void Search::Order(const Upkeep& upkeep) {
    Stop();
    std::unique_lock lock(mutex_);
    if (upkeep.Threads != 0) upkeep_.Threads = upkeep.Threads;
    if (upkeep.HashMb != 0) upkeep_.HashMb = upkeep.HashMb;
    upkeep_.Forget |= upkeep.Forget;
    wake_.notify_all();
    while (!HasThread() && upkeep_.IsDue()) Work(lock);
}

void Search::Start(const SearchRoot& root, const SearchLimits& limits, SearchInfoCallback info, DoneCallback done) {
    Stop();
    Request request{root, limits, seed_ * 1000003 + searches_++, std::move(info), std::move(done)};
    if (limits.StartMs < 0) request.Limits.StartMs = clock_.NowMs();
    const bool alone = !HasThread();
    if (alone) {
        request.Limits.Depth = std::min(limits.Depth, DepthWithoutThread);
        request.Limits.Nodes = NodesWithoutThread;
        request.Limits.Infinite = request.Limits.Ponder = false;
    }
    std::unique_lock lock(mutex_);
    request_ = std::move(request);
    result_ = {};
    running_.store(true, std::memory_order_release);
    wake_.notify_all();
    while (alone && running_.load(std::memory_order_relaxed)) Work(lock);
}

void Search::Stop() {
    {
        const std::lock_guard lock(mutex_);
        task_.Stop.store(true, std::memory_order_relaxed);
        if (request_) request_->IsStopped = true;
    }
    wake_.notify_all();
}

void Search::PonderHit() {
    {
        const std::lock_guard lock(mutex_);
        task_.Pondering.store(false, std::memory_order_relaxed);
        if (request_) request_->Limits.Ponder = false;
    }
    wake_.notify_all();
}

SearchResult Search::Result() {
    std::unique_lock lock(mutex_);
    done_.wait(lock, [this] { return !running_.load(std::memory_order_acquire); });
    return result_;
}

void Search::Settle() {
    std::unique_lock lock(mutex_);
    done_.wait(lock, [this] { return !maintaining_ && !upkeep_.IsDue(); });
}

// --- The search thread's side ---------------------------------------------------------------------

void Search::Loop() {
    PrepareEndings();
    std::unique_lock lock(mutex_);
    while (!quit_) {
        Work(lock);
        wake_.wait(lock, [this] { return quit_ || request_ || upkeep_.IsDue(); });
    }
}

/// What is to be changed, then the search that is asked for.
void Search::Work(std::unique_lock<std::mutex>& lock) {
    if (upkeep_.IsDue()) {
        const Upkeep due = std::exchange(upkeep_, {});
        maintaining_ = true;
        lock.unlock();
        Maintain(due);
        lock.lock();
        maintaining_ = false;
        done_.notify_all();
    } else if (request_) {
        TakeRequest();
        lock.unlock();
        const SearchResult result = RunSearch();
        if (announce_) announce_(result);
        lock.lock();
        if (request_) return;
        result_ = result;
        running_.store(false, std::memory_order_release);
        done_.notify_all();
    }
}

void Search::Maintain(const Upkeep& upkeep) {
    if (upkeep.Threads != 0) HireWorkers(upkeep.Threads);
    if (upkeep.HashMb != 0) task_.Table.Allocate(upkeep.HashMb);
    if (upkeep.HashMb != 0 || upkeep.Forget) ClearTable();
    if (!upkeep.Forget) return;
    for (auto& worker : workers_) worker->Clear();
}

/// One for each thread, as far as memory and threads go.
void Search::HireWorkers(int threads) {
    const auto wanted = static_cast<std::size_t>(threads);
    while (workers_.size() > wanted) workers_.pop_back();
    team_.Grow(wanted - 1);
    try {
        while (workers_.size() < std::min(wanted, team_.Helpers() + 1))
            workers_.push_back(std::make_unique<SearchWorker>(task_, static_cast<int>(workers_.size())));
    } catch (const std::bad_alloc&) {
        // Those that there are will do.
    }
    task_.Threads = static_cast<int>(workers_.size());
}

void Search::ClearTable() {
    const std::size_t helpers = std::min(team_.Helpers(), workers_.size() - 1);
    team_.Run(helpers, [&](std::size_t part) { task_.Table.Clear(part, helpers + 1); });
}

void Search::TakeRequest() {
    task_.Root = std::move(request_->Root);
    task_.Limits = std::move(request_->Limits);
    task_.Info = std::move(request_->Info);
    task_.Occasion = request_->Occasion;
    announce_ = std::move(request_->Done);
    const Handicap before = std::exchange(task_.Weakness, HandicapFor(task_.Limits.Skill, task_.Root.Position));
    // What a player overlooked is not in the table, and what another one saw is more than he would.
    forgetTable_ = before.IsNone() != task_.Weakness.IsNone();
    task_.Deadlines = TimeControl(task_.Limits, task_.Limits.StartMs);
    task_.Stop.store(request_->IsStopped, std::memory_order_relaxed);
    task_.LimitReached.store(false, std::memory_order_relaxed);
    task_.Pondering.store(task_.Limits.Ponder, std::memory_order_relaxed);
    request_.reset();
}

SearchResult Search::RunSearch() {
    if (forgetTable_) ClearTable();
    task_.Table.NextGeneration();
    for (SearchTask::NodeCounter& counter : task_.Nodes) counter.Count.store(0, std::memory_order_relaxed);
    // A weaker player works alone, so that its work is measured.
    const std::size_t threads = task_.Weakness.IsNone() ? workers_.size() : 1;
    RunWorkers(threads);
    const bool manyOpinions = threads > 1 && task_.Limits.MultiPv == 1;
    try {
        return Conclude(manyOpinions ? BestWorker() : *workers_[0]);
    } catch (const std::bad_alloc&) {
        return FirstMove();
    }
}

void Search::RunWorkers(std::size_t threads) {
    team_.Run(threads - 1, [this](std::size_t index) {
        try {
            workers_[index]->Think();
        } catch (const std::bad_alloc&) {
            // What it has found so far counts.
        }
        if (index != 0) return;
        AwaitNeed();
        task_.LimitReached.store(true, std::memory_order_relaxed);
    });
}

/// An endless search that has said all it can sleeps until its answer is wanted.
void Search::AwaitNeed() {
    std::unique_lock lock(mutex_);
    wake_.wait(lock, [this] { return !task_.IsOpenEnded() || task_.Stop.load(std::memory_order_relaxed); });
}

// --- The answer -----------------------------------------------------------------------------------

const SearchWorker& Search::BestWorker() const {
    std::vector<WorkerResult> results;
    for (const auto& worker : workers_) {
        const std::vector<RootMove>& moves = worker->RootMoves();
        results.push_back({worker->CompletedDepth(), moves.empty() ? 0 : moves[0].Value, !moves.empty()});
    }
    return *workers_[BestResult(results)];
}

SearchResult Search::Conclude(const SearchWorker& worker) const {
    SearchResult result;
    result.Nodes = task_.AllNodes();
    const std::vector<RootMove>& moves = worker.RootMoves();
    if (moves.empty()) return FirstMove();
    std::vector<Candidate> candidates;
    candidates.reserve(moves.size());
    for (const RootMove& move : moves) candidates.push_back({move.First, std::max(move.Value, move.PreviousValue)});
    const RootMove& best = moves[ChooseCandidate(task_.Root.Position, candidates, task_.Weakness, task_.Occasion)];
    result.Best = best.First;
    result.Value = best.Value != -InfiniteValue ? best.Value : best.PreviousValue;
    if (result.Value == -InfiniteValue) result.Value = 0; // stopped before it was looked at
    result.Depth = worker.CompletedDepth();
    result.Reply = ExpectedReply(best.Line);
    return result;
}

/// Any move, for a search that memory did not suffice for.
SearchResult Search::FirstMove() const {
    SearchResult result;
    result.Nodes = task_.AllNodes();
    MoveBuffer moves;
    GenerateMoves(task_.Root.Position, moves);
    if (!moves.Empty()) result.Best = task_.Limits.OnlyMoves.empty() ? moves[0] : task_.Limits.OnlyMoves[0];
    return result;
}

/// The line's second move; when the line was cut short, what the table holds for the position after the first.
Move Search::ExpectedReply(const std::vector<Move>& line) const {
    if (line.size() > 1) return line[1];
    Board next = task_.Root.Position;
    next.Make(line[0]);
    TableEntry entry;
    return task_.Table.Probe(next.PositionKey(), entry) && IsLegal(next, entry.Best) ? entry.Best : Move{};
}

} // namespace quarnel::engine
