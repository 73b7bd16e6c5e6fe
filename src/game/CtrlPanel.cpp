#include "game/CtrlPanel.h"

#include "notation/PositionText.h"

namespace quarnel {

namespace {

constexpr std::size_t FirstVariationRows = 101;

} // namespace

void CtrlPanel::SetStartValues() {
    state_.Zoom = 1.0F;
    controller_.PromotePiece = Queen;
    state_.ShowLastMove = 1;
    state_.Variations.assign(FirstVariationRows, {});
}

void CtrlPanel::Form_Load() {
    LoadDesignedPictures(pictures_);
    Intialize_Program();
}

void CtrlPanel::Intialize_Program() {
    renderer_.LoadBoard_S();
    state_.StartFen = StandardStart;
    state_.GameStartFen = state_.StartFen;
    notation::FenToPosition(state_.GameStartFen, state_.CurPos);
    CreateWorkSurfaces(pictures_);
    renderer_.ploca();
    zoom_.ApplySavedZoom();
    renderer_.DrawCoordinates();
    animation_.Bitmaps_LoadPieces();
    state_.ComputerColor = Black;
    NewGame();
}

void CtrlPanel::NewGame() {
    state_.GameStartFen = state_.StartFen;
    notation::FenToPosition(state_.GameStartFen, state_.CurPos);
    state_.PlyNow = 0;
    state_.PlyCount = 0;
    controller_.SelFile = 0;
    controller_.SelRow = 0;
    controller_.FloatPiece = NoPiece;
    state_.LastMoveFile = 0;
    state_.MoveText.assign(1, {});
    state_.Variations.assign(FirstVariationRows, {});
    renderer_.RedrawBoard();
    if (state_.Thinking != False) {
        control_.MarkResync();
    } else {
        control_.SendNewGame();
    }
}

// The board is turned only when the user changes sides.
void CtrlPanel::NewGameAgainst(Truth computer) {
    state_.PlyNow = 0;
    if (state_.ComputerColor != computer) {
        state_.ComputerColor = computer;
        renderer_.FlipBoard();
    }
    renderer_.ShowMoveText(u"none");
    NewGame();
}

void CtrlPanel::NewGameAsWhite() {
    NewGameAgainst(Black);
}

void CtrlPanel::NewGameAsBlack() {
    NewGameAgainst(White);
    control_.StartEngineMove();
}

} // namespace quarnel
