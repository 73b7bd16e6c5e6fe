#include "Evaluation.h"

#include <algorithm>

namespace quarnel::engine {
namespace {

constexpr Score BishopPair{28, 48};
constexpr Score DoubledPawn{-8, -18};
constexpr Score IsolatedPawn{-12, -14};
constexpr Score PassedPawn[8] = {{}, {4, 10}, {4, 14}, {10, 28}, {24, 52}, {50, 90}, {80, 140}, {}};
constexpr Score RookOnOpenFile{22, 8};
constexpr Score RookOnHalfOpenFile{10, 6};
constexpr Score MobilityStep[6] = {{}, {4, 4}, {5, 5}, {2, 4}, {1, 3}, {}};
constexpr int TypicalMobility[6] = {0, 4, 6, 7, 13, 0};
constexpr int KingZoneAttack[6] = {0, 8, 8, 12, 18, 0};
constexpr Score MissingShieldPawn{-14, 0};
constexpr int Tempo = 10;

Bitboard AdjacentFiles(int file) {
    return (file > 0 ? FileMask(file - 1) : 0) | (file < 7 ? FileMask(file + 1) : 0);
}

/// The ranks in front of `square` from `color`'s view.
Bitboard RanksAhead(Color color, Square square) {
    const int rank = RankOf(square);
    if (color == White) return rank == 7 ? 0 : ~Bitboard{0} << (8 * (rank + 1));
    return (Bitboard{1} << (8 * rank)) - 1;
}

template <Color Us>
Score Side(const Board& board) {
    constexpr Color Them = ~Us;
    const Bitboard pawns = board.Pieces(Us, Pawn);
    const Bitboard enemyPawns = board.Pieces(Them, Pawn);
    Score score;

    for (Bitboard rest = pawns; rest != 0;) {
        const Square square = PopLowest(rest);
        const int file = FileOf(square);
        const Bitboard ahead = RanksAhead(Us, square);
        if ((pawns & ahead & FileMask(file)) != 0)
            score += DoubledPawn;
        else if ((enemyPawns & ahead & (FileMask(file) | AdjacentFiles(file))) == 0)
            score += PassedPawn[RelativeRank(Us, square)];
        if ((pawns & AdjacentFiles(file)) == 0) score += IsolatedPawn;
    }

    const Bitboard safe = ~board.Pieces(Us) & ~PawnSetAttacks<Them>(enemyPawns);
    const Square enemyKing = board.KingSquare(Them);
    const Bitboard kingZone = KingAttacks(enemyKing) | Bit(enemyKing);
    int attackers = 0;
    int attack = 0;
    for (int k = Knight; k <= Queen; ++k) {
        const auto kind = static_cast<PieceKind>(k);
        for (Bitboard rest = board.Pieces(Us, kind); rest != 0;) {
            const Square square = PopLowest(rest);
            const Bitboard reach = PieceAttacks(kind, square, board.Occupied());
            score += MobilityStep[k] * (PopCount(reach & safe) - TypicalMobility[k]);
            if ((reach & kingZone) != 0) {
                ++attackers;
                attack += KingZoneAttack[k] * PopCount(reach & kingZone);
            }
            if (kind == Rook && (pawns & FileMask(FileOf(square))) == 0)
                score += (enemyPawns & FileMask(FileOf(square))) == 0 ? RookOnOpenFile : RookOnHalfOpenFile;
        }
    }
    if (attackers >= 2) score.Mg += attack * std::min(attackers, 5) / 4;
    if (MoreThanOne(board.Pieces(Us, Bishop))) score += BishopPair;

    const Square king = board.KingSquare(Us);
    const Bitboard shield = RanksAhead(Us, king) & (FileMask(FileOf(king)) | AdjacentFiles(FileOf(king)));
    score += MissingShieldPawn * std::max(0, 3 - PopCount(shield & pawns));
    return score;
}

} // namespace

int Evaluation::Evaluate(const Board& board) {
    const Score score = board.PieceSquareScore() + Side<White>(board) - Side<Black>(board);
    const int phase = std::min(board.Phase(), FullPhase);
    const int value = (score.Mg * phase + score.Eg * (FullPhase - phase)) / FullPhase;
    return (board.SideToMove() == White ? value : -value) + Tempo;
}

} // namespace quarnel::engine
