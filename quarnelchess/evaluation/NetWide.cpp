// Compiled for AVX2, alone: nothing in here may be a function that other files share, or the linker might keep this
// file's version of it for every processor. So it calls no inline functions but the intrinsics.
#include "quarnelchess/evaluation/Net.h"

#if defined(__x86_64__)

#include <immintrin.h>

namespace quarnel::engine::net {
namespace {

constexpr int Lanes = 16; // 16-bit numbers in a vector

__m256i Load(const std::int16_t* numbers) {
    return _mm256_load_si256(reinterpret_cast<const __m256i*>(numbers));
}

void Apply(std::int16_t* to, const std::int16_t* from, const Change& change) {
    const bool addsTwo = change.AddedCount > 1;
    const bool removesTwo = change.RemovedCount > 1;
    for (int i = 0; i < Hidden; i += Lanes) {
        __m256i sum = _mm256_add_epi16(Load(from + i), Load(change.Added[0] + i));
        sum = _mm256_sub_epi16(sum, Load(change.Removed[0] + i));
        if (removesTwo) sum = _mm256_sub_epi16(sum, Load(change.Removed[1] + i));
        if (addsTwo) sum = _mm256_add_epi16(sum, Load(change.Added[1] + i));
        _mm256_store_si256(reinterpret_cast<__m256i*>(to + i), sum);
    }
}

/// Each of the eight 32-bit lanes adds up an eighth of a half's products, see NetLayout.h for the bound.
__m256i HalfOutput(const std::int16_t* sums, const std::int16_t* weights) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i unit = _mm256_set1_epi16(Unit);
    __m256i output = zero;
    for (int i = 0; i < Hidden; i += Lanes) {
        const __m256i clipped = _mm256_min_epi16(_mm256_max_epi16(Load(sums + i), zero), unit);
        const __m256i weighted = _mm256_mullo_epi16(clipped, Load(weights + i));
        output = _mm256_add_epi32(output, _mm256_madd_epi16(weighted, clipped));
    }
    return output;
}

std::int64_t Output(const std::int16_t* own, const std::int16_t* other, const std::int16_t* weights) {
    const __m256i lanes = _mm256_add_epi32(HalfOutput(own, weights), HalfOutput(other, weights + Hidden));
    alignas(32) std::int32_t parts[8];
    _mm256_store_si256(reinterpret_cast<__m256i*>(parts), lanes);
    std::int64_t sum = 0;
    for (const std::int32_t part : parts) sum += part;
    return sum;
}

} // namespace

constexpr Operations WideOperations = {Apply, Output};

} // namespace quarnel::engine::net

#endif
