#include "quarnelchess/evaluation/Net.h"

#include <algorithm>

namespace quarnel::engine::net {
namespace {

void Apply(std::int16_t* to, const std::int16_t* from, const Change& change) {
    // With one row too few, one is added and removed again: cheaper than a loop over rows in the loop over numbers.
    const std::int16_t* const added = change.Added[0];
    const std::int16_t* const removed = change.Removed[0];
    const bool isLong = change.AddedCount + change.RemovedCount > 2;
    const std::int16_t* const alsoAdded = change.AddedCount > 1 ? change.Added[1] : removed;
    const std::int16_t* const alsoRemoved = change.RemovedCount > 1 ? change.Removed[1] : removed;
    if (!isLong) {
        for (int i = 0; i < Hidden; ++i) to[i] = static_cast<std::int16_t>(from[i] + added[i] - removed[i]);
    } else if (change.AddedCount == 1) {
        for (int i = 0; i < Hidden; ++i)
            to[i] = static_cast<std::int16_t>(from[i] + added[i] - removed[i] - alsoRemoved[i]);
    } else {
        for (int i = 0; i < Hidden; ++i)
            to[i] = static_cast<std::int16_t>(from[i] + added[i] + alsoAdded[i] - removed[i] - alsoRemoved[i]);
    }
}

std::int32_t HalfOutput(const std::int16_t* sums, const std::int16_t* weights) {
    std::int32_t output = 0;
    for (int i = 0; i < Hidden; ++i) {
        const auto clipped = static_cast<std::int16_t>(std::clamp<int>(sums[i], 0, Unit));
        output += static_cast<std::int16_t>(clipped * weights[i]) * clipped;
    }
    return output;
}

std::int64_t Output(const std::int16_t* own, const std::int16_t* other, const std::int16_t* weights) {
    return std::int64_t{HalfOutput(own, weights)} + HalfOutput(other, weights + Hidden);
}

} // namespace

constexpr Operations BaseOperations = {Apply, Output};

const Operations& BestOperations() {
#if defined(__x86_64__)
    static const bool isWide = __builtin_cpu_supports("avx2") != 0;
    if (isWide) return WideOperations;
#endif
    return BaseOperations;
}

} // namespace quarnel::engine::net
