#include "MarginList.h"

#include "quarnelchess/search/Margins.h"

#include <cmath>

namespace quarnel::tuning {

void Margin::Set(double value) const {
    if (Whole != nullptr)
        *Whole = static_cast<int>(std::lround(value));
    else
        *Real = value;
}

std::span<const Margin> Margins() {
    using namespace engine::margins;
    static const Margin all[] = {
#include "MarginList.inc"
    };
    return all;
}

} // namespace quarnel::tuning
