#include "model/Position.h"

#include <gtest/gtest.h>

namespace quarnel {
namespace {

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
