#include "Tuner.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <thread>

namespace quarnel::tuning {
namespace {

double Share(double valueCp, double k) {
    return 1 / (1 + std::exp(-k * valueCp));
}

double Target(const Sample& sample, double k, double searchShare) {
    return searchShare * Share(sample.ValueCp, k) + (1 - searchShare) * sample.Result;
}

double CrossEntropy(double target, double share) {
    constexpr double tiny = 1e-12;
    return -(target * std::log(share + tiny) + (1 - target) * std::log(1 - share + tiny));
}

/// Adds the loss's derivatives by every weight, in centipawns, over samples [begin, end).
void AddGradient(const TrainingData& data, std::size_t begin, std::size_t end, const SmoothWeights& weights, double k,
                 double searchShare, SmoothWeights& gradient) {
    for (std::size_t i = begin; i < end; ++i) {
        const Sample& sample = data.Fitted[i];
        const double error = k * (Share(data.Value(sample, weights), k) - Target(sample, k, searchShare));
        const double mg = error * sample.MiddlegameShare;
        const double eg = error * sample.EndgameShare;
        for (const Term term : data.TermsOf(sample)) {
            gradient[term.Weight].Mg += mg * term.Count;
            gradient[term.Weight].Eg += eg * term.Count;
        }
    }
}

/// The batch's gradient, each thread over a part of its own.
SmoothWeights BatchGradient(const TrainingData& data, std::size_t begin, std::size_t end, const SmoothWeights& weights,
                            double k, const TunerOptions& options) {
    const auto parts = static_cast<std::size_t>(std::max(1, options.Threads));
    std::vector<SmoothWeights> gradients(parts, SmoothWeights(weights.size()));
    std::vector<std::thread> threads;
    for (std::size_t part = 0; part < parts; ++part)
        threads.emplace_back([&, part] {
            const std::size_t size = end - begin;
            AddGradient(data, begin + size * part / parts, begin + size * (part + 1) / parts, weights, k,
                        options.SearchShare, gradients[part]);
        });
    for (std::thread& thread : threads) thread.join();
    for (std::size_t part = 1; part < parts; ++part)
        for (std::size_t i = 0; i < weights.size(); ++i) {
            gradients[0][i].Mg += gradients[part][i].Mg;
            gradients[0][i].Eg += gradients[part][i].Eg;
        }
    return gradients[0];
}

/// Adam (Kingma and Ba, 2015) for one number.
class Adam {
  public:
    double Step(double gradient, double rate, int time) {
        constexpr double beta1 = 0.9;
        constexpr double beta2 = 0.999;
        mean_ = beta1 * mean_ + (1 - beta1) * gradient;
        square_ = beta2 * square_ + (1 - beta2) * gradient * gradient;
        const double mean = mean_ / (1 - std::pow(beta1, time));
        const double square = square_ / (1 - std::pow(beta2, time));
        return -rate * mean / (std::sqrt(square) + 1e-12);
    }

  private:
    double mean_ = 0;
    double square_ = 0;
};

} // namespace

double Loss(const TrainingData& data, const std::vector<Sample>& samples, const SmoothWeights& weights, double k,
            double searchShare) {
    double sum = 0;
    for (const Sample& sample : samples) {
        const double target = Target(sample, k, searchShare);
        sum += CrossEntropy(target, Share(data.Value(sample, weights), k)) - CrossEntropy(target, target);
    }
    return samples.empty() ? 0 : sum / static_cast<double>(samples.size());
}

double FitK(const TrainingData& data, const SmoothWeights& weights) {
    std::vector<std::pair<double, double>> valuesAndResults;
    for (const Sample& sample : data.Fitted) valuesAndResults.emplace_back(data.Value(sample, weights), sample.Result);
    const auto loss = [&](double k) {
        double sum = 0;
        for (const auto& [value, result] : valuesAndResults) sum += CrossEntropy(result, Share(value, k));
        return sum;
    };
    // Thirds of the interval fall away: the loss has one minimum.
    double low = 0.0005;
    double high = 0.02;
    while (high - low > 1e-5) {
        const double left = low + (high - low) / 3;
        const double right = high - (high - low) / 3;
        (loss(left) < loss(right) ? high : low) = loss(left) < loss(right) ? right : left;
    }
    return (low + high) / 2;
}

SmoothWeights Tune(TrainingData& data, const SmoothWeights& start, double k, const TunerOptions& options,
                   const std::function<void(const Epoch&)>& report) {
    SmoothWeights weights = start;
    SmoothWeights best = start;
    std::vector<Adam> middlegame(start.size());
    std::vector<Adam> endgame(start.size());
    std::mt19937_64 random(options.Seed);
    double rate = options.StepCp;
    // A position's loss bends by at most k * k / 4 for each centipawn.
    const double pull = options.Pull * k * k / 4 / static_cast<double>(std::max<std::size_t>(data.Fitted.size(), 1));
    double bestLoss = Loss(data, data.HeldOut, start, k, options.SearchShare);
    report({0, Loss(data, data.Fitted, start, k, options.SearchShare), bestLoss});
    int time = 0;
    int waited = 0;
    int halvings = 0;
    for (int epoch = 1; epoch <= options.Epochs; ++epoch) {
        std::shuffle(data.Fitted.begin(), data.Fitted.end(), random);
        for (std::size_t begin = 0; begin < data.Fitted.size(); begin += options.Batch) {
            const std::size_t end = std::min(begin + options.Batch, data.Fitted.size());
            const SmoothWeights gradient = BatchGradient(data, begin, end, weights, k, options);
            const double share = 1 / static_cast<double>(end - begin);
            ++time;
            for (std::size_t i = 0; i < weights.size(); ++i) {
                const double mg = gradient[i].Mg * share + pull * (weights[i].Mg - start[i].Mg);
                const double eg = gradient[i].Eg * share + pull * (weights[i].Eg - start[i].Eg);
                weights[i].Mg += middlegame[i].Step(mg, rate, time);
                weights[i].Eg += endgame[i].Step(eg, rate, time);
            }
        }
        const double heldOut = Loss(data, data.HeldOut, weights, k, options.SearchShare);
        report({epoch, Loss(data, data.Fitted, weights, k, options.SearchShare), heldOut});
        if (heldOut < bestLoss) {
            bestLoss = heldOut;
            best = weights;
            waited = 0;
        } else if (++waited >= options.Patience) {
            if (++halvings > options.Halvings) break;
            weights = best;
            rate /= 2;
            waited = 0;
        }
    }
    return best;
}

} // namespace quarnel::tuning
