#include "RandomGames.h"

#include "quarnelchess/Clock.h"
#include "quarnelchess/Handicap.h"
#include "quarnelchess/San.h"
#include "quarnelchess/Search.h"

#include <gtest/gtest.h>

#include <functional>

namespace quarnel::engine {
namespace {

using Player = std::function<Move(const Board&, const std::vector<Key>&)>;

/// White's points from a game: 1, 0.5 or 0. Repetitions, fifty moves and 300 plies are draws.
double PlayGame(Board board, const Player& white, const Player& black) {
    std::vector<Key> earlier;
    for (int ply = 0; ply < 300; ++ply) {
        MoveBuffer moves;
        GenerateMoves(board, moves);
        if (moves.Empty()) return !board.InCheck() ? 0.5 : board.SideToMove() == White ? 0.0 : 1.0;
        const auto seen = std::count(earlier.begin(), earlier.end(), board.PositionKey());
        if (seen >= 2 || board.HalfmoveClock() >= 100 || board.InsufficientMaterial()) return 0.5;
        const Move move = (board.SideToMove() == White ? white : black)(board, earlier);
        earlier.push_back(board.PositionKey());
        board.Make(move);
    }
    return 0.5;
}

Player Engine(Search& search, int skill, std::uint64_t nodes = 0) {
    return [&search, skill, nodes](const Board& board, const std::vector<Key>& earlier) {
        SearchLimits limits;
        limits.Skill = skill;
        limits.Nodes = nodes;
        return search.Run({board, earlier}, limits).Best;
    };
}

Player RandomMover(std::mt19937& random) {
    return [&random](const Board& board, const std::vector<Key>&) {
        MoveBuffer moves;
        GenerateMoves(board, moves);
        return moves[random() % moves.Size()];
    };
}

/// Takes the most valuable piece in sight, anything at all when there is none.
Player Grabber(std::mt19937& random) {
    return [&random](const Board& board, const std::vector<Key>&) {
        MoveBuffer moves;
        GenerateMoves(board, moves);
        std::vector<Move> best;
        int bestPrey = -1;
        for (const Move move : moves) {
            const int prey = !board.IsCapture(move)               ? 0
                             : move.Kind() == MoveKind::EnPassant ? ExchangeValue[Pawn]
                                                                  : ExchangeValue[KindOf(board.At(move.To()))];
            if (prey > bestPrey) best.clear();
            if (prey >= bestPrey) best.push_back(move);
            bestPrey = std::max(bestPrey, prey);
        }
        return best[random() % best.size()];
    };
}

double ShareOfPoints(int games, const Player& one, const Player& other) {
    double points = 0;
    for (int game = 0; game < games; ++game)
        points += game % 2 == 0 ? PlayGame(Board::Start(), one, other) : 1 - PlayGame(Board::Start(), other, one);
    return points / games;
}

TEST(Handicap, TheWeakestLevelIsABeginner) {
    SteadyClock clock;
    Search search(clock);
    search.SetHash(1);
    search.SetSeed(11);
    std::mt19937 random(11);
    EXPECT_GE(ShareOfPoints(30, Engine(search, 10), RandomMover(random)), 0.9);
    const double againstGrabber = ShareOfPoints(30, Engine(search, 10), Grabber(random));
    EXPECT_GE(againstGrabber, 0.2);
    EXPECT_LE(againstGrabber, 0.85);
}

TEST(Handicap, EveryLevelBeatsTheOneBelow) {
    SteadyClock clock;
    const int skills[] = {10, 20, 30, 50, 75};
    for (int i = 1; i < 5; ++i) {
        Search weak(clock);
        Search strong(clock);
        weak.SetHash(1);
        strong.SetHash(1);
        weak.SetSeed(1);
        strong.SetSeed(2);
        EXPECT_GT(ShareOfPoints(10, Engine(strong, skills[i]), Engine(weak, skills[i - 1])), 0.55) << skills[i];
    }
}

TEST(Handicap, WonEndingsAreWonFromTheThirdLevelOn) {
    SteadyClock clock;
    for (const int skill : {30, 50, 75}) {
        for (const char* fen : {"8/8/4k3/8/8/3K4/8/7Q w - - 0 1", "8/8/4k3/8/8/3K4/8/7R w - - 0 1"}) {
            Search strong(clock);
            Search weak(clock);
            strong.SetHash(1);
            weak.SetHash(1);
            EXPECT_EQ(PlayGame(BoardOf(fen), Engine(strong, skill), Engine(weak, 100, 2000)), 1.0) << skill << fen;
        }
    }
}

TEST(Handicap, CarefulPlayersSeeMateInOneAndTheirQueen) {
    SteadyClock clock;
    Search search(clock);
    search.SetHash(1);
    for (std::uint64_t seed = 0; seed < 15; ++seed) {
        for (const int skill : {50, 75, 99}) {
            search.SetSeed(seed);
            SearchLimits limits;
            limits.Skill = skill;
            const auto play = [&](const char* fen) {
                SearchRoot root;
                root.Position = BoardOf(fen);
                return search.Run(root, limits).Best;
            };
            const char* const mate = "r4rk1/pp3ppp/2p5/8/8/2P5/PP3PPP/3QR1K1 w - - 0 1"; // no mate here,
            EXPECT_FALSE(HangsMateOrQueen(BoardOf(mate), play(mate)));
            const char* const backRank = "6k1/5ppp/8/8/8/8/5PPP/3R2K1 w - - 0 1"; // but here
            EXPECT_TRUE(MatesAtOnce(BoardOf(backRank), play(backRank)));
            const char* const defend = "3r2k1/5ppp/8/8/8/8/1B3PPP/6K1 w - - 0 1"; // Rd1 mates unless met
            EXPECT_FALSE(HangsMateOrQueen(BoardOf(defend), play(defend))) << seed;
            const char* const queen = "6k1/3p4/2n5/4Q3/8/8/PPP2PPP/4K3 w - - 0 1"; // attacked by the knight
            EXPECT_FALSE(HangsMateOrQueen(BoardOf(queen), play(queen))) << seed;
        }
    }
    const Board threatened = BoardOf("3r2k1/5ppp/8/8/8/8/1B3PPP/6K1 w - - 0 1");
    EXPECT_FALSE(HangsMateOrQueen(threatened, ReadSan(threatened, "Bc3")));
    EXPECT_TRUE(HangsMateOrQueen(threatened, ReadSan(threatened, "Ba3")));
}

TEST(Handicap, OversightsFollowTheOccasion) {
    const Board board = Board::Start();
    const Handicap handicap = HandicapFor(10, board);
    MoveBuffer moves;
    GenerateMoves(board, moves);
    int differences = 0;
    int overlooked = 0;
    for (const Move move : moves) {
        EXPECT_EQ(Overlooks(handicap, board, move, 1), Overlooks(handicap, board, move, 1));
        differences += Overlooks(handicap, board, move, 1) != Overlooks(handicap, board, move, 2);
        overlooked += Overlooks(handicap, board, move, 1);
        EXPECT_FALSE(Overlooks(HandicapFor(100, board), board, move, 1));
    }
    EXPECT_GT(differences, 0);
    EXPECT_GT(overlooked, 8); // of twenty, most
}

TEST(Handicap, SkillsInBetweenAreBlended) {
    const Board board = Board::Start();
    for (int skill = 1; skill < 100; ++skill) {
        const Handicap weaker = HandicapFor(skill - 1, board);
        const Handicap stronger = HandicapFor(skill, board);
        EXPECT_LE(weaker.Nodes, stronger.Nodes);
        EXPECT_LE(weaker.Depth, stronger.Depth);
        EXPECT_GE(weaker.NoiseCp, stronger.NoiseCp);
        EXPECT_GE(weaker.OverlookQuietPermille, stronger.OverlookQuietPermille);
    }
    EXPECT_TRUE(HandicapFor(100, board).IsNone());
    EXPECT_FALSE(HandicapFor(99, board).IsNone());
}

} // namespace
} // namespace quarnel::engine
