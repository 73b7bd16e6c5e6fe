// Listens to the engine: has the move it announces played and tells the user of mate and stalemate.
//
// This is the only place where a search ends. Runs on the program's thread, called by the engine from
// inside its loop; window events run inside it while the move slides or a message is shown.
#pragma once

#include "controls/MessageBox.h"
#include "engine/EngineControl.h"
#include "engine/EngineLibrary.h"
#include "game/ComputerMove.h"

namespace quarnel {

class EngineOutput {
  public:
    EngineOutput(GameState& state, EngineLibrary& library, EngineControl& control, ComputerMove& computer,
                 MessageBox& messages)
        : state_(state), library_(library), control_(control), computer_(computer), messages_(messages) {}

    /// Fetches the output text of `length` characters and acts on it.
    void OutputCallback(std::int32_t length);

    /// Announces the mate and returns the controls to the idle state.
    void ShowCheckmate();

  private:
    Text FetchLine(std::int32_t length);
    void AnnounceEnd(const Text& line);
    void DropMove();

    GameState& state_;
    EngineLibrary& library_;
    EngineControl& control_;
    ComputerMove& computer_;
    MessageBox& messages_;
};

} // namespace quarnel
