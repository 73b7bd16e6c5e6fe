// What presses and releases on the board do, and what they refuse.
#include "support/ProgramFixture.h"

namespace quarnel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MoveInput : public ProgramTest {};

TEST_F(MoveInput, AClickSelectsAndTheSecondOneSlidesThePieceAndMarksBothEnds) {
    Play([&] {
        ClickSquare("e2");
        Engine.Pull();
        EXPECT_EQ(Selected(), std::pair(5, 7));
        EXPECT_EQ(Controller().FloatPiece, NoPiece);
        PressSquare("e4");
        int frames = FramesShown();
        EXPECT_THAT(Engine.Pull(), ElementsAre("sync", "e4"));
        EXPECT_GE(FramesShown() - frames, 10); // 100 ms in steps of 10 ms
        EXPECT_EQ(Selected(), std::pair(5, 7));
        EXPECT_EQ(LastMark(), std::pair(5, 5));
        EXPECT_TRUE(UpperLight() && !LowerLight());
        ReleaseSquare("e4");
        EXPECT_THAT(DragMove("d2", "d4"), IsEmpty()); // the computer is to move
        SayMove("Black", "e5");
        frames = FramesShown();
        EXPECT_THAT(DragMove("d2", "d4"), ElementsAre("sync", "d4"));
        EXPECT_LT(FramesShown() - frames, 10) << "a dragged piece lies there already";
    });
}

TEST_F(MoveInput, RefusesWhatIsNoMoveOfTheUsers) {
    const struct {
        const char *Press, *Release;
        std::pair<int, int> SelectedThen;
    } cases[] = {{"e2", "e7", {5, 7}},  // cannot be taken
                 {"e7", "e5", {0, 0}},  // the computer's
                 {"e4", "e5", {0, 0}},  // empty
                 {"e2", "e5", {5, 7}},  // illegal
                 {"a1", "a2", {1, 8}}}; // own piece as target
    for (const auto& [press, release, selected] : cases) {
        SCOPED_TRACE(press);
        Play([&, press = press, release = release, selected = selected] {
            EXPECT_THAT(DragMove(press, release), IsEmpty());
            EXPECT_EQ(Selected(), selected);
            EXPECT_EQ(State().PlyNow, 0);
        });
    }
}

TEST_F(MoveInput, OffTheBoardAndLeftOfTheWindowIsNoSquare) {
    Play([&] {
        ClickSquare("b1");
        Engine.Pull();
        Screen.Click(Window(), 10, 100); // the left border: file 0
        Screen.Press(Window(), 200, 200);
        Engine.Pull();
        EXPECT_EQ(Selected(), std::pair(2, 8));
        PressSquare("e2");
        Screen.Release(Window(), -30, 250); // dragged out of the window
        EXPECT_THAT(Engine.Pull(), IsEmpty());
        EXPECT_EQ(Selected(), std::pair(5, 7));
        EXPECT_EQ(Controller().FloatPiece, NoPiece);
    });
}

TEST_F(MoveInput, AnotherOwnPieceIsSelectedInsteadTheSameOneAgainAndARightClickOnTheBoardDropsIt) {
    Play([&] {
        ClickSquare("e2");
        ClickSquare("g1");
        Engine.Pull();
        EXPECT_EQ(Selected(), std::pair(7, 8));
        ClickSquare("g1");
        EXPECT_THAT(Engine.Pull(), IsEmpty());
        EXPECT_EQ(Selected(), std::pair(7, 8));
        Screen.Press(Window(), 10, 10, PointerButton::Right);
        Engine.Pull();
        EXPECT_EQ(Selected(), std::pair(7, 8)) << "outside the board";
        PressSquare("a5", PointerButton::Right);
        Engine.Pull();
        EXPECT_EQ(Selected(), std::pair(0, 0));
        EXPECT_THAT(ClickMove("g1", "f3"), ElementsAre("sync", "Nf3"));
    });
}

