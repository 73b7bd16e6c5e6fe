// What a search thread remembers about moves, to try the promising ones first.
#pragma once

#include "Board.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace quarnel::engine {

/// A bounded counter: bonuses shrink as it nears the limit, so old news fades.
template <int Limit>
class HistoryCounter {
  public:
    void Add(int bonus) {
        const int clamped = std::clamp(bonus, -Limit, Limit);
        value_ = static_cast<std::int16_t>(value_ + clamped - value_ * std::abs(clamped) / Limit);
    }
    int Value() const { return value_; }

  private:
    std::int16_t value_ = 0;
};

struct History {
    static constexpr int QuietLimit = 8192;
    static constexpr int CaptureLimit = 8192;

    HistoryCounter<QuietLimit> Quiet[2][64][64];     // side, from, to
    HistoryCounter<CaptureLimit> Capture[16][64][7]; // piece, to, captured kind

    void Clear() { *this = History{}; }
};

} // namespace quarnel::engine
