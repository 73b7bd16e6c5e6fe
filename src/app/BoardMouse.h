// The pointer on the main window: window pixels become the frame pixels that everything below works in.
//
// Its handlers are run by the desktop's event queue, possibly inside another one. Program thread only.
#pragma once

#include "game/MoveInput.h"

namespace quarnel {

class BoardMouse {
  public:
    /// Takes over the pointer events of `frmBoard`.
    BoardMouse(Form& frmBoard, GameState& state, ControllerState& controller, BoardRenderer& renderer,
               MoveInput& input);

    void Form_MouseDown(PointerButton button, int shift, float x, float y);
    void Form_MouseMove(PointerButton button, int shift, float x, float y);
    void Form_MouseUp(PointerButton button, int shift, float x, float y);

  private:
    float ToFrame(float windowPixels) const;

    GameState& state_;
    ControllerState& controller_;
    BoardRenderer& renderer_;
    MoveInput& input_;
};

} // namespace quarnel
