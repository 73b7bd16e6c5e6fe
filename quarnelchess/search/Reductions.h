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
                const double product = std::log(depth) * std::log(number) * PlyUnits;
                quiet_[depth][number] =
                    static_cast<std::int16_t>(QuietReductionBase * PlyUnits + product / QuietReductionDivisor);
                noisy_[depth][number] =
                    static_cast<std::int16_t>(NoisyReductionBase * PlyUnits + product / NoisyReductionDivisor);
            }
        }
    }
    /// In units of which PlyUnits are a ply, for the `number`th move (from 1 on) of a node so deep.
    int Of(bool noisy, int depth, int number) const {
        return (noisy ? noisy_ : quiet_)[depth < 64 ? depth : 63][number < 64 ? number : 63];
    }

  private:
    std::int16_t quiet_[64][64] = {};
    std::int16_t noisy_[64][64] = {};
};

} // namespace quarnel::engine
