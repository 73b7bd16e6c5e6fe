#include "game/CtrlPanel.h"

#include "notation/PositionText.h"

namespace quarnel {

namespace {

constexpr std::size_t FirstVariationRows = 101;

} // namespace

CtrlPanel::CtrlPanel(const CtrlPanelParts& parts) : p_(parts) {}

void CtrlPanel::Form_Load() {
    LoadDesignedPictures(p_.Pictures);
    Intialize_Program();
}

void CtrlPanel::Intialize_Program() {
    p_.Renderer.LoadBoard_S();
    p_.State.StartFen = StandardStart;
    p_.State.GameStartFen = p_.State.StartFen;
    notation::FenToPosition(p_.State.GameStartFen, p_.State.CurPos);
    CreateWorkSurfaces(p_.Pictures);
    p_.Renderer.ploca();
    p_.Zoom.ApplySavedZoom();
    p_.Renderer.DrawCoordinates();
    p_.Animation.Bitmaps_LoadPieces();
    p_.State.ComputerColor = Black;
    NewGame();
}

void CtrlPanel::NewGame() {
    GameState& state = p_.State;
    state.GameStartFen = state.StartFen;
    notation::FenToPosition(state.GameStartFen, state.CurPos);
    state.PlyNow = 0;
    state.PlyCount = 0;
    p_.Controller.SelFile = 0;
    p_.Controller.SelRow = 0;
    p_.Controller.FloatPiece = NoPiece;
    state.LastMoveFile = 0;
    state.MoveText.assign(1, {});
    state.Variations.assign(FirstVariationRows, {});
    p_.Renderer.RedrawBoard();
    if (state.Thinking != False) {
        p_.Control.MarkResync();
    } else {
        p_.Control.SendNewGame();
    }
}

// The board is turned only when the user changes sides.
void CtrlPanel::NewGameAgainst(Truth computer) {
    p_.State.PlyNow = 0;
    if (p_.State.ComputerColor != computer) {
        p_.State.ComputerColor = computer;
        p_.Renderer.FlipBoard();
    }
    p_.Renderer.ShowMoveText(u"none");
    NewGame();
}

void CtrlPanel::NewGameAsWhite() {
    NewGameAgainst(Black);
}

void CtrlPanel::NewGameAsBlack() {
    NewGameAgainst(White);
    p_.Control.StartEngineMove();
}

} // namespace quarnel
