// Fits the evaluation's net to positions: the share of the point that the side to move may expect, a mix of what the
// search said and how the game ended.
//
// Plain gradient descent with moment estimates (Kingma and Ba, "Adam", 2015) on batches; the learning rate falls as
// half a cosine to a hundredth. Batches are split among the threads and their gradients added up in the threads'
// order: the same positions, seed and number of threads give the same bytes on one kind of processor.
#pragma once

#include "tools/tune/Positions.h"

#include "quarnelchess/evaluation/NetLayout.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace quarnel::tuning {

/// What a side sees of a position: the inputs that are 1, from the side to move's view and from the other's.
struct ActiveInputs {
    int Count = 0;
    std::uint16_t Own[32];
    std::uint16_t Other[32];
};
ActiveInputs InputsOf(const PackedPosition& position);

/// All of the net's numbers in the order of the file, without the scale; 1 is 1.
using SmoothNet = std::vector<float>; // net::ScaleAt of them

/// The file's numbers, scale included.
using WholeNet = std::vector<std::int16_t>; // net::NumberCount of them
WholeNet Round(const SmoothNet& smooth, int scaleCp);
SmoothNet Unround(const WholeNet& whole);

/// Side to move's view, in units of the scale.
double SmoothOutput(const SmoothNet& net, const PackedPosition& position);
/// Side to move's view, centipawns: what the engine has to come to.
int WholeValueCp(const WholeNet& net, const PackedPosition& position);

struct TrainingOptions {
    int Epochs = 20;
    int BatchSize = 16384;
    int Threads = 1;
    std::uint64_t Seed = 1;
    double Rate = 0.001;
    double ValueShare = 0.7; // of the search's value in the target; the rest is the result
    double ScaleCp = 400;    // a value of so much means 1 / (1 + 1/e) of the point
};

/// A training between two epochs: everything that goes on depends on.
struct TrainingState {
    SmoothNet Net;
    std::vector<float> Mean;   // of each number's gradient
    std::vector<float> Square; // of its square
    std::uint64_t Step = 0;    // batches so far
    int Epoch = 0;             // completed

    /// Random weights.
    static TrainingState Begin(std::uint64_t seed);
    /// Weights of an earlier net.
    static TrainingState BeginWith(SmoothNet net);
};

/// Called every few hundred batches, with the mean loss since the last call.
using TrainingProgress = void (*)(int epoch, double share, double loss);

/// One epoch: every position once, in an order that seed and epoch give.
void TrainEpoch(TrainingState& state, std::span<const PackedPosition> positions, const TrainingOptions& options,
                TrainingProgress progress);

/// Mean squared difference to the target.
double Loss(const SmoothNet& net, std::span<const PackedPosition> positions, const TrainingOptions& options);

/// The scale for which the search's values foretell the results best, in centipawns.
double FitScale(std::span<const PackedPosition> positions);

} // namespace quarnel::tuning
