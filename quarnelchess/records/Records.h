// Legal moves of position records, and the only place where records become boards.
//
// Any bytes may stand in a record. Positions that Board holds go the fast road; all others (no king or
// many, pawns on the last ranks, heaps of queens, codes beyond 12) are served by plain rules that keep
// their sense: a piece moves as it always does, no king is captured, a side may not leave any of its
// kings attacked, and squares with codes beyond 12 are walls that nobody moves or captures.
// Free functions over values: any thread, any time.
#pragma once

#include "quarnelchess/board/Board.h"

#include <QuarnelChess.h>

namespace quarnel::engine {

/// The board on which `side` is to move, if Board can hold it.
std::optional<Board> BoardFromRecord(const Position& position, Color side);
Position RecordFromBoard(const Board& board);

/// A move of `board` as a record. A castling record names the kind and the king's origin only.
MoveRec RecordFromMove(const Board& board, Move move);
/// The legal move that the record denotes on `board`; no move when there is none.
Move MoveFromRecord(const Board& board, const MoveRec& record);

/// Castling moves are the same when their kinds are; all others when every byte is.
bool SameMove(const MoveRec& a, const MoveRec& b);

/// Every legal move of `side`, whoever's turn the record says it is; at most 255.
void ListMoves(const Position& position, Color side, MoveList& list);

} // namespace quarnel::engine
