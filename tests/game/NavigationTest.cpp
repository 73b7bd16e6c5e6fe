// Stepping through the history, playing on from inside it, and what the engine is told about it.
#include "support/ProgramFixture.h"

#include "model/History.h"

namespace quarnel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

const std::string SetAfterE4E5 = "setboard rnbqkbnr/pppp1ppp/8/4p3/4P3/8/PPPP1PPP/RNBQKBNR w KQkq e6 0 1";

class Navigation : public ProgramTest {
  protected:
    /// 1. e4 e5 2. Nf3 Nc6 3. Bc4 Nf6 by the user of White, and so many steps back.
    void PlayOpening(int back = 0) {
        Exchange("e2", "e4", "e5");
        Exchange("g1", "f3", "Nc6");
        Exchange("f1", "c4", "Nf6");
        StepBack(back);
    }
    void StepBack(int count) {
        for (; count > 0; --count) ChooseMoves(BackOneItem);
    }
    void Record(const std::vector<Text>& texts) {
        State().MoveText.assign(texts.size() / 2 + 2, {});
        for (std::size_t i = 0; i < texts.size(); ++i) State().MoveText[i / 2 + 1][i % 2 + 1] = texts[i];
        State().PlyCount = static_cast<std::int16_t>(texts.size());
    }
    /// Chooses the item, of which the engine hears nothing, and says how it all looks then.
    std::string LookAfter(int item) {
        EXPECT_THAT(ChooseMoves(item), IsEmpty());
        return Look();
    }
};

TEST_F(Navigation, BackJumpsWithoutMarksAndForwardSlidesWithThem) {
    PlayOpening();
    const int frames = FramesShown();
    EXPECT_EQ(LookAfter(BackOneItem), "5/6 Move: Bc4 ---- upper i");
    EXPECT_LE(FramesShown() - frames, 2);
    EXPECT_EQ(LookAfter(ForwardOneItem), "6/6 Move: Nf6 g8f6 lower i");
    EXPECT_GE(FramesShown() - frames, 10);
    EXPECT_EQ(LookAfter(BackToStartItem), "0/6 Move: none ---- lower i");
    EXPECT_EQ(LookAfter(ForwardToEndItem), "6/6 Move: Nf6 ---- lower i");
}

TEST_F(Navigation, AnotherMoveInsideTheHistoryReplacesTheRestAndTheSameOneKeepsIt) {
    PlayOpening(2);
    EXPECT_THAT(DragMove("f1", "c4"), ElementsAre("sync", StartsWith("setboard "), "white", "movenumber 4", "Bc4"));
    EXPECT_EQ(Look(), "5/6 Move: Bc4 f1c4 upper t");
    SayMove("Bc5");
    EXPECT_EQ(Look(), "6/6 Move: Bc5 f8c5 lower i");

    AddVariation(State(), u"(d3)", False, 5);
    StepBack(4);
    EXPECT_THAT(DragMove("f1", "c4"), ElementsAre("sync", SetAfterE4E5, "white", "movenumber 2", "Bc4"));
    EXPECT_EQ(GetVarN(State(), 5), u"");
    EXPECT_EQ(Look(), "3/3 Move: Bc4 f1c4 upper t");
    EXPECT_EQ(State().MoveText.size(), 3U);
    Start();
    Choose(NewAsBlack());
    SayMove("e4");
    Exchange("e7", "e5", "Nf3");
    Exchange("b8", "c6", "Bc4");
    StepBack(4);
    EXPECT_THAT(DragMove("c7", "c5"), ElementsAre("sync", StartsWith("setboard "), "black", "movenumber 1", "c5"));
    EXPECT_EQ(Look(), "2/2 Move: c5 c7c5 upper t");
    EXPECT_EQ(State().MoveText.size(), 2U);
}

TEST_F(Navigation, MoveNowInsideTheHistorySendsThePositionFirstAndOnANewGameOnlyItActs) {
    for (const int item : {BackOneItem, ForwardOneItem, BackToStartItem, ForwardToEndItem})
        EXPECT_EQ(LookAfter(item), "0/0 Welcome ---- lower i");
    EXPECT_THAT(ChooseMoves(MoveNowItem), ElementsAre("sync", "go"));
    SayMove("e4");
    ChooseMoves(MoveNowItem);
    SayMove("e5");
    Exchange("g1", "f3", "Nc6");
    StepBack(2);
    EXPECT_THAT(ChooseMoves(MoveNowItem), ElementsAre(SetAfterE4E5, "white", "movenumber 2", "sync", "go"));
    EXPECT_THAT(ChooseMoves(MoveNowItem), IsEmpty()); // disabled while the engine thinks
    SayMove("d4");
    EXPECT_THAT(ChooseMoves(MoveNowItem), ElementsAre("sync", "go"));
}

