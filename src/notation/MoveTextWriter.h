// Writes moves in standard algebraic notation with English piece letters, without check marks.
//
// The same text goes to the engine and, with its mark, into the history.
#pragma once

#include "model/Rules.h"
#include "notation/LongText.h"

namespace quarnel::notation {

/// The long text as it is written: `position` is the one before the move, `blackToMove` the mover.
/// Result tokens come back unchanged. "" when the from square is empty or there is no rule service.
Text LongTextToSan(Rules& rules, const Position& position, const Text& longText, Truth blackToMove);

} // namespace quarnel::notation
