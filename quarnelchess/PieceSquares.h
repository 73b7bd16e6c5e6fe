// Material and piece-square values, summed incrementally by the board.
//
// Values are centipawns from the owner's view; the table already carries colour and sign, so that the
// board adds and subtracts without asking. Phase counts the pieces left: 24 at the start, 0 with
// pawns and kings alone.
#pragma once

#include "Types.h"

namespace quarnel::engine {

constexpr int PhaseOf[6] = {0, 1, 1, 2, 4, 0};
constexpr int FullPhase = 24;

/// Rough exchange values, for ordering captures and static exchange evaluation.
constexpr int ExchangeValue[7] = {100, 320, 330, 500, 950, 20000, 0};

struct PieceSquareTable {
    /// [piece code][square], positive for White's pieces.
    Score Value[16][64];
};

extern const PieceSquareTable PieceSquares;

} // namespace quarnel::engine
