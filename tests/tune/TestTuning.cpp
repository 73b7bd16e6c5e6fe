#include "tools/tune/NetTrainer.h"
#include "tools/tune/Perturbation.h"
#include "tools/tune/SelfPlay.h"

#include "quarnelchess/board/Fen.h"
#include "quarnelchess/board/Material.h"
#include "quarnelchess/evaluation/Endgames.h"
#include "quarnelchess/evaluation/Evaluation.h"
#include "tests/quarnelchess/RandomGames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <random>

namespace quarnel::tuning {
namespace {

using namespace engine;

WholeNet CompiledNet() {
    return {net::Numbers, net::Numbers + net::NumberCount};
}

bool UsesTheNetAlone(const Board& board) {
    int value = 0;
    return !EvaluateKnownEnding(board, value) && EndgameScale(board, White) == FullScale &&
           EndgameScale(board, Black) == FullScale;
}

TEST(Tuning, ComesToTheEnginesValues) {
    const WholeNet net = CompiledNet();
    Evaluation evaluation;
    int compared = 0;
    ForRandomPositions(40, 120, [&](const Board& board) {
        if (!UsesTheNetAlone(board)) return;
        ++compared;
        ASSERT_EQ(WholeValueCp(net, Pack(board)), evaluation.Evaluate(board)) << WriteFen(board);
    });
    EXPECT_GT(compared, 2000);
    EXPECT_EQ(Round(Unround(net), net[net::ScaleAt]), net);
}

/// Positions whose value is their material.
std::vector<PackedPosition> MaterialPositions() {
    std::vector<PackedPosition> positions;
    ForRandomPositions(60, 100, [&](const Board& board) {
        PackedPosition position = Pack(board);
        int own = 0;
        for (const PieceKind kind : {Pawn, Knight, Bishop, Rook, Queen})
            own += ExchangeValue[kind] * (PopCount(board.Pieces(board.SideToMove(), kind)) -
                                          PopCount(board.Pieces(~board.SideToMove(), kind)));
        position.ValueCp = static_cast<std::int16_t>(own);
        positions.push_back(position);
    });
    return positions;
}

void Quietly(int, double, double) {}

TEST(Tuning, LearnsAndRepeatsItself) {
    const std::vector<PackedPosition> positions = MaterialPositions();
    TrainingOptions options;
    options.Epochs = 4;
    options.BatchSize = 64;
    options.Threads = 2;
    options.ValueShare = 1;
    TrainingState first = TrainingState::Begin(options.Seed);
    TrainingState second = first;
    const double before = Loss(first.Net, positions, options);
    for (int epoch = 0; epoch < options.Epochs; ++epoch) {
        TrainEpoch(first, positions, options, Quietly);
        TrainEpoch(second, positions, options, Quietly);
    }
    EXPECT_LT(Loss(first.Net, positions, options), before / 10);
    EXPECT_EQ(first.Net, second.Net);
    for (std::size_t i = 0; i < net::ScaleAt; ++i) {
        const double limit = i < net::OutputWeightsAt ? net::LargestInputWeight : net::LargestOutputWeight;
        ASSERT_LE(std::abs(first.Net[i]), limit) << i;
    }
    // Rounding keeps the values.
    const WholeNet whole = Round(first.Net, 400);
    for (const PackedPosition& position : positions)
        ASSERT_NEAR(WholeValueCp(whole, position), 400 * SmoothOutput(first.Net, position), 40);
}

TEST(Tuning, FindsTheScaleBehindTheResults) {
    std::vector<PackedPosition> positions;
    for (int i = 0; i < 20000; ++i) {
        PackedPosition position;
        position.ValueCp = static_cast<std::int16_t>(i % 800 - 400);
        // Each value comes with wins in the share that it means on a scale of 250.
        const double share = 1 / (1 + std::exp(-position.ValueCp / 250.0));
        const int round = i / 800; // of 25
        position.Result = round < share * 25 ? 2 : 0;
        positions.push_back(position);
    }
    EXPECT_NEAR(FitScale(positions), 250, 10);
}

TEST(Perturbation, FindsTheBestNumbersFromNoisyGamesAndKeepsTheirLimits) {
    // A player is the stronger the nearer his numbers are to these; the third cannot get there.
    const double best[] = {30, -400, 9};
    PerturbationOptions options;
    options.Iterations = 4000;
    options.LastRate = 0.02;
    Perturbation learning({{"a", 10, 0, 100, 4}, {"b", 0, -1000, 1000, 80}, {"c", 2, 0, 5, 0.5}}, options);
    std::mt19937 random(4);
    const auto weakness = [&](const std::vector<double>& values) {
        double sum = 0;
        const double unit[] = {10, 200, 2};
        for (std::size_t i = 0; i < 3; ++i) sum += std::pow((values[i] - best[i]) / unit[i], 2);
        return sum;
    };
    for (std::uint64_t iteration = 0; iteration < options.Iterations; ++iteration) {
        const PerturbedPair pair = learning.PairOf(iteration);
        for (std::size_t i = 0; i < 3; ++i) {
            ASSERT_GE(std::min(pair.Up[i], pair.Down[i]), learning.Numbers()[i].Low);
            ASSERT_LE(std::max(pair.Up[i], pair.Down[i]), learning.Numbers()[i].High);
        }
        double points = 0;
        for (int game = 0; game < 8; ++game) {
            const double share = 1 / (1 + std::exp(weakness(pair.Up) - weakness(pair.Down)));
            points += static_cast<double>(random() % 10000) < share * 10000 ? 1 : -1;
        }
        learning.Learn(iteration, pair, points);
    }
    EXPECT_NEAR(learning.Numbers()[0].Value, 30, 6);
    EXPECT_NEAR(learning.Numbers()[1].Value, -400, 120);
    EXPECT_NEAR(learning.Numbers()[2].Value, 5, 0.5);
}

TEST(SelfPlay, TellsQuietPositionsOfAGameThatItCanPlayAgain) {
    SteadyClock clock;
    Search search(clock);
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
            const std::optional<Board> board = Unpack(quiet[i]);
            ASSERT_TRUE(board);
            EXPECT_FALSE(board->InCheck());
            EXPECT_EQ(quiet[i].Occupied, again[i].Occupied);
            const auto played = std::find_if(game.Moves.begin(), game.Moves.end(), [&](const PlayedMove& move) {
                return move.Ply == quiet[i].Ply &&
                       std::equal(quiet[i].Pieces, quiet[i].Pieces + 16, Pack(move.Before).Pieces);
            });
            ASSERT_NE(played, game.Moves.end());
            EXPECT_FALSE(played->Before.IsNoisy(played->Played));
            EXPECT_EQ(quiet[i].ValueCp, board->SideToMove() == White ? played->ValueCp : -played->ValueCp);
            EXPECT_EQ(quiet[i].Result, std::lround(2 * (board->SideToMove() == White ? game.Result : 1 - game.Result)));
        }
    }
}

TEST(Shards, ComeBackAsTheyWentAndRefuseDamage) {
    const std::string path = testing::TempDir() + "positions.qcp";
    Shard shard;
    shard.Header.Seed = 5;
    ForRandomPositions(3, 50, [&](const Board& board) {
        shard.Positions.push_back(Pack(board));
        const std::optional<Board> back = Unpack(shard.Positions.back());
        ASSERT_TRUE(back);
        EXPECT_EQ(Evaluation().Evaluate(*back), Evaluation().Evaluate(board));
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
