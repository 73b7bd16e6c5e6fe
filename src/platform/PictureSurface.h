// The program's embedded pictures as surfaces.
#pragma once

#include "platform/Form.h"
#include "platform/Surface.h"

#include <string_view>

namespace quarnel {

/// A copy of the embedded picture `name`, alpha included; an empty surface where there is none.
Surface PictureSurface(std::string_view name);

/// The same as a picture of one size.
PictureRef PictureNamed(std::string_view name);

} // namespace quarnel
