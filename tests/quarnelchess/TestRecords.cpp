#include "RandomGames.h"

#include "quarnelchess/records/LooseRules.h"
#include "quarnelchess/records/Records.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace quarnel::engine {
namespace {

using MoveBytes = std::array<std::uint8_t, 8>;

std::vector<MoveBytes> SortedBytes(const MoveList& list) {
    std::vector<MoveBytes> moves(list.Count);
    for (std::size_t i = 0; i < moves.size(); ++i) std::memcpy(moves[i].data(), &list.Moves[i], 8);
    std::sort(moves.begin(), moves.end());
    return moves;
}

std::vector<MoveBytes> Listed(const Position& position, Color side) {
    MoveList list;
    ListMoves(position, side, list);
    return SortedBytes(list);
}

Position After(Position position, const MoveBytes& bytes) {
    MoveRec move;
    std::memcpy(&move, bytes.data(), 8);
    PlayMove(position, move);
    return position;
}

Position RecordOf(const char* fen) {
    return RecordFromBoard(BoardOf(fen));
}

TEST(Records, ListAndPlayTheBoardsMovesByFastAndByLooseRules) {
    ForRandomPositions(7, 75, [](const Board& board) {
        const Position before = RecordFromBoard(board);
        MoveList loose;
        loose.Count = 0;
        ListLooseMoves(before, board.SideToMove(), loose);
        ASSERT_EQ(Listed(before, board.SideToMove()), SortedBytes(loose)) << WriteFen(board);
        ASSERT_EQ(KingAttacked(before, board.SideToMove()), board.InCheck());
        const MoveBuffer moves = MovesOf(board);
        ASSERT_EQ(moves.Size(), loose.Count);
        for (const Move move : moves) {
            const MoveRec record = RecordFromMove(board, move);
            ASSERT_EQ(MoveFromRecord(board, record), move);
            Board next = board;
            next.Make(move);
            Position after = before;
            PlayMove(after, record);
            ASSERT_EQ(after.SideToMove, before.SideToMove);
            // The record remembers every double step, the board only those that can be answered en passant.
            const bool doubleStep = KindOf(board.At(move.From())) == Pawn && std::abs(move.To() - move.From()) == 16;
            ASSERT_EQ(after.EpFile, doubleStep ? FileOf(move.To()) + 1 : 0);
            const std::optional<Board> reread = BoardFromRecord(after, next.SideToMove());
            ASSERT_TRUE(reread);
            ASSERT_EQ(reread->PositionKey(), next.PositionKey()) << WriteFen(board) << " " << NameOf(move);
        }
    });
}

TEST(Records, ListTheColourAskedForWhoeverIsToMove) {
    for (const char* fen : {"r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1", "4k3/P7/8/8/8/8/7p/4K3 w - - 0 1",
                            "4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 1", "4k3/8/8/8/3pP3/8/8/4K3 b - e3 0 1"}) {
        Position position = RecordOf(fen);
        const auto white = Listed(position, White);
        const auto black = Listed(position, Black);
        position.SideToMove = static_cast<std::int16_t>(~position.SideToMove);
        EXPECT_EQ(Listed(position, White), white) << fen;
        EXPECT_EQ(Listed(position, Black), black) << fen;
        for (const MoveBytes& move : white) EXPECT_EQ(std::count(black.begin(), black.end(), move), 0) << fen;
    }
}

TEST(Records, PlayWhatTheyAreToldAndNothingElse) {
    const Position start = RecordOf("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1");
    // Nothing, results, no piece there, off the board, no such castling.
    const MoveBytes ignored[] = {
        {},           {0, 0, 0, 0, 0, 250}, {0, 0, 0, 0, 0, 251}, {5, 7, 5, 5, 0, 252}, {5, 5, 5, 4},
        {9, 7, 5, 5}, {5, 7, 5, 9},         {5, 8, 0, 0, 3},      {4, 8, 0, 0, 1}};
    for (const MoveBytes& bytes : ignored) {
        const Position after = After(start, bytes);
        EXPECT_EQ(std::memcmp(&after, &start, sizeof start), 0) << testing::PrintToString(bytes);
    }

    // A knight that leaps from b1 to f6, of all places, takes what stands there.
    Position leap = start;
    leap.EpFile = 4;
    leap = After(leap, {2, 8, 6, 2});
    EXPECT_EQ(leap.Board[2][6], 2);
    EXPECT_EQ(leap.Board[8][2], 0);
    EXPECT_EQ(leap.EpFile, 0);

    // Rights go with the rook's corner, by leaving it or by losing it.
    Position rooks = After(RecordOf("r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1"), {8, 8, 8, 1});
    EXPECT_EQ(rooks.WhiteCastle, 2);
    EXPECT_EQ(rooks.BlackCastle, 2);
    rooks = After(rooks, {5, 8, 0, 0, 2});
    EXPECT_EQ(rooks.WhiteCastle, 0);
    const std::uint8_t castled[] = {0, 0, 6, 4, 0}; // a1 to e1
    EXPECT_EQ(std::memcmp(&rooks.Board[8][1], castled, sizeof castled), 0);
}

TEST(Records, StrangePositionsKeepTheSenseOfTheRules) {
    Position lone{};
    lone.Board[8][1] = 4; // a white rook and nothing else: no king to lose
    EXPECT_EQ(Listed(lone, White).size(), 14U);
    EXPECT_EQ(Listed(lone, Black).size(), 0U);
    EXPECT_FALSE(KingAttacked(lone, White));

    lone.Board[8][3] = 14;                     // a wall: neither passed nor captured
    lone.Board[6][1] = 12;                     // a king is never captured
    EXPECT_EQ(Listed(lone, White).size(), 2U); // a2 and b1
    EXPECT_TRUE(KingAttacked(lone, Black));

    Position queens{};
    std::memset(queens.Board, 5, sizeof queens.Board);
    EXPECT_EQ(Listed(queens, White).size(), 0U);
    for (int row = 2; row <= 7; ++row) std::memset(&queens.Board[row][2], 0, 6);
    EXPECT_EQ(Listed(queens, White).size(), 255U); // 288 moves inside the frame: more than the list can tell
}

// What is written beside a record is found by the address sanitizer.
TEST(Records, SurviveAnyBytes) {
    std::mt19937 random(7);
    const auto fill = [&](void* bytes, std::size_t size, unsigned range) {
        std::generate_n(static_cast<std::uint8_t*>(bytes), size, [&] { return random() % range; });
    };
    for (int round = 0; round < 4000; ++round) {
        Position position;
        MoveRec move;
        MoveList list;
        // From wild bytes to boards crowded with ordinary pieces.
        const unsigned ranges[] = {256, 17, 13, 7};
        fill(&position, sizeof position, ranges[round % 4]);
        if (round % 8 >= 4)
            for (auto& row : position.Board)
                for (std::uint8_t& code : row) code = random() % 4 != 0 ? 0 : code;
        fill(&move, sizeof move, round % 2 == 0 ? 256 : 10);
        if (round % 3 == 0) move.Castle = 0;
        for (const Color side : {White, Black}) {
            ListMoves(position, side, list);
            for (int i = 0; i < list.Count; ++i) {
                Position after = position;
                PlayMove(after, list.Moves[i]);
                ASSERT_FALSE(KingAttacked(after, side));
            }
        }
        const std::int16_t turn = position.SideToMove;
        PlayMove(position, move);
        ASSERT_EQ(position.SideToMove, turn);
    }
}

} // namespace
} // namespace quarnel::engine
