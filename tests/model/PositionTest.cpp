#include "model/Position.h"

#include <gtest/gtest.h>

namespace quarnel {
namespace {

// The bytes that the engine library exchanges, written out by offset.
TEST(Position, EveryFieldLiesAtItsByte) {
    Position position{};
    PieceAt(position, 1, 8) = Rook;
    PieceAt(position, 5, 1) = King + BlackOffset;
    position.EpFile = 0x11;
    position.WhiteCastle = 0x22;
    position.BlackCastle = 0x33;
    position.SideToMove = Black;
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&position);
    EXPECT_EQ(bytes[1 + 9 * 8], 4);
    EXPECT_EQ(bytes[5 + 9 * 1], 12);
    EXPECT_EQ(bytes[81], 0x11);
    EXPECT_EQ(bytes[82], 0x22);
    EXPECT_EQ(bytes[83], 0x33);
    EXPECT_EQ(bytes[84], 0xFF);
    EXPECT_EQ(bytes[85], 0xFF);
}

TEST(Position, AnEmptySquareIsNoBlackPieceJustAsAWhiteOne) {
    for (int piece = 0; piece <= 16; ++piece) {
        EXPECT_EQ(IsWhitePiece(piece), piece >= 1 && piece <= 6 ? -1 : 0) << piece;
        EXPECT_EQ(IsBlackPiece(piece), piece >= 7 && piece <= 12 ? -1 : 0) << piece;
    }
}

TEST(Position, SquaresOffTheBoard) {
    for (int file = -1; file <= 10; ++file) {
        for (int row = -1; row <= 10; ++row) {
            const bool onBoard = file >= 1 && file <= 8 && row >= 1 && row <= 8;
            EXPECT_EQ(IsOffBoard(file, row), onBoard ? 0 : -1) << file << "," << row;
        }
    }
}

TEST(Position, EvenNumbersAreEvenBelowZeroToo) {
    EXPECT_TRUE(IsEven(0) && IsEven(2) && IsEven(-2));
    EXPECT_FALSE(IsEven(1) || IsEven(-1) || IsEven(-3));
}

TEST(Position, PiecesOfAKindAreThoseOfBothColours) {
    EXPECT_TRUE(IsPieceKind(Queen, Queen) && IsPieceKind(Queen + 6, Queen));
    EXPECT_FALSE(IsPieceKind(King, Queen) || IsPieceKind(Queen + 5, Queen) || IsPieceKind(NoPiece, Queen));
}

TEST(SameMove, CastlingGoesByItsKindAndOtherMovesByEveryByte) {
    const MoveRec castle{5, 8, 0, 0, KingSide, 0, 0, 0};
    EXPECT_TRUE(IsSameMove(castle, MoveRec{5, 1, 7, 1, KingSide, 3, 2, 1}));
    EXPECT_FALSE(IsSameMove(castle, MoveRec{5, 8, 0, 0, QueenSide, 0, 0, 0}));
    EXPECT_FALSE(IsSameMove(castle, MoveRec{5, 8, 0, 0, NoCastle, 0, 0, 0}));
    EXPECT_FALSE(IsSameMove(MoveRec{5, 8, 0, 0, NoCastle, 0, 0, 0}, castle));

    const MoveRec plain{5, 2, 6, 1, NoCastle, 8, 0, 0};
    EXPECT_TRUE(IsSameMove(plain, plain));
    for (const auto field : {&MoveRec::FromFile, &MoveRec::FromRow, &MoveRec::ToFile, &MoveRec::ToRow,
                             &MoveRec::Promote, &MoveRec::EpCapFile, &MoveRec::EpCapRow}) {
        MoveRec other = plain;
        ++(other.*field);
        EXPECT_FALSE(IsSameMove(plain, other));
    }
}

} // namespace
} // namespace quarnel
