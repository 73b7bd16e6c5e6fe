// The strip under the board that names the last move, and the two lights that tell whose turn it is.
//
// Plain controls with their designed looks; ZoomMenu has them laid out, BoardRenderer::ShowMoveText() sets
// them. Both lights off means that the game is over.
#pragma once

#include "platform/Form.h"

#include <array>

namespace quarnel {

struct StatusStrip {
    StatusStrip();

    /// Puts the strip and the lights on `form`; they must outlive its use.
    void AddTo(Form& form);

    /// Places the strip and the lights for the zoom `z`, in window pixels.
    void LayOut(double z);

    Control crtkalica{ControlKind::Picture, "crtkalica"}; ///< the strip
    Control mdis{ControlKind::Label, "mdis"};             ///< its text
    std::array<Control, 2> Picture4{{{ControlKind::Picture, "Picture4(0)"},
                                     {ControlKind::Picture, "Picture4(1)"}}}; ///< the lower and the upper light
};

} // namespace quarnel
