// Where the toolbar lies on the board's border: a strip, and six buttons on it.
//
// The controls themselves stand elsewhere and are handed in; lengths here are frame pixels.
#pragma once

#include "platform/Form.h"

#include <array>

namespace quarnel {

inline constexpr int ToolbarLeft = 25;
inline constexpr std::array<int, 6> ButtonLeft{0, 16, 40, 56, 96, 112}; ///< inside the strip
inline constexpr int ButtonSize = 16;

/// Places the strip for the zoom `z`, in window pixels.
void PlaceToolbar(Control& strip, double z);

/// Places the strip's buttons for the zoom `z`.
void PlaceButtons(std::array<Control, 6>& buttons, double z);

} // namespace quarnel
