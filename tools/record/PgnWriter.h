// Writes games as PGN, the exchange format of chess programs.
#pragma once

#include "Game.h"

namespace quarnel::record {

/// The game with its tags and an empty line behind it, in UTF-8. Lines end in LF and have 79 characters at most, long
/// tags apart.
std::string WritePgn(const Game& game);

} // namespace quarnel::record
