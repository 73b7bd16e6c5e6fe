#include "model/History.h"

#include <gtest/gtest.h>

namespace quarnel {
namespace {

// e4, e5, Nf3.
GameState ShortGame() {
    GameState state;
    state.MoveText = {{}, {u"1.", u"e4", u"e5"}, {u"2.", u"Nf3", u""}};
    state.PlyNow = state.PlyCount = 3;
    state.Variations.resize(3);
    return state;
}

TEST(History, PliesCountByRowsWhiteFirst) {
    const GameState state = ShortGame();
    EXPECT_EQ(GetMove(state, 1), u"e4");
    EXPECT_EQ(GetMove(state, 2), u"e5");
    EXPECT_EQ(GetMove(state, 3), u"Nf3");
}

TEST(History, ACellThatDoesNotExistIsEmpty) {
    const GameState state = ShortGame();
    for (const int ply : {-2, -1, 0, 4, 5, 6, 32767}) {
        EXPECT_EQ(GetMove(state, ply), u"") << ply;
        EXPECT_EQ(GetVarN(state, ply), u"") << ply;
    }
    EXPECT_EQ(GetMove(GameState(), 1), u"");
}

TEST(Variations, AreKeptByPly) {
    GameState state = ShortGame();
    AddVariation(state, u"d4", False, 1);
    AddVariation(state, u"c5", False, 2);
    AddVariation(state, u" e6", False, 2);
    EXPECT_EQ(GetVarN(state, 1), u"d4");
    EXPECT_EQ(GetVarN(state, 2), u"c5 e6");
    AddVariation(state, u"d5", True, 2);
    EXPECT_EQ(GetVarN(state, 2), u"d5");
    EXPECT_EQ(state.Variations[1][1], u"d4");
    EXPECT_EQ(state.Variations[1][2], u"d5");
}

TEST(Variations, PlyZeroStandsForTheOneShownAndTheReaderLooksOnePlyAhead) {
    GameState state = ShortGame();
    AddVariation(state, u"f4", False, 0);
    EXPECT_EQ(GetVarN(state, 3), u"f4");
    EXPECT_EQ(GetVariation(state), u"");
    state.PlyNow = 2;
    EXPECT_EQ(GetVariation(state), u"f4");
}

TEST(Variations, NothingHappensAtTheStartOrOutsideTheTable) {
    GameState state = ShortGame();
    state.PlyNow = 0;
    const auto before = state.Variations;
    for (const int ply : {0, -1, 5, 32767}) AddVariation(state, u"d4", False, ply);
    EXPECT_EQ(state.Variations, before);
}

} // namespace
} // namespace quarnel
