#include "app/BoardMouse.h"

#include <cmath>

namespace quarnel {

BoardMouse::BoardMouse(Form& frmBoard, GameState& state, ControllerState& controller, BoardRenderer& renderer,
                       MoveInput& input)
    : state_(state), controller_(controller), renderer_(renderer), input_(input) {
    frmBoard.OnMouseDown = [this](const PointerEvent& e) { Form_MouseDown(e.Button, e.Shift, e.X, e.Y); };
    frmBoard.OnMouseMove = [this](const PointerEvent& e) { Form_MouseMove(e.Button, e.Shift, e.X, e.Y); };
    frmBoard.OnMouseUp = [this](const PointerEvent& e) { Form_MouseUp(e.Button, e.Shift, e.X, e.Y); };
}

// Rounded down on all sides of the window.
float BoardMouse::ToFrame(float windowPixels) const {
    return std::floor(windowPixels / state_.Zoom);
}

void BoardMouse::Form_MouseDown(PointerButton button, int shift, float x, float y) {
    x = ToFrame(x);
    y = ToFrame(y);
    if (button == PointerButton::Right) {
        if (renderer_.BoardBorder(x, y)) return;
        if (controller_.SelFile != 0) {
            controller_.SelFile = 0;
            input_.CancelPieceSel();
            return;
        }
    }
    input_.ClickOnBoard(button, shift, x, y, BoardAction::Press);
}

void BoardMouse::Form_MouseMove(PointerButton, int, float x, float y) {
    controller_.CurrentX = static_cast<std::int32_t>(ToFrame(x));
    controller_.CurrentY = static_cast<std::int32_t>(ToFrame(y));
}

void BoardMouse::Form_MouseUp(PointerButton button, int shift, float x, float y) {
    x = ToFrame(x);
    y = ToFrame(y);
    if (controller_.SelFile == 0) return;
    controller_.DragLastX = 0;
    controller_.DragLastY = 0;
    controller_.FloatPiece = NoPiece;
    input_.ClickOnBoard(button, shift, x, y, BoardAction::Drop);
}

} // namespace quarnel
