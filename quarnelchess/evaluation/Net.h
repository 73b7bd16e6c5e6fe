// The net's numbers and the two operations on them that cost time, each in a version for every processor and one for
// wide vectors. All versions give the same values: they are sums of whole numbers that cannot overflow, see
// NetLayout.h.
#pragma once

#include "quarnelchess/evaluation/NetLayout.h"

#include <cstdint>

namespace quarnel::engine::net {

extern const std::int16_t Numbers[NumberCount];

/// What a move changes in the sums of one view, as rows of the input weights.
struct Change {
    const std::int16_t* Added[2];
    const std::int16_t* Removed[2];
    int AddedCount = 0;   // 1 or 2
    int RemovedCount = 0; // 1 or 2
};

/// Stateless, any thread. Sums are Hidden numbers, aligned to 64 bytes, as the rows are.
struct Operations {
    /// to = from + added - removed; they may be the same.
    void (*Apply)(std::int16_t* to, const std::int16_t* from, const Change& change);
    /// Over both views: the clipped sums squared, times the weights of an output set.
    std::int64_t (*Output)(const std::int16_t* own, const std::int16_t* other, const std::int16_t* weights);
};

/// For every processor.
extern const Operations BaseOperations;
#if defined(__x86_64__)
/// For those with 256-bit vectors of whole numbers (AVX2).
extern const Operations WideOperations;
#endif
/// The fastest that this processor has.
const Operations& BestOperations();

} // namespace quarnel::engine::net
