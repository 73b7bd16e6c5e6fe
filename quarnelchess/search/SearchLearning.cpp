// What the nodes of the tree teach: histories by which later nodes order, prune and reduce their moves, and what the
// evaluation keeps being wrong by.
#include "quarnelchess/search/Margins.h"
#include "quarnelchess/search/SearchWorker.h"

#include <algorithm>
#include <cstdlib>

namespace quarnel::engine {
namespace {

int HistoryBonus(int depth) {
    using namespace margins;
    return std::min(HistoryBonusPerDepth2 * depth * depth + HistoryBonusPerDepth * depth, HistoryBonusMost);
}

} // namespace

/// Learns from quiet outcomes where the evaluation was off, unless the bound says nothing about it.
void SearchWorker::CorrectEval(const Node& node, const Progress& progress, Bound bound) {
    const int value = progress.BestValue;
    const int eval = At(node.Ply).StaticEval;
    const bool tells =
        bound == Bound::Exact || (bound == Bound::Lower && value > eval) || (bound == Bound::Upper && value < eval);
    if (!node.InCheck && tells && !(progress.Best && node.Position.IsNoisy(progress.Best)) &&
        std::abs(value) < MateInMaxPly)
        history_.Correct(node.Position, LineCode(node.Ply), node.Depth, value - eval);
}

void SearchWorker::AddContinuation(Piece piece, Square to, int ply, int bonus) {
    for (const int back : {1, 2, 4})
        if (At(ply - back).Current) (*At(ply - back).Answers)[piece][to].Add(bonus);
}

/// The move that cut gains, those tried before it lose.
void SearchWorker::RewardCutoff(const Node& node, const Progress& progress) {
    const Board& board = node.Position;
    const Move best = progress.Best;
    const int bonus = HistoryBonus(node.Depth);
    const int malus = -bonus * margins::HistoryMalusPercent / 100;
    const auto rewardNoisy = [&](Move move, int change) {
        history_.Capture(board.At(move.From()), move.To(), board.CapturedKind(move)).Add(change);
    };
    const auto rewardQuiet = [&](Move move, int change) {
        history_.Quiet(board.SideToMove(), move).Add(change);
        history_.AmongPawns(board, move).Add(change);
        AddContinuation(board.At(move.From()), move.To(), node.Ply, change);
    };
    if (board.IsNoisy(best)) {
        rewardNoisy(best, bonus);
    } else {
        PlyState& state = At(node.Ply);
        if (state.Killers[0] != best) {
            state.Killers[1] = state.Killers[0];
            state.Killers[0] = best;
        }
        rewardQuiet(best, bonus);
        for (const Move move : progress.Quiets) rewardQuiet(move, malus);
    }
    for (const Move move : progress.Noisies) rewardNoisy(move, malus);
}

/// Nothing helps here: the quiet move that led here was a good one.
void SearchWorker::RewardRefutation(const Board& board, int ply, int depth) {
    const PlyState& before = At(ply - 1);
    if (!before.Current || !before.CurrentIsQuiet || before.Current.Kind() == MoveKind::Castling) return;
    const int bonus = HistoryBonus(depth) * margins::RefutationPercent / 100;
    history_.Quiet(~board.SideToMove(), before.Current).Add(bonus);
    AddContinuation(board.At(before.Current.To()), before.Current.To(), ply - 1, bonus);
}

/// The table's move would cut off here, so it did again what it did before.
void SearchWorker::RewardTableCut(const Node& node) {
    const Move move = node.TableMove;
    if (!move || node.Position.IsNoisy(move)) return;
    const int bonus = HistoryBonus(node.Depth) * margins::TableCutPercent / 100;
    history_.Quiet(node.Position.SideToMove(), move).Add(bonus);
    AddContinuation(node.Position.At(move.From()), move.To(), node.Ply, bonus);
}

/// A quiet move that changed the static value for the better will do so elsewhere.
void SearchWorker::RewardGain(const Node& node) {
    const PlyState& before = At(node.Ply - 1);
    if (!before.Current || !before.CurrentIsQuiet || before.StaticEval == NoValue) return;
    const int gain = -At(node.Ply).StaticEval - before.StaticEval;
    const int bonus = std::clamp(gain * margins::GainBonusPerCp, -margins::GainBonusMost, margins::GainBonusMost);
    history_.Quiet(~node.Position.SideToMove(), before.Current).Add(bonus);
}

/// A late quiet move that was hoped for too much or rightly: its continuations learn at once.
void SearchWorker::RewardSecondLook(const Node& node, const NodeMove& candidate, int depth, int value) {
    if (candidate.IsNoisy || (value > node.Alpha && value < node.Beta)) return;
    const int bonus = HistoryBonus(depth) * margins::SecondLookPercent / 100;
    const Move move = candidate.Played;
    AddContinuation(node.Position.At(move.From()), move.To(), node.Ply, value >= node.Beta ? bonus : -bonus);
}

} // namespace quarnel::engine
