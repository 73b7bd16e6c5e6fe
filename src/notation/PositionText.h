// A position as one line of text (Forsyth-Edwards notation), in both directions.
//
// Pure functions. The halfmove clock and the move number are not part of a position: they are
// written as "0 1" and never read.
#pragma once

#include "base/Text.h"
#include "model/Position.h"

namespace quarnel::notation {

/// Reads position text into `position`. Never fails towards the caller: any placement text is read as
/// far as it goes, and when no blank follows the castling field, `text` is overwritten with
/// PositionToFen of what was read so far, White or Black to move without rights.
void FenToPosition(Text& text, Position& position);

Text PositionToFen(const Position& position);

} // namespace quarnel::notation
