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

TEST(Tuning, FindsTheWeightsBehindTheValuesOfPositions) {
    constexpr double factor = 1.2; // the values are as if every weight were so much larger
    const std::string path = testing::TempDir() + "tuning-positions.txt";
    std::ofstream file(path);
    engine::ForRandomPositions(40, 60, [&](const engine::Board& board) {
        engine::EvaluationTrace trace;
        const int value = engine::Evaluation::Explain(board, trace);
        file << engine::WriteFen(board) << ";0.5;" << std::lround(factor * value) << '\n';
    });
    file.close();
    TrainingData data;
    ASSERT_TRUE(LoadTrainingData(path, data));
    ASSERT_GT(data.Fitted.size(), 2000U);
    const SmoothWeights start = CompiledWeights();
    for (const Sample& sample : data.Fitted)
        // Each of the evaluation's divisions drops less than a centipawn.
        ASSERT_NEAR(data.Value(sample, start), sample.ValueCp / factor, 2.5);

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

} // namespace
} // namespace quarnel::tuning
