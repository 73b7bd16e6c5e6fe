#include "tools/suite/Problem.h"

#include "quarnelchess/records/San.h"
#include "tests/quarnelchess/RandomGames.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quarnel::suite {
namespace {

using engine::Board;
using engine::Move;

constexpr std::uint64_t Budget = 10000000;

/// Mate in so many moves by trying everything, without order or memory.
bool MatesIn(const Board& board, int moves, bool attacking) {
    engine::MoveBuffer list;
    engine::GenerateMoves(board, list);
    if (!attacking && list.Empty()) return board.InCheck();
    if (moves == 0) return false;
    const auto works = [&](Move move) {
        Board next = board;
        next.Make(move);
        return MatesIn(next, attacking ? moves - 1 : moves, !attacking);
    };
    return attacking ? std::any_of(list.begin(), list.end(), works) : std::all_of(list.begin(), list.end(), works);
}

TEST(Prover, FindsExactlyTheMatesThatPlainTryingFinds) {
    Prover prover;
    int mates = 0;
    engine::ForRandomPositions(2, 60, [&](const Board& board) {
        const auto solutions = prover.Solutions(board, {2, 0}, Budget, engine::MoveBuffer::Capacity);
        ASSERT_TRUE(solutions.has_value());
        engine::MoveBuffer list;
        engine::GenerateMoves(board, list);
        for (const Move move : list) {
            Board next = board;
            next.Make(move);
            const bool found = std::find(solutions->begin(), solutions->end(), move) != solutions->end();
            ASSERT_EQ(found, MatesIn(next, 1, false));
            mates += found ? 1 : 0;
        }
    });
    EXPECT_GT(mates, 5);
}

TEST(Prover, ProvesWinsOfMaterialAgainstEveryDefence) {
    const struct {
        const char* What;
        const char* Fen;
        const char* Move;
        Claim Goal;
        bool Proved;
    } cases[] = {
        {"a hanging knight", "4k3/8/8/3n4/8/8/8/3RK3 w - - 0 1", "Rxd5", {1, 300}, true},
        {"a guarded knight", "4k3/8/4p3/3n4/8/8/8/3RK3 w - - 0 1", "Rxd5", {1, 300}, false},
        {"a fork of king and rook", "r3k3/8/8/3N4/8/8/8/4K3 w - - 0 1", "Nc7", {2, 500}, true},
        {"but not before the rook is taken", "r3k3/8/8/3N4/8/8/8/4K3 w - - 0 1", "Nc7", {1, 500}, false},
        {"a fork where the knight is taken", "r3k3/8/1b6/3N4/8/8/8/4K3 w - - 0 1", "Nc7", {2, 300}, false},
        {"the rook's captor is taken, too", "r1b1k3/8/1n6/3N4/8/8/8/4K3 w - - 0 1", "Nc7", {2, 300}, false},
        {"a pawn that promotes unhindered", "8/P6k/8/8/8/8/8/K7 w - - 0 1", "a8=Q", {1, 800}, true},
        {"a promotion that stalemates", "k7/2Q5/8/2P5/8/1P6/8/K7 w - - 0 1", "b4", {1, 100}, false},
        {"a rook whose captor is taken with mate",
         "3q2k1/5ppp/8/8/3Q4/8/5PPP/3r2K1 w - - 0 1",
         "Qxd1",
         {1, 300},
         false},
    };
    Prover prover;
    for (const auto& c : cases) {
        const Board board = engine::BoardOf(c.Fen);
        EXPECT_EQ(prover.Proves(board, engine::ReadSan(board, c.Move), c.Goal, Budget), c.Proved) << c.What;
    }
}

TEST(Prover, GivesUpBeyondItsBudget) {
    Prover prover;
    const Board& board = Board::Start();
    EXPECT_EQ(prover.Proves(board, engine::ReadSan(board, "e4"), {4, 300}, 1000), std::nullopt);
}

TEST(Problem, TextIsReadBackAndProofsAreTold) {
    Prover prover;
    const struct {
        const char* Line;
        bool Reads;
        bool Proven;
    } cases[] = {
        {R"(r3k3/8/8/3N4/8/8/8/4K3 w - - bm Nc7; c0 "wins 500 in 2"; id "quarnel.007";)", true, true},
        {R"(r3k3/8/8/3N4/8/8/8/4K3 w - - bm Nc7 Nf6; c0 "wins 500 in 2"; id "quarnel.007";)", true, false},
        {R"(r3k3/8/8/3N4/8/8/8/4K3 w - - bm Nb6; c0 "wins 500 in 2"; id "quarnel.007";)", true, false},
        {R"(7k/8/8/8/8/8/1R6/R5K1 w - - bm Rb7; dm 2; id "quarnel.010";)", true, false},
        {R"(r3k3/8/8/3N4/8/8/8/4K3 w - - bm Ne9; c0 "wins 500 in 2"; id "quarnel.007";)", false, false},
        {R"(r3k3/8/8/3N4/8/8/8/4K3 w - - bm Nc7; id "quarnel.007";)", false, false},
        {R"(r3k3/8/8/3N4/8/8/8/4K3 w - - bm Nc7; c0 "wins 500 in 2";)", false, false},
    };
    for (const auto& c : cases) {
        const std::optional<Problem> problem = ReadEpd(c.Line);
        ASSERT_EQ(problem.has_value(), c.Reads) << c.Line;
        if (!problem) continue;
        EXPECT_EQ(WriteEpd(*problem), c.Line);
        EXPECT_EQ(IsProven(prover, *problem, Budget), c.Proven) << c.Line;
    }
}

} // namespace
} // namespace quarnel::suite
