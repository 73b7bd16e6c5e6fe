#include "platform/Surface.h"

#include <algorithm>

namespace quarnel {

Surface::Surface(int width, int height, Colour colour)
    : width_(std::max(width, 0)), height_(std::max(height, 0)),
      pixels_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_), colour) {}

void Surface::Fill(Colour colour) {
    std::fill(pixels_.begin(), pixels_.end(), colour);
}

} // namespace quarnel
