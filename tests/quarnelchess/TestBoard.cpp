#include "RandomGames.h"

#include "quarnelchess/records/San.h"

#include <gtest/gtest.h>

namespace quarnel::engine {
namespace {

TEST(Board, KeepsKeysAndSumsUpToDateAndForeseesChecks) {
    ForRandomPositions(10, 120, [](const Board& board) {
        const std::string fen = WriteFen(board);
        const std::optional<Board> fresh = ReadFen(fen);
        ASSERT_TRUE(fresh) << fen;
        ASSERT_EQ(board.PositionKey(), fresh->PositionKey()) << fen;
        ASSERT_EQ(board.PawnKey(), fresh->PawnKey()) << fen;
        ASSERT_EQ(board.Checkers(), fresh->Checkers()) << fen;
        ASSERT_EQ(WriteFen(*fresh), fen);
        for (const Move move : MovesOf(board)) {
            Board next = board;
            next.Make(move);
            ASSERT_EQ(board.GivesCheck(move), next.InCheck()) << fen << " " << NameOf(move);
        }
    });
}

TEST(Board, TellsPositionsApartByRightsTurnAndEnPassant) {
    const char* const fens[] = {
        "r3k2r/8/8/8/3pP3/8/8/R3K2R b KQkq - 0 1",  "r3k2r/8/8/8/3pP3/8/8/R3K2R b KQkq e3 0 1",
        "r3k2r/8/8/8/3pP3/8/8/R3K2R b Qkq - 0 1",   "r3k2r/8/8/8/3pP3/8/8/R3K2R w KQkq - 0 1",
        "r3k2r/8/8/8/4P3/3p4/8/R3K2R b KQkq - 0 1",
    };
    for (const char* a : fens)
        for (const char* b : fens)
            EXPECT_EQ(BoardOf(a).PositionKey() == BoardOf(b).PositionKey(), a == b) << a << " | " << b;
    // Without a pawn that could capture, the double step leaves no trace.
    EXPECT_EQ(BoardOf("4k3/8/8/8/4P3/8/8/4K3 b - e3 0 1").PositionKey(),
              BoardOf("4k3/8/8/8/4P3/8/8/4K3 b - - 0 1").PositionKey());
    // Rights without king or rook at home are none.
    EXPECT_EQ(BoardOf("r3k3/8/8/8/8/8/8/4K2R w KQkq - 0 1").Castling(), WhiteKingSide | BlackQueenSide);
    EXPECT_EQ(BoardOf("r2k3r/8/8/8/8/8/8/R3K2R w KQkq - 0 1").Castling(), WhiteKingSide | WhiteQueenSide);
}

TEST(Board, RefusesWhatItCannotHold) {
    const char* const refused[] = {
        "8/8/8/8/8/8/8/4K3 w - - 0 1",             // a king is missing
        "4k3/8/8/8/8/8/8/3KK3 w - - 0 1",          // a king too many
        "4k2P/8/8/8/8/8/8/4K3 w - - 0 1",          // a pawn on the last rank
        "4k3/8/8/8/8/8/4R3/4K3 w - - 0 1",         // the side not to move is in check
        "4k3/8/8/QQQQQ3/QQQQQ3/8/8/4K3 b - - 0 1", // more queens than pawns can become
        "4k3/8/8/8/8/8/8/4K3 x - - 0 1",
        "4k3/8/8/8/8/8/8/4K4 w - - 0 1",
        "4k3/8/8/8/8/8/4K3 w - - 0 1",
        "",
    };
    for (const char* fen : refused) EXPECT_FALSE(ReadFen(fen)) << fen;
}

TEST(Board, WeighsExchanges) {
    const struct {
        const char* Fen;
        const char* Capture;
        int Gain; // the exchange wins exactly this much
    } cases[] = {
        {"4k3/8/8/3p4/8/8/3R4/4K3 w - - 0 1", "Rxd5", 100},         // a free pawn
        {"4k3/8/4p3/3p4/8/8/3R4/4K3 w - - 0 1", "Rxd5", 100 - 500}, // it is guarded
        {"3rk3/8/8/3n4/8/8/3R4/3RK3 w - - 0 1", "Rxd5", 320},       // the rook behind counts
        {"3rk3/8/2b5/3n4/8/4P3/3R4/3RK3 w - - 0 1", "Rxd5", 320 - 500},
        {"4k3/8/2b5/3p4/4P3/8/8/4K2B w - - 0 1", "exd5", 100}, // bishops behind the pawn
        {"4k3/8/8/8/8/8/r7/K6R w - - 0 1", "Kxa2", 500},       // the king takes a free rook
        {"4k3/8/8/8/8/8/3p4/4K3 w - - 0 1", "Ke2", 0},         // nothing to win
    };
    for (const auto& c : cases) {
        const Board board = BoardOf(c.Fen);
        EXPECT_TRUE(board.ExchangeGains(ReadSan(board, c.Capture), c.Gain)) << c.Fen;
        EXPECT_FALSE(board.ExchangeGains(ReadSan(board, c.Capture), c.Gain + 1)) << c.Fen;
    }
}

TEST(Board, KnowsMaterialThatCannotMate) {
    for (const char* fen : {"4k3/8/8/8/8/8/8/4K3 w - -", "4k3/8/8/8/8/8/8/3NK3 w - -", "3bk3/8/8/8/8/8/8/4K3 w - -"})
        EXPECT_TRUE(BoardOf(fen).InsufficientMaterial()) << fen;
    for (const char* fen : {"3bk3/8/8/8/8/8/8/3NK3 w - -", "4k3/8/8/8/8/8/4P3/4K3 w - -", "4k3/8/8/8/8/8/8/3RK3 w - -"})
        EXPECT_FALSE(BoardOf(fen).InsufficientMaterial()) << fen;
}

} // namespace
} // namespace quarnel::engine
