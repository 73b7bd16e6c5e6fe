#include "Perturbation.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>

namespace quarnel::tuning {
namespace {

// Spall's exponents for the gains, and the part of the iterations in which the first one is held back.
constexpr double RateExponent = 0.602;
constexpr double StepExponent = 0.101;
constexpr double HeldBack = 0.1;

} // namespace

Perturbation::Perturbation(std::vector<TunedNumber> numbers, const PerturbationOptions& options)
    : numbers_(std::move(numbers)), options_(options) {}

/// 1 in the last iteration, more before.
double Perturbation::StepShare(std::uint64_t iteration) const {
    return std::pow(static_cast<double>(options_.Iterations) / static_cast<double>(iteration + 1), StepExponent);
}

double Perturbation::Rate(std::uint64_t iteration) const {
    const auto all = static_cast<double>(options_.Iterations);
    const double held = HeldBack * all;
    const double gain = std::pow((held + all) / (held + static_cast<double>(iteration) + 1), RateExponent);
    const double share = StepShare(iteration);
    return options_.LastRate * gain / (share * share);
}

PerturbedPair Perturbation::PairOf(std::uint64_t iteration) const {
    std::seed_seq sequence{options_.Seed, options_.Seed >> 32, iteration, iteration >> 32};
    std::mt19937_64 random(sequence);
    PerturbedPair pair;
    for (const TunedNumber& number : numbers_) {
        const int sign = random() % 2 == 0 ? 1 : -1;
        const double distance = sign * number.Step * StepShare(iteration);
        pair.Signs.push_back(sign);
        pair.Up.push_back(std::clamp(number.Value + distance, number.Low, number.High));
        pair.Down.push_back(std::clamp(number.Value - distance, number.Low, number.High));
    }
    return pair;
}

void Perturbation::Learn(std::uint64_t iteration, const PerturbedPair& pair, double points) {
    const double rate = Rate(iteration);
    const double share = StepShare(iteration);
    for (std::size_t i = 0; i < numbers_.size(); ++i) {
        TunedNumber& number = numbers_[i];
        const double moved = number.Value + rate * share * number.Step * points * pair.Signs[i];
        number.Value = std::clamp(moved, number.Low, number.High);
    }
}

} // namespace quarnel::tuning
