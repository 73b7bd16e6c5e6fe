// What pieces are worth to the rules of thumb: exchanges on one square, and how far a game has got.
#pragma once

#include "quarnelchess/board/Types.h"

namespace quarnel::engine {

/// Of each kind in the game's phase, which is FullPhase at the start, 0 with pawns and kings alone, and more than
/// FullPhase after promotions.
constexpr int PhaseOf[6] = {0, 1, 1, 2, 4, 0};
constexpr int FullPhase = 24;

/// Centipawns, by kind; a capture of nothing is worth nothing. For ordering captures and static exchanges.
constexpr int ExchangeValue[7] = {100, 320, 330, 500, 950, 20000, 0};

} // namespace quarnel::engine
