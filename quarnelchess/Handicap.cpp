#include "Handicap.h"

#include <algorithm>

namespace quarnel::engine {
namespace {

std::uint64_t Mix(std::uint64_t z) {
    z += 0x9E3779B97F4A7C15ULL;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
}

} // namespace

Handicap HandicapFor(int skill) {
    if (skill >= 100) return {};
    const int clamped = std::max(skill, 0);
    Handicap handicap;
    handicap.Depth = 1 + clamped / 14;
    handicap.Nodes = static_cast<std::uint64_t>(400 + clamped * clamped * 8);
    handicap.Candidates = 5;
    handicap.NoiseCp = (100 - clamped) * 2;
    return handicap;
}

std::size_t ChooseCandidate(const std::vector<int>& values, const Handicap& handicap, std::uint64_t randomState) {
    const std::size_t count = std::min(values.size(), static_cast<std::size_t>(handicap.Candidates));
    if (handicap.NoiseCp == 0 || count < 2) return 0;
    std::size_t chosen = 0;
    int best = -1000000;
    for (std::size_t i = 0; i < count; ++i) {
        randomState = Mix(randomState);
        const int value = values[i] + static_cast<int>(randomState % static_cast<std::uint64_t>(handicap.NoiseCp));
        if (value > best) {
            best = value;
            chosen = i;
        }
    }
    return chosen;
}

} // namespace quarnel::engine
