#include "RandomGames.h"

#include "quarnelchess/San.h"

#include <gtest/gtest.h>

#include <set>

namespace quarnel::engine {
namespace {

TEST(San, WritesEveryMoveApartAndReadsItBack) {
    ForRandomPositions(2, 70, [](const Board& board) {
        MoveBuffer moves;
        GenerateMoves(board, moves);
        std::set<std::string> texts;
        for (const Move move : moves) {
            const std::string text = WriteSan(board, move);
            ASSERT_TRUE(texts.insert(text).second) << WriteFen(board) << " " << text;
            ASSERT_EQ(ReadSan(board, text), move) << WriteFen(board) << " " << text;
        }
    });
}

struct SanCase {
    const char* Fen;
    const char* Move;
    const char* Text;
};

TEST(San, TellsAlikePiecesApart) {
    const SanCase cases[] = {
        {"4k3/8/8/8/8/8/8/R3K2R w KQ - 0 1", "e1g1", "O-O"},
        {"4k3/8/8/8/8/8/8/R3K2R w KQ - 0 1", "e1c1", "O-O-O"},
        {"4k3/8/8/8/8/8/3K4/R6R w - - 0 1", "a1d1", "Rad1"},
        {"4k3/8/8/3R4/8/8/8/3R1K2 w - - 0 1", "d1d3", "R1d3"},
        {"4k3/8/8/8/8/5N2/8/1N2K3 w - - 0 1", "b1d2", "Nbd2"},
        {"8/8/k7/8/4Q2Q/8/K7/7Q w - - 0 1", "h4e1", "Qh4e1"},
        {"4k3/8/8/8/1b6/5N2/8/1N2K3 w - - 0 1", "f3d2", "Nfd2"},
        {"3rk3/4P3/8/8/8/8/8/4K3 w - - 0 1", "e7d8r", "exd8=R"},
        {"4k3/8/8/8/8/8/p7/4K3 b - - 0 1", "a2a1n", "a1=N"},
        {"4k3/8/8/8/3pP3/8/8/4K3 b - e3 0 1", "d4e3", "dxe3"},
    };
    for (const SanCase& c : cases) {
        const Board board = BoardOf(c.Fen);
        MoveBuffer moves;
        GenerateMoves(board, moves);
        bool seen = false;
        for (const Move move : moves) {
            if (NameOf(move) != c.Move) continue;
            EXPECT_EQ(WriteSan(board, move), c.Text) << c.Fen;
            seen = true;
        }
        EXPECT_TRUE(seen) << c.Fen;
    }
}

TEST(San, RefusesWhatIsNoMove) {
    for (const char* text : {"", "e", "e5", "Ke2", "Nf6", "O-O", "exd5", "xe4", "Qxh7#+", "=Q", "e4=Q", "e9", "i4",
                             "NNf3", "Nf3x", "White(1):", "1-0", "\xBD"})
        EXPECT_FALSE(ReadSan(Board::Start(), text)) << text;
    EXPECT_TRUE(ReadSan(Board::Start(), "Nf3+"));
    EXPECT_EQ(NameOf(ReadSan(BoardOf("7k/P7/8/8/8/8/8/K7 w - - 0 1"), "a8")), "a7a8q");
}

} // namespace
} // namespace quarnel::engine
