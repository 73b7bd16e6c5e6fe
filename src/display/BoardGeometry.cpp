#include "display/BoardGeometry.h"

#include <cmath>

namespace quarnel {

Square SquareAtPixel(double x, double y, Truth flipped) {
    const auto cell = [](double pixel) {
        return static_cast<int>(std::floor((pixel - SquareOrigin) / SquarePitch)) + 1;
    };
    return Mirrored({cell(x), cell(y)}, flipped);
}

} // namespace quarnel
