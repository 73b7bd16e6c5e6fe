#include "RandomGames.h"

#include "quarnelchess/records/San.h"
#include "quarnelchess/search/Clock.h"
#include "quarnelchess/search/Handicap.h"
#include "quarnelchess/search/Search.h"

#include <gtest/gtest.h>

#include <functional>

namespace quarnel::engine {
namespace {

using Player = std::function<Move(const Board&, const std::vector<Key>&)>;

/// White's points from a game: 1, 0.5 or 0. Repetitions, fifty moves and 300 plies are draws.
double PlayGame(Board board, const Player& white, const Player& black) {
    std::vector<Key> earlier;
    for (int ply = 0; ply < 300; ++ply) {
        const MoveBuffer moves = MovesOf(board);
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

/// Takes the most valuable piece in sight if `greedy`; otherwise, or when there is none, anything at all.
Player Beginner(std::mt19937& random, bool greedy) {
    return [&random, greedy](const Board& board, const std::vector<Key>&) {
        std::vector<Move> best;
        int bestPrey = -1;
        for (const Move move : MovesOf(board)) {
            const int prey =
                greedy && board.IsCapture(move)
                    ? board.At(move.To()) == NoPiece ? ExchangeValue[Pawn] : ExchangeValue[KindOf(board.At(move.To()))]
                    : 0;
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

TEST(Handicap, EveryLevelBeatsTheOneBelowAndTheLowestIsABeginner) {
    SteadyClock clock;
    Search weak(clock);
    Search strong(clock);
    weak.SetHash(1);
    strong.SetHash(1);
    weak.SetSeed(1);
    strong.SetSeed(11);
    std::mt19937 random(11);
    const struct {
        int Skill;
        Player Opponent;
        int Games;
        double Least; // of the points
        double Most;
    } cases[] = {{10, Beginner(random, false), 30, 0.9, 1}, {10, Beginner(random, true), 30, 0.2, 0.85},
                 {20, Engine(weak, 10), 10, 0.6, 1},        {30, Engine(weak, 20), 30, 0.6, 1},
                 {50, Engine(weak, 30), 10, 0.6, 1},        {75, Engine(weak, 50), 10, 0.6, 1}};
    for (const auto& c : cases) {
        const double share = ShareOfPoints(c.Games, Engine(strong, c.Skill), c.Opponent);
        EXPECT_GE(share, c.Least) << c.Skill;
        EXPECT_LE(share, c.Most) << c.Skill;
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

TEST(Handicap, CarefulPlayersSeeMateInOneAndKeepTheirPieces) {
    SteadyClock clock;
    Search search(clock);
    search.SetHash(1);
    const struct {
        const char* Fen;
        bool Mates;
    } cases[] = {{"6k1/5ppp/8/8/8/8/5PPP/3R2K1 w - - 0 1", true},
                 {"r4rk1/pp3ppp/2p5/8/8/2P5/PP3PPP/3QR1K1 w - - 0 1", false},
                 {"3r2k1/5ppp/8/8/8/8/1B3PPP/6K1 w - - 0 1", false},    // Rd1 mates unless met
                 {"6k1/3p4/2n5/4Q3/8/8/PPP2PPP/4K3 w - - 0 1", false},  // the knight attacks the queen
                 {"6k1/5ppp/8/3b4/8/1N6/PP3PPP/6K1 w - - 0 1", false}}; // the bishop the knight, once a2 moves
    for (std::uint64_t seed = 0; seed < 15; ++seed) {
        search.SetSeed(seed);
        for (const int skill : {50, 75, 83}) {
            for (const auto& c : cases) {
                const Board board = BoardOf(c.Fen);
                const Move move = Engine(search, skill)(board, {});
                EXPECT_EQ(MatesAtOnce(board, move), c.Mates) << c.Fen << " " << NameOf(move);
                EXPECT_FALSE(HangsMate(board, move)) << c.Fen << " " << NameOf(move);
                EXPECT_FALSE(LosesToCapture(board, move, 250)) << c.Fen << " " << NameOf(move);
            }
        }
    }
    const Board threatened = BoardOf(cases[2].Fen);
    EXPECT_FALSE(HangsMate(threatened, ReadSan(threatened, "Bc3")));
    EXPECT_TRUE(HangsMate(threatened, ReadSan(threatened, "Ba3")));
    // A trade loses nothing, to take a guarded pawn does.
    const Board trade = BoardOf("6k1/3p4/2n1p3/8/3N4/8/1P4P1/3R2K1 w - - 0 1");
    EXPECT_FALSE(LosesToCapture(trade, ReadSan(trade, "Nxc6"), 250));
    EXPECT_TRUE(LosesToCapture(trade, ReadSan(trade, "Nxe6"), 200));
    EXPECT_FALSE(LosesToCapture(trade, ReadSan(trade, "Nxe6"), 250));
}

TEST(Handicap, NoDoubtFallsOnAMateAndOnlyBeginnersOverlookOne) {
    const Board board = BoardOf("6k1/5ppp/8/8/8/8/5PPP/3RR1K1 w - - 0 1");
    const Move mates = ReadSan(board, "Rd8");
    const Move waits = ReadSan(board, "h3");
    const Move walks = ReadSan(board, "Kf1");
    int played[3] = {};
    const int skills[] = {10, 30, 50};
    for (std::uint64_t occasion = 0; occasion < 400; ++occasion) {
        const std::vector<Candidate> distant{{waits, MateValue - 5}, {walks, MateValue - 7}};
        for (int i = 0; i < 3; ++i) {
            const Handicap handicap = HandicapFor(skills[i], board);
            EXPECT_EQ(ChooseCandidate(board, distant, handicap, occasion), 0U);
            const std::vector<Candidate> candidates{{waits, 900}, {mates, MateValue - 1}, {walks, 0}};
            played[i] += ChooseCandidate(board, candidates, handicap, occasion) == 1 ? 1 : 0;
        }
    }
    EXPECT_GT(played[0], 200);
    EXPECT_LT(played[0], 360);
    EXPECT_LT(played[0], played[1]);
    EXPECT_LT(played[1], 400);
    EXPECT_EQ(played[2], 400);
}

TEST(Handicap, WeakerPlayersSeeLessAndOverlookMoreByTheOccasion) {
    const Board board = Board::Start();
    for (int skill = 1; skill <= 100; ++skill) {
        const Handicap weaker = HandicapFor(skill - 1, board);
        const Handicap stronger = HandicapFor(skill, board);
        EXPECT_EQ(stronger.IsNone(), skill == 100);
        EXPECT_TRUE(stronger.IsNone() || weaker.Nodes <= stronger.Nodes) << skill;
        EXPECT_LE(weaker.Depth, stronger.Depth) << skill;
        EXPECT_GE(weaker.NoiseCp, stronger.NoiseCp) << skill;
        EXPECT_GE(weaker.OverlookQuietPermille, stronger.OverlookQuietPermille) << skill;
    }
    const Handicap handicap = HandicapFor(10, board);
    std::vector<bool> overlooked[2];
    for (const Move move : MovesOf(board))
        for (const int occasion : {0, 1}) overlooked[occasion].push_back(Overlooks(handicap, board, move, occasion));
    EXPECT_NE(overlooked[0], overlooked[1]);
    EXPECT_GT(std::count(overlooked[0].begin(), overlooked[0].end(), true), 8); // of twenty, most
}

} // namespace
} // namespace quarnel::engine
