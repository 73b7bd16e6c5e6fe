// Static evaluation of a quiet position.
//
// One instance for each search thread: it caches pawn structures. Replaceable as a whole: the search
// knows nothing but Evaluate().
#pragma once

#include "quarnelchess/board/Board.h"
#include "quarnelchess/evaluation/Weights.h"

#include <vector>

namespace quarnel::engine {

/// How a value came about, for tuning: the middlegame sum m and the endgame sum e are those of
/// Weights times Counts, White's view, and the value is
/// (m * Phase + e * EndgameScale / 64 * (24 - Phase)) / 24, each division truncating.
struct EvaluationTrace {
    int Counts[WeightCount] = {}; // White's less Black's
    int Phase = 0;                // 0..24
    int EndgameScale = 64;
    bool Special = false; // an ending with a rule of its own: nothing to tune
};

class Evaluation {
  public:
    Evaluation() : pawns_(std::size_t{1} << 14) {}

    /// Gives the cached pawn structures so many bytes, rounded down to a power of two of entries, and forgets them.
    void ResizePawnCache(std::size_t bytes);

    /// Centipawns from the side to move's view, well within the mate values. The position should not
    /// be a check.
    int Evaluate(const Board& board);

    /// The same value from White's view, with its derivation; caches nothing.
    static int Explain(const Board& board, EvaluationTrace& trace);

  private:
    struct PawnEntry {
        Key PawnKey = ~Key{0};
        Score Value; // White's view
        Bitboard Passed = 0;
    };
    template <bool Traced>
    friend class Evaluator;

    std::vector<PawnEntry> pawns_; // a power of two
};

} // namespace quarnel::engine
