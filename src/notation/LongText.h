// The long move text, the one internal text form of a move, and the result tokens beside it.
//
// "e2-e4", "e4xd5", "e7-e8=Q", "o-o", "o-o-o": from square, "-" or "x", to square, and for a promotion
// "=" and an upper-case letter whatever the colour. Result tokens ("1-0", "*", "-", ...) may stand in
// the history in place of a move. Pure functions; none fails.
#pragma once

#include "base/Text.h"
#include "model/Position.h"

namespace quarnel::notation {

inline constexpr TextView FileLetters = u"abcdefgh";
inline constexpr TextView PieceLetters = u"PNBRQK";

/// Letter of a piece code 1..12, the same for both colours; empty for any other code.
Text PieceLetter(int piece);

/// "e4" for (5, 5). A file outside 1..8 gives no letter.
Text SquareText(int file, int row);

/// True for the seven tokens "1-0", "0-1", "1/2-1/2", "1/2", the draw token, "*" and "-".
bool IsResultText(TextView text);

/// An all-zero record with the token's code (250..252) in `Promote`; 0 for "*" and for any other text.
MoveRec ResultToMoveRec(TextView text);

/// The move as long text; `position` is the one it is played in. "" for a castling kind above 2.
Text MoveToLongText(const Position& position, const MoveRec& move);

/// The record of a long text. A text that is no move (two squares on the board, or castling) gives
/// the all-zero record, which plays nothing.
MoveRec LongTextToMove(const Position& position, TextView longText);

/// As LongTextToMove, result tokens included.
MoveRec LongTextToMoveRec(const Position& position, TextView longText);

} // namespace quarnel::notation
