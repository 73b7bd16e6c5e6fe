#include "quarnelchess/search/Search.h"

#include "quarnelchess/board/MoveGen.h"
#include "quarnelchess/evaluation/Endgames.h"
#include "quarnelchess/search/SearchWorker.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace quarnel::engine {
namespace {
constexpr std::int64_t Never = std::numeric_limits<std::int64_t>::max();
} // namespace

Search::Search(Clock& clock) : clock_(clock) {
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

void Search::SetThreads(int count) {
    Stop();
    Result();
    const auto wanted = static_cast<std::size_t>(std::clamp(count, 1, 64));
    while (workers_.size() > wanted) workers_.pop_back();
    while (workers_.size() < wanted)
        workers_.push_back(std::make_unique<SearchWorker>(*this, static_cast<int>(workers_.size())));
    ShareOutPawnCache();
}

void Search::SetPawnCache(std::size_t megabytes) {
    Stop();
    Result();
    pawnCacheBytes_ = megabytes << 20;
    ShareOutPawnCache();
}

void Search::ShareOutPawnCache() {
    const std::size_t share = std::max<std::size_t>(pawnCacheBytes_ / workers_.size(), 1 << 16);
    for (auto& worker : workers_) worker->ResizePawnCache(share);
}

void Search::SetHash(std::size_t megabytes) {
    Stop();
    Result();
    if (std::exchange(hashMb_, megabytes) != megabytes) table_.Resize(megabytes);
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
    table_.Clear();
    for (auto& worker : workers_) worker->Clear();
}

void Search::Start(const SearchRoot& root, const SearchLimits& limits, InfoCallback info) {
    Stop();
    Result();
    root_ = root;
    limits_ = limits;
    const Handicap before = std::exchange(handicap_, HandicapFor(limits.Skill, root_.Position));
    forgetTable_ = before.IsNone() != handicap_.IsNone();
    occasion_ = seed_ * 1000003 + searches_++;
    info_ = std::move(info);
    result_ = {};
    stop_.store(false, std::memory_order_relaxed);
    limitReached_.store(false, std::memory_order_relaxed);
    pondering_.store(limits.Ponder, std::memory_order_relaxed);
    startMs_ = limits.StartMs >= 0 ? limits.StartMs : clock_.NowMs();
    SetDeadlines();
    running_.store(true, std::memory_order_release);
    {
        const std::lock_guard lock(mutex_);
        requested_ = true;
    }
    wake_.notify_one();
}

void Search::SetDeadlines() {
    std::int64_t soft = Never;
    std::int64_t hard = Never;
    if (limits_.MoveTimeMs >= 0) {
        soft = hard = startMs_ + limits_.MoveTimeMs;
    } else if (limits_.RemainingMs >= 0) {
        // An even share of what is left, and never so much that the next moves starve.
        const int moves = limits_.MovesToGo > 0 ? std::min(limits_.MovesToGo, 40) : 30;
        const std::int64_t usable = std::max<std::int64_t>(limits_.RemainingMs - 30, 1);
        const std::int64_t share = std::min(usable / moves + limits_.IncrementMs * 3 / 4, usable);
        soft = startMs_ + share * 6 / 10;
        hard = startMs_ + std::min(share * 4, usable * 8 / 10);
    }
    softDeadlineMs_ = soft;
    hardDeadlineMs_ = hard;
}

void Search::PonderHit() {
    pondering_.store(false, std::memory_order_relaxed);
}

bool Search::OutOfTime() const {
    if (limits_.Infinite || pondering_.load(std::memory_order_relaxed)) return false;
    return clock_.NowMs() >= hardDeadlineMs_;
}

bool Search::SoftTimeIsUp(int stability, int valueDropCp) const {
    if (softDeadlineMs_ == Never) return false;
    const std::int64_t now = clock_.NowMs();
    if (limits_.MoveTimeMs >= 0) return now >= softDeadlineMs_;
    const int percent = std::max(60, 125 - 10 * stability) + std::clamp(valueDropCp, 0, 60);
    return now >= startMs_ + (softDeadlineMs_ - startMs_) * percent / 100;
}

/// The line's second move; when the line was cut short, what the table holds for the position after the first.
Move Search::ExpectedReply(const std::vector<Move>& line) const {
    if (line.size() > 1) return line[1];
    Board next = root_.Position;
    next.Make(line[0]);
    TableEntry entry;
    return table_.Probe(next.PositionKey(), entry) && IsLegal(next, entry.Best) ? entry.Best : Move{};
}

/// A helper that got further with a better move knows best.
const SearchWorker& Search::BestWorker() const {
    const SearchWorker* best = workers_[0].get();
    for (const auto& worker : workers_) {
        if (worker->RootMoves().empty() || best->RootMoves().empty()) continue;
        const bool deeper = worker->CompletedDepth() > best->CompletedDepth();
        const bool asDeep = worker->CompletedDepth() >= best->CompletedDepth();
        const int gain = worker->RootMoves()[0].Value - best->RootMoves()[0].Value;
        if ((deeper && gain >= 0) || (asDeep && gain > 0)) best = worker.get();
    }
    return *best;
}

std::uint64_t Search::Nodes() const {
    std::uint64_t sum = 0;
    for (const auto& worker : workers_) sum += worker->Nodes();
    return sum;
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
    if (forgetTable_) table_.Clear();
    table_.NextGeneration();
    for (const auto& worker : workers_) worker->ResetNodes();
    std::vector<std::thread> helpers;
    // A weaker player works alone, so that its work is measured.
    const std::size_t threads = handicap_.IsNone() ? workers_.size() : 1;
    for (std::size_t i = 1; i < threads; ++i) helpers.emplace_back([this, i] { workers_[i]->Think(); });
    workers_[0]->Think();
    // An endless search has said all it can, but its answer is wanted only when asked for.
    while ((limits_.Infinite || pondering_.load(std::memory_order_relaxed)) && !stop_.load(std::memory_order_relaxed))
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    ReachLimit();
    for (std::thread& helper : helpers) helper.join();

    SearchResult result;
    result.Nodes = Nodes();
    const SearchWorker& worker = threads > 1 && limits_.MultiPv == 1 ? BestWorker() : *workers_[0];
    if (!worker.RootMoves().empty()) {
        const std::vector<RootMove>& moves = worker.RootMoves();
        std::vector<Candidate> candidates;
        candidates.reserve(moves.size());
        for (const RootMove& move : moves) candidates.push_back({move.First, std::max(move.Value, move.PreviousValue)});
        const RootMove& best = moves[ChooseCandidate(root_.Position, candidates, handicap_, occasion_)];
        result.Best = best.First;
        result.Value = best.Value != -InfiniteValue ? best.Value : best.PreviousValue;
        if (result.Value == -InfiniteValue) result.Value = 0; // stopped before it was looked at
        result.Depth = worker.CompletedDepth();
        result.Reply = ExpectedReply(best.Line);
    }
    const std::lock_guard lock(mutex_);
    result_ = result;
}

} // namespace quarnel::engine
