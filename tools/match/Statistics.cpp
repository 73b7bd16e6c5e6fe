#include "Statistics.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace quarnel::match {
namespace {

constexpr double ErrorRate = 0.05;    // of either kind
constexpr double Quantile = 1.959964; // of the normal distribution, for 95 %

double PointsOf(std::size_t halfPoints) {
    return static_cast<double>(halfPoints) / 4;
}

using Shares = std::array<double, 5>;

/// The distribution with mean `mean` that makes shares `seen` most likely.
Shares MostLikely(const Shares& seen, double mean) {
    // The constraint's sum falls as the multiplier grows; between these poles every share stays positive.
    double low = -1 / (1 - mean);
    double high = 1 / mean;
    for (int step = 0; step < 100; ++step) {
        const double multiplier = (low + high) / 2;
        double sum = 0;
        for (std::size_t i = 0; i < seen.size(); ++i)
            sum += seen[i] * (PointsOf(i) - mean) / (1 + multiplier * (PointsOf(i) - mean));
        (sum > 0 ? low : high) = multiplier;
    }
    Shares shares = seen;
    for (std::size_t i = 0; i < seen.size(); ++i) shares[i] /= 1 + (low + high) / 2 * (PointsOf(i) - mean);
    return shares;
}

} // namespace

ScoreEstimate EstimateScore(const PairCounts& pairs) {
    const double count = std::accumulate(pairs.begin(), pairs.end(), 0.0);
    if (count == 0) return {};
    double mean = 0;
    for (std::size_t i = 0; i < pairs.size(); ++i) mean += pairs[i] / count * PointsOf(i);
    double variance = 0;
    for (std::size_t i = 0; i < pairs.size(); ++i)
        variance += pairs[i] / count * (PointsOf(i) - mean) * (PointsOf(i) - mean);
    const bool alike = std::count(pairs.begin(), pairs.end(), 0) == 4;
    const double reach = alike ? 3 / count : Quantile * std::sqrt(variance / count);
    return {mean, std::max(0.0, mean - reach), std::min(1.0, mean + reach)};
}

double EloFromScore(double score) {
    if (score <= 0) return -std::numeric_limits<double>::infinity();
    if (score >= 1) return std::numeric_limits<double>::infinity();
    return 400 * std::log10(score / (1 - score));
}

double ScoreFromElo(double elo) {
    return 1 / (1 + std::pow(10, -elo / 400));
}

double LogLikelihoodRatio(const PairCounts& pairs, double elo0, double elo1) {
    if (std::count(pairs.begin(), pairs.end(), 0) == 5) return 0;
    Shares counts{};
    std::transform(pairs.begin(), pairs.end(), counts.begin(), [](int count) { return count + 0.001; });
    const double total = std::accumulate(counts.begin(), counts.end(), 0.0);
    Shares seen = counts;
    for (double& share : seen) share /= total;
    const Shares shares0 = MostLikely(seen, ScoreFromElo(elo0));
    const Shares shares1 = MostLikely(seen, ScoreFromElo(elo1));
    double ratio = 0;
    for (std::size_t i = 0; i < counts.size(); ++i) ratio += counts[i] * std::log(shares1[i] / shares0[i]);
    return ratio;
}

Verdict JudgeRatio(double logLikelihoodRatio) {
    const double bound = std::log((1 - ErrorRate) / ErrorRate);
    if (logLikelihoodRatio >= bound) return Verdict::Accepted;
    if (logLikelihoodRatio <= -bound) return Verdict::Rejected;
    return Verdict::Undecided;
}

} // namespace quarnel::match
