// Static evaluation of a quiet position.
//
// One instance for each search thread: it may keep caches. Replaceable as a whole: the search knows
// nothing but this class.
#pragma once

#include "Board.h"

namespace quarnel::engine {

class Evaluation {
  public:
    /// Centipawns from the side to move's view, well within the mate values. The position should not
    /// be a check.
    int Evaluate(const Board& board);
};

} // namespace quarnel::engine
