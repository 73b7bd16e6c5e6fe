// Fits the weights to played games: logistic regression by Adam in small batches.
//
// A static value v predicts the share 1 / (1 + exp(-K v)) of the point. What it should predict is a
// blend of how the game ended and of what the search thought; the loss is the cross entropy of the two.
// K is fitted once, to the weights as they are, and keeps centipawns what they were. Rarely seen weights
// are held by a pull towards where they started.
#pragma once

#include "TrainingData.h"

#include <functional>

namespace quarnel::tuning {

struct TunerOptions {
    double SearchShare = 0.7; // of the search's value in the target; the result has the rest
    double Pull = 300;        // as strong as this many positions whose value hangs on the weight
    double StepCp = 1.0;      // the most that a weight moves in a batch, at first
    int Epochs = 60;
    int Patience = 2; // epochs without a better held-out loss before the step is halved
    int Halvings = 5; // of the step; after the last one the fit ends instead
    std::size_t Batch = 16384;
    int Threads = 2;
    std::uint64_t Seed = 1;
};

struct Epoch {
    int Number = 0;
    double FittedLoss = 0;
    double HeldOutLoss = 0;
};

/// The K that makes the values predict the results best.
double FitK(const TrainingData& data, const SmoothWeights& weights);

/// Mean cross entropy over the samples, less what is left when target and prediction agree: 0 is perfect.
double Loss(const TrainingData& data, const std::vector<Sample>& samples, const SmoothWeights& weights, double k,
            double searchShare);

/// The weights with the least held-out loss. `report` hears of every epoch, the state before the first too.
/// The outcome depends on the number of threads by rounding only.
SmoothWeights Tune(TrainingData& data, const SmoothWeights& start, double k, const TunerOptions& options,
                   const std::function<void(const Epoch&)>& report);

} // namespace quarnel::tuning
