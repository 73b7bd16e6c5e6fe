#include "match/Statistics.h"
#include "match/Ladder.h"

#include <gtest/gtest.h>

namespace quarnel::match {
namespace {

TEST(MatchStatistics, ScoreAndIntervalCountPairs) {
    const struct {
        PairCounts Pairs;
        double Score, Low, High;
    } cases[] = {
        {{3, 10, 30, 40, 17}, 0.645, 0.5969, 0.6931}, // variance 0.060225, so 1.96 * 0.2454 / 10 to each side
        {{0, 0, 100, 0, 0}, 0.5, 0.47, 0.53},         // nothing but 1-1 is no proof that nothing else happens
        {{0, 0, 0, 0, 50}, 1, 0.94, 1},
        {{1, 0, 0, 0, 1}, 0.5, 0, 1},
        {{0, 0, 0, 0, 0}, 0.5, 0, 1},
    };
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
    } cases[] = {
        // Two kinds of pairs leave no freedom: 30 ln(s1 / s0) + 10 ln((1 - s1) / (1 - s0)), s1 = 0.5715.
        {{10, 0, 0, 0, 30}, 0, 50, 2.4654, Verdict::Undecided},
        {{30, 0, 0, 0, 10}, 0, 50, 10 * 0.133594 + 30 * -0.154233, Verdict::Rejected},
        {{13, 0, 0, 0, 39}, 0, 50, 1.3 * 2.4654, Verdict::Accepted},
        // Three kinds leave one, the share of 1-1, which was maximised by trisection.
        {{20, 0, 50, 0, 30}, 0, 5, 0.2675, Verdict::Undecided},
        {{30, 0, 50, 0, 20}, 0, 10, -0.6563, Verdict::Undecided},
        {{0, 0, 0, 0, 0}, 0, 5, 0, Verdict::Undecided},
    };
    for (const auto& [pairs, elo0, elo1, ratio, judged] : cases) {
        EXPECT_NEAR(LogLikelihoodRatio(pairs, elo0, elo1), ratio, 0.005);
        EXPECT_EQ(JudgeRatio(LogLikelihoodRatio(pairs, elo0, elo1)), judged) << ratio;
    }
    // One-sided results stay finite and point the right way.
    EXPECT_GT(LogLikelihoodRatio({0, 0, 0, 0, 40}, 0, 50), 2.944);
    EXPECT_LT(LogLikelihoodRatio({40, 0, 0, 0, 0}, 0, 50), -2.944);
}

TEST(Ladder, RowsSayWhetherTheGoalHolds) {
    const std::vector<Rung> rungs = MakeRungs({"engine", "folder", {}, 200, 50, 2, 16, 1});
    const auto row = [&](std::size_t rung, PairCounts pairs) {
        Tally tally;
        for (int halfPoints = 0, pair = 0; halfPoints < 5; ++halfPoints)
            for (int i = 0; i < pairs[static_cast<std::size_t>(halfPoints)]; ++i, ++pair)
                for (int leg = 0; leg < 2; ++leg)
                    tally.Add({pair, leg, leg == 0 ? std::min(halfPoints, 2) : std::max(halfPoints - 2, 0),
                               Ending::Checkmate, 60, ""});
        return TableRow(rungs[rung], tally);
    };
    const struct {
        std::size_t Rung;
        PairCounts Pairs;
        const char* End;
    } cases[] = {
        {0, {0, 0, 0, 0, 100}, "| at least 90 % | yes |\n"},             // level 1 against random
        {2, {0, 0, 40, 0, 60}, "| 65 % to 95 % | yes |\n"},              // level 2 against level 1: 80 %
        {2, {0, 0, 65, 0, 35}, "| 65 % to 95 % | yes, not certain |\n"}, // 67.5 %
        {2, {0, 0, 100, 0, 0}, "| 65 % to 95 % | no |\n"},
        {2, {0, 0, 0, 0, 100}, "| 65 % to 95 % | no |\n"},   // too easy
        {6, {0, 0, 0, 0, 100}, "| at least 80 % | yes |\n"}, // level 6
        {7, {0, 0, 100, 0, 0}, "| more than 50 % | no, not certain |\n"},
        {10, {0, 0, 60, 0, 40}, "| more than 50 % | yes |\n"}, // level 10
        {10, {0, 0, 0, 0, 0}, "| more than 50 % | not played |\n"},
    };
    for (const auto& [rung, pairs, end] : cases)
        EXPECT_TRUE(row(rung, pairs).ends_with(end)) << row(rung, pairs) << end;

    // Levels limited by work keep their time, the others' is divided.
    const auto timeMs = [&](std::size_t rung) { return rungs[rung].Setup.Players[0].PerMove.Value; };
    EXPECT_EQ(timeMs(5), 10000);
    EXPECT_EQ(timeMs(6), 10);
    EXPECT_EQ(timeMs(10), 200);
}

} // namespace
} // namespace quarnel::match
