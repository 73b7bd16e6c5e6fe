// Quarnel Chess as a whole: who there is, and who knows whom.
//
// Reads as a table of contents. Owns every part for the program's lifetime; parts get what they need as
// references and never reach each other through here. Program thread only.
#pragma once

#include "app/FrmBoard.h"
#include "display/BoardDescription.h"

namespace quarnel {

class Program {
  public:
    /// `desktop` must outlive the program.
    explicit Program(Desktop& desktop) : Screen(desktop) {
        Board.Window.OnDescribe = [this] { return DescribeBoard(State); };
    }
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
    EngineBridge Bridge{Library, Commands, Board.Moves, Screen};

    // The board's picture.
    BoardRenderer Renderer{State, Controller, Pictures, Board.Status, Board.Window, Screen};
    PieceAnimation Animation{State, Controller, Pictures, Renderer, Board.Window, Screen};
    ZoomMenu Zoom{State,        Renderer, Board.Status, {Board.Picture2, Board.Moves.poke, Board.Picture1},
                  Board.Window, Screen};

    // The game.
    notation::MoveTextReader Reader{Library};
    MoveRecorder Recorder{State, Library, Reader, Renderer};
    CtrlPanel Panel{{State, Controller, Pictures, Board.Status, Screen, Library, Commands, Settings, Control, Reader,
                     Recorder, Renderer, Animation, Zoom}};
    ComputerMove Computer{State, Controller, Library, Control, Reader, Recorder, Animation, Renderer, Messages};
    GameFiles Files{State, Panel, Renderer, Messages, Board.Window, Screen};

    // The main window's procedures.
    FrmBoard MainWindow{
        {State, Controller, Screen, Board, Library, Bridge, Settings, Control, Zoom, Renderer, Computer, Panel, Files}};
};

} // namespace quarnel
