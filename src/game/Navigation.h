// Navigation: stepping through the recorded game, back and forward.
//
// It never changes the history, only the ply shown and what goes with it: the position, marks, selection and status
// text, and what the engine is doing. A step lets window events run, so
// another one can come in the middle of it; it is left out then (NavBusy). Program thread only.
#pragma once

#include "display/PieceAnimation.h"
#include "engine/EngineControl.h"
#include "notation/MoveTextReader.h"

namespace quarnel {

/// What MoveTAB is asked to do.
enum NavigationCode : std::int16_t { ToStart = 1, Back = 2, Forward = 3, ToEnd = 4, MoveNow = 5, StopThinking = 6 };

class Navigation {
  public:
    Navigation(GameState& state, ControllerState& controller, Rules& rules, EngineControl& control,
               notation::MoveTextReader& reader, BoardRenderer& renderer, PieceAnimation& animation, Desktop& desktop)
        : state_(state), controller_(controller), rules_(rules), control_(control), reader_(reader),
          renderer_(renderer), animation_(animation), desktop_(desktop) {}

    /// Steps through the history, or tells the engine to move or stop. Codes outside 1..6 do nothing.
    /// `silent` lets a step forward land on a final result text.
    void MoveTAB(std::int16_t bindex, Truth silent);

    /// The position after `ply` plies of the recorded game; sets LastMove to the last move played and
    /// shows the text of `ply`. `incremental` plays just that ply on CurPos.
    Position ReplayToPly(int ply, Truth resync, Truth incremental);

  private:
    void ShowPly(int ply);
    void StepForward(Truth silent);
    bool SkipsStart() const;
    void ShowPlyText(const Text& text);
    bool ReplayText(Position& position, const Text& text, MoveRec& last);

    GameState& state_;
    ControllerState& controller_;
    Rules& rules_;
    EngineControl& control_;
    notation::MoveTextReader& reader_;
    BoardRenderer& renderer_;
    PieceAnimation& animation_;
    Desktop& desktop_;
    Truth navBusy_ = False; // NavBusy: MoveTAB runs
};

} // namespace quarnel
