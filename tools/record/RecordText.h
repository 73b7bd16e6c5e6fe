// Game records, the program's own files, as games and back.
#pragma once

#include "Game.h"

#include <string_view>

namespace quarnel::record {

/// Whether the bytes begin as a record does, with a line of two names and a tab between them.
bool IsRecord(std::string_view bytes, int codePage);

/// Reads moves as the program reads them. Throws a Fault where the program would leave a move out or refuse the file.
Game ReadRecord(std::string_view bytes, int codePage);

/// The program's user is the player whose name is "You"; where no name says it, White if `userIsWhite`. The result is
/// written where the last position does not tell it. Throws a Fault for a game that has neither moves nor a result.
std::string WriteRecord(const Game& game, bool userIsWhite, std::size_t line);

} // namespace quarnel::record
