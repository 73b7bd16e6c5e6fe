// Plain rules on a position record as it stands, for positions no game could reach too.
//
// Squares are looked at one by one, so nothing about the record is taken for granted. ListMoves() of Records.h is the
// faster road to the same moves. Any thread, any time.
#pragma once

#include "quarnelchess/board/Types.h"

#include <QuarnelChess.h>

namespace quarnel::engine {

/// Appends the legal moves of `side` to an empty list and stops at 255.
void ListLooseMoves(const Position& position, Color side, MoveList& list);

/// Plays the move as told, legal or not; whoever's turn it is stays. A move without a piece, off the
/// board, or with a game result in place of a promotion leaves the record alone.
void PlayMove(Position& position, const MoveRec& move);

/// True when any king of `side` is attacked; false without one.
bool KingAttacked(const Position& position, Color side);

} // namespace quarnel::engine
