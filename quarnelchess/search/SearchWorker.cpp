#include "quarnelchess/search/SearchWorker.h"

#include "quarnelchess/search/MovePicker.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quarnel::engine {
namespace {

constexpr int DrawValue = 0;
constexpr std::uint64_t StopCheckNodes = 512; // a power of two
constexpr std::uint64_t FirstIterationNodes = 20000;

/// Late moves are searched shallower, the more so the deeper the node and the later the move.
struct ReductionTable {
    std::uint8_t Quiet[64][64];
    std::uint8_t Noisy[64][64];
    ReductionTable() : Quiet{}, Noisy{} {
        for (int depth = 1; depth < 64; ++depth) {
            for (int number = 1; number < 64; ++number) {
                const double product = std::log(depth) * std::log(number);
                Quiet[depth][number] = static_cast<std::uint8_t>(0.9 + product / 2.1);
                Noisy[depth][number] = static_cast<std::uint8_t>(0.2 + product / 3.6);
            }
        }
    }
    int Of(bool noisy, int depth, int number) const {
        return (noisy ? Noisy : Quiet)[depth < 64 ? depth : 63][number < 64 ? number : 63];
    }
};
const ReductionTable Reductions;

PieceKind CapturedKind(const Board& board, Move move) {
    return move.Kind() == MoveKind::EnPassant ? Pawn : KindOf(board.At(move.To()));
}

/// Does what the table knows decide the node without a search?
bool Cuts(const TableEntry& entry, int tableValue, int alpha, int beta) {
    if (tableValue == NoValue) return false;
    return entry.Kind == Bound::Exact || (entry.Kind == Bound::Lower && tableValue >= beta) ||
           (entry.Kind == Bound::Upper && tableValue <= alpha);
}

int HistoryBonus(int depth) {
    return std::min(14 * depth * depth + 90 * depth, 1700);
}

} // namespace

