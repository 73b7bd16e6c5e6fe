// What the program asks of the engine, and the thinking and idle states that follow from it.
//
// A search ends only with the line that the engine says then (game/EngineOutput): stopping it, or abandoning it
// for a new game or another position, leaves the thinking state until that line has come.
// Program thread only.
#pragma once

#include "engine/CommandQueue.h"
#include "engine/EngineSettings.h"
#include "engine/MoveControls.h"
#include "model/GameState.h"
#include "model/Rules.h"

namespace quarnel {

class EngineControl {
  public:
    EngineControl(GameState& state, CommandQueue& commands, EngineSettings& settings, MoveControls& controls,
                  Rules& rules)
        : state_(state), commands_(commands), settings_(settings), controls_(controls), rules_(rules) {}

    /// Lets the engine move for the side to move, unless that side has no legal move.
    void StartEngineMove();
    /// Sends the user's move `san`, to be played in CurPos; the engine then thinks about its answer.
    void SendUserMove(TextView san);
    /// "new" and the saved strength. A running search is abandoned.
    void SendNewGame();
    /// Stops the running search; its move is still awaited. Once a search.
    void SendForce();
    /// The engine's board no longer matches. A running search is abandoned.
    void MarkResync();
    /// Sends `position`, its side to move and the ply number. A running search is abandoned.
    void SendPosition(const Position& position);

    void SetThinkingState();
    void SetIdleState();

  private:
    void SendPositionIfStale();
    void AbandonSearch();

    GameState& state_;
    CommandQueue& commands_;
    EngineSettings& settings_;
    MoveControls& controls_;
    Rules& rules_;
};

} // namespace quarnel
