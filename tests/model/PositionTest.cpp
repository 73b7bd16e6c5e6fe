#include "model/Position.h"

#include <gtest/gtest.h>

namespace quarnel {
namespace {

TEST(Position, ItsBytesLieAsTheEngineLibraryHasThem) {
    Position position{};
    PieceAt(position, 1, 8) = Rook;
    position.SideToMove = Black;
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&position);
    EXPECT_EQ(bytes[1 + 9 * 8], 4);
    EXPECT_EQ(bytes[84], 0xFF);
    EXPECT_EQ(bytes[85], 0xFF);
}

TEST(Position, AnEmptySquareAndAStrangePieceAnswerLikeAWhiteOneWhenAskedForBlack) {
    for (const int piece : {0, 1, 6, 13, 16}) EXPECT_EQ(IsBlackPiece(piece), False) << piece;
    for (const int piece : {7, 12}) EXPECT_EQ(IsBlackPiece(piece), -1) << piece;
    EXPECT_TRUE(IsEven(-2) && !IsEven(-1));
}

TEST(SameMove, CastlingGoesByItsKindAndOtherMovesByEveryByte) {
    const MoveRec castle{5, 8, 0, 0, KingSide, 0, 0, 0};
    EXPECT_TRUE(IsSameMove(castle, MoveRec{5, 1, 7, 1, KingSide, 3, 2, 1}));
    EXPECT_FALSE(IsSameMove(castle, MoveRec{5, 8, 0, 0, QueenSide, 0, 0, 0}));
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
