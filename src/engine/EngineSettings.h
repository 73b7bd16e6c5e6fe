// What the user sets about the engine: strength and pondering, and the lines that tell it.
//
// Owns the menu items that show these choices. A choice is stored the moment it is made.
// Program thread only.
#pragma once

#include "engine/CommandQueue.h"
#include "model/GameState.h"
#include "platform/Desktop.h"

#include <array>

namespace quarnel {

class EngineSettings {
  public:
    EngineSettings(GameState& state, CommandQueue& commands, Desktop& desktop);

    std::int16_t EngineSkill = 100; ///< 10..100, first number of the strength line
    int MoveTime = 10;              ///< tenths of a second a move, its second number
    std::int16_t EngineThreads = 1; ///< 1..8
    Truth PonderWanted = False;     ///< the "Ponder" check mark when last taken
    Truth PonderPending = False;    ///< the engine has not been told PonderWanted yet

    MenuItem StrengthSubmenu{"cs3e3e", u"Computer strength"};
    std::array<MenuItem, 10> cs; ///< levels 1 to 10
    MenuItem pnd{"pnd", u"Ponder"};

    /// Applies level `index` (0..9 are the menu's) and sends it. Never stores it.
    void setlevel(std::int16_t index);
    /// Applies the stored level, the seventh when none is stored; a damaged one applies nothing.
    void SetSavedLevel();
    void cs_Click(std::int16_t index);

    void pnd_Click();
    /// Takes the check mark of `pnd`. While the engine thinks, telling it waits for the idle state.
    void pnd_C();
    /// Tells the engine PonderWanted, if that is still to be done.
    void SetCurrentPonderState();

    /// Marks the engine's clock: goes before every search and every user move.
    void UpdateClock();

    /// The lines the engine hears first. Leaves the ponder line pending once more.
    void ApplyEngineOptions();

  private:
    GameState& state_;
    CommandQueue& commands_;
    Desktop& desktop_;
};

} // namespace quarnel
