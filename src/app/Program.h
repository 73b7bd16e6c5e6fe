// Quarnel Chess as a whole: who there is, and who knows whom.
//
// Reads as a table of contents. Owns every part for the program's lifetime; parts get what they need as
// references and never reach each other through here. Program thread only.
#pragma once

#include "app/BoardMouse.h"
#include "app/FrmBoard.h"
#include "app/MenuCommands.h"
#include "display/BoardDescription.h"
#include "game/EngineOutput.h"

namespace quarnel {

class Program {
  public:
    /// `desktop` must outlive the program.
    explicit Program(Desktop& desktop) : Screen(desktop) {
        Board.Window.OnDescribe = [this] { return DescribeBoard(State, Controller); };
    }
    /// Events that wait for the main window are forgotten while all of its menu items are still there.
    ~Program() { Screen.Detach(Board.Window); }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// Starts up and plays. Returns when the engine is missing or has ended; window events still have to
    /// be processed then.
    void Run() { MainWindow.Form_Load(); }

    Desktop& Screen;

    // The state that the modules share.
    GameState State;
    ControllerState Controller;
    BoardPictures Pictures;

    // Windows.
    BoardWindow Board{Screen};
    MessageBox Messages{Screen};

    // The engine.
    EngineLibrary Library{Screen};
    CommandQueue Commands;
    EngineSettings Settings{State, Commands, Screen};
    EngineControl Control{State, Commands, Settings, Board.Moves, Library};
    EngineBridge Bridge{Library, Commands, Board.Moves, Screen,
                        [this](std::int32_t length) { Output.OutputCallback(length); }};

    // The board's picture.
    BoardRenderer Renderer{State, Controller, Pictures, Board.Status, Board.Window, Screen};
    PieceAnimation Animation{State, Controller, Pictures, Renderer, Board.Window, Screen};
    ZoomMenu Zoom{State,        Renderer, Board.Status, {Board.Picture2, Board.Moves.poke, Board.Picture1},
                  Board.Window, Screen};

    // The game.
    notation::MoveTextReader Reader{Library};
    MoveRecorder Recorder{State, Library, Reader, Renderer};
    MoveInput Input{State, Controller, Board.Status, Library, Control, Recorder, Renderer, Animation};
    Navigation Steps{State, Controller, Library, Control, Reader, Renderer, Animation, Screen};
    CtrlPanel Panel{State, Controller, Pictures, Control, Renderer, Animation, Zoom};
    ComputerMove Computer{State, Controller, Library, Reader, Recorder, Animation, Renderer};
    EngineOutput Output{State, Library, Control, Computer, Messages};
    GameFiles Files{State, Panel, Steps, Renderer, Messages, Board.Window, Screen};

    // The main window's procedures. The menus come first: the window is as high as they make it.
    MenuCommands Menus{Board, Zoom, Settings, Panel, Steps, Files, Controller, Screen};
    BoardMouse Mouse{Board.Window, State, Controller, Renderer, Input};
    FrmBoard MainWindow{Screen, Board, Library, Bridge, Settings, Control, Zoom, Panel};
};

} // namespace quarnel
