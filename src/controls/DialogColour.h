// The ground of the message box and of the help panel, which the button on it continues.
#pragma once

#include "platform/Surface.h"

namespace quarnel {

inline constexpr Colour DialogColour = Rgb(206, 206, 206);

} // namespace quarnel
