#include "model/History.h"

#include <gtest/gtest.h>

namespace quarnel {
namespace {

// Plies count by rows, White first; outside the table nothing is kept, and ply 0 stands for the one shown.
TEST(History, AlternativeLinesAreKeptByPly) {
    GameState state;
    state.Variations.resize(3);
    state.PlyNow = 3;
    for (const int ply : {-1, 5, 0, 1, 2}) AddVariation(state, u"d4", False, ply);
    AddVariation(state, u" c5", False, 2);
    AddVariation(state, u"e3", True, 1);
    EXPECT_EQ(state.Variations, (std::vector<VariationRow>{{}, {u"", u"e3", u"d4 c5"}, {u"", u"d4", u""}}));
    state.PlyNow = 1;
    EXPECT_EQ(GetVariation(state), u"d4 c5") << "of the next ply";
}

TEST(History, APlyOutsideTheTableIsEmptyAndPlyZeroTheSecondCellOfItsFirstRow) {
    GameState state;
    state.MoveText.push_back({u"1.", u"e4", u"e5"});
    const std::pair<int, TextView> cases[] = {{-9, u""}, {-1, u""}, {0, u"e5"}, {1, u"e4"}, {2, u"e5"}, {3, u""}};
    for (const auto& [ply, text] : cases) EXPECT_EQ(GetMove(state, ply), text) << ply;
}

TEST(SameMove, CastlingGoesByItsKindAndOtherMovesByEveryByte) {
    const MoveRec castle{5, 8, 0, 0, KingSide, 0, 0, 0};
    EXPECT_TRUE(IsSameMove(castle, MoveRec{5, 1, 7, 1, KingSide, 3, 2, 1}));
    EXPECT_FALSE(IsSameMove(castle, MoveRec{5, 8, 0, 0, QueenSide, 0, 0, 0}));
    EXPECT_FALSE(IsSameMove(MoveRec{5, 8, 0, 0, NoCastle, 0, 0, 0}, castle));
    const MoveRec plain{5, 2, 6, 1, NoCastle, 8, 0, 0};
    EXPECT_TRUE(IsSameMove(plain, plain));
    EXPECT_FALSE(IsSameMove(plain, MoveRec{4, 2, 6, 1, NoCastle, 8, 0, 0}));
    EXPECT_FALSE(IsSameMove(plain, MoveRec{5, 2, 6, 1, NoCastle, 8, 0, 3}));
}

} // namespace
} // namespace quarnel
