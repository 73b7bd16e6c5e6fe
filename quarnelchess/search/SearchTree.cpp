// The tree below the root: SearchNode() walks through the steps of a node in their order, Quiesce() ends the lines.
#include "quarnelchess/board/MoveGen.h"
#include "quarnelchess/search/Margins.h"
#include "quarnelchess/search/MovePicker.h"
#include "quarnelchess/search/SearchWorker.h"

#include <algorithm>
#include <cstdlib>

namespace quarnel::engine {
namespace {

constexpr int DrawValue = 0;

/// Does what the table knows decide the node without a search?
bool Cuts(const TableEntry& entry, int tableValue, int alpha, int beta) {
    if (tableValue == NoValue) return false;
    return entry.Kind == Bound::Exact || (entry.Kind == Bound::Lower && tableValue >= beta) ||
           (entry.Kind == Bound::Upper && tableValue <= alpha);
}

/// Does the table's value tell more than the static one?
bool Betters(const TableEntry& entry, int tableValue, int eval) {
    return tableValue != NoValue && (entry.Kind == Bound::Exact || (entry.Kind == Bound::Lower && tableValue > eval) ||
                                     (entry.Kind == Bound::Upper && tableValue < eval));
}

/// Bare kings and the like, or fifty moves, unless the last of them mates.
bool IsDrawByItself(const Board& board) {
    return board.InsufficientMaterial() ||
           (board.HalfmoveClock() >= 100 && !(board.InCheck() && CountMoves(board) == 0));
}

} // namespace

// --- Small steps ----------------------------------------------------------------------------------

bool SearchWorker::CountNodeAndCheckStop() {
    const std::uint64_t nodes = nodes_.load(std::memory_order_relaxed) + 1;
    nodes_.store(nodes, std::memory_order_relaxed);
    // The first iteration completes, so that there is a searched move to play, unless the position is so wild that
    // this would take long.
    if (completedDepth_ == 0 && nodes < margins::FirstIterationNodes) return false;
    if (index_ == 0) {
        const std::uint64_t limit = task_.Limits.Nodes;
        const bool isCheckTime = nodes % margins::StopCheckNodes == 0;
        if ((limit != 0 && (task_.Threads == 1 ? nodes >= limit : isCheckTime && task_.AllNodes() >= limit)) ||
            (task_.Weakness.Nodes != 0 && nodes >= task_.Weakness.Nodes) || (isCheckTime && task_.OutOfTime()))
            task_.LimitReached.store(true, std::memory_order_relaxed);
    }
    if (task_.IsEnding()) stopped_ = true;
    return stopped_;
}

/// Fifty moves, bare kings, or a position seen before: once within the search, twice in the game.
bool SearchWorker::IsDraw(const Board& board, int ply) const {
    if (IsDrawByItself(board)) return true;
    const int clock = board.HalfmoveClock();
    const std::size_t here = gameKeys_ + static_cast<std::size_t>(ply);
    const std::size_t reach = std::min(static_cast<std::size_t>(clock), here);
    int seen = 0;
    for (std::size_t back = 4; back <= reach; back += 2) {
        if (keys_[here - back] != board.PositionKey()) continue;
        if (static_cast<std::size_t>(ply) > back || ++seen == 2) return true;
    }
    return false;
}

int SearchWorker::CorrectedEval(const Board& board, int ply, int rawEval) const {
    const int faded = rawEval - rawEval * board.HalfmoveClock() / margins::FadeClock;
    return std::clamp(faded + history_.Correction(board, LineCode(ply)), -MateInMaxPly + 1, MateInMaxPly - 1);
}

void SearchWorker::PlayInto(Board& next, const Board& board, Move move, int ply) {
    next.Make(move);
    evaluation_.Played(board, move, ply);
    task_.Table.Prefetch(next.PositionKey());
    PlyState& state = At(ply);
    state.Current = move;
    state.CurrentIsQuiet = !board.IsNoisy(move);
    state.Answers = &history_.After(board.At(move.From()), move.To());
    state.Arrival = static_cast<std::uint32_t>(board.At(move.From()) * 64 + move.To());
}

void SearchWorker::UpdateLine(int ply, Move move) {
    PlyState& state = At(ply);
    const PlyState& next = At(ply + 1);
    state.Line[0] = move;
    std::copy(next.Line, next.Line + next.LineLength, state.Line + 1);
    state.LineLength = std::min(next.LineLength + 1, MaxPly - 1);
}

// --- A node ---------------------------------------------------------------------------------------

int SearchWorker::SearchNode(const Board& board, int alpha, int beta, int depth, int ply, bool cutNode) {
    if (depth <= 0) return Quiesce(board, alpha, beta, ply);
    Node node{board, alpha, beta, depth, ply, cutNode};
    if (const std::optional<int> value = Enter(node)) return *value;
    if (const std::optional<int> value = ProbeTable(node)) return *value;
    SetStaticValue(node);
    CorrectDepth(node);
    if (const std::optional<int> value = CutWithoutMove(node)) return *value;
    // Without a known move a full search here orders badly: a shallower one finds that move first.
    if (node.Depth >= margins::InternalReductionMinDepth && !node.TableMove && !node.Excluded &&
        (node.IsPv || node.IsCutNode))
        --node.Depth;
    return SearchMoves(node);
}

/// Decides the node when the game has ended here, the line is as long as can be, or a mate is nearer than anything
/// that could be found.
std::optional<int> SearchWorker::Enter(Node& node) {
    PlyState& state = At(node.Ply);
    state.LineLength = 0;
    if (CountNodeAndCheckStop()) return 0;
    keys_[gameKeys_ + static_cast<std::size_t>(node.Ply)] = node.Position.PositionKey();
    if (node.IsPv) selectiveDepth_ = std::max(selectiveDepth_, node.Ply + 1);
    if (!node.IsRoot) {
        if (IsDraw(node.Position, node.Ply)) return DrawValue;
        if (node.Ply >= MaxPly - 1) return node.InCheck ? DrawValue : evaluation_.Evaluate(node.Position, node.Ply);
        // No line from here can be better than a mate at the next ply, or worse than being mated now.
        node.Alpha = std::max(node.Alpha, -MateValue + node.Ply);
        node.Beta = std::min(node.Beta, MateValue - node.Ply - 1);
        if (node.Alpha >= node.Beta) return node.Alpha;
        state.Extensions = At(node.Ply - 1).Extensions;
    }
    At(node.Ply + 1).Killers[0] = At(node.Ply + 1).Killers[1] = Move{};
    At(node.Ply + 2).Cutoffs = 0;
    state.Reduced = 0;
    node.Excluded = state.Excluded;
    return std::nullopt;
}

std::optional<int> SearchWorker::ProbeTable(Node& node) {
    node.Found = !node.Excluded && task_.Table.Probe(node.Position.PositionKey(), node.Entry);
    if (node.Found) node.TableValue = ValueFromTable(node.Entry.Value, node.Ply);
    node.TableMove = node.IsRoot ? rootMoves_[lineIndex_].First : node.Found ? node.Entry.Best : Move{};
    node.WasPv = node.IsPv || (node.Found && node.Entry.WasPv);
    if (node.Found && !node.IsPv && node.Entry.Depth >= node.Depth &&
        node.Position.HalfmoveClock() <= margins::TableCutMaxClock &&
        Cuts(node.Entry, node.TableValue, node.Alpha, node.Beta)) {
        if (node.TableValue >= node.Beta) RewardTableCut(node);
        return node.TableValue;
    }
    return std::nullopt;
}

/// The evaluation, corrected by experience and by what the table knows. A node that tests a singular move keeps what
/// it found out before.
void SearchWorker::SetStaticValue(Node& node) {
    PlyState& state = At(node.Ply);
    if (node.InCheck) {
        state.StaticEval = NoValue;
        return;
    }
    if (node.Excluded) {
        node.Eval = state.StaticEval;
    } else {
        node.RawEval = node.Found && node.Entry.StaticEval != NoValue ? node.Entry.StaticEval
                                                                      : evaluation_.Evaluate(node.Position, node.Ply);
        node.Eval = state.StaticEval = CorrectedEval(node.Position, node.Ply, node.RawEval);
        if (node.Found && Betters(node.Entry, node.TableValue, node.Eval)) node.Eval = node.TableValue;
    }
    node.IsImproving = IsImproving(node);
    if (!node.Excluded) RewardGain(node);
}

/// The move that led here was reduced before its effect on the value was known. Now it is.
void SearchWorker::CorrectDepth(Node& node) const {
    using namespace margins;
    const PlyState& before = At(node.Ply - 1);
    const int eval = At(node.Ply).StaticEval;
    if (node.IsRoot || node.InCheck || node.Excluded || before.StaticEval == NoValue) return;
    const int loss = eval + before.StaticEval;
    if (before.Reduced >= HindsightDeeperPlies && loss <= 0)
        ++node.Depth;
    else if (before.Reduced >= HindsightShallowerPlies && node.Depth >= 2 && loss > HindsightShallowerCp)
        --node.Depth;
}

/// Better than two plies ago, or than four when there was a check then.
bool SearchWorker::IsImproving(const Node& node) const {
    const int now = At(node.Ply).StaticEval;
    const int before = At(node.Ply - 2).StaticEval;
    if (node.Ply >= 2 && before != NoValue) return now > before;
    const int longBefore = At(node.Ply - 4).StaticEval;
    return node.Ply >= 4 && longBefore != NoValue && now > longBefore;
}

// --- Cuts without a move --------------------------------------------------------------------------

std::optional<int> SearchWorker::CutWithoutMove(const Node& node) {
    using namespace margins;
    if (node.IsPv || node.InCheck || node.Excluded || std::abs(node.Beta) >= MateInMaxPly) return std::nullopt;
    if (const std::optional<int> value = Razor(node)) return value;
    // So far above the window that a quiet position will hardly fall below it.
    const int mayLose = ReverseFutilityPerDepthCp * (node.Depth - node.IsImproving);
    if (node.Depth <= ReverseFutilityMaxDepth && node.Eval - mayLose >= node.Beta && node.Eval < MateInMaxPly)
        return (node.Eval + node.Beta) / 2;
    if (const std::optional<int> value = PassTurn(node)) return value;
    return ProbeCaptures(node);
}

/// So far below that only tactics could help: look at those alone.
std::optional<int> SearchWorker::Razor(const Node& node) {
    using namespace margins;
    if (node.Depth > RazorMaxDepth || node.Eval + RazorBaseCp + RazorPerDepthCp * node.Depth > node.Alpha)
        return std::nullopt;
    const int value = Quiesce(node.Position, node.Alpha, node.Alpha + 1, node.Ply);
    return value <= node.Alpha ? std::optional(value) : std::nullopt;
}

/// Even passing the turn keeps the value up. With pawns alone passing may be the best move of all.
std::optional<int> SearchWorker::PassTurn(const Node& node) {
    using namespace margins;
    const int depth = node.Depth;
    const int ply = node.Ply;
    PlyState& state = At(ply);
    if (depth < NullMoveMinDepth || node.Eval < node.Beta ||
        state.StaticEval < node.Beta - NullMoveEvalPerDepthCp * depth + NullMoveEvalBaseCp || !At(ply - 1).Current ||
        ply < nullMoveFromPly_ || !node.Position.HasPieces(node.Position.SideToMove()))
        return std::nullopt;
    const int reduction = NullMoveReduction + depth / NullMoveDepthDivisor +
                          std::min((node.Eval - node.Beta) / NullMoveEvalDivisorCp, NullMoveMostEvalReduction);
    Board next = node.Position;
    next.MakeNull();
    evaluation_.Passed(ply);
    state.Current = Move{};
    state.Answers = &history_.AfterNothing();
    state.Arrival = 0;
    state.Reduced = 0;
    int value = -SearchNode(next, -node.Beta, -node.Beta + 1, depth - reduction, ply + 1, !node.IsCutNode);
    if (stopped_) return 0;
    if (value < node.Beta) return std::nullopt;
    value = std::min(value, MateInMaxPly - 1);
    if (depth < NullMoveVerifyDepth || nullMoveFromPly_ != 0) return value;
    // Deep down a wrong pass costs more: make sure without passing.
    nullMoveFromPly_ = ply + NullMoveVerifyQuarters * (depth - reduction) / 4;
    const int verified = SearchNode(node.Position, node.Beta - 1, node.Beta, depth - reduction, ply, false);
    nullMoveFromPly_ = 0;
    if (stopped_) return 0;
    return verified >= node.Beta ? std::optional(value) : std::nullopt;
}

/// A capture that even a shallow search sees far above the window.
std::optional<int> SearchWorker::ProbeCaptures(const Node& node) {
    using namespace margins;
    const int depth = node.Depth;
    const int probeBeta = node.Beta + CaptureProbeMarginCp - CaptureProbeImprovingCp * node.IsImproving;
    const bool isHopeless =
        node.TableValue != NoValue && node.Entry.Depth >= depth - CaptureProbeTrust && node.TableValue < probeBeta;
    if (depth < CaptureProbeMinDepth || isHopeless) return std::nullopt;
    MovePicker picker(node.Position, history_, node.TableMove, std::max(0, probeBeta - At(node.Ply).StaticEval));
    while (const Move move = picker.Next()) {
        Board next = node.Position;
        PlayInto(next, node.Position, move, node.Ply);
        int value = -Quiesce(next, -probeBeta, -probeBeta + 1, node.Ply + 1);
        if (value >= probeBeta)
            value = -SearchNode(next, -probeBeta, -probeBeta + 1, depth - CaptureProbeReduction, node.Ply + 1,
                                !node.IsCutNode);
        if (stopped_) return 0;
        if (value < probeBeta) continue;
        task_.Table.Store(node.Position.PositionKey(), {move, ValueToTable(value, node.Ply), node.RawEval,
                                                        depth - CaptureProbeReduction + 1, Bound::Lower, node.WasPv});
        return value;
    }
    return std::nullopt;
}

// --- The moves of a node --------------------------------------------------------------------------

int SearchWorker::SearchMoves(Node& node) {
    const Board& board = node.Position;
    PlyState& state = At(node.Ply);
    Continuation* const answers[3] = {At(node.Ply - 1).Answers, At(node.Ply - 2).Answers, At(node.Ply - 4).Answers};
    MovePicker picker(board, history_, node.TableMove, state.Killers, answers);
    Progress progress;
    const int alphaBefore = node.Alpha;
    const int extensionsBefore = state.Extensions;

    while (const Move move = picker.Next()) {
        if (IsLeftOut(node, move, progress)) continue;
        ++progress.Count;
        const bool noisy = board.IsNoisy(move);
        const int score = noisy ? history_.Capture(board.At(move.From()), move.To(), board.CapturedKind(move)).Value()
                                : picker.QuietScore();
        NodeMove candidate{move, noisy, score};
        if (MayPrune(node, progress)) {
            if (IsLate(node, progress)) picker.SkipQuiets();
            if (IsPruned(node, candidate, progress)) continue;
        }

        state.Extensions = extensionsBefore;
        if (const std::optional<int> value = ExtendSingular(node, candidate)) return *value;
        Board next = board;
        PlayInto(next, board, move, node.Ply);
        ExtendCheck(node, next, candidate);
        const std::uint64_t nodesBefore = nodes_.load(std::memory_order_relaxed);
        const int value = SearchMove(node, next, candidate, progress);
        if (node.IsRoot) CountRootNodes(move, nodes_.load(std::memory_order_relaxed) - nodesBefore);
        if (stopped_) return 0;

        if (node.IsRoot) RememberRootMove(move, progress.Count, value, node.Alpha);
        if (value > progress.BestValue) {
            progress.BestValue = value;
            if (value > node.Alpha) {
                progress.Best = move;
                if (node.IsPv) UpdateLine(node.Ply, move);
                if (value >= node.Beta) break;
                node.Alpha = value;
                // What is left must be better than that, so less is expected of it.
                if (node.Depth > 2 && node.Depth <= margins::RaisedMaxDepth && std::abs(value) < MateInMaxPly)
                    node.Depth = std::max(node.Depth - margins::RaisedReduction, 1);
            }
        }
        if (move != progress.Best) (noisy ? progress.Noisies : progress.Quiets).AddIfRoom(move);
    }
    state.Extensions = extensionsBefore;
    return Conclude(node, progress, alphaBefore);
}

/// Moves that this search is not about, and those that a weaker player does not see.
bool SearchWorker::IsLeftOut(const Node& node, Move move, Progress& progress) const {
    if (move == node.Excluded) return true;
    if (node.IsRoot) return !IsRootMove(move);
    if (!IsOverlooked(node.Position, move)) return false;
    ++progress.Overlooked;
    return true;
}

/// Another move avoids mate at least, and there are pieces to do something with.
bool SearchWorker::MayPrune(const Node& node, const Progress& progress) {
    return !node.IsRoot && progress.BestValue > -MateInMaxPly && node.Position.HasPieces(node.Position.SideToMove());
}

/// So many moves have been seen, half as many where things are not improving, that the quiet ones left are not even
/// looked at, checks among them.
bool SearchWorker::IsLate(const Node& node, const Progress& progress) {
    return progress.Count >= (margins::LateMoveBase + node.Depth * node.Depth) / (node.IsImproving ? 1 : 2);
}

/// Not worth a search.
bool SearchWorker::IsPruned(const Node& node, const NodeMove& candidate, const Progress& progress) const {
    using namespace margins;
    const Board& board = node.Position;
    const int depth = node.Depth;
    if (candidate.IsNoisy) {
        const int hope = At(node.Ply).StaticEval + ExchangeValue[board.CapturedKind(candidate.Played)] +
                         NoisyFutilityBaseCp + NoisyFutilityPerDepthCp * depth;
        const bool isFutile =
            !node.InCheck && depth <= NoisyFutilityMaxDepth && !candidate.Played.IsPromotion() && hope <= node.Alpha;
        if (isFutile && !board.GivesCheck(candidate.Played)) return true;
        return depth <= NoisyExchangeMaxDepth &&
               !board.ExchangeGains(candidate.Played, NoisyExchangePerDepthCp * depth);
    }

    const int reduced = std::max(depth - reductions_.Of(false, depth, progress.Count) / PlyUnits, 0);
    const bool isFutile = !node.InCheck && reduced <= FutilityMaxDepth &&
                          At(node.Ply).StaticEval + FutilityBaseCp + FutilityPerDepthCp * reduced <= node.Alpha;
    // A check may be mate.
    if (isFutile && !board.GivesCheck(candidate.Played)) return true;
    if (reduced <= HistoryPruningMaxDepth && candidate.Score < HistoryPruningPerDepth * reduced + HistoryPruningBase)
        return true;
    return reduced <= QuietExchangeMaxDepth &&
           !board.ExchangeGains(candidate.Played, QuietExchangePerDepth2Cp * reduced * reduced);
}

/// Is the table's move the only good one? Then it deserves a deeper look. Decides the node when other moves, too,
/// reach beta.
std::optional<int> SearchWorker::ExtendSingular(const Node& node, NodeMove& candidate) {
    using namespace margins;
    const int depth = node.Depth;
    if (node.IsRoot || depth < SingularMinDepth || candidate.Played != node.TableMove || node.Excluded || !node.Found ||
        node.Entry.Depth < depth - SingularTrust || node.Entry.Kind == Bound::Upper ||
        std::abs(node.TableValue) >= MateInMaxPly || node.Ply >= ExtensionPlyFactor * rootDepth_)
        return std::nullopt;
    PlyState& state = At(node.Ply);
    const int perDepth = node.Entry.WasPv && !node.IsPv ? SingularFormerPvPerDepthCp : SingularPerDepthCp;
    const int margin = node.TableValue - depth * perDepth;
    state.Excluded = candidate.Played;
    const int value = SearchNode(node.Position, margin - 1, margin, (depth - 1) / 2, node.Ply, node.IsCutNode);
    state.Excluded = Move{};
    if (stopped_) return 0;
    if (value < margin) {
        const bool byFar = !node.IsPv && value < margin - DoubleExtensionCp && state.Extensions < MostDoubleExtensions;
        if (byFar) ++state.Extensions;
        candidate.Extension = byFar ? 2 : 1;
        return std::nullopt;
    }
    if (margin >= node.Beta) return margin;
    candidate.Extension = node.TableValue >= node.Beta ? -2 : node.IsCutNode ? -1 : 0;
    return std::nullopt;
}

/// A check that loses nothing is looked at a ply deeper.
void SearchWorker::ExtendCheck(const Node& node, const Board& next, NodeMove& candidate) const {
    candidate.GivesCheck = next.InCheck();
    if (candidate.Extension == 0 && candidate.GivesCheck && node.Depth <= margins::CheckExtensionMaxDepth &&
        node.Ply < margins::ExtensionPlyFactor * rootDepth_ && node.Position.ExchangeGains(candidate.Played, 0))
        candidate.Extension = 1;
}

/// Late moves shallower and with a null window, again deeper where that was too hopeful, with the whole window where
/// it matters.
int SearchWorker::SearchMove(const Node& node, const Board& next, const NodeMove& candidate, const Progress& progress) {
    using namespace margins;
    const int count = progress.Count;
    const int alpha = node.Alpha;
    const int newDepth = node.Depth - 1 + candidate.Extension;
    int value = 0;
    if (node.Depth >= ReductionMinDepth && count > 1 + (node.IsRoot ? 1 : 0)) {
        const int shallow = std::clamp(newDepth - Reduction(node, candidate, count), 1, std::max(newDepth, 1));
        At(node.Ply).Reduced = newDepth - shallow;
        value = -SearchNode(next, -alpha - 1, -alpha, shallow, node.Ply + 1, true);
        At(node.Ply).Reduced = 0;
        if (value > alpha && shallow < newDepth) {
            const int again = newDepth + (value > progress.BestValue + DeeperAgainCp ? 1 : 0) -
                              (value < progress.BestValue + ShallowerAgainCp ? 1 : 0);
            if (again > shallow) value = -SearchNode(next, -alpha - 1, -alpha, again, node.Ply + 1, !node.IsCutNode);
            if (!stopped_) RewardSecondLook(node, candidate, again, value);
        }
    } else if (!node.IsPv || count > 1) {
        value = -SearchNode(next, -alpha - 1, -alpha, newDepth, node.Ply + 1, !node.IsCutNode);
    }
    if (node.IsPv && (count == 1 || value > alpha))
        value = -SearchNode(next, -node.Beta, -alpha, newDepth, node.Ply + 1, false);
    return value;
}

/// Plies that a move is searched shallower: more where little is expected, less where something is going on.
int SearchWorker::Reduction(const Node& node, const NodeMove& candidate, int moveCount) const {
    using namespace margins;
    const Move move = candidate.Played;
    const PlyState& state = At(node.Ply);
    int reduction = reductions_.Of(candidate.IsNoisy, node.Depth, moveCount);
    if (node.IsCutNode) reduction += CutNodeReduction + (node.TableMove ? 0 : UnknownCutReduction);
    if (At(node.Ply + 1).Cutoffs >= OftenCutCount) reduction += OftenCutReduction;
    if (node.IsPv) reduction -= PvReduction;
    if (!node.IsImproving) reduction += WorseningReduction;
    if (node.WasPv) reduction -= FormerPvReduction;
    if (candidate.GivesCheck) reduction -= CheckReduction;
    if (move == state.Killers[0] || move == state.Killers[1]) reduction -= KillerReduction;
    if (candidate.IsNoisy) {
        reduction -= candidate.Score * PlyUnits / NoisyHistoryReductionDivisor;
    } else {
        if (node.TableMove && node.Position.IsNoisy(node.TableMove)) reduction += NoisyTableMoveReduction;
        reduction -= candidate.Score * PlyUnits / HistoryReductionDivisor;
    }
    return reduction / PlyUnits;
}

/// The node's value, after all has been kept that other nodes can use.
int SearchWorker::Conclude(const Node& node, const Progress& progress, int alphaBefore) {
    const int value = progress.BestValue;
    if (progress.Count == 0) {
        if (progress.Overlooked > 0) return evaluation_.Evaluate(node.Position, node.Ply);
        return node.Excluded ? node.Alpha : node.InCheck ? -MateValue + node.Ply : DrawValue;
    }
    if (value >= node.Beta) {
        ++At(node.Ply).Cutoffs;
        RewardCutoff(node, progress);
    }
    if (node.Excluded) return value;
    if (!node.IsRoot && value <= alphaBefore) RewardRefutation(node.Position, node.Ply, node.Depth);
    const Bound bound = value >= node.Beta ? Bound::Lower : value > alphaBefore ? Bound::Exact : Bound::Upper;
    if (!node.IsRoot || lineIndex_ == 0)
        task_.Table.Store(node.Position.PositionKey(),
                          {progress.Best, ValueToTable(value, node.Ply), node.RawEval, node.Depth, bound, node.WasPv});
    CorrectEval(node, progress, bound);
    return value;
}

// --- Quiescence -----------------------------------------------------------------------------------

/// Captures and promotions only, or all ways out of a check, until nothing is left hanging.
int SearchWorker::Quiesce(const Board& board, int alpha, int beta, int ply) {
    At(ply).LineLength = 0;
    if (CountNodeAndCheckStop()) return 0;
    LeafNode leaf{board, alpha, beta, ply};
    if (leaf.IsPv) selectiveDepth_ = std::max(selectiveDepth_, ply + 1);
    if (IsDrawByItself(board)) return DrawValue;
    if (ply >= MaxPly - 1) return leaf.InCheck ? DrawValue : evaluation_.Evaluate(board, ply);

    TableEntry entry;
    const bool found = task_.Table.Probe(board.PositionKey(), entry);
    const int tableValue = found ? ValueFromTable(entry.Value, ply) : NoValue;
    if (found && !leaf.IsPv && board.HalfmoveClock() <= margins::TableCutMaxClock &&
        Cuts(entry, tableValue, alpha, beta))
        return tableValue;
    if (!leaf.InCheck) {
        // Nobody has to capture: the static value is to be had at least.
        leaf.RawEval = found && entry.StaticEval != NoValue ? entry.StaticEval : evaluation_.Evaluate(board, ply);
        leaf.Eval = leaf.BestValue = CorrectedEval(board, ply, leaf.RawEval);
        if (found && Betters(entry, tableValue, leaf.Eval)) leaf.BestValue = tableValue;
        if (leaf.BestValue >= beta) {
            if (!found)
                task_.Table.Store(board.PositionKey(),
                                  {Move{}, ValueToTable(leaf.BestValue, ply), leaf.RawEval, 0, Bound::Lower, false});
            return leaf.BestValue;
        }
        leaf.Alpha = std::max(alpha, leaf.BestValue);
    }
    SearchLeafMoves(leaf, found ? entry.Best : Move{});
    if (stopped_) return 0;
    const Bound bound = leaf.BestValue >= beta ? Bound::Lower : Bound::Upper;
    task_.Table.Store(board.PositionKey(),
                      {leaf.Best, ValueToTable(leaf.BestValue, ply), leaf.RawEval, 0, bound, leaf.IsPv});
    return leaf.BestValue;
}

/// A capture that would not lift the value to alpha. What it could lift it to counts.
bool SearchWorker::IsHopeless(LeafNode& leaf, Move move, int moveCount) const {
    using namespace margins;
    const Board& board = leaf.Position;
    // Not even winning the piece for nothing would help.
    const int won = leaf.Eval + ExchangeValue[board.CapturedKind(move)] + DeltaCp;
    if (won <= leaf.Alpha) {
        leaf.BestValue = std::max(leaf.BestValue, won);
        return true;
    }
    if (moveCount > LeafMostMoves && move.To() != At(leaf.Ply - 1).Current.To()) return true;
    const int traded = leaf.Eval + EvenTradeCp;
    if (traded > leaf.Alpha || board.ExchangeGains(move, 1)) return false;
    leaf.BestValue = std::max(leaf.BestValue, traded);
    return true;
}

void SearchWorker::SearchLeafMoves(LeafNode& leaf, Move tableMove) {
    const Board& board = leaf.Position;
    MovePicker picker(board, history_, tableMove, 0);
    int moveCount = 0;
    while (const Move move = picker.Next()) {
        if (IsOverlooked(board, move)) {
            // He takes it that there is a way out.
            if (leaf.InCheck && leaf.BestValue <= -MateInMaxPly) leaf.BestValue = evaluation_.Evaluate(board, leaf.Ply);
            continue;
        }
        ++moveCount;
        if (!leaf.InCheck && !move.IsPromotion() && IsHopeless(leaf, move, moveCount)) continue;
        if (leaf.InCheck && moveCount > 1 && leaf.BestValue > -MateInMaxPly && !board.IsNoisy(move)) break;
        Board next = board;
        PlayInto(next, board, move, leaf.Ply);
        const int value = -Quiesce(next, -leaf.Beta, -leaf.Alpha, leaf.Ply + 1);
        if (stopped_) return;
        if (value <= leaf.BestValue) continue;
        leaf.BestValue = value;
        if (value <= leaf.Alpha) continue;
        leaf.Best = move;
        if (leaf.IsPv) UpdateLine(leaf.Ply, move);
        if (value >= leaf.Beta) break;
        leaf.Alpha = value;
    }
}

} // namespace quarnel::engine
