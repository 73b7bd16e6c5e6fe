// How a weaker player is made: less work for each move, and a judgement that is sometimes off.
//
// Nothing here depends on time, so a level plays alike on every machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quarnel::engine {

struct Handicap {
    int Depth = 1000;
    std::uint64_t Nodes = 0; // 0: no limit
    int Candidates = 1;      // root moves searched with exact values
    int NoiseCp = 0;         // how far the judgement of a candidate may be off
};

/// `skill` 0..100; 100 is no handicap at all.
Handicap HandicapFor(int skill);

/// The index of the root move to play, from values ordered best first. Only the first
/// `handicap.Candidates` are considered; the same random state always chooses alike.
std::size_t ChooseCandidate(const std::vector<int>& values, const Handicap& handicap, std::uint64_t randomState);

} // namespace quarnel::engine
