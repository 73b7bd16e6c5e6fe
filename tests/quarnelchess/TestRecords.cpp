#include "RandomGames.h"

#include "quarnelchess/LooseRules.h"
#include "quarnelchess/Records.h"

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

bool Same(const Position& a, const Position& b) {
    return std::memcmp(&a, &b, sizeof(Position)) == 0;
}

Position RecordOf(const char* fen) {
    return RecordFromBoard(BoardOf(fen));
}

MoveRec Rec(const MoveBytes& bytes) {
    MoveRec move;
    std::memcpy(&move, bytes.data(), 8);
    return move;
}

bool Lists(const Position& position, Color side, const MoveBytes& bytes) {
    MoveList list;
    ListMoves(position, side, list);
    const auto moves = SortedBytes(list);
    return std::count(moves.begin(), moves.end(), bytes) == 1;
}

TEST(Records, FastAndLooseRulesListTheSameMoves) {
    ForRandomPositions(8, 90, [](const Board& board) {
        const Position position = RecordFromBoard(board);
        MoveList fast;
        MoveList loose;
        loose.Count = 0;
        ListMoves(position, board.SideToMove(), fast);
        ListLooseMoves(position, board.SideToMove(), loose);
        ASSERT_EQ(SortedBytes(fast), SortedBytes(loose)) << WriteFen(board);
        ASSERT_EQ(KingAttacked(position, board.SideToMove()), board.InCheck());
    });
}

TEST(Records, PlayingARecordIsPlayingTheMove) {
    ForRandomPositions(6, 60, [](const Board& board) {
        const Position before = RecordFromBoard(board);
        MoveBuffer moves;
        GenerateMoves(board, moves);
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
            after.SideToMove = static_cast<std::int16_t>(~after.SideToMove);
            const std::optional<Board> reread = BoardFromRecord(after, next.SideToMove());
            ASSERT_TRUE(reread);
            ASSERT_EQ(reread->PositionKey(), next.PositionKey()) << WriteFen(board) << " " << NameOf(move);
        }
    });
}

TEST(Records, ListsTheColourAskedForWhoeverIsToMove) {
    Position position = RecordOf("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1");
    for (const std::int16_t turn : {0, -1}) {
        position.SideToMove = turn;
        EXPECT_TRUE(Lists(position, White, {5, 7, 5, 5, 0, 0, 0, 0}));
        EXPECT_FALSE(Lists(position, Black, {5, 7, 5, 5, 0, 0, 0, 0}));
        EXPECT_TRUE(Lists(position, Black, {5, 2, 5, 4, 0, 0, 0, 0}));
    }
    Position check = RecordOf("4k3/8/8/8/4R3/8/8/4K3 b - - 0 1");
    for (const std::int16_t turn : {0, -1}) {
        check.SideToMove = turn;
        EXPECT_TRUE(KingAttacked(check, Black));
        EXPECT_FALSE(KingAttacked(check, White));
    }
}

TEST(Records, LaysOutSpecialMoves) {
    const Position castle = RecordOf("r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1");
    EXPECT_TRUE(Lists(castle, White, {5, 8, 0, 0, 1, 0, 0, 0}));
    EXPECT_TRUE(Lists(castle, White, {5, 8, 0, 0, 2, 0, 0, 0}));
    EXPECT_TRUE(Lists(castle, Black, {5, 1, 0, 0, 1, 0, 0, 0}));
    EXPECT_TRUE(Lists(castle, Black, {5, 1, 0, 0, 2, 0, 0, 0}));

    const Position promote = RecordOf("4k3/P7/8/8/8/8/7p/4K3 w - - 0 1");
    for (std::uint8_t kind = 2; kind <= 5; ++kind) {
        EXPECT_TRUE(Lists(promote, White, {1, 2, 1, 1, 0, kind, 0, 0}));
        EXPECT_TRUE(Lists(promote, Black, {8, 7, 8, 8, 0, static_cast<std::uint8_t>(kind + 6), 0, 0}));
    }

    EXPECT_TRUE(Lists(RecordOf("4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 1"), White, {5, 4, 4, 3, 0, 0, 4, 4}));
    EXPECT_TRUE(Lists(RecordOf("4k3/8/8/8/3pP3/8/8/4K3 b - e3 0 1"), Black, {4, 5, 5, 6, 0, 0, 5, 5}));
}

