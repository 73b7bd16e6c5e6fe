// The zoom: eight sizes of the window, in each of which the controls on the board's border are laid out anew.
//
// Call MeasureWindow() once while the window has its designed size, then ApplySavedZoom(). The board
// itself is always composed at one size and only shown stretched. Program thread only.
#pragma once

#include "display/BoardRenderer.h"

#include <array>
#include <cstdint>

namespace quarnel {

/// The main window's controls that move with the zoom, besides the status strip.
struct ZoomedControls {
    Control& Picture2;            ///< the toolbar strip
    std::array<Control, 6>& poke; ///< its buttons
    Control& Picture1;            ///< the welcome panel, kept in the middle
};

class ZoomMenu {
  public:
    ZoomMenu(GameState& state, BoardRenderer& renderer, StatusStrip& status, ZoomedControls controls, Form& frmBoard,
             Desktop& desktop);

    /// "75 %" to "250 %", for the Zoom submenu.
    std::array<MenuItem, 8> vw;

    /// Keeps the window's designed inner size and the size of its frame.
    void MeasureWindow();

    /// Applies zoom `index` (0..7) and stores it. Any other index keeps the zoom as it is.
    void vw_Click(std::int16_t index);

    /// Applies the stored zoom, "100 %" where there is none; nothing when it is no number.
    void ApplySavedZoom();

  private:
    void LayOut(double z);

    GameState& state_;
    BoardRenderer& renderer_;
    StatusStrip& status_;
    ZoomedControls controls_;
    Form& frmBoard_;
    Desktop& desktop_;

    // Twips.
    float clientWidth_ = 0;
    float clientHeight_ = 0;
    float borderWidth_ = 0;
    float borderHeight_ = 0;
};

} // namespace quarnel
