// Material and place of each piece as one value, from the weights.
#pragma once

#include "quarnelchess/board/Board.h"

namespace quarnel::engine {

struct PieceSquareTable {
    /// Centipawns for the owner: [kind][square as the owner sees it, see Relative()].
    Score Value[6][64];
};

extern const PieceSquareTable PieceSquares;

/// Over all pieces of a board, White's less Black's.
Score PieceSquareSum(const Board& board);

} // namespace quarnel::engine