TEST(Records, PlaysWhatItIsToldAndNothingElse) {
    const Position start = RecordOf("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1");
    const MoveBytes ignored[] = {
        {0, 0, 0, 0, 0, 0, 0, 0},   {0, 0, 0, 0, 0, 250, 0, 0}, {0, 0, 0, 0, 0, 251, 0, 0},
        {5, 7, 5, 5, 0, 252, 0, 0}, {5, 5, 5, 4, 0, 0, 0, 0}, // no piece there
        {9, 7, 5, 5, 0, 0, 0, 0},   {5, 7, 5, 9, 0, 0, 0, 0}, // off the board
        {5, 8, 0, 0, 3, 0, 0, 0},   {4, 8, 0, 0, 1, 0, 0, 0}, // no such castling
    };
    for (const MoveBytes& bytes : ignored) {
        Position position = start;
        PlayMove(position, Rec(bytes));
        EXPECT_TRUE(Same(position, start)) << static_cast<int>(bytes[5]);
    }

    // A knight that leaps from b1 to f6, of all places, takes what stands there.
    Position leap = start;
    leap.EpFile = 4;
    PlayMove(leap, Rec({2, 8, 6, 2, 0, 0, 0, 0}));
    EXPECT_EQ(leap.Board[2][6], 2);
    EXPECT_EQ(leap.Board[8][2], 0);
    EXPECT_EQ(leap.EpFile, 0);

    // Rights go with the rook's corner, by leaving it or by losing it.
    Position rooks = RecordOf("r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1");
    PlayMove(rooks, Rec({8, 8, 8, 1, 0, 0, 0, 0}));
    EXPECT_EQ(rooks.WhiteCastle, 2);
    EXPECT_EQ(rooks.BlackCastle, 2);
    PlayMove(rooks, Rec({5, 8, 0, 0, 2, 0, 0, 0}));
    EXPECT_EQ(rooks.WhiteCastle, 0);
    EXPECT_EQ(rooks.Board[8][3], 6);
    EXPECT_EQ(rooks.Board[8][4], 4);
    EXPECT_EQ(rooks.Board[8][1], 0);
    EXPECT_EQ(rooks.Board[8][5], 0);
}

TEST(Records, StrangePositionsKeepTheSenseOfTheRules) {
    Position lone{};
    lone.Board[8][1] = 4; // a white rook and nothing else: no king to lose
    MoveList list;
    ListMoves(lone, White, list);
    EXPECT_EQ(list.Count, 14);
    ListMoves(lone, Black, list);
    EXPECT_EQ(list.Count, 0);
    EXPECT_FALSE(KingAttacked(lone, White));

    lone.Board[8][3] = 14; // a wall: neither passed nor captured
    lone.Board[6][1] = 12; // a king is never captured
    ListMoves(lone, White, list);
    EXPECT_EQ(list.Count, 2); // a2 and b1
    EXPECT_TRUE(KingAttacked(lone, Black));

    Position queens{};
    for (int row = 1; row <= 8; ++row)
        for (int file = 1; file <= 8; ++file) queens.Board[row][file] = (file + row) % 3 == 0 ? 5 : 0;
    ListMoves(queens, White, list); // about 22 queens: far beyond what the list could tell
    EXPECT_LE(list.Count, 255);
    std::memset(queens.Board, 5, sizeof queens.Board);
    ListMoves(queens, White, list);
    EXPECT_EQ(list.Count, 0);
}

/// A record between two rows of marked bytes.
template <class T>
struct Guarded {
    std::array<std::uint8_t, 64> Before;
    T Value;
    std::array<std::uint8_t, 64> After;
    Guarded() {
        Before.fill(0xA5);
        After.fill(0xA5);
    }
    bool Whole() const {
        const auto marked = [](std::uint8_t byte) { return byte == 0xA5; };
        return std::all_of(Before.begin(), Before.end(), marked) && std::all_of(After.begin(), After.end(), marked);
    }
};

TEST(Records, SurviveAnyBytes) {
    std::mt19937 random(7);
    const auto fill = [&](void* bytes, std::size_t size, unsigned range) {
        for (std::size_t i = 0; i < size; ++i)
            static_cast<std::uint8_t*>(bytes)[i] = static_cast<std::uint8_t>(random() % range);
    };
    for (int round = 0; round < 4000; ++round) {
        Guarded<Position> position;
        Guarded<MoveRec> move;
        auto list = std::make_unique<Guarded<MoveList>>();
        // From wild bytes to boards crowded with ordinary pieces.
        const unsigned ranges[] = {256, 17, 13, 7};
        fill(&position.Value, sizeof(Position), ranges[round % 4]);
        if (round % 8 >= 4)
            for (auto& row : position.Value.Board)
                for (std::uint8_t& code : row) code = random() % 4 != 0 ? 0 : code;
        fill(&move.Value, sizeof(MoveRec), round % 2 == 0 ? 256 : 10);
        if (round % 3 == 0) move.Value.Castle = 0;
        for (const Color side : {White, Black}) {
            ListMoves(position.Value, side, list->Value);
            for (int i = 0; i < list->Value.Count; ++i) {
                Position after = position.Value;
                PlayMove(after, list->Value.Moves[i]);
                ASSERT_FALSE(KingAttacked(after, side));
            }
        }
        const std::int16_t turn = position.Value.SideToMove;
        PlayMove(position.Value, move.Value);
        ASSERT_EQ(position.Value.SideToMove, turn);
        ASSERT_TRUE(position.Whole() && move.Whole() && list->Whole());
    }
}

} // namespace
} // namespace quarnel::engine
