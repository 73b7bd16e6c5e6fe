#include "PieceSquares.h"

namespace quarnel::engine {
namespace {

constexpr Score Material[6] = {{90, 110}, {320, 300}, {335, 320}, {490, 530}, {980, 970}, {0, 0}};

/// 0 at the rim, 3 on the four centre squares, for a file or a rank.
constexpr int Centrality(int line) {
    return line < 4 ? line : 7 - line;
}

// Squares by plain principles: knights and bishops want the centre, pawns the centre first and the far
// ranks later, rooks the seventh rank, the king a castled corner while queens are on and the centre after.
constexpr Score SquareValue(PieceKind kind, int file, int rank) {
    const int center = Centrality(file) + Centrality(rank); // 0..6
    switch (kind) {
    case Pawn: {
        constexpr int advanceMg[8] = {0, 0, 2, 8, 16, 32, 60, 0};
        constexpr int advanceEg[8] = {0, 0, 4, 14, 32, 66, 110, 0};
        const int centerPush = (file == 3 || file == 4) ? (rank == 3 ? 22 : rank == 2 ? 8 : rank == 4 ? 18 : 0) : 0;
        const int rimMalus = (file == 0 || file == 7) ? -6 : 0;
        return {advanceMg[rank] + centerPush + rimMalus, advanceEg[rank]};
    }
    case Knight:
        return {center * 10 - 32 + (rank == 0 ? -8 : 0) + (rank >= 3 && rank <= 5 ? 6 : 0), center * 8 - 28};
    case Bishop:
        return {center * 5 - 12 + (rank == 0 ? -10 : 0), center * 4 - 12};
    case Rook:
        return {Centrality(file) * 4 - 6 + (rank == 6 ? 18 : 0), rank == 6 ? 14 : 0};
    case Queen:
        return {center * 2 - 6, center * 6 - 18};
    case King: {
        constexpr int shelterFile[8] = {26, 32, 12, -8, -4, -8, 34, 26};
        return {shelterFile[file] - rank * 22, center * 12 - 36 + (rank == 0 ? -8 : 0)};
    }
    default:
        return {};
    }
}

constexpr PieceSquareTable MakeTable() {
    PieceSquareTable table{};
    for (int kind = Pawn; kind <= King; ++kind) {
        for (Square square = 0; square < 64; ++square) {
            const auto pieceKind = static_cast<PieceKind>(kind);
            const Score value = Material[kind] + SquareValue(pieceKind, FileOf(square), RankOf(square));
            table.Value[MakePiece(White, pieceKind)][square] = value;
            table.Value[MakePiece(Black, pieceKind)][FlipRank(square)] = -value;
        }
    }
    return table;
}

} // namespace

constinit const PieceSquareTable PieceSquares = MakeTable();

} // namespace quarnel::engine
