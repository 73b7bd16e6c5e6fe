// Writes moves in standard algebraic notation with English piece letters, and the check marks behind them.
//
// The same text goes to the engine and, with its mark, into the history.
#pragma once

#include "model/Rules.h"
#include "notation/LongText.h"

namespace quarnel::notation {

/// The long text as it is written: `position` is the one before the move, `blackToMove` the mover.
/// Result tokens come back unchanged. "" when the from square is empty or there is no rule service.
Text LongTextToSan(Rules& rules, const Position& position, const Text& longText, Truth blackToMove);

/// "+" or "#" as the move leaves the other side, "" otherwise and for a result token; a stalemate has no mark.
/// `position` is the one before the move.
Text CheckSuffix(Rules& rules, const Position& position, const Text& longText);

} // namespace quarnel::notation
