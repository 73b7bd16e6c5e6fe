#include "tools/tune/SelfPlay.h"
#include "tools/tune/Tuner.h"
#include "tools/tune/WeightFile.h"

#include "quarnelchess/board/Fen.h"
#include "quarnelchess/evaluation/Evaluation.h"
#include "tests/quarnelchess/RandomGames.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>

namespace quarnel::tuning {
namespace {

/// A file of random positions, each valued by weights that are not the compiled ones.
std::string WriteRandomPositions(double factor) {
    // Tests run side by side, so each has a file of its own.
    const std::string path =
        testing::TempDir() + testing::UnitTest::GetInstance()->current_test_info()->name() + "-positions.txt";
    std::ofstream file(path);
    engine::ForRandomPositions(40, 60, [&](const engine::Board& board) {
        engine::EvaluationTrace trace;
        const int value = engine::Evaluation::Explain(board, trace);
        file << engine::WriteFen(board) << ";0.5;" << std::lround(factor * value) << '\n';
    });
    return path;
}

TEST(Tuning, ValuesAreThoseOfTheEvaluation) {
    TrainingData data;
    ASSERT_TRUE(LoadTrainingData(WriteRandomPositions(1), data));
    ASSERT_GT(data.Fitted.size(), 2000U);
    ASSERT_FALSE(data.HeldOut.empty());
    for (const Sample& sample : data.Fitted)
        // Each of the evaluation's divisions drops less than a centipawn.
        ASSERT_NEAR(data.Value(sample, CompiledWeights()), sample.ValueCp, 2.0);
}

TEST(Tuning, FindsTheWeightsBehindTheValues) {
    TrainingData data;
    ASSERT_TRUE(LoadTrainingData(WriteRandomPositions(1.2), data));
    const SmoothWeights start = CompiledWeights();
    TunerOptions options;
    options.SearchShare = 1;
    options.Pull = 0;
    options.Batch = 512;
    options.Epochs = 30;
    constexpr double k = 0.004;
    const SmoothWeights tuned = Tune(data, start, k, options, [](const Epoch&) {});
    EXPECT_LT(Loss(data, data.HeldOut, tuned, k, 1), Loss(data, data.HeldOut, start, k, 1) / 3);
}

TEST(Tuning, RewritesNumbersAndNothingElse) {
    const std::string text = "// {a, b} stays\n// Group\n{1, 2}, {-3, 4},\n{5, 6},\n// end\n";
    EXPECT_EQ(RewriteWeights(text, {{1.4, -2.6}, {0, 1e3}, {-7, 8}}),
              "// {a, b} stays\n// Group\n{1, -3}, {0, 1000},\n{-7, 8},\n// end\n");
    EXPECT_EQ(RewriteWeights(text, SmoothWeights(2)), std::nullopt);
    EXPECT_EQ(RewriteWeights(text, SmoothWeights(4)), std::nullopt);
}

TEST(SelfPlay, NumberAndSeedMakeTheGame) {
    engine::SteadyClock clock;
    engine::Search search(clock);
    SelfPlayOptions options;
    options.Nodes = 100;
    const PlayedGame first = PlayGame(search, options, 7);
    PlayGame(search, options, 8);
    const PlayedGame again = PlayGame(search, options, 7);
    ASSERT_EQ(first.Moves.size(), again.Moves.size());
    EXPECT_EQ(first.Moves.back().Played, again.Moves.back().Played);
    EXPECT_EQ(first.Result, again.Result);
    for (const PlayedMove& quiet : QuietPositions(first, 10, 7)) {
        EXPECT_FALSE(quiet.Before.InCheck());
        EXPECT_FALSE(quiet.Before.IsNoisy(quiet.Played));
    }
}

} // namespace
} // namespace quarnel::tuning
