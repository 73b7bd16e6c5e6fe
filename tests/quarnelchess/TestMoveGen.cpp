#include "NaiveRules.h"
#include "RandomGames.h"

#include <gtest/gtest.h>

#include <set>

namespace quarnel::engine {
namespace {

struct PerftCase {
    const char* Fen;
    int Depth;
    std::uint64_t Leaves;
};

TEST(MoveGen, CountsTheKnownNumberOfLeaves) {
    const PerftCase cases[] = {
        {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1", 5, 4865609},
        {"r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -", 3, 97862},
        {"8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -", 5, 674624},
        {"r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - 0 1", 4, 422333},
        {"r2q1rk1/pP1p2pp/Q4n2/bbp1p3/Np6/1B3NBn/pPPP1PPP/R3K2R b KQ - 0 1", 4, 422333},
        {"rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - 1 8", 4, 2103487},
        {"r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - 0 10", 3, 89890},
    };
    for (const PerftCase& c : cases) EXPECT_EQ(Perft(BoardOf(c.Fen), c.Depth), c.Leaves) << c.Fen;
}

TEST(MoveGen, AgreesWithPlainRulesOverRandomGames) {
    int positions = 0;
    ForRandomPositions(12, 90, [&](const Board& board) {
        std::multiset<std::string> expected;
        for (const naive::Move& move : naive::LegalMoves(naive::Read(WriteFen(board))))
            expected.insert(naive::Name(move));
        MoveBuffer moves;
        GenerateMoves(board, moves);
        std::multiset<std::string> found;
        for (const Move move : moves) found.insert(NameOf(move));
        ASSERT_EQ(found, expected) << WriteFen(board);
        ASSERT_EQ(CountMoves(board), static_cast<int>(moves.Size())) << WriteFen(board);
        ++positions;
    });
    EXPECT_GT(positions, 3000);
}

TEST(MoveGen, SplitsMovesIntoNoisyAndQuiet) {
    ForRandomPositions(4, 60, [](const Board& board) {
        MoveBuffer all, noisy, quiet;
        GenerateMoves(board, all);
        GenerateMoves<MoveClass::Noisy>(board, noisy);
        GenerateMoves<MoveClass::Quiet>(board, quiet);
        ASSERT_EQ(noisy.Size() + quiet.Size(), all.Size()) << WriteFen(board);
        for (const Move move : noisy) ASSERT_TRUE(board.IsNoisy(move)) << WriteFen(board) << NameOf(move);
        for (const Move move : quiet) ASSERT_FALSE(board.IsNoisy(move)) << WriteFen(board) << NameOf(move);
    });
}

TEST(MoveGen, TellsTheLegalMovesAmongAllBitPatterns) {
    ForRandomPositions(1, 25, [](const Board& board) {
        MoveBuffer moves;
        GenerateMoves(board, moves);
        std::set<int> legal;
        for (const Move move : moves) legal.insert(move.Bits());
        for (int bits = 0; bits < 0x10000; ++bits) {
            const Move move = Move::FromBits(static_cast<std::uint16_t>(bits));
            ASSERT_EQ(IsLegal(board, move), legal.count(bits) == 1) << WriteFen(board) << " " << bits;
        }
    });
}

} // namespace
} // namespace quarnel::engine
