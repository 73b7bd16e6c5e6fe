// Pieces in motion: a move that slides to its square, and a piece that follows the pointer.
//
// Both loops draw straight into the frame and end with a full RedrawBoard(). They let window events
// run on every pass, so any handler may run inside them. Lengths are frame pixels. Program thread only.
#pragma once

#include "display/BoardRenderer.h"

namespace quarnel {

class PieceAnimation {
  public:
    PieceAnimation(GameState& state, ControllerState& controller, BoardPictures& pictures, BoardRenderer& renderer,
                   Form& frmBoard, Desktop& desktop);

    /// Prepares the mask sheet and the table of piece images. Once, at start-up.
    void Bitmaps_LoadPieces();

    /// Slides `move` over `position`, the position before it, in 50 ms a square, then redraws.
    /// buf(0) must still hold the frame of that position.
    ///
    /// A castling record is rewritten to the king's move and stays so; on return the record is in board
    /// coordinates, flipped board or not. Unless `NoMarks`, the move's squares are marked as last move.
    /// Nothing happens when origin and destination are the same; nothing is drawn or redrawn when the
    /// origin is empty. Ends at its first failure with the redraw.
    void AnimateMove(const Position& position, MoveRec& move, Truth NoMarks);

    /// Lets the piece FloatPiece, picked up at (x, y), follow the pointer (CurrentX, CurrentY) until a
    /// handler clears FloatPiece; then redraws. Sleeps while the pointer rests.
    void MovePiece(PointerButton button, int shift, float x, float y);

  private:
    struct Path;

    bool Slide(const Position& position, MoveRec& move, Truth NoMarks);
    bool RunSlide(int piece, const Path& path);
    void AwaitNextPicture(std::uint32_t shownMs, std::uint32_t mostMs);
    void DrawDragged();
    void KeepDragPosition();

    GameState& state_;
    ControllerState& controller_;
    BoardPictures& pictures_;
    BoardRenderer& renderer_;
    Form& frmBoard_;
    Desktop& desktop_;
};

} // namespace quarnel
