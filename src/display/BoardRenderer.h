// Board renderer: draws a position into the off-screen frame and shows it.
//
// Start at RedrawBoard(). Reads GameState and never changes it, FlipBoard() apart. Every change is
// shown by composing the whole frame again; only PieceAnimation draws less. Lengths are frame pixels,
// the unzoomed 366 x 366 picture. Program thread only; every call that shows a frame lets pending
// window events run before it returns, so any handler may run inside it.
#pragma once

#include "display/BoardPictures.h"
#include "display/StatusStrip.h"
#include "model/GameState.h"
#include "platform/Desktop.h"

namespace quarnel {

inline constexpr Rectangle WholeFrame{0, 0, FrameWidth, FrameHeight};

/// Shows the finished frame buf(3), stretched by `zoom`, and lets pending window events run. It differs from the one
/// shown last in the frame pixels of `changed` at most.
void PresentFrame(Desktop& desktop, Form& frmBoard, const BoardPictures& pictures, float zoom,
                  const Rectangle& changed = WholeFrame);

class BoardRenderer {
  public:
    BoardRenderer(GameState& state, ControllerState& controller, BoardPictures& pictures, StatusStrip& status,
                  Form& frmBoard, Desktop& desktop);

    /// Composes and shows the current position.
    void RedrawBoard();

    /// Composes and shows `position`. With `hide` the square (SelFile, SelRow) is drawn without its
    /// piece; a piece being dragged sets it.
    void DrawBoard(const Position& position, Truth& hide);

    /// Shows `text`, a move or "none", in the status strip, and lights the side to move. A mate ("#")
    /// puts both lights out.
    void ShowMoveText(const Text& text);

    /// Turns the board round and shows it.
    void FlipBoard();

    /// Whether the frame pixel (x, y) lies outside the board's middle 400 x 400; never during a drag.
    bool BoardBorder(float x, float y) const;

    // Start-up, in this order.

    /// Sets the labels' font size; the geometry itself is constant (BoardGeometry.h).
    void LoadBoard_S();
    /// Builds the bare board in Picture1 and leaves pquad2 as the mate marker.
    void ploca();
    /// Rebuilds buf(2), the bare board with the labels of the present orientation.
    void DrawCoordinates();

    /// Copies `source` from (0, 0) over the whole of `destination`, as far as it goes.
    void CopyPicture(Surface& destination, const Surface& source);

  private:
    void MarkKingInCheck();
    void DrawPieces(const Position& position, Truth hide);
    void MarkSquare(int file, int row, const Surface& mark, RasterOp operation);

    GameState& state_;
    ControllerState& controller_;
    BoardPictures& pictures_;
    StatusStrip& status_;
    Form& frmBoard_;
    Desktop& desktop_;
};

} // namespace quarnel
