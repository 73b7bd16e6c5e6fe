// Scatters the bits of a number, so that numbers in a row become numbers that look drawn at random.
#pragma once

#include <cstdint>

namespace quarnel::engine {

/// What Mix() adds first: multiples of it are spread evenly over all 64 bits.
inline constexpr std::uint64_t MixStep = 0x9E3779B97F4A7C15ULL;

/// One to one. The steps of a splittable generator by Steele, Lea and Flood (2014).
constexpr std::uint64_t Mix(std::uint64_t z) {
    z += MixStep;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
}

} // namespace quarnel::engine
