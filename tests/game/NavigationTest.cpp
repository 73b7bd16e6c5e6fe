// Stepping through the history, playing on from inside it, and what the engine is told about it.
#include "support/ProgramFixture.h"

#include "model/History.h"

namespace quarnel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string SetAfterE4E5 = "setboard rnbqkbnr/pppp1ppp/8/4p3/4P3/8/PPPP1PPP/RNBQKBNR w KQkq e6 0 1";

class Navigation : public ProgramTest {
  protected:
    /// 1. e4 e5 2. Nf3 Nc6 3. Bc4 Nf6 by the user of White, and so many steps back.
    void PlayOpening(int back = 0) {
        Exchange("e2", "e4", "e5");
        Exchange("g1", "f3", "Nc6");
        Exchange("f1", "c4", "Nf6");
        for (; back > 0; --back) ChooseMoves(BackOneItem);
    }
    void Record(const std::vector<Text>& texts) {
        State().MoveText.assign(1, {});
        for (std::size_t i = 0; i < texts.size(); ++i) {
            if (i % 2 == 0) State().MoveText.emplace_back();
            State().MoveText.back()[1 + i % 2] = texts[i];
        }
        State().PlyCount = static_cast<std::int16_t>(texts.size());
    }
    bool Marked() { return State().LastMoveFile != 0 || Controller().SelFile != 0; }
};

TEST_F(Navigation, BackJumpsWithoutMarksAndForwardSlidesWithThem) {
    Play([&] {
        PlayOpening();
        const int frames = FramesShown();
        EXPECT_THAT(ChooseMoves(BackOneItem), IsEmpty());
        EXPECT_LE(FramesShown() - frames, 2);
        EXPECT_EQ(Strip(), "Move: Bc4");
        EXPECT_FALSE(Marked());
        EXPECT_THAT(ChooseMoves(ForwardOneItem), IsEmpty());
        EXPECT_GE(FramesShown() - frames, 10);
        EXPECT_EQ(Strip(), "Move: Nf6");
        EXPECT_EQ(LastMark(), std::pair(6, 3));
        EXPECT_EQ(Selected(), std::pair(7, 1));
        ChooseMoves(BackToStartItem);
        EXPECT_EQ(Strip(), "Move: none");
        EXPECT_EQ(State().PlyNow, 0);
        ChooseMoves(ForwardToEndItem);
        EXPECT_EQ(State().PlyNow, 6);
        EXPECT_FALSE(Marked());
        EXPECT_TRUE(Game->Board.Moves.SubMovesMenu[ForwardToEndItem].Checked);
        EXPECT_FALSE(Game->Board.Moves.SubMovesMenu[BackToStartItem].Checked);
    });
}

TEST_F(Navigation, AnotherMoveInsideTheHistoryReplacesTheRestAndTheSameOneKeepsIt) {
    Play([&] {
        PlayOpening(2);
        EXPECT_THAT(DragMove("f1", "c4"),
                    ElementsAre("sync", testing::StartsWith("setboard "), "white", "movenumber 4", "Bc4"));
        EXPECT_EQ(State().PlyNow, 5);
        EXPECT_EQ(Row(3), "3. Bc4 Nf6");
        SayMove("Black", "Bc5");
        EXPECT_EQ(State().PlyCount, 6);
        EXPECT_EQ(Row(3), "3. Bc4 Bc5");

        AddVariation(State(), u"(d3)", False, 5);
        for (int i = 0; i < 4; ++i) ChooseMoves(BackOneItem);
        EXPECT_THAT(DragMove("f1", "c4"), ElementsAre("sync", SetAfterE4E5, "white", "movenumber 2", "Bc4"));
        EXPECT_EQ(GetVarN(State(), 5), u"");
        EXPECT_EQ(State().PlyCount, 3);
        EXPECT_EQ(State().MoveText.size(), 3U);
        EXPECT_EQ(Row(2), "2. Bc4 ");
    });
    Play([&] {
        Choose(Game->Board.SubFileMenu[1]);
        SayMove("White", "e4");
        Exchange("e7", "e5", "Nf3");
        Exchange("b8", "c6", "Bc4");
        for (int i = 0; i < 4; ++i) ChooseMoves(BackOneItem);
        EXPECT_THAT(DragMove("c7", "c5"),
                    ElementsAre("sync", testing::StartsWith("setboard "), "black", "movenumber 1", "c5"));
        EXPECT_EQ(State().PlyCount, 2);
        EXPECT_EQ(State().MoveText.size(), 2U);
        EXPECT_EQ(Row(1), "1. e4 c5");
    });
}

TEST_F(Navigation, MoveNowInsideTheHistorySendsThePositionFirstAndOnANewGameOnlyItActs) {
    Play([&] {
        for (const int item : {BackOneItem, ForwardOneItem, BackToStartItem, ForwardToEndItem}) {
            EXPECT_THAT(ChooseMoves(item), IsEmpty());
        }
        EXPECT_THAT(ChooseMoves(MoveNowItem), ElementsAre("sync", "go"));
        SayMove("White", "e4");
        ChooseMoves(MoveNowItem);
        SayMove("Black", "e5");
        Exchange("g1", "f3", "Nc6");
        ChooseMoves(BackOneItem);
        ChooseMoves(BackOneItem);
        EXPECT_THAT(ChooseMoves(MoveNowItem), ElementsAre(SetAfterE4E5, "white", "movenumber 2", "sync", "go"));
        EXPECT_THAT(ChooseMoves(MoveNowItem), IsEmpty()); // disabled while the engine thinks
        SayMove("White", "d4");
        EXPECT_EQ(Row(2), "2. d4 ");
        EXPECT_THAT(ChooseMoves(MoveNowItem), ElementsAre("sync", "go"));
    });
}

