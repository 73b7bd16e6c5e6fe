// Position text (Forsyth-Edwards notation) for boards that the engine can search.
#pragma once

#include "quarnelchess/board/Board.h"

namespace quarnel::engine {

/// Placement and side are needed; castling, en passant and the clock may be missing. Nothing when the
/// text does not read or Board cannot hold the position.
std::optional<Board> ReadFen(std::string_view text);

/// Six fields; the fullmove number is `fullmove`.
std::string WriteFen(const Board& board, int fullmove = 1);

} // namespace quarnel::engine
