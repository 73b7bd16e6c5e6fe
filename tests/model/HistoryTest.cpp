#include "model/History.h"

#include <gtest/gtest.h>

namespace quarnel {
namespace {

class HistoryTest : public testing::Test {
  protected:
    HistoryTest() {
        State.MoveText = {{}, {u"1.", u"e4", u"e5"}, {u"2.", u"Nf3", u""}};
        State.PlyNow = State.PlyCount = 3;
        State.Variations.resize(3);
    }
    GameState State;
};

TEST_F(HistoryTest, PliesCountByRowsWhiteFirstAndACellThatDoesNotExistIsEmpty) {
    const std::pair<int, Text> cases[] = {{-2, u""},   {-1, u""}, {0, u""}, {1, u"e4"}, {2, u"e5"},
                                          {3, u"Nf3"}, {4, u""},  {5, u""}, {6, u""},   {32767, u""}};
    for (const auto& [ply, text] : cases) {
        EXPECT_EQ(GetMove(State, ply), text) << ply;
        EXPECT_EQ(GetVarN(State, ply), u"") << ply;
    }
    EXPECT_EQ(GetMove(GameState(), 1), u"");
}

TEST_F(HistoryTest, AlternativeLinesAreKeptByPly) {
    AddVariation(State, u"d4", False, 1);
    AddVariation(State, u"c5", False, 2);
    AddVariation(State, u" e6", False, 2);
    EXPECT_EQ(GetVarN(State, 2), u"c5 e6");
    AddVariation(State, u"d5", True, 2);
    EXPECT_EQ(State.Variations[1], (VariationRow{u"", u"d4", u"d5"}));

    AddVariation(State, u"f4", False, 0); // of the ply shown
    EXPECT_EQ(GetVarN(State, 3), u"f4");
    EXPECT_EQ(GetVariation(State), u"");
    State.PlyNow = 2;
    EXPECT_EQ(GetVariation(State), u"f4");
}

TEST_F(HistoryTest, NoAlternativeLineAtTheStartOrOutsideTheTable) {
    State.PlyNow = 0;
    const auto before = State.Variations;
    for (const int ply : {0, -1, 5, 32767}) AddVariation(State, u"d4", False, ply);
    EXPECT_EQ(State.Variations, before);
}

} // namespace
} // namespace quarnel
