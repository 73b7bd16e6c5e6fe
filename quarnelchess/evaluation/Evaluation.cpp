#include "quarnelchess/evaluation/Evaluation.h"

#include "quarnelchess/evaluation/Endgames.h"

#include <algorithm>

namespace quarnel::engine {
namespace {

constexpr int LargestValueCp = 10000; // of the net: far above any it gives in practice, far below a mate

/// Brings the own first rank to the bottom and the own king to the files a to d.
std::uint8_t TurnOf(Color view, Square king) {
    return static_cast<std::uint8_t>((view == White ? 0 : 56) ^ (FileOf(king) > 3 ? 7 : 0));
}

const std::int16_t* InputRow(Color view, int turn, Piece piece, Square square) {
    const int side = ColorOf(piece) == view ? 0 : 1;
    const int input = (side * 6 + KindOf(piece)) * 64 + (square ^ turn);
    return net::Numbers + net::InputWeightsAt + static_cast<std::size_t>(input) * net::Hidden;
}

} // namespace

Evaluation::Evaluation(const net::Operations& operations) : operations_(operations), plies_(MaxPly + 1) {}

void Evaluation::Begin(const Board& board) {
    Ply& at = plies_[0];
    for (const Color view : {White, Black}) {
        at.Turn[view] = TurnOf(view, board.KingSquare(view));
        at.IsKnown[view] = false;
        at.IsTurned[view] = true;
    }
    at.AddedCount = at.RemovedCount = 0;
}

void Evaluation::Played(const Board& before, Move move, int ply) {
    const Ply& from = plies_[static_cast<std::size_t>(ply)];
    Ply& at = plies_[static_cast<std::size_t>(ply) + 1];
    const Color us = before.SideToMove();
    const Piece moved = before.At(move.From());
    const auto stand = [](Piece piece, Square square) { return Stand{piece, static_cast<std::uint8_t>(square)}; };
    at.Removed[0] = stand(moved, move.From());
    at.Added[0] = stand(move.IsPromotion() ? MakePiece(us, move.PromotionKind()) : moved, move.To());
    at.RemovedCount = at.AddedCount = 1;
    if (move.Kind() == MoveKind::Castling) {
        const bool kingSide = move.To() > move.From();
        const Piece rook = MakePiece(us, Rook);
        at.Removed[at.RemovedCount++] = stand(rook, kingSide ? move.To() + 1 : move.To() - 2);
        at.Added[at.AddedCount++] = stand(rook, kingSide ? move.To() - 1 : move.To() + 1);
    } else if (move.Kind() == MoveKind::EnPassant) {
        at.Removed[at.RemovedCount++] = stand(MakePiece(~us, Pawn), move.To() ^ 8);
    } else if (before.At(move.To()) != NoPiece) {
        at.Removed[at.RemovedCount++] = stand(before.At(move.To()), move.To());
    }
    for (const Color view : {White, Black}) {
        at.IsKnown[view] = false;
        at.Turn[view] = from.Turn[view];
        at.IsTurned[view] = false;
    }
    if (KindOf(moved) == King) {
        at.Turn[us] = TurnOf(us, move.To());
        at.IsTurned[us] = at.Turn[us] != from.Turn[us];
    }
}

void Evaluation::Passed(int ply) {
    const Ply& from = plies_[static_cast<std::size_t>(ply)];
    Ply& at = plies_[static_cast<std::size_t>(ply) + 1];
    at.AddedCount = at.RemovedCount = 0;
    for (const Color view : {White, Black}) {
        at.IsKnown[view] = false;
        at.Turn[view] = from.Turn[view];
        at.IsTurned[view] = false;
    }
}

void Evaluation::SumAfresh(const Board& board, Ply& at, Color view) const {
    std::int16_t* const sums = at.Sums[view];
    std::copy_n(net::Numbers + net::HiddenBiasAt, net::Hidden, sums);
    for (Bitboard rest = board.Occupied(); rest != 0;) {
        const Square square = PopLowest(rest);
        const std::int16_t* const row = InputRow(view, at.Turn[view], board.At(square), square);
        for (int i = 0; i < net::Hidden; ++i) sums[i] = static_cast<std::int16_t>(sums[i] + row[i]);
    }
}

void Evaluation::SumOn(const Ply& before, Ply& at, Color view) const {
    if (at.AddedCount == 0) {
        std::copy_n(before.Sums[view], net::Hidden, at.Sums[view]);
        return;
    }
    net::Change change;
    change.AddedCount = at.AddedCount;
    change.RemovedCount = at.RemovedCount;
    for (int i = 0; i < change.AddedCount; ++i)
        change.Added[i] = InputRow(view, at.Turn[view], at.Added[i].What, at.Added[i].Where);
    for (int i = 0; i < change.RemovedCount; ++i)
        change.Removed[i] = InputRow(view, at.Turn[view], at.Removed[i].What, at.Removed[i].Where);
    operations_.Apply(at.Sums[view], before.Sums[view], change);
}

/// Goes back to the last ply that is known, and from there on; afresh when the view was turned on the way.
const std::int16_t* Evaluation::Sums(const Board& board, int ply, Color view) {
    auto known = static_cast<std::size_t>(ply);
    while (!plies_[known].IsKnown[view] && !plies_[known].IsTurned[view]) --known;
    Ply& at = plies_[static_cast<std::size_t>(ply)];
    if (!plies_[known].IsKnown[view]) {
        SumAfresh(board, at, view);
        at.IsKnown[view] = true;
        return at.Sums[view];
    }
    for (; known < static_cast<std::size_t>(ply); ++known) {
        SumOn(plies_[known], plies_[known + 1], view);
        plies_[known + 1].IsKnown[view] = true;
    }
    return at.Sums[view];
}

/// Side to move's view.
int Evaluation::NetValue(const Board& board, int ply) {
    const Color us = board.SideToMove();
    const auto set = static_cast<std::size_t>(net::OutputSet(PopCount(board.Occupied())));
    const std::int16_t* const weights = net::Numbers + net::OutputWeightsAt + set * 2 * net::Hidden;
    std::int64_t output = operations_.Output(Sums(board, ply, us), Sums(board, ply, ~us), weights);
    output = output / net::Unit + net::Numbers[net::OutputBiasAt + set];
    output = output * net::Numbers[net::ScaleAt] / (net::Unit * net::OutputUnit);
    return static_cast<int>(std::clamp<std::int64_t>(output, -LargestValueCp, LargestValueCp));
}

int Evaluation::Evaluate(const Board& board, int ply) {
    const bool white = board.SideToMove() == White;
    int value = 0;
    if (EvaluateKnownEnding(board, value)) return white ? value : -value;
    value = NetValue(board, ply);
    const Color better = (value > 0) == white ? White : Black;
    return value * EndgameScale(board, better) / FullScale;
}

} // namespace quarnel::engine
