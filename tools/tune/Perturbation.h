// Tunes many numbers at once from nothing but games: all of them are moved a little, each up or down at random, two
// players differ by that, and the result moves them all towards the better one.
//
// Simultaneous perturbation stochastic approximation (J. C. Spall, 1998, with his gain sequences). Plain values; no
// threads of its own.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quarnel::tuning {

struct TunedNumber {
    std::string Name;
    double Value = 0;
    double Low = 0;
    double High = 0;
    double Step = 0; // of the last iteration: what makes a difference that games can show
};

struct PerturbationOptions {
    std::uint64_t Iterations = 1000; // planned in all
    std::uint64_t Seed = 1;
    double LastRate = 0.002; // part of a step that a whole point moves a number in the last iteration
};

/// The two players of an iteration.
struct PerturbedPair {
    std::vector<double> Up;
    std::vector<double> Down;
    std::vector<int> Signs; // of each number in Up: 1 or -1
};

class Perturbation {
  public:
    Perturbation(std::vector<TunedNumber> numbers, const PerturbationOptions& options);

    /// Of iteration `iteration`, which may run beside others. Values within their limits.
    PerturbedPair PairOf(std::uint64_t iteration) const;
    /// `points` of Up less those of Down.
    void Learn(std::uint64_t iteration, const PerturbedPair& pair, double points);

    const std::vector<TunedNumber>& Numbers() const { return numbers_; }

  private:
    double StepShare(std::uint64_t iteration) const;
    double Rate(std::uint64_t iteration) const;

    std::vector<TunedNumber> numbers_;
    PerturbationOptions options_;
};

} // namespace quarnel::tuning
