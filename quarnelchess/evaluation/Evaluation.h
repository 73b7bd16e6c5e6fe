// Static evaluation of a quiet position: a net that learned from the engine's own games, and exact rules for a few
// endings.
//
// One instance for each search thread. It follows the line being searched move by move and keeps the net's sums for
// each ply, so that a move costs a few additions and a position that is never judged nothing. Replaceable as a whole:
// the search knows nothing but this class.
#pragma once

#include "quarnelchess/board/Board.h"
#include "quarnelchess/evaluation/Net.h"

#include <vector>

namespace quarnel::engine {

class Evaluation {
  public:
    /// `operations` last for ever.
    explicit Evaluation(const net::Operations& operations = net::BestOperations());

    /// A line begins: `board` is at ply 0.
    void Begin(const Board& board);
    /// `move` leads from `before` at `ply` (0..MaxPly - 1) to the next ply; what was known of plies beyond is
    /// forgotten.
    void Played(const Board& before, Move move, int ply);
    /// The turn was passed at `ply`.
    void Passed(int ply);

    /// Centipawns from the side to move's view, well within the mate values. `board` is the position at `ply` of the
    /// line. It should not be a check.
    int Evaluate(const Board& board, int ply);
    /// The same of a position by itself; the line is lost.
    int Evaluate(const Board& board) {
        Begin(board);
        return Evaluate(board, 0);
    }

  private:
    struct Stand {
        Piece What = NoPiece;
        std::uint8_t Where = 0;
    };
    struct alignas(64) Ply {
        std::int16_t Sums[2][net::Hidden];
        bool IsKnown[2];      // by view: Sums are those of the position
        bool IsTurned[2];     // by view: the king changed the half, the ply before is of no use
        std::uint8_t Turn[2]; // by view: what a square is combined with, see InputRow()
        Stand Added[2];
        Stand Removed[2];
        std::uint8_t AddedCount;
        std::uint8_t RemovedCount;
    };

    const std::int16_t* Sums(const Board& board, int ply, Color view);
    void SumAfresh(const Board& board, Ply& at, Color view) const;
    void SumOn(const Ply& before, Ply& at, Color view) const;
    int NetValue(const Board& board, int ply);

    const net::Operations& operations_;
    std::vector<Ply> plies_;
};

} // namespace quarnel::engine
