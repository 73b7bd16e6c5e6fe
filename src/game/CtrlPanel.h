// The hidden controller: new games, move input and stepping through the history.
//
// MoveInput.cpp reads the road of a click from top to bottom (ClickOnBoard); NewGame.cpp starts the
// game model and games; Navigation.cpp steps. Window events run inside many of these procedures, so a
// user action can start in the middle of another; MoveBusy, NavBusy and Thinking are the only guards.
// Program thread only.
#pragma once

#include "display/PieceAnimation.h"
#include "display/ZoomMenu.h"
#include "engine/EngineControl.h"
#include "engine/EngineLibrary.h"
#include "game/MoveRecorder.h"

namespace quarnel {

/// What MoveTAB is asked to do.
enum NavigationCode : std::int16_t { ToStart = 1, Back = 2, Forward = 3, ToEnd = 4, MoveNow = 5, StopThinking = 6 };

/// Whether a button press or its release acts on the board.
enum class BoardAction { Press, Drop };

/// What the controller works with; all owned by Program.
struct CtrlPanelParts {
    GameState& State;
    ControllerState& Controller;
    BoardPictures& Pictures;
    StatusStrip& Status;
    Desktop& Screen;
    Rules& Library;
    CommandQueue& Commands;
    EngineSettings& Settings;
    EngineControl& Control;
    notation::MoveTextReader& Reader;
    MoveRecorder& Recorder;
    BoardRenderer& Renderer;
    PieceAnimation& Animation;
    ZoomMenu& Zoom;
};

class CtrlPanel {
  public:
    explicit CtrlPanel(const CtrlPanelParts& parts);

    /// Loads the pictures and initialises the game model. Once.
    void Form_Load();
    void Intialize_Program();

    /// Starts a game from the standard position. Colours, orientation and the status text are the caller's.
    void NewGame();
    /// The Game menu's two commands.
    void NewGameAsWhite();
    void NewGameAsBlack();

    /// A press or release at the frame pixel (x, y): selects, drags, moves, or is refused silently.
    void ClickOnBoard(PointerButton button, int shift, float x, float y, BoardAction action);
    /// Drops the selection.
    void CancelPieceSel();

    /// Steps through the history, or tells the engine to move or stop. Codes outside 1..6 do nothing.
    /// `silent` lets a step forward land on a final result text.
    void MoveTAB(std::int16_t bindex, Truth silent);

    /// The position after `ply` plies of the recorded game; sets LastMove to the last move played and
    /// shows the text of `ply`. `incremental` plays just that ply on CurPos.
    Position ReplayToPly(int ply, Truth resync, Truth incremental);

  private:
    void NewGameAgainst(Truth computer);
    bool MaySelectOrMove(int piece, BoardAction action) const;
    void Select(Square square, int piece, PointerButton button, int shift, float x, float y, BoardAction action);
    MoveRec MoveTo(Square square) const;
    bool TakeLegalEntry(MoveRec& move);
    void PromoteAsChosen(MoveRec& move) const;
    void ExecuteMove(MoveRec move, BoardAction action);
    void MarkUserMove(const MoveRec& move);
    int SelectedPiece() const;

    void ShowPly(int ply);
    void StepForward(Truth silent);
    bool SkipsStart() const;
    void ShowPlyText(const Text& text);
    bool ReplayText(Position& position, const Text& text, MoveRec& last);

    CtrlPanelParts p_;
    Truth navBusy_ = False; // NavBusy: MoveTAB runs
};

} // namespace quarnel