TEST_F(Navigation, StepsWhereTheTextsAllowIt) {
    const struct {
        std::vector<Text> Texts;
        int Item, From, To;
    } cases[] = {{{u"-", u"e5", u"Nf3"}, BackToStartItem, 3, 1},
                 {{u"-", u"e5", u"Nf3"}, BackOneItem, 1, 1},
                 {{u"-", u"e5", u"Nf3"}, BackOneItem, 3, 2},
                 {{u"e4", u"e5", u"1-0"}, ForwardToEndItem, 0, 2},
                 {{u"e4", u"e5", u"1-0"}, ForwardOneItem, 2, 2},
                 {{u"e4", u"*"}, ForwardToEndItem, 0, 1},
                 {{u"e4", u"e5"}, BackOneItem, 0, 0},
                 {{u"e4", u"e5"}, ForwardOneItem, 2, 2}};
    Play([&] {
        for (const auto& [texts, item, from, to] : cases) {
            Record(texts);
            State().PlyNow = static_cast<std::int16_t>(from);
            ChooseMoves(item);
            EXPECT_EQ(State().PlyNow, to) << ToUtf8(texts.back()) << " from " << from;
        }
    });
}

TEST_F(Navigation, AFullReplayPassesTheTurnOnAPlaceholderAndAStepForwardDoesNot) {
    Play([&] {
        Record({u"-", u"e5", u"Nf3"});
        ChooseMoves(ForwardToEndItem);
        EXPECT_EQ(Fen(), "rnbqkbnr/pppp1ppp/8/4p3/8/5N2/PPPPPPPP/RNBQKB1R b KQkq - 0 1");
        State().PlyNow = 0;
        State().CurPos = PositionOf(Text(StandardStart));
        ChooseMoves(ForwardOneItem);
        EXPECT_EQ(State().CurPos.SideToMove, White);
        // An unreadable text plays nothing, but is a ply.
        Record({u"e4", u"!!", u"d4"});
        ChooseMoves(ForwardToEndItem);
        EXPECT_EQ(Fen(), "rnbqkbnr/pppppppp/8/8/3PP3/8/PPP2PPP/RNBQKBNR b KQkq d3 0 1");
        ChooseMoves(BackOneItem);
        EXPECT_EQ(State().CurPos.SideToMove, White);
        EXPECT_EQ(Strip(), "Move: !!");
    });
}

TEST_F(Navigation, DuringASlideSteppingIsIgnoredAndANewGameRunsItsSteps) {
    Play([&] {
        PlayOpening();
        ChooseMoves(BackToStartItem);
        ChooseAtPass(8, Game->Board.Moves.SubMovesMenu[ForwardToEndItem]);
        ChooseMoves(ForwardOneItem);
        EXPECT_EQ(State().PlyNow, 1);
        ChooseAtPass(8, Game->Board.SubFileMenu[0]);
        EXPECT_THAT(ChooseMoves(ForwardOneItem), ElementsAre("new", "skill 100 10"));
        EXPECT_EQ(State().PlyCount, 0);
        EXPECT_THAT(Choose(Game->Board.SubFileMenu[0]), ElementsAre("new", "skill 100 10"));
        Exchange("e2", "e4", "e5");
        EXPECT_EQ(Row(1), "1. e4 e5");
    });
}

TEST_F(Navigation, TheVariationsTableGrowsFiveRowsAhead) {
    Play([&] {
        Record(std::vector<Text>(199, u"-"));
        State().PlyNow = State().PlyCount = 198;
        State().MoveText.resize(100);
        Exchange("e2", "e4", "e5");
        EXPECT_EQ(State().Variations.size(), 101U);
        DragMove("d2", "d4");
        EXPECT_EQ(State().Variations.size(), 107U);
        AddVariation(State(), u"(d3)", False, 201);
        ChooseMoves(StopItem);
        Engine.Say("Black(101): exd4 ");
        EXPECT_EQ(GetVarN(State(), 201), u"(d3)");
        EXPECT_EQ(GetMove(State(), 201), u"d4");
    });
}

TEST_F(Navigation, TheToolbarAndTheShortcutsActAsTheirMenuItemsWhileThoseAreEnabled) {
    Play([&] {
        PlayOpening();
        const auto poke = [&](std::size_t button) {
            Screen.Click(Game->Board.Moves.poke[button]);
            return Engine.Pull();
        };
        const std::pair<std::size_t, int> steps[] = {{0, 0}, {2, 1}, {3, 6}, {1, 5}};
        for (const auto& [button, ply] : steps) {
            poke(button);
            EXPECT_EQ(State().PlyNow, ply);
        }
        EXPECT_TRUE(Game->Board.Moves.SubMovesMenu[BackOneItem].Checked);
        EXPECT_EQ(poke(4).back(), "go");
        EXPECT_THAT(poke(5), ElementsAre("force"));
        SayMove("Black", "Nf6");

        EXPECT_TRUE(Screen.Shortcut(Window(), u"Ctrl+B"));
        Engine.Pull();
        EXPECT_EQ(State().PlyNow, 5);
        EXPECT_TRUE(Screen.Shortcut(Window(), u"Ctrl+M"));
        EXPECT_EQ(Engine.Pull().back(), "go");
        EXPECT_FALSE(Screen.Shortcut(Window(), u"Ctrl+M"));
        EXPECT_TRUE(Screen.Shortcut(Window(), u"Ctrl+H"));
        EXPECT_THAT(Engine.Pull(), ElementsAre("force"));
    });
}

} // namespace
} // namespace quarnel
