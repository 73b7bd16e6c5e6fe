// Move input: the user's presses and releases on the board become moves.
//
// MoveInput.cpp reads the road of a click from top to bottom, from ClickOnBoard() on. Dragging lets window
// events run, so another click can come in the middle of this one; MoveBusy and Thinking are the guards.
// Program thread only.
#pragma once

#include "display/PieceAnimation.h"
#include "engine/EngineControl.h"
#include "game/MoveRecorder.h"

namespace quarnel {

/// Whether a button press or its release acts on the board.
enum class BoardAction { Press, Drop };

class MoveInput {
  public:
    MoveInput(GameState& state, ControllerState& controller, const StatusStrip& status, Rules& rules,
              EngineControl& control, MoveRecorder& recorder, BoardRenderer& renderer, PieceAnimation& animation)
        : state_(state), controller_(controller), status_(status), rules_(rules), control_(control),
          recorder_(recorder), renderer_(renderer), animation_(animation) {}

    /// A press or release at the frame pixel (x, y): selects, drags, moves, or is refused silently.
    void ClickOnBoard(PointerButton button, int shift, float x, float y, BoardAction action);
    /// Drops the selection.
    void CancelPieceSel();

  private:
    bool MaySelectOrMove(int piece, BoardAction action) const;
    void Select(Square square, int piece, PointerButton button, int shift, float x, float y, BoardAction action);
    MoveRec MoveTo(Square square) const;
    bool TakeLegalEntry(MoveRec& move);
    void PromoteAsChosen(MoveRec& move) const;
    void ExecuteMove(MoveRec move, BoardAction action);
    void MarkUserMove(const MoveRec& move);
    int SelectedPiece() const;

    GameState& state_;
    ControllerState& controller_;
    const StatusStrip& status_;
    Rules& rules_;
    EngineControl& control_;
    MoveRecorder& recorder_;
    BoardRenderer& renderer_;
    PieceAnimation& animation_;
};

} // namespace quarnel
