// Positions to fit the weights to, each as the sparse list of weights that its static value uses.
//
// LoadTrainingData() reads what quarnel-selfplay writes. A position takes about 70 terms of four bytes,
// so a million need some 300 MB.
#pragma once

#include "quarnelchess/evaluation/Weights.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace quarnel::tuning {

/// The weights as numbers that can move by less than a centipawn.
struct SmoothScore {
    double Mg = 0;
    double Eg = 0;
};
using SmoothWeights = std::vector<SmoothScore>; // engine::WeightCount of them

/// The weights compiled in.
SmoothWeights CompiledWeights();

struct Term {
    std::uint16_t Weight = 0;
    std::int16_t Count = 0; // White's less Black's
};

struct Sample {
    std::uint32_t FirstTerm = 0;
    std::uint32_t TermCount = 0;
    float MiddlegameShare = 0; // of the middlegame sum in the value
    float EndgameShare = 0;    // of the endgame sum, already scaled
    float Result = 0;          // 1, 0.5 or 0, White's view
    float ValueCp = 0;         // of the search, White's view
};

struct TrainingData {
    std::vector<Term> Terms;
    std::vector<Sample> Fitted;
    std::vector<Sample> HeldOut; // every tenth block of a thousand lines, so that games stay together

    std::span<const Term> TermsOf(const Sample& sample) const {
        return {Terms.data() + sample.FirstTerm, sample.TermCount};
    }
    /// Centipawns, White's view.
    double Value(const Sample& sample, const SmoothWeights& weights) const;
};

/// Appends the file's positions; lines that do not read and endings with rules of their own are left out.
/// False when the file cannot be read.
bool LoadTrainingData(const std::string& path, TrainingData& data);

} // namespace quarnel::tuning