TEST_F(MoveInput, SpecialMovesAreFoundAmongTheLegalOnes) {
    const struct {
        const char16_t* Fen;
        const char *From, *To, *Line; // behind "sync"; empty: no move
        std::pair<int, int> Mark;
    } cases[] = {{u"4k3/8/8/8/8/8/8/4K2R w K - 0 1", "e1", "g1", "O-O", {7, 8}},
                 {u"4k3/8/8/8/8/8/8/R3K3 w Q - 0 1", "e1", "c1", "O-O-O", {3, 8}},
                 // The file alone decides: with the right to castle, a king sent to g5 castles.
                 {u"4k3/8/8/8/8/8/8/4K2R w K - 0 1", "e1", "g5", "O-O", {7, 8}},
                 {u"4k3/8/8/8/8/8/8/4K2R w - - 0 1", "e1", "g1", "", {0, 0}},
                 {u"4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 1", "e5", "d6", "exd6", {4, 3}},
                 {u"1n2k3/P7/8/8/8/8/8/4K3 w - - 0 1", "a7", "b8", "axb8=Q", {2, 1}},
                 {u"4k3/8/8/8/8/8/4K3/R6R w - - 0 1", "a1", "d1", "Rad1", {4, 8}}};
    for (const auto& c : cases) {
        for (const bool drag : {false, true}) {
            SCOPED_TRACE(c.Line);
            PlayFrom(c.Fen, [&] {
                const Lines expected = *c.Line != '\0' ? Lines{"sync", c.Line} : Lines();
                EXPECT_EQ(drag ? DragMove(c.From, c.To) : ClickMove(c.From, c.To), expected);
                EXPECT_EQ(LastMark(), c.Mark);
            });
        }
    }
}

TEST_F(MoveInput, ThePieceChosenForPromotionStaysForBothColours) {
    PlayFrom(u"4k3/P7/8/8/8/8/8/4K3 w - - 0 1", [&] {
        Choose(Game->Board.pprom[0]);
        EXPECT_THAT(DragMove("a7", "a8"), ElementsAre("sync", "a8=N"));
        EXPECT_EQ(PieceAt(State().CurPos, 1, 1), Knight);
    });
    Play([&] {
        Choose(Game->Board.SubFileMenu[1]);
        SayMove("White", "e4");
        State().CurPos = PositionOf(u"r3k3/8/8/8/8/8/p5p1/4K3 b q - 0 1");
        Choose(Game->Board.pprom[2]);
        EXPECT_TRUE(Game->Board.pprom[2].Checked);
        EXPECT_FALSE(Game->Board.pprom[3].Checked);
        EXPECT_THAT(DragMove("a2", "a1"), ElementsAre("sync", "a1=R"));
        EXPECT_EQ(PieceAt(State().CurPos, 1, 8), Rook + BlackOffset);
        EXPECT_EQ(Strip(), "Move: a1=R+");
        SayMove("White", "Kf2");
        EXPECT_THAT(ClickMove("g2", "g1"), ElementsAre("sync", "g1=R"));
        SayMove("White", "Kf3");
        EXPECT_THAT(ClickMove("e8", "c8"), ElementsAre("sync", "O-O-O"));
        EXPECT_EQ(LastMark(), std::pair(3, 1));
    });
}

TEST_F(MoveInput, AStalemateHasNoMarkAndAfterAMateTheBoardTakesNothingUntilANewGame) {
    PlayFrom(u"7k/8/6K1/8/8/8/8/5Q2 w - - 0 1", [&] {
        DragMove("f1", "f7");
        EXPECT_EQ(Strip(), "Move: Qf7");
        EXPECT_TRUE(UpperLight());
    });
    PlayFrom(u"7k/8/5KQ1/8/8/8/8/8 w - - 0 1", [&] {
        EXPECT_THAT(DragMove("g6", "g7"), ElementsAre("sync", "Qg7"));
        EXPECT_EQ(Strip(), "Move: Qg7#");
        EXPECT_FALSE(LowerLight() || UpperLight());
        Choose(Game->Board.SubFileMenu[0]);
        EXPECT_TRUE(LowerLight());
        const PixelPoint king = SquareCorner({5, 8}, False);
        EXPECT_NE(Screen.Frames[&Window()].Frame.At(king.X, king.Y), Rgb(255, 0, 0)) << "the mate is over";
    });
}

TEST_F(MoveInput, PressedWhileTheEngineSearchesForTheUserAPieceIsSelectedButNotDragged) {
    Play([&] {
        ChooseMoves(MoveNowItem);
        PressSquare("e2");
        Engine.Pull();
        EXPECT_EQ(Selected(), std::pair(5, 7));
        EXPECT_EQ(Controller().FloatPiece, NoPiece);
        ReleaseSquare("e4");
        EXPECT_THAT(Engine.Pull(), IsEmpty());
        // The live selection keeps its frame when the engine's move comes.
        SayMove("White", "d4");
        EXPECT_EQ(Selected(), std::pair(5, 7));
        EXPECT_EQ(LastMark(), std::pair(4, 5));
    });
}

TEST_F(MoveInput, PointerPositionsAreScaledByTheZoom) {
    Screen.Settings["quarnel chess/settings/wsize"] = u"7";
    Play([&] {
        EXPECT_EQ(State().Zoom, 2.5F);
        EXPECT_THAT(DragMove("e2", "e4"), ElementsAre("sync", "e4"));
        Screen.Move(Window(), -1, -1);
        Engine.Pull();
        EXPECT_EQ(Controller().CurrentX, -1);
    });
}

} // namespace
} // namespace quarnel