SearchWorker::SearchWorker(Search& search, int index) : search_(search), index_(index) {}

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
        state.Extensions = 0;
        state.LineLength = 0;
    }
    keys_ = search_.root_.Earlier;
    gameKeys_ = keys_.size();
    keys_.resize(gameKeys_ + MaxPly + 4);

    rootMoves_.clear();
    MoveBuffer moves;
    GenerateMoves(search_.root_.Position, moves);
    const auto& only = search_.limits_.OnlyMoves;
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
    const int last = std::min({search_.limits_.Depth, search_.handicap_.Depth, MaxPly - 2});
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
    if (search_.limits_.Infinite || search_.pondering_.load(std::memory_order_relaxed)) return false;
    if (rootMoves_.size() == 1 && search_.HasDeadline() && depth >= 4) return true;
    if (MateIsProven(depth) && search_.limits_.MultiPv == 1) return true;
    return search_.SoftTimeIsUp(stability_, rootMoves_[0].PreviousValue - rootMoves_[0].Value);
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
    const int wanted = std::max(search_.limits_.MultiPv, search_.handicap_.Candidates);
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
    int delta = 14;
    int alpha = -InfiniteValue;
    int beta = InfiniteValue;
    if (depth >= 5 && previous != -InfiniteValue) {
        alpha = std::max(previous - delta, -InfiniteValue);
        beta = std::min(previous + delta, InfiniteValue);
    }
    int failedHigh = 0;
    while (true) {
        const int value = SearchNode(search_.root_.Position, alpha, beta, std::max(1, depth - failedHigh), 0, false);
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
            if (failedHigh < 2 && std::abs(value) < MateInMaxPly) ++failedHigh;
        } else {
            return;
        }
        delta += delta * 2 / 3;
        if (delta > 600) {
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

// --- Small steps of a node ------------------------------------------------------------------------

bool SearchWorker::CountNodeAndCheckStop() {
    const std::uint64_t nodes = nodes_.load(std::memory_order_relaxed) + 1;
    nodes_.store(nodes, std::memory_order_relaxed);
    // The first iteration completes, so that there is a searched move to play, unless the position is so wild that
    // this would take long.
    if (completedDepth_ == 0 && nodes < FirstIterationNodes) return false;
    if (index_ == 0) {
        const std::uint64_t limit = search_.limits_.Nodes;
        const bool checkTime = nodes % StopCheckNodes == 0;
        if (limit != 0 && (search_.workers_.size() == 1 ? nodes >= limit : checkTime && search_.Nodes() >= limit))
            search_.ReachLimit();
        if (search_.handicap_.Nodes != 0 && nodes >= search_.handicap_.Nodes) search_.ReachLimit();
        if (checkTime && search_.OutOfTime()) search_.ReachLimit();
    }
    if (search_.IsEnding()) stopped_ = true;
    return stopped_;
}

/// Fifty moves, bare kings, or a position seen before: once within the search, twice in the game.
bool SearchWorker::IsDraw(const Board& board, int ply) const {
    if (board.InsufficientMaterial()) return true;
    const int clock = board.HalfmoveClock();
    if (clock >= 100 && !(board.InCheck() && CountMoves(board) == 0)) return true;
    const std::size_t here = gameKeys_ + static_cast<std::size_t>(ply);
    const std::size_t reach = std::min(static_cast<std::size_t>(clock), here);
    int seen = 0;
    for (std::size_t back = 4; back <= reach; back += 2) {
        if (keys_[here - back] != board.PositionKey()) continue;
        if (static_cast<std::size_t>(ply) > back || ++seen == 2) return true;
    }
    return false;
}

int SearchWorker::CorrectedEval(const Board& board, int rawEval) const {
    return std::clamp(rawEval + history_.Correction(board), -MateInMaxPly + 1, MateInMaxPly - 1);
}

void SearchWorker::PlayInto(Board& next, const Board& board, Move move, int ply) {
    next.Make(move);
    search_.table_.Prefetch(next.PositionKey());
    PlyState& state = At(ply);
    state.Current = move;
    state.CurrentIsQuiet = !board.IsNoisy(move);
    state.Answers = &history_.After(board.At(move.From()), move.To());
}

int SearchWorker::QuietScore(const Board& board, Move move, int ply) {
    const Piece piece = board.At(move.From());
    return 2 * history_.Quiet(board.SideToMove(), move).Value() + (*At(ply - 1).Answers)[piece][move.To()].Value() +
           (*At(ply - 2).Answers)[piece][move.To()].Value();
}

void SearchWorker::UpdateLine(int ply, Move move) {
    PlyState& state = At(ply);
    const PlyState& next = At(ply + 1);
    state.Line[0] = move;
    std::copy(next.Line, next.Line + next.LineLength, state.Line + 1);
    state.LineLength = std::min(next.LineLength + 1, MaxPly - 1);
}

void SearchWorker::AddContinuation(Piece piece, Square to, int ply, int bonus) {
    for (const int back : {1, 2, 4})
        if (At(ply - back).Current) (*At(ply - back).Answers)[piece][to].Add(bonus);
}

void SearchWorker::RewardCutoff(const Board& board, int ply, Move best, const TriedMoves& quiets,
                                const TriedMoves& noisies, int depth) {
    const int bonus = HistoryBonus(depth);
    const auto noisy = [&](Move move, int change) {
        history_.Capture(board.At(move.From()), move.To(), CapturedKind(board, move)).Add(change);
    };
    if (board.IsNoisy(best)) {
        noisy(best, bonus);
    } else {
        PlyState& state = At(ply);
        if (state.Killers[0] != best) {
            state.Killers[1] = state.Killers[0];
            state.Killers[0] = best;
        }
        history_.Quiet(board.SideToMove(), best).Add(bonus);
        AddContinuation(board.At(best.From()), best.To(), ply, bonus);
        for (int i = 0; i < quiets.Count; ++i) {
            const Move move = quiets.Moves[i];
            history_.Quiet(board.SideToMove(), move).Add(-bonus);
            AddContinuation(board.At(move.From()), move.To(), ply, -bonus);
        }
    }
    for (int i = 0; i < noisies.Count; ++i) noisy(noisies.Moves[i], -bonus);
}

/// Nothing helps here: the quiet move that led here was a good one.
void SearchWorker::RewardRefutation(const Board& board, int ply, int depth) {
    const PlyState& before = At(ply - 1);
    if (!before.Current || !before.CurrentIsQuiet || before.Current.Kind() == MoveKind::Castling) return;
    const int bonus = HistoryBonus(depth) / 2;
    history_.Quiet(~board.SideToMove(), before.Current).Add(bonus);
    AddContinuation(board.At(before.Current.To()), before.Current.To(), ply - 1, bonus);
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

// --- The tree -------------------------------------------------------------------------------------

/// Is the table's move the only good one? Then it deserves a deeper look. `cutValue` is set when other
/// moves, too, reach beta: the node can be cut.
int SearchWorker::SingularExtension(const Board& board, const TableEntry& entry, int tableValue, int beta, int depth,
                                    int ply, bool cutNode, bool pv, int& cutValue) {
    PlyState& state = At(ply);
    const int margin = tableValue - depth * (entry.WasPv && !pv ? 3 : 2);
    state.Excluded = entry.Best;
    const int value = SearchNode(board, margin - 1, margin, (depth - 1) / 2, ply, cutNode);
    state.Excluded = Move{};
    if (value < margin) {
        if (!pv && value < margin - 18 && state.Extensions < 6) {
            ++state.Extensions;
            return 2;
        }
        return 1;
    }
    if (margin >= beta) {
        cutValue = margin;
        return 0;
    }
    if (tableValue >= beta) return -2;
    return cutNode ? -1 : 0;
}

int SearchWorker::SearchNode(const Board& board, int alpha, int beta, int depth, int ply, bool cutNode) {
    if (depth <= 0) return Quiesce(board, alpha, beta, ply);
    const bool root = ply == 0;
    const bool pv = beta - alpha > 1;
    PlyState& state = At(ply);
    state.LineLength = 0;
    if (CountNodeAndCheckStop()) return 0;
    keys_[gameKeys_ + static_cast<std::size_t>(ply)] = board.PositionKey();
    if (pv) selectiveDepth_ = std::max(selectiveDepth_, ply + 1);

    const bool inCheck = board.InCheck();
    if (!root) {
        if (IsDraw(board, ply)) return DrawValue;
        if (ply >= MaxPly - 1) return inCheck ? DrawValue : evaluation_.Evaluate(board);
        // No line from here can be better than a mate at the next ply, or worse than being mated now.
        alpha = std::max(alpha, -MateValue + ply);
        beta = std::min(beta, MateValue - ply - 1);
        if (alpha >= beta) return alpha;
        state.Extensions = At(ply - 1).Extensions;
    }
    At(ply + 1).Killers[0] = At(ply + 1).Killers[1] = Move{};

    const Move excluded = state.Excluded;
    TableEntry entry;
    const bool found = !excluded && search_.table_.Probe(board.PositionKey(), entry);
    const int tableValue = found ? ValueFromTable(entry.Value, ply) : NoValue;
    const Move tableMove = root ? rootMoves_[lineIndex_].First : found ? entry.Best : Move{};
    const bool wasPv = pv || (found && entry.WasPv);
    if (found && !pv && entry.Depth >= depth && board.HalfmoveClock() < 90 && Cuts(entry, tableValue, alpha, beta))
        return tableValue;

    // Static evaluation, corrected by experience and by what the table knows.
    int rawEval = NoValue;
    int eval = NoValue;
    if (!inCheck) {
        if (excluded) {
            eval = state.StaticEval;
        } else {
            rawEval = found && entry.StaticEval != NoValue ? entry.StaticEval : evaluation_.Evaluate(board);
            eval = state.StaticEval = CorrectedEval(board, rawEval);
            if (found && tableValue != NoValue &&
                (entry.Kind == Bound::Exact || (entry.Kind == Bound::Lower && tableValue > eval) ||
                 (entry.Kind == Bound::Upper && tableValue < eval)))
                eval = tableValue;
        }
    } else {
        state.StaticEval = NoValue;
    }
    const auto betterThan = [&](int back) {
        return At(ply - back).StaticEval != NoValue && state.StaticEval > At(ply - back).StaticEval;
    };
    const bool improving =
        !inCheck && (ply >= 2 && At(ply - 2).StaticEval != NoValue ? betterThan(2) : ply >= 4 && betterThan(4));

    if (!pv && !inCheck && !excluded && std::abs(beta) < MateInMaxPly) {
        // So far below that only tactics could help: look at those alone.
        if (depth <= 3 && eval + 220 + 190 * depth <= alpha) {
            const int value = Quiesce(board, alpha, alpha + 1, ply);
            if (value <= alpha) return value;
        }
        // So far above the window that a quiet position will hardly fall below it.
        if (depth <= 8 && eval - 75 * (depth - improving) >= beta && eval < MateInMaxPly) return (eval + beta) / 2;
        // Even passing the turn keeps the value up. With pawns alone passing may be the best move of all.
        if (depth >= 3 && eval >= beta && state.StaticEval >= beta - 18 * depth + 140 && At(ply - 1).Current &&
            ply >= nullMoveFromPly_ && board.HasPieces(board.SideToMove())) {
            const int reduction = 3 + depth / 3 + std::min((eval - beta) / 180, 3);
            Board next = board;
            next.MakeNull();
            state.Current = Move{};
            state.Answers = &history_.AfterNothing();
            int value = -SearchNode(next, -beta, -beta + 1, depth - reduction, ply + 1, !cutNode);
            if (stopped_) return 0;
            if (value >= beta) {
                value = std::min(value, MateInMaxPly - 1);
                if (depth < 14 || nullMoveFromPly_ != 0) return value;
                // Deep down a wrong pass costs more: make sure without passing.
                nullMoveFromPly_ = ply + 3 * (depth - reduction) / 4;
                const int verified = SearchNode(board, beta - 1, beta, depth - reduction, ply, false);
                nullMoveFromPly_ = 0;
                if (stopped_) return 0;
                if (verified >= beta) return value;
            }
        }
        // A capture that even a shallow search sees far above the window.
        const int probeBeta = beta + 190 - 50 * improving;
        if (depth >= 5 && !(found && tableValue != NoValue && entry.Depth >= depth - 3 && tableValue < probeBeta)) {
            MovePicker picker(board, history_, tableMove, std::max(0, probeBeta - state.StaticEval));
            while (const Move move = picker.Next()) {
                Board next = board;
                PlayInto(next, board, move, ply);
                int value = -Quiesce(next, -probeBeta, -probeBeta + 1, ply + 1);
                if (value >= probeBeta)
                    value = -SearchNode(next, -probeBeta, -probeBeta + 1, depth - 4, ply + 1, !cutNode);
                if (stopped_) return 0;
                if (value >= probeBeta) {
                    search_.table_.Store(board.PositionKey(),
                                         {move, ValueToTable(value, ply), rawEval, depth - 3, Bound::Lower, wasPv});
                    return value;
                }
            }
        }
    }

    // Without a known move a full search here orders badly: a shallower one finds that move first.
    if (depth >= 4 && !tableMove && !excluded && (pv || cutNode)) --depth;

    Continuation* const answers[3] = {At(ply - 1).Answers, At(ply - 2).Answers, At(ply - 4).Answers};
    MovePicker picker(board, history_, tableMove, state.Killers, answers);
    int bestValue = -InfiniteValue;
    Move bestMove;
    int moveCount = 0;
    int overlooked = 0;
    TriedMoves triedQuiets;
    TriedMoves triedNoisies;
    const int alphaBefore = alpha;
    const int extensionsBefore = state.Extensions;

    while (const Move move = picker.Next()) {
        if (move == excluded) continue;
        if (root && std::none_of(rootMoves_.begin() + static_cast<std::ptrdiff_t>(lineIndex_), rootMoves_.end(),
                                 [move](const RootMove& r) { return r.First == move; }))
            continue;
        if (!root && Overlooks(search_.handicap_, board, move, search_.occasion_)) {
            ++overlooked;
            continue;
        }
        ++moveCount;
        const bool noisy = board.IsNoisy(move);
        const int quietScore = noisy ? 0 : QuietScore(board, move, ply);

        if (!root && bestValue > -MateInMaxPly && board.HasPieces(board.SideToMove())) {
            const int reduced = std::max(depth - Reductions.Of(noisy, depth, moveCount), 0);
            if (!noisy) {
                // Late quiet moves of a node that is not doing well; but a check may be mate.
                const bool late = moveCount > (4 + depth * depth) / (improving ? 1 : 2);
                const bool futile = !inCheck && reduced <= 8 && state.StaticEval + 90 + 85 * reduced <= alpha;
                if ((late || futile) && !board.GivesCheck(move)) continue;
                if (reduced <= 4 && quietScore < -4000 * reduced - 3000) continue;
                if (reduced <= 8 && !board.ExchangeGains(move, -24 * reduced * reduced)) continue;
            } else if (depth <= 8 && !board.ExchangeGains(move, -95 * depth)) {
                continue;
            }
        }

        int extension = 0;
        int cutValue = NoValue;
        state.Extensions = extensionsBefore;
        if (!root && depth >= 7 && move == tableMove && !excluded && found && entry.Depth >= depth - 3 &&
            entry.Kind != Bound::Upper && std::abs(tableValue) < MateInMaxPly && ply < 2 * rootDepth_) {
            extension = SingularExtension(board, entry, tableValue, beta, depth, ply, cutNode, pv, cutValue);
            if (stopped_) return 0;
            if (cutValue != NoValue) return cutValue;
        }

        Board next = board;
        PlayInto(next, board, move, ply);
        const bool givesCheck = next.InCheck();
        if (extension == 0 && givesCheck && depth <= 10 && ply < 2 * rootDepth_ && board.ExchangeGains(move, 0))
            extension = 1;
        const int newDepth = depth - 1 + extension;

        int value = 0;
        if (depth >= 2 && moveCount > 1 + (root ? 1 : 0)) {
            int reduction = Reductions.Of(noisy, depth, moveCount);
            reduction += cutNode ? 1 : 0;
            reduction += !improving ? 1 : 0;
            reduction -= wasPv ? 1 : 0;
            reduction -= givesCheck ? 1 : 0;
            reduction -= move == state.Killers[0] || move == state.Killers[1] ? 1 : 0;
            reduction += !noisy && tableMove && board.IsNoisy(tableMove) ? 1 : 0;
            if (!noisy) reduction -= quietScore / 9000;
            const int shallow = std::clamp(newDepth - reduction, 1, std::max(newDepth, 1));
            value = -SearchNode(next, -alpha - 1, -alpha, shallow, ply + 1, true);
            if (value > alpha && shallow < newDepth) {
                const int again = newDepth + (value > bestValue + 60 ? 1 : 0) - (value < bestValue + 8 ? 1 : 0);
                if (again > shallow) value = -SearchNode(next, -alpha - 1, -alpha, again, ply + 1, !cutNode);
            }
        } else if (!pv || moveCount > 1) {
            value = -SearchNode(next, -alpha - 1, -alpha, newDepth, ply + 1, !cutNode);
        }
        if (pv && (moveCount == 1 || value > alpha)) value = -SearchNode(next, -beta, -alpha, newDepth, ply + 1, false);
        if (stopped_) return 0;

        if (root) RememberRootMove(move, moveCount, value, alpha);
        if (value > bestValue) {
            bestValue = value;
            if (value > alpha) {
                bestMove = move;
                if (pv) UpdateLine(ply, move);
                if (value >= beta) break;
                alpha = value;
            }
        }
        if (move != bestMove) (noisy ? triedNoisies : triedQuiets).Add(move);
    }
    state.Extensions = extensionsBefore;

    if (moveCount == 0 && overlooked > 0) return evaluation_.Evaluate(board);
    if (moveCount == 0) return excluded ? alpha : inCheck ? -MateValue + ply : DrawValue;
    if (bestValue >= beta) RewardCutoff(board, ply, bestMove, triedQuiets, triedNoisies, depth);
    if (excluded) return bestValue;
    if (!root && bestValue <= alphaBefore) RewardRefutation(board, ply, depth);

    const Bound bound = bestValue >= beta ? Bound::Lower : bestValue > alphaBefore ? Bound::Exact : Bound::Upper;
    if (!root || lineIndex_ == 0)
        search_.table_.Store(board.PositionKey(),
                             {bestMove, ValueToTable(bestValue, ply), rawEval, depth, bound, wasPv});
    // Learn from quiet outcomes where the evaluation was off, unless the bound says nothing about it.
    const bool tells = bound == Bound::Exact || (bound == Bound::Lower && bestValue > state.StaticEval) ||
                       (bound == Bound::Upper && bestValue < state.StaticEval);
    if (!inCheck && tells && !(bestMove && board.IsNoisy(bestMove)) && std::abs(bestValue) < MateInMaxPly)
        history_.Correct(board, depth, bestValue - state.StaticEval);
    return bestValue;
}

int SearchWorker::Quiesce(const Board& board, int alpha, int beta, int ply) {
    PlyState& state = At(ply);
    state.LineLength = 0;
    if (CountNodeAndCheckStop()) return 0;
    const bool pv = beta - alpha > 1;
    if (pv) selectiveDepth_ = std::max(selectiveDepth_, ply + 1);
    const bool inCheck = board.InCheck();
    if (board.InsufficientMaterial() || board.HalfmoveClock() >= 100) return DrawValue;
    if (ply >= MaxPly - 1) return inCheck ? DrawValue : evaluation_.Evaluate(board);

    TableEntry entry;
    const bool found = search_.table_.Probe(board.PositionKey(), entry);
    const int tableValue = found ? ValueFromTable(entry.Value, ply) : NoValue;
    if (found && !pv && Cuts(entry, tableValue, alpha, beta)) return tableValue;

    int bestValue = -MateValue + ply;
    int rawEval = NoValue;
    int eval = NoValue;
    if (!inCheck) {
        rawEval = found && entry.StaticEval != NoValue ? entry.StaticEval : evaluation_.Evaluate(board);
        eval = CorrectedEval(board, rawEval);
        bestValue = eval;
        if (found && tableValue != NoValue &&
            (entry.Kind == Bound::Exact || (entry.Kind == Bound::Lower && tableValue > eval) ||
             (entry.Kind == Bound::Upper && tableValue < eval)))
            bestValue = tableValue;
        if (bestValue >= beta) return bestValue;
        alpha = std::max(alpha, bestValue);
    }

    MovePicker picker(board, history_, found ? entry.Best : Move{}, 0);
    Move bestMove;
    int moveCount = 0;
    while (const Move move = picker.Next()) {
        if (Overlooks(search_.handicap_, board, move, search_.occasion_)) {
            if (inCheck && bestValue <= -MateInMaxPly) bestValue = evaluation_.Evaluate(board);
            continue;
        }
        ++moveCount;
        if (!inCheck && !move.IsPromotion()) {
            // Not even winning the piece for nothing would help.
            const int hope = eval + ExchangeValue[CapturedKind(board, move)] + 180;
            if (hope <= alpha) {
                bestValue = std::max(bestValue, std::min(hope, alpha));
                continue;
            }
        }
        if (inCheck && moveCount > 1 && bestValue > -MateInMaxPly && !board.IsNoisy(move)) break;
        Board next = board;
        PlayInto(next, board, move, ply);
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
    const Bound bound = bestValue >= beta ? Bound::Lower : Bound::Upper;
    search_.table_.Store(board.PositionKey(), {bestMove, ValueToTable(bestValue, ply), rawEval, 0, bound, pv});
    return bestValue;
}

} // namespace quarnel::engine
