#include "SearchWorker.h"

#include "MovePicker.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quarnel::engine {
namespace {

constexpr int DrawValue = 0;
constexpr std::uint64_t StopCheckNodes = 512; // a power of two

/// Late moves are searched shallower, the more so the deeper the node and the later the move.
std::array<std::array<std::uint8_t, 64>, 64> MakeReductions() {
    std::array<std::array<std::uint8_t, 64>, 64> table{};
    for (int depth = 1; depth < 64; ++depth)
        for (int number = 1; number < 64; ++number)
            table[static_cast<std::size_t>(depth)][static_cast<std::size_t>(number)] =
                static_cast<std::uint8_t>(0.6 + std::log(depth) * std::log(number) / 2.3);
    return table;
}
const auto Reductions = MakeReductions();

} // namespace

SearchWorker::SearchWorker(Search& search, int index) : search_(search), index_(index) {}

void SearchWorker::Clear() {
    history_.Clear();
}

void SearchWorker::PrepareRoot() {
    nodes_.store(0, std::memory_order_relaxed);
    stopped_ = false;
    completedDepth_ = 0;
    for (PlyState& state : stack_) {
        state.Killers[0] = state.Killers[1] = Move{};
        state.LineLength = 0;
    }
    keys_ = search_.root_.Earlier;
    keys_.reserve(keys_.size() + MaxPly + 4);

    rootMoves_.clear();
    MoveBuffer moves;
    GenerateMoves(search_.root_.Position, moves);
    const auto& only = search_.limits_.OnlyMoves;
    for (const Move move : moves)
        if (only.empty() || std::find(only.begin(), only.end(), move) != only.end()) {
            RootMove root;
            root.First = move;
            root.Line = {move};
            rootMoves_.push_back(std::move(root));
        }
}

