// The main window's commands: the menu bar put together, and what each item and each toolbar button does.
//
// Items that a module drives alone have their handlers there (ZoomMenu, EngineSettings). The handlers are
// run by the desktop's event queue, possibly inside another one. Program thread only.
#pragma once

#include "app/BoardWindow.h"
#include "display/ZoomMenu.h"
#include "engine/EngineSettings.h"
#include "game/CtrlPanel.h"
#include "game/GameFiles.h"
#include "game/Navigation.h"

namespace quarnel {

class MenuCommands {
  public:
    /// Puts the menus into the window and takes over their clicks.
    MenuCommands(BoardWindow& board, ZoomMenu& zoom, EngineSettings& settings, CtrlPanel& panel, Navigation& steps,
                 GameFiles& files, ControllerState& controller, Desktop& desktop);

    void SubFileMenu_Click(int index);
    void SubMovesMenu_Click(int index);
    void poke_Click(int index);
    void pprom_Click(int index);
    void hlp_Click();
    void hpg_Click();
    void ctrl_SkinableButton1_Click();

  private:
    void ConnectHandlers();

    BoardWindow& board_;
    CtrlPanel& panel_;
    Navigation& steps_;
    GameFiles& files_;
    ControllerState& controller_;
    Desktop& desktop_;
};

} // namespace quarnel
