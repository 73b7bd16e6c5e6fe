#include "quarnelchess/evaluation/PieceSquares.h"

#include "quarnelchess/evaluation/Weights.h"

namespace quarnel::engine {
namespace {

constexpr PieceSquareTable MakeTable() {
    PieceSquareTable table{};
    for (int k = Pawn; k <= King; ++k) {
        const Score material = k == King ? Score{} : Weights[MaterialWeight + k];
        for (Square square = 0; square < 64; ++square)
            table.Value[k][square] = material + Weights[SquareWeightIndex(White, static_cast<PieceKind>(k), square)];
    }
    return table;
}

} // namespace

constinit const PieceSquareTable PieceSquares = MakeTable();

Score PieceSquareSum(const Board& board) {
    Score sum;
    for (Bitboard rest = board.Occupied(); rest != 0;) {
        const Square square = PopLowest(rest);
        const Piece piece = board.At(square);
        const Score value = PieceSquares.Value[KindOf(piece)][Relative(ColorOf(piece), square)];
        sum += ColorOf(piece) == White ? value : -value;
    }
    return sum;
}

} // namespace quarnel::engine
