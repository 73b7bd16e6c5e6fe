// Legal move generation: checks and pins are solved by masks, so every move written is legal.
//
// GenerateMoves() fills a buffer; CountMoves() only counts, several times faster; IsLegal() tests one
// move from anywhere, such as a transposition table.
#pragma once

#include "quarnelchess/board/Board.h"

namespace quarnel::engine {

enum class MoveClass { All, Noisy, Quiet };

/// Appends to `moves`. Noisy moves are captures and promotions, quiet ones all others.
template <MoveClass Class = MoveClass::All>
void GenerateMoves(const Board& board, MoveBuffer& moves);

/// The number of legal moves.
int CountMoves(const Board& board);

/// Any 16 bits may be asked about.
bool IsLegal(const Board& board, Move move);

/// Leaf positions after `depth` plies of legal moves.
std::uint64_t Perft(const Board& board, int depth);

} // namespace quarnel::engine
