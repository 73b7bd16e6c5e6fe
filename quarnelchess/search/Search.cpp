#include "quarnelchess/search/Search.h"

#include "quarnelchess/board/MoveGen.h"
#include "quarnelchess/evaluation/Endgames.h"
#include "quarnelchess/search/SearchWorker.h"

#include <algorithm>
#include <utility>

namespace quarnel::engine {

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

Search::Search(Clock& clock) : task_(clock, hashMb_) {
    SetThreads(1);
    thread_ = std::thread([this] { Loop(); });
}

Search::~Search() {
    Stop();
    {
        const std::lock_guard lock(mutex_);
        quit_ = true;
    }
    wake_.notify_one();
    thread_.join();
}

// --- Settings -------------------------------------------------------------------------------------

void Search::SetThreads(int count) {
    Stop();
    Result();
    const auto wanted = static_cast<std::size_t>(std::clamp(count, 1, SearchTask::MaxThreads));
    while (workers_.size() > wanted) workers_.pop_back();
    while (workers_.size() < wanted)
        workers_.push_back(std::make_unique<SearchWorker>(task_, static_cast<int>(workers_.size())));
    task_.Threads = static_cast<int>(wanted);
}

void Search::SetHash(std::size_t megabytes) {
    Stop();
    Result();
    if (std::exchange(hashMb_, megabytes) != megabytes) task_.Table.Resize(megabytes);
}

void Search::SetSeed(std::uint64_t seed) {
    Stop();
    Result();
    seed_ = seed;
    searches_ = 0;
}

void Search::NewGame() {
    Stop();
    Result();
    task_.Table.Clear();
    for (auto& worker : workers_) worker->Clear();
}

// --- One search -----------------------------------------------------------------------------------

void Search::Start(const SearchRoot& root, const SearchLimits& limits, SearchInfoCallback info) {
    Stop();
    Result();
    task_.Root = root;
    task_.Limits = limits;
    const Handicap before = std::exchange(task_.Weakness, HandicapFor(limits.Skill, root.Position));
    forgetTable_ = before.IsNone() != task_.Weakness.IsNone();
    task_.Occasion = seed_ * 1000003 + searches_++;
    task_.Info = std::move(info);
    task_.Deadlines = TimeControl(limits, limits.StartMs >= 0 ? limits.StartMs : task_.Time.NowMs());
    task_.Stop.store(false, std::memory_order_relaxed);
    task_.LimitReached.store(false, std::memory_order_relaxed);
    task_.Pondering.store(limits.Ponder, std::memory_order_relaxed);
    result_ = {};
    running_.store(true, std::memory_order_release);
    {
        const std::lock_guard lock(mutex_);
        requested_ = true;
    }
    wake_.notify_one();
}

SearchResult Search::Result() {
    std::unique_lock lock(mutex_);
    done_.wait(lock, [this] { return !running_.load(std::memory_order_acquire); });
    return result_;
}

void Search::Loop() {
    PrepareEndings();
    std::unique_lock lock(mutex_);
    while (true) {
        wake_.wait(lock, [this] { return requested_ || quit_; });
        if (quit_) return;
        requested_ = false;
        lock.unlock();
        RunSearch();
        lock.lock();
        running_.store(false, std::memory_order_release);
        done_.notify_all();
    }
}

void Search::RunSearch() {
    // What a player overlooked is not in the table, and what another one saw is more than he would.
    if (forgetTable_) task_.Table.Clear();
    task_.Table.NextGeneration();
    for (SearchTask::NodeCounter& counter : task_.Nodes) counter.Count.store(0, std::memory_order_relaxed);
    // A weaker player works alone, so that its work is measured.
    const std::size_t threads = task_.Weakness.IsNone() ? workers_.size() : 1;
    RunWorkers(threads);
    const bool manyOpinions = threads > 1 && task_.Limits.MultiPv == 1;
    const SearchResult result = Conclude(manyOpinions ? BestWorker() : *workers_[0]);
    const std::lock_guard lock(mutex_);
    result_ = result;
}

void Search::RunWorkers(std::size_t threads) {
    std::vector<std::thread> helpers;
    for (std::size_t i = 1; i < threads; ++i) helpers.emplace_back([this, i] { workers_[i]->Think(); });
    workers_[0]->Think();
    // An endless search has said all it can, but its answer is wanted only when asked for.
    while (task_.IsOpenEnded() && !task_.Stop.load(std::memory_order_relaxed))
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    task_.LimitReached.store(true, std::memory_order_relaxed);
    for (std::thread& helper : helpers) helper.join();
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
    if (moves.empty()) return result;
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

/// The line's second move; when the line was cut short, what the table holds for the position after the first.
Move Search::ExpectedReply(const std::vector<Move>& line) const {
    if (line.size() > 1) return line[1];
    Board next = task_.Root.Position;
    next.Make(line[0]);
    TableEntry entry;
    return task_.Table.Probe(next.PositionKey(), entry) && IsLegal(next, entry.Best) ? entry.Best : Move{};
}

} // namespace quarnel::engine
