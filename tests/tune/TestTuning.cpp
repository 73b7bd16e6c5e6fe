#include "tools/tune/SelfPlay.h"
#include "tools/tune/Tuner.h"
#include "tools/tune/WeightFile.h"

#include "quarnelchess/board/Fen.h"
#include "quarnelchess/evaluation/Evaluation.h"
#include "tests/quarnelchess/RandomGames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
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

TEST(SelfPlay, TellsQuietPositionsOfAGameThatItCanPlayAgain) {
    engine::SteadyClock clock;
    engine::Search search(clock);
    SelfPlayOptions options;
    options.Nodes = 100;
    for (const std::uint64_t number : {2, 7}) {
        const PlayedGame game = PlayGame(search, options, number);
        const std::vector<PackedPosition> quiet = QuietPositions(game, 20, number);
        const std::vector<PackedPosition> again = QuietPositions(PlayGame(search, options, number), 20, number);
        ASSERT_EQ(quiet.size(), again.size());
        EXPECT_LE(quiet.size(), 20U);
        EXPECT_GT(quiet.size(), 5U);
        for (std::size_t i = 0; i < quiet.size(); ++i) {
            const std::optional<engine::Board> board = Unpack(quiet[i]);
            ASSERT_TRUE(board);
            EXPECT_FALSE(board->InCheck());
            EXPECT_EQ(quiet[i].Occupied, again[i].Occupied);
            const auto played = std::find_if(game.Moves.begin(), game.Moves.end(), [&](const PlayedMove& move) {
                return move.Ply == quiet[i].Ply &&
                       std::equal(quiet[i].Pieces, quiet[i].Pieces + 16, Pack(move.Before).Pieces);
            });
            ASSERT_NE(played, game.Moves.end());
            EXPECT_FALSE(played->Before.IsNoisy(played->Played));
            EXPECT_EQ(quiet[i].ValueCp, board->SideToMove() == engine::White ? played->ValueCp : -played->ValueCp);
            EXPECT_EQ(quiet[i].Result,
                      std::lround(2 * (board->SideToMove() == engine::White ? game.Result : 1 - game.Result)));
        }
    }
}

TEST(Shards, ComeBackAsTheyWentAndRefuseDamage) {
    const std::string path = testing::TempDir() + "positions.qcp";
    Shard shard;
    shard.Header.Seed = 5;
    engine::ForRandomPositions(3, 50, [&](const engine::Board& board) {
        shard.Positions.push_back(Pack(board));
        const std::optional<engine::Board> back = Unpack(shard.Positions.back());
        ASSERT_TRUE(back);
        EXPECT_EQ(engine::Evaluation().Evaluate(*back), engine::Evaluation().Evaluate(board));
    });
    ASSERT_TRUE(WriteShard(path, shard));
    const std::optional<Shard> read = ReadShard(path);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->Header.Seed, 5U);
    ASSERT_EQ(read->Positions.size(), shard.Positions.size());
    EXPECT_EQ(read->Positions.back().Occupied, shard.Positions.back().Occupied);
    std::filesystem::resize_file(path, std::filesystem::file_size(path) - 1);
    EXPECT_FALSE(ReadShard(path));
    std::ofstream(path, std::ios::trunc) << "something else, but longer than a header is: 0123456789";
    EXPECT_FALSE(ReadShard(path));
    EXPECT_FALSE(WriteShard(testing::TempDir() + "no/such/folder.qcp", shard));
}

} // namespace
} // namespace quarnel::tuning
