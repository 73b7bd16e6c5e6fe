// What the program recognises in the engine's output. Pure functions over one output text.
#pragma once

#include "base/Text.h"

#include <optional>

namespace quarnel {

/// "White(12): Nf6 " taken apart.
struct MoveLine {
    Text Number; ///< between the brackets
    Text Move;   ///< the last word before the final blank; empty when there is none
};

/// Whether `line` announces a move of either side.
bool IsMoveLine(TextView line);

/// The parts of a move line; nothing when the bracket is not closed by "): ".
std::optional<MoveLine> ReadMoveLine(TextView line);

} // namespace quarnel
