// The main window's procedures: start-up, mouse, menus and toolbar.
//
// Form_Load() is the program: it returns only when the engine does, or at once when the engine library
// is missing. Every handler here is run by the desktop's event queue, possibly inside another one.
#pragma once

#include "app/BoardWindow.h"
#include "engine/EngineBridge.h"
#include "game/ComputerMove.h"
#include "game/CtrlPanel.h"
#include "game/GameFiles.h"

namespace quarnel {

/// What the main window works with; all owned by Program.
struct FrmBoardParts {
    GameState& State;
    ControllerState& Controller;
    Desktop& Screen;
    BoardWindow& Board;
    EngineLibrary& Library;
    EngineBridge& Bridge;
    EngineSettings& Settings;
    EngineControl& Control;
    ZoomMenu& Zoom;
    BoardRenderer& Renderer;
    ComputerMove& Computer;
    CtrlPanel& Panel;
    GameFiles& Files;
};

class FrmBoard {
  public:
    explicit FrmBoard(const FrmBoardParts& parts);

    void Form_Load();
    /// Ends the program at once; the engine is not told and nothing is saved.
    void Form_QueryUnload();
    /// Lets window events run for `seconds`.
    void WaitSeconds(float seconds);

    void Form_MouseDown(PointerButton button, int shift, float x, float y);
    void Form_MouseMove(PointerButton button, int shift, float x, float y);
    void Form_MouseUp(PointerButton button, int shift, float x, float y);

    void SubFileMenu_Click(int index);
    void SubMovesMenu_Click(int index);
    void poke_Click(int index);
    void pprom_Click(int index);
    void hlp_Click();
    void hpg_Click();
    void ctrl_SkinableButton1_Click();

  private:
    void BuildMenus();
    void ConnectHandlers();
    void CountEngineThreads();

    FrmBoardParts p_;
};

} // namespace quarnel
