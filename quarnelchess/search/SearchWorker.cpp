#include "quarnelchess/search/SearchWorker.h"

#include "quarnelchess/board/MoveGen.h"
#include "quarnelchess/search/Margins.h"

#include <algorithm>
#include <cstdlib>

namespace quarnel::engine {

SearchWorker::SearchWorker(SearchTask& task, int index) : task_(task), index_(index), nodes_(task.Nodes[index].Count) {}

void SearchWorker::Clear() {
    history_.Clear();
}

// --- Iterative deepening --------------------------------------------------------------------------

void SearchWorker::PrepareRoot() {
    stopped_ = false;
    completedDepth_ = 0;
    nullMoveFromPly_ = 0;
    stability_ = 0;
    lastBest_ = {};
    for (PlyState& state : stack_) {
        state.Killers[0] = state.Killers[1] = state.Current = state.Excluded = Move{};
        state.Answers = &history_.AfterNothing();
        state.StaticEval = NoValue;
        state.Arrival = 0;
        state.Extensions = state.Reduced = state.Cutoffs = 0;
        state.LineLength = 0;
    }
    evaluation_.Begin(task_.Root.Position);
    keys_ = task_.Root.Earlier;
    gameKeys_ = keys_.size();
    keys_.resize(gameKeys_ + MaxPly + 4);

    rootMoves_.clear();
    MoveBuffer moves;
    GenerateMoves(task_.Root.Position, moves);
    const auto& only = task_.Limits.OnlyMoves;
    for (const Move move : moves) {
        if (!only.empty() && std::find(only.begin(), only.end(), move) == only.end()) continue;
        RootMove root;
        root.First = move;
        root.Line = {move};
        rootMoves_.push_back(std::move(root));
    }
}

void SearchWorker::Think() {
    PrepareRoot();
    if (rootMoves_.empty()) return;
    const int last = std::min({task_.Limits.Depth, task_.Weakness.Depth, MaxPly - 2});
    // Helpers take odd depths ahead of the others, so that the threads do not all do the same.
    for (int depth = 1 + (index_ & 1); depth <= last; ++depth) {
        SearchDepth(depth);
        if (stopped_) break;
        completedDepth_ = depth;
        if (index_ == 0 && IterationsSuffice(depth)) break;
    }
}

/// May the search end before its deadline?
bool SearchWorker::IterationsSuffice(int depth) {
    stability_ = rootMoves_[0].First == lastBest_ ? stability_ + 1 : 0;
    lastBest_ = rootMoves_[0].First;
    if (task_.IsOpenEnded()) return false;
    if (rootMoves_.size() == 1 && task_.Deadlines.HasDeadline() && depth >= margins::OnlyMoveDepth) return true;
    if (MateIsProven(depth) && task_.Limits.MultiPv == 1) return true;
    const int valueDropCp = rootMoves_[0].PreviousValue - rootMoves_[0].Value;
    const std::uint64_t nodes = std::max<std::uint64_t>(nodes_.load(std::memory_order_relaxed), 1);
    const auto bestMovePermille = static_cast<int>(rootMoves_[0].Nodes * 1000 / nodes);
    return task_.Deadlines.SoftTimeIsUp(task_.Time.NowMs(), stability_, valueDropCp, bestMovePermille);
}

/// The search has looked past the mate it announces, so a shorter one does not exist.
bool SearchWorker::MateIsProven(int depth) const {
    const int value = rootMoves_[0].Value;
    return std::abs(value) >= MateInMaxPly && depth > MateValue - std::abs(value) + 1;
}

void SearchWorker::SearchDepth(int depth) {
    rootDepth_ = depth;
    for (RootMove& root : rootMoves_) {
        root.PreviousValue = root.Value;
        root.Value = -InfiniteValue;
    }
    const int wanted = std::max(task_.Limits.MultiPv, task_.Weakness.Candidates);
    const std::size_t lines = std::min(static_cast<std::size_t>(wanted), rootMoves_.size());
    for (lineIndex_ = 0; lineIndex_ < lines && !stopped_; ++lineIndex_) {
        selectiveDepth_ = 0;
        SearchRootWindow(depth, rootMoves_[lineIndex_].PreviousValue);
        const auto better = [](const RootMove& a, const RootMove& b) {
            return a.Value != b.Value ? a.Value > b.Value : a.PreviousValue > b.PreviousValue;
        };
        std::stable_sort(rootMoves_.begin(), rootMoves_.begin() + static_cast<std::ptrdiff_t>(lineIndex_) + 1, better);
    }
    if (index_ != 0 || stopped_) return;
    for (std::size_t line = 0; line < lines; ++line) Report(static_cast<int>(line));
}

void SearchWorker::SearchRootWindow(int depth, int previous) {
    int delta = margins::AspirationWindowCp;
    int alpha = -InfiniteValue;
    int beta = InfiniteValue;
    if (depth >= margins::AspirationDepth && previous != -InfiniteValue) {
        alpha = std::max(previous - delta, -InfiniteValue);
        beta = std::min(previous + delta, InfiniteValue);
    }
    int failedHigh = 0;
    while (true) {
        const int value = SearchNode(task_.Root.Position, alpha, beta, std::max(1, depth - failedHigh), 0, false);
        // Moves that failed keep -infinity, so the stable sort leaves their old order alone.
        std::stable_sort(rootMoves_.begin() + static_cast<std::ptrdiff_t>(lineIndex_), rootMoves_.end(),
                         [](const RootMove& a, const RootMove& b) { return a.Value > b.Value; });
        if (stopped_) return;
        if (value <= alpha) {
            beta = (alpha + beta) / 2;
            alpha = std::max(value - delta, -InfiniteValue);
            failedHigh = 0;
        } else if (value >= beta) {
            beta = std::min(value + delta, InfiniteValue);
            if (failedHigh < margins::MostFailHighReductions && std::abs(value) < MateInMaxPly) ++failedHigh;
        } else {
            return;
        }
        delta += delta * 2 / 3;
        if (delta > margins::WidestAspirationCp) {
            alpha = -InfiniteValue;
            beta = InfiniteValue;
        }
    }
}

void SearchWorker::Report(int index) const {
    if (!task_.Info) return;
    const RootMove& root = rootMoves_[static_cast<std::size_t>(index)];
    SearchInfo info;
    info.Line = {root.Value, rootDepth_, root.SelectiveDepth, root.Line};
    info.MultiPvIndex = index;
    info.Nodes = task_.AllNodes();
    info.ElapsedMs = task_.Time.NowMs() - task_.Deadlines.StartMs();
    info.HashPermille = task_.Table.FilledPermille();
    task_.Info(info);
}

// --- Root moves -----------------------------------------------------------------------------------

/// One of those whose turn it is: of several lines the better ones are left out.
bool SearchWorker::IsRootMove(Move move) const {
    return std::any_of(rootMoves_.begin() + static_cast<std::ptrdiff_t>(lineIndex_), rootMoves_.end(),
                       [move](const RootMove& root) { return root.First == move; });
}

void SearchWorker::CountRootNodes(Move move, std::uint64_t nodes) {
    for (RootMove& root : rootMoves_)
        if (root.First == move) root.Nodes += nodes;
}

void SearchWorker::RememberRootMove(Move move, int moveCount, int value, int alpha) {
    for (RootMove& root : rootMoves_) {
        if (root.First != move) continue;
        if (moveCount > 1 && value <= alpha) {
            root.Value = -InfiniteValue;
            return;
        }
        root.Value = value;
        root.SelectiveDepth = selectiveDepth_;
        root.Line.assign(1, move);
        const PlyState& child = At(1);
        root.Line.insert(root.Line.end(), child.Line, child.Line + child.LineLength);
        return;
    }
}

} // namespace quarnel::engine
