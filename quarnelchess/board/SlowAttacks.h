// Slider attacks walked square by square: the source that the fast tables and their magic factors are made from.
#pragma once

#include "quarnelchess/board/Types.h"

namespace quarnel::engine {

constexpr int BishopSteps[4][2] = {{1, 1}, {1, -1}, {-1, -1}, {-1, 1}};
constexpr int RookSteps[4][2] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};

/// Every square reached along four directions, the first occupied one on each included.
constexpr Bitboard WalkAttacks(Square square, Bitboard occupied, const int (&steps)[4][2]) {
    Bitboard set = 0;
    for (const auto& step : steps) {
        int file = FileOf(square) + step[0];
        int rank = RankOf(square) + step[1];
        for (; file >= 0 && file < 8 && rank >= 0 && rank < 8; file += step[0], rank += step[1]) {
            set |= Bit(MakeSquare(file, rank));
            if ((occupied & Bit(MakeSquare(file, rank))) != 0) break;
        }
    }
    return set;
}

/// The squares whose occupation changes a slider's reach: its lines without the last square of each.
constexpr Bitboard RelevantSquares(Square square, const int (&steps)[4][2]) {
    const Bitboard edges =
        ((Rank1 | RankMask(7)) & ~RankMask(RankOf(square))) | ((FileA | FileH) & ~FileMask(FileOf(square)));
    return WalkAttacks(square, 0, steps) & ~edges;
}

} // namespace quarnel::engine
