// Moves as standard algebraic text, over position records, so that it works in every position.
//
// The text carries no check mark: Nf3, exd5, e8=Q, O-O. Of several alike pieces the mover is told
// apart by file, else by rank, else by its whole square.
#pragma once

#include "quarnelchess/board/Board.h"

#include <QuarnelChess.h>

#include <string>
#include <string_view>

namespace quarnel::engine {

/// Text of a move from the list of legal moves `legal` of `position`.
std::string WriteSan(const Position& position, const MoveRec& move, const MoveList& legal);
std::string WriteSan(const Board& board, Move move);

/// The index in `legal` of the move that `text` names, or -1. A final check mark is allowed; of several
/// moves that fit the first counts; a promotion without a piece letter is a queen's.
int FindSan(const Position& position, std::string_view text, const MoveList& legal);
/// No move when `text` names none.
Move ReadSan(const Board& board, std::string_view text);

} // namespace quarnel::engine
