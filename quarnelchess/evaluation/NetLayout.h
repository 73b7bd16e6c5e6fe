// The shape of the evaluation's net and of its file: constants alone, shared with the trainer and the embedding tool.
//
// Inputs: one for each piece on each square, seen from one side: own pieces first, the board turned so that the own
// first rank is at the bottom, and mirrored where the own king would stand on the files e to h. One hidden layer,
// computed once from each side's view. The output reads both halves, the side to move's first, with the set of
// weights that the number of pieces picks.
//
// Whole numbers: a hidden sum of Unit stands for 1, an output weight of OutputUnit, too. A hidden value is the sum
// clipped to 0..Unit and squared. No product or sum can overflow:
// - In training, what goes into a hidden sum is kept within +-1.98, 505 when rounded; 32 pieces and the bias stay below
//   33 * 505 = 16,665 < 2^15.
// - Output weights are kept within +-0.495, so they are at most 127, so Unit * 127 = 32,385 < 2^15, and a half of
//   the output's sum is at most 256 * 255 * 255 * 127 = 2,114,092,800 < 2^31.
#pragma once

#include <cstddef>

namespace quarnel::engine::net {

constexpr int Inputs = 2 * 6 * 64;
constexpr int Hidden = 256;
constexpr int OutputSets = 8; // by pieces on the board: 2 to 5, 6 to 9, ... 30 to 32
constexpr int Unit = 255;
constexpr int OutputUnit = 256;
constexpr double LargestInputWeight = 1.98;   // and bias of a hidden sum
constexpr double LargestOutputWeight = 0.495; // and bias of an output

constexpr int OutputSet(int pieces) {
    return (pieces - 2) / 4;
}

// The file: so many 16-bit numbers, little-endian, in this order.
constexpr std::size_t InputWeightsAt = 0; // [Inputs][Hidden]
constexpr std::size_t HiddenBiasAt = std::size_t{Inputs} * Hidden;
constexpr std::size_t OutputWeightsAt = HiddenBiasAt + Hidden;                               // [OutputSets][2 * Hidden]
constexpr std::size_t OutputBiasAt = OutputWeightsAt + std::size_t{OutputSets} * 2 * Hidden; // Unit * OutputUnit is 1
constexpr std::size_t ScaleAt = OutputBiasAt + OutputSets; // centipawns of an output of 1
constexpr std::size_t NumberCount = ScaleAt + 1;

} // namespace quarnel::engine::net
