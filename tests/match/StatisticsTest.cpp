#include "match/Statistics.h"

#include <gtest/gtest.h>

namespace quarnel::match {
namespace {

TEST(MatchStatistics, ScoreAndIntervalCountPairs) {
    const struct {
        PairCounts Pairs;
        double Score, Low, High;
    } cases[] = {{{3, 10, 30, 40, 17}, 0.645, 0.5969, 0.6931}, // variance 0.060225, so 1.96 * 0.2454 / 10 to each side
                 {{0, 0, 100, 0, 0}, 0.5, 0.47, 0.53},         // nothing but 1-1 is no proof that nothing else happens
                 {{0, 0, 0, 0, 50}, 1, 0.94, 1},
                 {{1, 0, 0, 0, 1}, 0.5, 0, 1},
                 {{0, 0, 0, 0, 0}, 0.5, 0, 1}};
    for (const auto& [pairs, score, low, high] : cases) {
        const ScoreEstimate estimate = EstimateScore(pairs);
        EXPECT_NEAR(estimate.Score, score, 1e-4);
        EXPECT_NEAR(estimate.Low, low, 1e-4);
        EXPECT_NEAR(estimate.High, high, 1e-4);
    }
    EXPECT_NEAR(EloFromScore(0.645), 103.73, 0.01);
    EXPECT_NEAR(ScoreFromElo(EloFromScore(0.2)), 0.2, 1e-12);
}

TEST(MatchStatistics, LikelihoodRatioLeadsToTheVerdict) {
    const struct {
        PairCounts Pairs;
        double Elo0, Elo1, Ratio;
        Verdict Judged;
    } cases[] = {// Two kinds of pairs leave no freedom: 30 ln(s1 / s0) + 10 ln((1 - s1) / (1 - s0)), s1 = 0.5715.
                 {{10, 0, 0, 0, 30}, 0, 50, 2.4654, Verdict::Undecided},
                 {{30, 0, 0, 0, 10}, 0, 50, 10 * 0.133594 + 30 * -0.154233, Verdict::Rejected},
                 {{13, 0, 0, 0, 39}, 0, 50, 1.3 * 2.4654, Verdict::Accepted},
                 // Three kinds leave one, the share of 1-1, which was maximised by trisection.
                 {{20, 0, 50, 0, 30}, 0, 5, 0.2675, Verdict::Undecided},
                 {{30, 0, 50, 0, 20}, 0, 10, -0.6563, Verdict::Undecided},
                 {{0, 0, 0, 0, 0}, 0, 5, 0, Verdict::Undecided}};
    for (const auto& [pairs, elo0, elo1, ratio, judged] : cases) {
        EXPECT_NEAR(LogLikelihoodRatio(pairs, elo0, elo1), ratio, 0.005);
        EXPECT_EQ(JudgeRatio(LogLikelihoodRatio(pairs, elo0, elo1)), judged) << ratio;
    }
    // One-sided results stay finite and point the right way.
    EXPECT_GT(LogLikelihoodRatio({0, 0, 0, 0, 40}, 0, 50), 2.944);
    EXPECT_LT(LogLikelihoodRatio({40, 0, 0, 0, 0}, 0, 50), -2.944);
}

} // namespace
} // namespace quarnel::match
