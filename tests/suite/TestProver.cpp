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
    std::ptrdiff_t mates = 0;
    engine::ForRandomPositions(2, 60, [&](const Board& board) {
        const auto solutions = prover.Solutions(board, {2, 0}, Budget, engine::MoveBuffer::Capacity);
        engine::MoveBuffer list;
        engine::GenerateMoves(board, list);
        for (const Move move : list) {
            Board next = board;
            next.Make(move);
            const auto found = std::count(solutions->begin(), solutions->end(), move);
            ASSERT_EQ(found, MatesIn(next, 1, false) ? 1 : 0);
            mates += found;
        }
    });
    EXPECT_GT(mates, 5);
}

TEST(Prover, ProvesWinsOfMaterialAgainstEveryDefence) {
    const std::pair<std::string, bool> cases[] = {
        {R"(4k3/8/8/3n4/8/8/8/3RK3 w - - bm Rxd5; c0 "wins 300 in 1")", true},
        {R"(4k3/8/4p3/3n4/8/8/8/3RK3 w - - bm Rxd5; c0 "wins 300 in 1")", false}, // guarded
        {R"(r3k3/8/8/3N4/8/8/8/4K3 w - - bm Nc7; c0 "wins 500 in 2")", true},
        {R"(r3k3/8/8/3N4/8/8/8/4K3 w - - bm Nc7; c0 "wins 500 in 1")", false},
        {R"(r3k3/8/8/3N4/8/8/8/4K3 w - - bm Nc7 Nf6; c0 "wins 500 in 2")", false},
        {R"(r3k3/8/1b6/3N4/8/8/8/4K3 w - - bm Nc7; c0 "wins 300 in 2")", false},         // taken
        {R"(3q2k1/5ppp/8/8/3Q4/8/5PPP/3r2K1 w - - bm Qxd1; c0 "wins 300 in 1")", false}, // mated by the recapture
        {R"(7k/8/8/8/8/8/1R6/R5K1 w - - bm Rb7; dm 2)", false},                          // there is a second way
    };
    Prover prover;
    for (const auto& [text, proved] : cases) {
        const std::optional<Problem> problem = ReadEpd(text + "; id \"quarnel.001\";");
        ASSERT_TRUE(problem) << text;
        EXPECT_TRUE(WriteEpd(*problem).starts_with(text)) << text;
        EXPECT_EQ(IsProven(prover, *problem, Budget), proved) << text;
    }
}

} // namespace
} // namespace quarnel::suite
