// Late moves are searched shallower, the more so the deeper the node and the later the move.
#pragma once

#include "quarnelchess/search/Margins.h"

#include <cmath>
#include <cstdint>

namespace quarnel::engine {

class ReductionTable {
  public:
    ReductionTable() {
        using namespace margins;
        for (int depth = 1; depth < 64; ++depth) {
            for (int number = 1; number < 64; ++number) {
                const double product = std::log(depth) * std::log(number);
                quiet_[depth][number] = static_cast<std::uint8_t>(QuietReductionBase + product / QuietReductionDivisor);
                noisy_[depth][number] = static_cast<std::uint8_t>(NoisyReductionBase + product / NoisyReductionDivisor);
            }
        }
    }
    /// Plies, for the `number`th move (from 1 on) of a node so deep.
    int Of(bool noisy, int depth, int number) const {
        return (noisy ? noisy_ : quiet_)[depth < 64 ? depth : 63][number < 64 ? number : 63];
    }

  private:
    std::uint8_t quiet_[64][64] = {};
    std::uint8_t noisy_[64][64] = {};
};

} // namespace quarnel::engine