void SearchWorker::Think() {
    PrepareRoot();
    if (rootMoves_.empty()) return;
    for (int depth = 1; depth <= std::min({search_.limits_.Depth, search_.handicap_.Depth, MaxPly - 2}); ++depth) {
        SearchDepth(depth);
        if (stopped_) break;
        completedDepth_ = depth;
        if (index_ != 0) continue;
        if (search_.limits_.Infinite || search_.pondering_.load(std::memory_order_relaxed)) continue;
        if (rootMoves_.size() == 1 && search_.HasDeadline() && depth >= 6) break;
        if (MateIsProven(depth) && search_.limits_.MultiPv == 1) break;
        if (search_.clock_.NowMs() >= search_.softDeadlineMs_.load(std::memory_order_relaxed)) break;
    }
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
    const std::size_t lines = std::min<std::size_t>(
        static_cast<std::size_t>(std::max(search_.limits_.MultiPv, search_.handicap_.Candidates)), rootMoves_.size());
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

int SearchWorker::SearchRootWindow(int depth, int previous) {
    int delta = 18;
    int alpha = -InfiniteValue;
    int beta = InfiniteValue;
    if (depth >= 5) {
        alpha = std::max(previous - delta, -InfiniteValue);
        beta = std::min(previous + delta, InfiniteValue);
    }
    while (true) {
        const int value = SearchNode(search_.root_.Position, alpha, beta, depth, 0, false);
        // Moves that failed keep -infinity, so the stable sort leaves their old order alone.
        std::stable_sort(rootMoves_.begin() + static_cast<std::ptrdiff_t>(lineIndex_), rootMoves_.end(),
                         [](const RootMove& a, const RootMove& b) { return a.Value > b.Value; });
        if (stopped_) return value;
        if (value <= alpha) {
            beta = (alpha + beta) / 2;
            alpha = std::max(value - delta, -InfiniteValue);
        } else if (value >= beta) {
            beta = std::min(value + delta, InfiniteValue);
        } else {
            return value;
        }
        delta += delta;
        if (delta > 1000) {
            alpha = -InfiniteValue;
            beta = InfiniteValue;
        }
    }
}

void SearchWorker::Report(int index) const {
    if (!search_.info_) return;
    const RootMove& root = rootMoves_[static_cast<std::size_t>(index)];
    SearchInfo info;
    info.Line = {root.Value, rootDepth_, root.SelectiveDepth, root.Line};
    info.MultiPvIndex = index;
    info.Nodes = search_.Nodes();
    info.ElapsedMs = search_.clock_.NowMs() - search_.startMs_;
    info.HashPermille = search_.table_.FilledPermille();
    search_.info_(info);
}

bool SearchWorker::CountNodeAndCheckStop() {
    const std::uint64_t nodes = nodes_.load(std::memory_order_relaxed) + 1;
    nodes_.store(nodes, std::memory_order_relaxed);
    // The first iteration always completes, so that there is a searched move to play.
    if (completedDepth_ == 0) return false;
    const SearchLimits& limits = search_.limits_;
    if (index_ == 0 && limits.Nodes != 0 && (search_.workers_.size() == 1 || nodes % StopCheckNodes == 0) &&
        search_.Nodes() >= limits.Nodes)
        search_.Stop();
    if (index_ == 0 && search_.handicap_.Nodes != 0 && nodes >= search_.handicap_.Nodes) search_.Stop();
    if (index_ == 0 && nodes % StopCheckNodes == 0 && search_.OutOfTime()) search_.Stop();
    if (search_.stop_.load(std::memory_order_relaxed)) stopped_ = true;
    return stopped_;
}

/// Fifty moves, bare kings, or a position seen before: once within the search, twice in the game.
bool SearchWorker::IsDraw(const Board& board, int ply) const {
    if (board.InsufficientMaterial()) return true;
    const int clock = board.HalfmoveClock();
    if (clock >= 100 && !(board.InCheck() && CountMoves(board) == 0)) return true;
    const std::size_t here = keys_.size() - 1;
    const Key key = keys_.back();
    int seen = 0;
    for (std::size_t back = 4; back <= static_cast<std::size_t>(clock) && back <= here; back += 2) {
        if (keys_[here - back] != key) continue;
        if (static_cast<std::size_t>(ply) > back || ++seen == 2) return true;
    }
    return false;
}

void SearchWorker::UpdateLine(int ply, Move move) {
    PlyState& state = stack_[ply];
    const PlyState& next = stack_[ply + 1];
    state.Line[0] = move;
    std::copy(next.Line, next.Line + next.LineLength, state.Line + 1);
    state.LineLength = std::min(next.LineLength + 1, MaxPly - 1);
}

void SearchWorker::RewardQuiet(const Board& board, int ply, Move best, const Move* tried, int triedCount, int depth) {
    PlyState& state = stack_[ply];
    if (state.Killers[0] != best) {
        state.Killers[1] = state.Killers[0];
        state.Killers[0] = best;
    }
    const int bonus = std::min(16 * depth * depth + 32 * depth, 1600);
    auto& quiet = history_.Quiet[board.SideToMove()];
    quiet[best.From()][best.To()].Add(bonus);
    for (int i = 0; i < triedCount; ++i) quiet[tried[i].From()][tried[i].To()].Add(-bonus);
}

int SearchWorker::SearchNode(const Board& board, int alpha, int beta, int depth, int ply, bool cutNode) {
    const bool root = ply == 0;
    const bool pv = beta - alpha > 1;
    PlyState& state = stack_[ply];
    state.LineLength = 0;
    if (depth <= 0) return Quiesce(board, alpha, beta, ply);
    if (CountNodeAndCheckStop()) return 0;
    keys_.push_back(board.PositionKey());
    struct KeyGuard {
        std::vector<Key>& Keys;
        ~KeyGuard() { Keys.pop_back(); }
    } guard{keys_};
    selectiveDepth_ = std::max(selectiveDepth_, ply + 1);

    const bool inCheck = board.InCheck();
    if (!root) {
        if (IsDraw(board, ply)) return DrawValue;
        if (ply >= MaxPly - 1) return inCheck ? DrawValue : evaluation_.Evaluate(board);
        // No line from here can be better than a mate at the next ply, or worse than being mated now.
        alpha = std::max(alpha, -MateValue + ply);
        beta = std::min(beta, MateValue - ply - 1);
        if (alpha >= beta) return alpha;
    }

    TableEntry entry;
    const bool found = search_.table_.Probe(board.PositionKey(), entry);
    const int tableValue = found ? ValueFromTable(entry.Value, ply) : NoValue;
    if (found && !pv && entry.Depth >= depth && tableValue != NoValue && board.HalfmoveClock() < 90) {
        if (entry.Kind == Bound::Exact || (entry.Kind == Bound::Lower && tableValue >= beta) ||
            (entry.Kind == Bound::Upper && tableValue <= alpha))
            return tableValue;
    }
    const Move tableMove = root ? rootMoves_[lineIndex_].First : found ? entry.Best : Move{};

    int staticEval = NoValue;
    if (!inCheck) staticEval = found && entry.StaticEval != NoValue ? entry.StaticEval : evaluation_.Evaluate(board);
    state.StaticEval = staticEval;
    const bool improving =
        !inCheck && ply >= 2 && stack_[ply - 2].StaticEval != NoValue && staticEval > stack_[ply - 2].StaticEval;

    const bool afterNull = !root && !stack_[ply - 1].Current;
    if (!pv && !inCheck && std::abs(beta) < MateInMaxPly) {
        // So far above the window that a quiet position will hardly fall below it.
        if (depth <= 6 && staticEval - 80 * (depth - improving) >= beta) return staticEval;
        // Even passing the turn keeps the value up: skip, unless only pawns are left (zugzwang).
        if (depth >= 3 && staticEval >= beta && !afterNull && board.HasPieces(board.SideToMove())) {
            const int reduction = 3 + depth / 4 + std::min((staticEval - beta) / 200, 3);
            Board next = board;
            next.MakeNull();
            state.Current = Move{};
            const int value = -SearchNode(next, -beta, -beta + 1, depth - reduction, ply + 1, !cutNode);
            if (stopped_) return 0;
            if (value >= beta) return value >= MateInMaxPly ? beta : value;
        }
    }

    MovePicker picker(board, history_, tableMove, state.Killers);
    int bestValue = -InfiniteValue;
    Move bestMove;
    int moveCount = 0;
    Move triedQuiets[64];
    int triedCount = 0;
    const int alphaBefore = alpha;

    while (const Move move = picker.Next()) {
        RootMove* rootMove = nullptr;
        if (root) {
            const auto begin = rootMoves_.begin() + static_cast<std::ptrdiff_t>(lineIndex_);
            const auto it =
                std::find_if(begin, rootMoves_.end(), [move](const RootMove& r) { return r.First == move; });
            if (it == rootMoves_.end()) continue;
            rootMove = &*it;
        }
        ++moveCount;
        const bool noisy = board.IsNoisy(move);
        if (!root && bestValue > -MateInMaxPly && !inCheck && !noisy) {
            // Late quiet moves near the leaves of a position that is no better than expected.
            if (depth <= 5 && moveCount > 4 + depth * depth) {
                picker.SkipQuiets();
                continue;
            }
            if (depth <= 5 && staticEval + 100 + 90 * depth <= alpha) {
                picker.SkipQuiets();
                continue;
            }
        }

        Board next = board;
        next.Make(move);
        search_.table_.Prefetch(next.PositionKey());
        state.Current = move;
        const int newDepth = depth - 1 + (next.InCheck() ? 1 : 0);
        int value = 0;
        bool full = true;
        if (depth >= 3 && moveCount > 1 + root && !noisy) {
            int reduction = Reductions[static_cast<std::size_t>(std::min(depth, 63))]
                                      [static_cast<std::size_t>(std::min(moveCount, 63))];
            reduction += cutNode;
            reduction -= pv;
            reduction -= next.InCheck();
            reduction += !improving;
            reduction -= history_.Quiet[board.SideToMove()][move.From()][move.To()].Value() / 3000;
            reduction = std::clamp(reduction, 0, newDepth - 1);
            value = -SearchNode(next, -alpha - 1, -alpha, newDepth - reduction, ply + 1, true);
            full = value > alpha && reduction > 0;
        } else {
            full = !pv || moveCount > 1;
        }
        if (full && !(pv && moveCount == 1)) value = -SearchNode(next, -alpha - 1, -alpha, newDepth, ply + 1, !cutNode);
        if (pv && (moveCount == 1 || value > alpha)) value = -SearchNode(next, -beta, -alpha, newDepth, ply + 1, false);
        if (stopped_) return 0;

        if (root) {
            if (moveCount == 1 || value > alpha) {
                rootMove->Value = value;
                rootMove->SelectiveDepth = selectiveDepth_;
                rootMove->Line.assign(1, move);
                const PlyState& child = stack_[1];
                rootMove->Line.insert(rootMove->Line.end(), child.Line, child.Line + child.LineLength);
            } else {
                rootMove->Value = -InfiniteValue;
            }
        }
        if (value > bestValue) {
            bestValue = value;
            if (value > alpha) {
                bestMove = move;
                if (pv) UpdateLine(ply, move);
                if (value >= beta) break;
                alpha = value;
            }
        }
        if (!noisy && move != bestMove && triedCount < 64) triedQuiets[triedCount++] = move;
    }

    if (moveCount == 0) return inCheck ? -MateValue + ply : DrawValue;
    if (bestValue >= beta && !board.IsNoisy(bestMove))
        RewardQuiet(board, ply, bestMove, triedQuiets, triedCount, depth);
    if (bestValue >= beta && board.IsNoisy(bestMove)) {
        const PieceKind captured = bestMove.Kind() == MoveKind::EnPassant ? Pawn : KindOf(board.At(bestMove.To()));
        history_.Capture[board.At(bestMove.From())][bestMove.To()][captured].Add(std::min(16 * depth * depth, 1200));
    }

    if (!root || lineIndex_ == 0) {
        const Bound bound = bestValue >= beta ? Bound::Lower : bestValue > alphaBefore ? Bound::Exact : Bound::Upper;
        search_.table_.Store(board.PositionKey(),
                             {bestMove, ValueToTable(bestValue, ply), staticEval, depth, bound, pv});
    }
    return bestValue;
}

int SearchWorker::Quiesce(const Board& board, int alpha, int beta, int ply) {
    PlyState& state = stack_[ply];
    state.LineLength = 0;
    if (CountNodeAndCheckStop()) return 0;
    selectiveDepth_ = std::max(selectiveDepth_, ply + 1);
    const bool pv = beta - alpha > 1;
    const bool inCheck = board.InCheck();
    if (board.InsufficientMaterial() || board.HalfmoveClock() >= 100) return DrawValue;
    if (ply >= MaxPly - 1) return inCheck ? DrawValue : evaluation_.Evaluate(board);

    TableEntry entry;
    const bool found = search_.table_.Probe(board.PositionKey(), entry);
    const int tableValue = found ? ValueFromTable(entry.Value, ply) : NoValue;
    if (found && !pv && tableValue != NoValue &&
        (entry.Kind == Bound::Exact || (entry.Kind == Bound::Lower && tableValue >= beta) ||
         (entry.Kind == Bound::Upper && tableValue <= alpha)))
        return tableValue;

    int bestValue = -MateValue + ply;
    int staticEval = NoValue;
    if (!inCheck) {
        staticEval = found && entry.StaticEval != NoValue ? entry.StaticEval : evaluation_.Evaluate(board);
        bestValue = staticEval;
        if (bestValue >= beta) return bestValue;
        alpha = std::max(alpha, bestValue);
    }

    MovePicker picker(board, history_, found ? entry.Best : Move{}, 0);
    Move bestMove;
    const int alphaBefore = alpha;
    while (const Move move = picker.Next()) {
        if (!inCheck && bestValue > -MateInMaxPly && !move.IsPromotion()) {
            // Not even winning the piece for nothing would help.
            const PieceKind captured = move.Kind() == MoveKind::EnPassant ? Pawn : KindOf(board.At(move.To()));
            if (staticEval + ExchangeValue[captured] + 200 <= alpha) continue;
        }
        Board next = board;
        next.Make(move);
        search_.table_.Prefetch(next.PositionKey());
        const int value = -Quiesce(next, -beta, -alpha, ply + 1);
        if (stopped_) return 0;
        if (value > bestValue) {
            bestValue = value;
            if (value > alpha) {
                bestMove = move;
                if (pv) UpdateLine(ply, move);
                if (value >= beta) break;
                alpha = value;
            }
        }
    }
    const Bound bound = bestValue >= beta ? Bound::Lower : bestValue > alphaBefore ? Bound::Exact : Bound::Upper;
    search_.table_.Store(board.PositionKey(), {bestMove, ValueToTable(bestValue, ply), staticEval, 0, bound, pv});
    return bestValue;
}

} // namespace quarnel::engine
