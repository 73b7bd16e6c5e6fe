// The main window's start-up and end.
//
// Form_Load() is the program: it returns only when the engine does, or at once when the engine library
// is missing. The window's mouse is BoardMouse, its menus are MenuCommands.
#pragma once

#include "app/BoardWindow.h"
#include "engine/EngineBridge.h"
#include "game/CtrlPanel.h"

namespace quarnel {

class FrmBoard {
  public:
    /// Makes the window known to the desktop; its menus must be complete.
    FrmBoard(Desktop& desktop, BoardWindow& board, EngineLibrary& library, EngineBridge& bridge,
             EngineSettings& settings, EngineControl& control, ZoomMenu& zoom, CtrlPanel& panel);

    void Form_Load();
    /// Ends the program at once; the engine is not told and nothing is saved.
    void Form_QueryUnload();
    /// Lets window events run for `seconds`.
    void WaitSeconds(float seconds);

  private:
    void CountEngineThreads();

    Desktop& desktop_;
    BoardWindow& board_;
    EngineLibrary& library_;
    EngineBridge& bridge_;
    EngineSettings& settings_;
    EngineControl& control_;
    ZoomMenu& zoom_;
    CtrlPanel& panel_;
};

} // namespace quarnel
