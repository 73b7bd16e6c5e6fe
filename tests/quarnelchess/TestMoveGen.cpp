#include "RandomGames.h"

#include "quarnelchess/records/San.h"

#include <gtest/gtest.h>

#include <set>

namespace quarnel::engine {
namespace {

TEST(MoveGen, CountsTheKnownNumberOfLeaves) {
    const struct {
        const char* Fen;
        int Depth;
        std::uint64_t Leaves;
    } cases[] = {
        {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1", 5, 4865609},
        {"r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -", 3, 97862},
        {"8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -", 5, 674624},
        {"r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - 0 1", 4, 422333},
        {"r2q1rk1/pP1p2pp/Q4n2/bbp1p3/Np6/1B3NBn/pPPP1PPP/R3K2R b KQ - 0 1", 4, 422333},
        {"rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - 1 8", 4, 2103487},
        {"r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - 0 10", 3, 89890},
    };
    for (const auto& c : cases) EXPECT_EQ(Perft(BoardOf(c.Fen), c.Depth), c.Leaves) << c.Fen;
}

TEST(MoveGen, SplitsAndCountsTheMovesThatItLists) {
    ForRandomPositions(12, 90, [](const Board& board) {
        MoveBuffer noisy, quiet;
        GenerateMoves<MoveClass::Noisy>(board, noisy);
        GenerateMoves<MoveClass::Quiet>(board, quiet);
        const auto count = static_cast<int>(MovesOf(board).Size());
        ASSERT_EQ(CountMoves(board), count) << WriteFen(board);
        ASSERT_EQ(noisy.Size() + quiet.Size(), count) << WriteFen(board);
        for (const Move move : noisy) ASSERT_TRUE(board.IsNoisy(move)) << WriteFen(board) << NameOf(move);
        for (const Move move : quiet) ASSERT_FALSE(board.IsNoisy(move)) << WriteFen(board) << NameOf(move);
    });
}

TEST(MoveGen, TellsTheLegalMovesAmongAllBitPatterns) {
    ForRandomPositions(1, 25, [](const Board& board) {
        std::set<int> legal;
        for (const Move move : MovesOf(board)) legal.insert(move.Bits());
        for (int bits = 0; bits < 0x10000; ++bits) {
            const Move move = Move::FromBits(static_cast<std::uint16_t>(bits));
            ASSERT_EQ(IsLegal(board, move), legal.count(bits) == 1) << WriteFen(board) << " " << bits;
        }
    });
}

TEST(San, WritesEveryMoveApartAndReadsItBack) {
    ForRandomPositions(2, 70, [](const Board& board) {
        std::set<std::string> texts;
        for (const Move move : MovesOf(board)) {
            const std::string text = WriteSan(board, move);
            ASSERT_TRUE(texts.insert(text).second) << WriteFen(board) << " " << text;
            ASSERT_EQ(ReadSan(board, text), move) << WriteFen(board) << " " << text;
        }
    });
}

TEST(San, TellsAlikePiecesApartAndRefusesWhatIsNoMove) {
    const struct {
        const char* Fen;
        const char* Text;
        const char* Move;
    } cases[] = {
        {"4k3/8/8/8/8/8/8/R3K2R w KQ - 0 1", "O-O", "e1g1"},     {"4k3/8/8/8/8/8/8/R3K2R w KQ - 0 1", "O-O-O", "e1c1"},
        {"4k3/8/8/8/8/8/3K4/R6R w - - 0 1", "Rad1", "a1d1"},     {"4k3/8/8/3R4/8/8/8/3R1K2 w - - 0 1", "R1d3", "d1d3"},
        {"8/8/k7/8/4Q2Q/8/K7/7Q w - - 0 1", "Qh4e1", "h4e1"},    {"4k3/8/8/8/1b6/5N2/8/1N2K3 w - -", "Nfd2", "f3d2"},
        {"3rk3/4P3/8/8/8/8/8/4K3 w - - 0 1", "exd8=R", "e7d8r"}, {"4k3/8/8/8/8/8/p7/4K3 b - - 0 1", "a1=N", "a2a1n"},
        {"4k3/8/8/8/3pP3/8/8/4K3 b - e3 0 1", "dxe3", "d4e3"},
    };
    for (const auto& c : cases) {
        const Board board = BoardOf(c.Fen);
        EXPECT_EQ(NameOf(ReadSan(board, c.Text)), c.Move) << c.Fen;
        EXPECT_EQ(WriteSan(board, ReadSan(board, c.Text)), c.Text) << c.Fen;
    }
    for (const char* text : {"", "e", "e5", "Ke2", "Nf6", "O-O", "exd5", "xe4", "Qxh7#+", "=Q", "e4=Q", "e9", "i4",
                             "NNf3", "Nf3x", "White(1):", "1-0", "\xBD"})
        EXPECT_FALSE(ReadSan(Board::Start(), text)) << text;
    EXPECT_TRUE(ReadSan(Board::Start(), "Nf3+"));
    EXPECT_EQ(NameOf(ReadSan(BoardOf("7k/P7/8/8/8/8/8/K7 w - - 0 1"), "a8")), "a7a8q");
}

} // namespace
} // namespace quarnel::engine
