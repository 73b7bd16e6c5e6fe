// Endings with exact rules: known wins, known draws, and material that cannot win.
#pragma once

#include "quarnelchess/board/Board.h"

namespace quarnel::engine {

/// True for an ending with a rule of its own; `value` is then in centipawns, White's view.
bool EvaluateKnownEnding(const Board& board, int& value);

constexpr int FullScale = 64;

/// How much of an advantage of `strong` is worth having where it cannot be turned into a win: FullScale all of it, 0
/// nothing.
int EndgameScale(const Board& board, Color strong);

/// King and pawn against king: does the side with the pawn win? Exact, from a table that is built on
/// first use (a few milliseconds). `strong` owns the pawn.
bool KingPawnEndingIsWon(Color strong, Square strongKing, Square pawn, Square weakKing, Color sideToMove);

/// Computes what EvaluateKnownEnding() looks up, some ten milliseconds' work that the first use would do otherwise.
void PrepareEndings();

} // namespace quarnel::engine
