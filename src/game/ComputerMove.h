// Plays the computer's move: into the history, on the position, on the board.
//
// Program thread only; window events run inside Play() while the move slides.
#pragma once

#include "display/PieceAnimation.h"
#include "game/MoveRecorder.h"

namespace quarnel {

class ComputerMove {
  public:
    ComputerMove(GameState& state, ControllerState& controller, Rules& rules, notation::MoveTextReader& reader,
                 MoveRecorder& recorder, PieceAnimation& animation, BoardRenderer& renderer)
        : state_(state), controller_(controller), rules_(rules), reader_(reader), recorder_(recorder),
          animation_(animation), renderer_(renderer) {}

    /// Plays the move of the text `token` in CurPos; one that cannot be read is recorded and moves nothing.
    void Play(const Text& token);

  private:
    void MarkMove(const MoveRec& move);

    GameState& state_;
    ControllerState& controller_;
    Rules& rules_;
    notation::MoveTextReader& reader_;
    MoveRecorder& recorder_;
    PieceAnimation& animation_;
    BoardRenderer& renderer_;
};

} // namespace quarnel
