// Listens to the engine: plays the move it announces and tells the user of mate and stalemate.
//
// This is the only place where a search ends. Runs on the program's thread, called by the engine from
// inside its loop; window events run inside it while the move slides.
#pragma once

#include "controls/MessageBox.h"
#include "display/PieceAnimation.h"
#include "engine/EngineControl.h"
#include "engine/EngineLibrary.h"
#include "engine/OutputLine.h"
#include "game/MoveRecorder.h"

namespace quarnel {

class ComputerMove {
  public:
    ComputerMove(GameState& state, ControllerState& controller, EngineLibrary& library, EngineControl& control,
                 notation::MoveTextReader& reader, MoveRecorder& recorder, PieceAnimation& animation,
                 BoardRenderer& renderer, MessageBox& messages)
        : state_(state), controller_(controller), library_(library), control_(control), reader_(reader),
          recorder_(recorder), animation_(animation), renderer_(renderer), messages_(messages) {}

    /// Fetches the output text of `length` characters and acts on it.
    void OutputCallback(std::int32_t length);

    /// Announces the mate and returns the controls to the idle state.
    void ShowCheckmate();

  private:
    Text FetchLine(std::int32_t length);
    void AnnounceEnd(const Text& line);
    void DropMove();
    void Play(const Text& token);
    void MarkMove(const MoveRec& move);

    GameState& state_;
    ControllerState& controller_;
    EngineLibrary& library_;
    EngineControl& control_;
    notation::MoveTextReader& reader_;
    MoveRecorder& recorder_;
    PieceAnimation& animation_;
    BoardRenderer& renderer_;
    MessageBox& messages_;
};

} // namespace quarnel
