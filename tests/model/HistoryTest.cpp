#include "model/History.h"

#include <gtest/gtest.h>

namespace quarnel {
namespace {

// Plies count by rows, White first; a cell that does not exist is empty.
TEST(History, MovesAndAlternativeLinesAreKeptByPly) {
    GameState state;
    state.MoveText = {{}, {u"1.", u"e4", u"e5"}, {u"2.", u"Nf3", u""}};
    state.Variations.resize(3);
    const auto empty = state.Variations;
    for (const int ply : {0, -1, 5, 32767}) AddVariation(state, u"d4", False, ply);
    EXPECT_EQ(state.Variations, empty);

    state.PlyNow = 3;
    AddVariation(state, u"f4", False, 0); // of the ply shown
    AddVariation(state, u"d4", False, 1);
    AddVariation(state, u"c5", False, 2);
    AddVariation(state, u" e6", False, 2);
    const std::tuple<int, Text, Text> cases[] = {{-1, u"", u""},       {0, u"", u""},      {1, u"e4", u"d4"},
                                                 {2, u"e5", u"c5 e6"}, {3, u"Nf3", u"f4"}, {4, u"", u""},
                                                 {5, u"", u""},        {32767, u"", u""}};
    for (const auto& [ply, move, variation] : cases) {
        EXPECT_EQ(GetMove(state, ply), move) << ply;
        EXPECT_EQ(GetVarN(state, ply), variation) << ply;
        state.PlyNow = static_cast<std::int16_t>(ply - 1);
        EXPECT_EQ(GetVariation(state), variation) << "of the next ply";
    }
    AddVariation(state, u"d5", True, 2);
    EXPECT_EQ(state.Variations[1], (VariationRow{u"", u"d4", u"d5"}));
    EXPECT_EQ(GetMove(GameState(), 1), u"");
}

} // namespace
} // namespace quarnel
