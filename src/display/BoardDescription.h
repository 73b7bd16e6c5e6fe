// The board in words, for screen readers.
#pragma once

#include "model/GameState.h"
#include "platform/Form.h"

#include <vector>

namespace quarnel {

/// The 64 squares as they are shown, line by line from the top left: "e4, white pawn", "e5, empty" or, of the user's
/// piece that the next press moves, "d2, white pawn, selected"; with their places in the window (zoom and orientation
/// applied). For Form::OnDescribe.
std::vector<AccessibleItem> DescribeBoard(const GameState& state, const ControllerState& controller);

} // namespace quarnel
