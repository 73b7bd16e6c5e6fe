// Reads moves as people and engines write them: standard algebraic notation with English or local
// piece letters, capture marks or none, annotation marks, castling in letters or digits.
//
// Two stages: SanToLongText() finds the move among the legal ones and gives its long text;
// LongTextToMove() (LongText.h) makes the record. Program thread only.
#pragma once

#include "model/Rules.h"
#include "notation/LongText.h"

namespace quarnel::notation {

class MoveTextReader {
  public:
    explicit MoveTextReader(Rules& rules) : rules_(rules) {}

    /// The long text of `text` as a move of White (`blackToMove` 0) or Black (-1) in `position`; a
    /// result token other than "*" unchanged; "" when nothing matches. On a fault (marks only, a rank
    /// off the board, no rule service) the text as far as it was worked on, with MoveTextError set.
    Text SanToLongText(const Position& position, TextView text, Truth blackToMove);

    /// The record of `text`, result tokens other than "*" included.
    MoveRec SanToMoveRec(const Position& position, TextView text, Truth blackToMove);

    /// Whether the last SanToLongText met a fault: 1 or 0.
    std::uint8_t MoveTextError = 0;

  private:
    Rules& rules_;
};

} // namespace quarnel::notation
