// Hands out the legal moves of a node one by one, the most promising first.
//
// Order: the table's move, captures and promotions that do not lose material, killers, quiet moves by
// history, captures that lose material. Each stage is generated only when the one before is used up.
#pragma once

#include "quarnelchess/board/MoveGen.h"
#include "quarnelchess/search/History.h"

namespace quarnel::engine {

class MovePicker {
  public:
    /// All moves. `tableMove` and `killers` may be illegal here; they are checked.
    /// `answers` are the continuation tables of the moves one, two and four plies ago.
    MovePicker(const Board& board, History& history, Move tableMove, const Move (&killers)[2],
               Continuation* const (&answers)[3]);
    /// Quiescence: noisy moves that gain at least `threshold`; every move when in check.
    MovePicker(const Board& board, History& history, Move tableMove, int threshold);

    /// The next move, or no move at the end.
    Move Next();
    /// History score of the quiet move handed out last, what it was ordered by; 0 for the table's move and killers,
    /// which are not ordered by it.
    int QuietScore() const { return stage_ == Stage::Quiets ? scores_[current_ - 1] : 0; }
    /// From now on only noisy moves.
    void SkipQuiets() { skipQuiets_ = true; }

  private:
    enum class Stage {
        Table,
        StartNoisy,
        GoodNoisy,
        Killers,
        StartQuiet,
        Quiets,
        BadNoisy,
        StartEvasions,
        Evasions,
        Done
    };

    void ScoreNoisy();
    void ScoreQuiets(std::size_t first);
    Move PickBest();
    bool IsKiller(Move move) const { return move == killers_[0] || move == killers_[1]; }

    const Board& board_;
    History& history_;
    Continuation* answers_[3] = {};
    Move tableMove_;
    Move killers_[2];
    int threshold_ = 0;
    bool quiescence_ = false;
    bool skipQuiets_ = false;
    Stage stage_ = Stage::Table;
    int nextKiller_ = 0;
    MoveBuffer moves_;
    std::size_t current_ = 0;
    std::size_t badCount_ = 0; // captures put off, at the front of moves_, where those handed out stood
    std::size_t nextBad_ = 0;
    int scores_[MoveBuffer::Capacity];
};

} // namespace quarnel::engine