TEST_F(Navigation, StepsWhereTheTextsAllowIt) {
    const std::tuple<std::vector<Text>, int, int, int> cases[] = {
        {{u"-", u"e5", u"Nf3"}, BackToStartItem, 3, 1}, {{u"-", u"e5", u"Nf3"}, BackOneItem, 1, 1},
        {{u"-", u"e5", u"Nf3"}, BackOneItem, 3, 2},     {{u"e4", u"e5", u"1-0"}, ForwardToEndItem, 0, 2},
        {{u"e4", u"e5", u"1-0"}, ForwardOneItem, 2, 2}, {{u"e4", u"e5"}, BackOneItem, 0, 0},
        {{u"e4", u"e5"}, ForwardOneItem, 2, 2}};
    for (const auto& [texts, item, from, to] : cases) {
        Record(texts);
        State().PlyNow = static_cast<std::int16_t>(from);
        LookAfter(item);
        EXPECT_EQ(State().PlyNow, to) << ToUtf8(texts.back()) << " from " << from;
    }
}

TEST_F(Navigation, AFullReplayPassesTheTurnOnAPlaceholderAndAStepForwardDoesNot) {
    Record({u"-", u"e5", u"Nf3"});
    LookAfter(ForwardToEndItem);
    EXPECT_EQ(Fen(), "rnbqkbnr/pppp1ppp/8/4p3/8/5N2/PPPPPPPP/RNBQKB1R b KQkq - 0 1");
    State().PlyNow = 0;
    State().CurPos = PositionOf(Text(StandardStart));
    LookAfter(ForwardOneItem);
    EXPECT_EQ(State().CurPos.SideToMove, White);
    // An unreadable text plays nothing, but is a ply.
    Record({u"e4", u"!!", u"d4"});
    LookAfter(ForwardToEndItem);
    EXPECT_EQ(Fen(), "rnbqkbnr/pppppppp/8/8/3PP3/8/PPP2PPP/RNBQKBNR b KQkq d3 0 1");
    StepBack(2);
    LookAfter(ForwardOneItem);
    EXPECT_EQ(State().CurPos.SideToMove, White);
    EXPECT_EQ(Look(), "2/3 Move: !! ---- lower i");
}

TEST_F(Navigation, DuringASlideSteppingIsIgnoredAndANewGameRunsItsSteps) {
    PlayOpening(6);
    ChooseAtPass(8, Game->Board.Moves.SubMovesMenu[ForwardToEndItem]);
    EXPECT_EQ(LookAfter(ForwardOneItem), "1/6 Move: e4 e2e4 upper i");
    ChooseAtPass(8, NewAsWhite());
    EXPECT_THAT(ChooseMoves(ForwardOneItem), ElementsAre("new", "skill 100 10"));
    EXPECT_THAT(Choose(NewAsWhite()), ElementsAre("new", "skill 100 10"));
    Exchange("e2", "e4", "e5");
    EXPECT_EQ(Look(), "2/2 Move: e5 e7e5 lower i");
}

TEST_F(Navigation, TheVariationsTableGrowsFiveRowsAhead) {
    Record(std::vector<Text>(198, u"-"));
    State().PlyNow = State().PlyCount;
    Exchange("e2", "e4", "e5");
    EXPECT_EQ(State().Variations.size(), 101U);
    DragMove("d2", "d4");
    EXPECT_EQ(State().Variations.size(), 107U);
    EXPECT_EQ(GetMove(State(), 201), u"d4");
}

TEST_F(Navigation, TheToolbarAndTheShortcutsActAsTheirMenuItemsWhileThoseAreEnabled) {
    PlayOpening();
    const auto poke = [&](std::size_t button) {
        Screen.Click(Game->Board.Moves.poke[button]);
        return Engine.Pull();
    };
    for (const auto& [button, ply] : {std::pair{0, 0}, {2, 1}, {3, 6}, {1, 5}}) {
        poke(static_cast<std::size_t>(button));
        EXPECT_EQ(State().PlyNow, ply);
    }
    EXPECT_TRUE(Game->Board.Moves.SubMovesMenu[BackOneItem].Checked);
    EXPECT_FALSE(Game->Board.Moves.SubMovesMenu[ForwardToEndItem].Checked);
    EXPECT_EQ(poke(4).back(), "go");
    EXPECT_THAT(poke(5), ElementsAre("force"));
    SayMove("Nf6");

    EXPECT_TRUE(Screen.Shortcut(Window(), u"Ctrl+M"));
    EXPECT_EQ(Engine.Pull().back(), "go");
    EXPECT_FALSE(Screen.Shortcut(Window(), u"Ctrl+M"));
    EXPECT_TRUE(Screen.Shortcut(Window(), u"Ctrl+H"));
    EXPECT_THAT(Engine.Pull(), ElementsAre("force"));
}

} // namespace
} // namespace quarnel
