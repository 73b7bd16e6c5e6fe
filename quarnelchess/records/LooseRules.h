// Plain rules on a position record as it stands, for positions no game could reach too.
//
// Squares are looked at one by one, so nothing about the record is taken for granted. Behind
// Records.h; nobody else needs it.
#pragma once

#include "quarnelchess/board/Types.h"

#include <QuarnelChess.h>

namespace quarnel::engine {

/// Appends the legal moves of `side` to an empty list and stops at 255.
void ListLooseMoves(const Position& position, Color side, MoveList& list);
void PlayLoosely(Position& position, const MoveRec& move);
bool AnyKingAttacked(const Position& position, Color side);

} // namespace quarnel::engine
