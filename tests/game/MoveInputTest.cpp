// What presses and releases on the board do, and what they refuse.
#include "support/ProgramFixture.h"

namespace quarnel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using MoveInput = ProgramTest;

TEST_F(MoveInput, AClickSelectsAndTheSecondOneSlidesThePieceAndMarksBothEnds) {
    ClickSquare("e2");
    Engine.Pull();
    EXPECT_EQ(Controller().FloatPiece, NoPiece);
    EXPECT_EQ(Look(), "0/0 Welcome e2-- lower i");
    int frames = FramesShown();
    EXPECT_THAT(ClickMove("e4", "d2"), ElementsAre("sync", "e4")); // then the computer is to move
    EXPECT_GE(FramesShown() - frames, 10);                         // 100 ms in steps of 10 ms
    EXPECT_EQ(Look(), "1/1 Move: e4 e2e4 upper t");
    SayMove("e5");
    frames = FramesShown();
    EXPECT_THAT(DragMove("d2", "d4"), ElementsAre("sync", "d4"));
    EXPECT_LT(FramesShown() - frames, 10) << "a dragged piece lies there already";
}

TEST_F(MoveInput, AnotherOwnPieceIsSelectedInsteadTheSameOneAgainAndARightClickOnTheBoardDropsIt) {
    EXPECT_THAT(DragMove("a1", "a2"), IsEmpty());
    EXPECT_EQ(Look(), "0/0 Welcome a1-- lower i") << "taken by a piece of one's own";
    ClickSquare("g1");
    Engine.Pull();
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(Look(), "0/0 Welcome g1-- lower i");
        ClickSquare("g1");
        EXPECT_THAT(Engine.Pull(), IsEmpty());
    }
    Screen.Click(Window(), 10, 100); // the left border: file 0
    Screen.Press(Window(), 10, 10, PointerButton::Right);
    Engine.Pull();
    EXPECT_EQ(Look(), "0/0 Welcome g1-- lower i") << "outside the board";
    PressSquare("a5", PointerButton::Right);
    Engine.Pull();
    EXPECT_EQ(Look(), "0/0 Welcome ---- lower i");
    EXPECT_THAT(ClickMove("g1", "f3"), ElementsAre("sync", "Nf3"));
}

TEST_F(MoveInput, SpecialMovesAreFoundAmongTheLegalOnes) {
    const std::tuple<Text, std::string, std::string, Lines, std::string> cases[] = {
        {Text(StandardStart), "e2", "e7", {}, "0/0 Welcome e2-- lower i"}, // cannot be taken
        {Text(StandardStart), "e7", "e5", {}, "0/0 Welcome ---- lower i"}, // the computer's
        {Text(StandardStart), "e4", "e5", {}, "0/0 Welcome ---- lower i"}, // empty
        {u"4k3/8/8/8/8/8/8/R3K2R w KQ - 0 1", "e1", "c1", {"sync", "O-O-O"}, "1/1 Move: O-O-O e1c1 upper t"},
        // The file alone decides: with the right to castle, a king sent to g5 castles.
        {u"4k3/8/8/8/8/8/8/4K2R w K - 0 1", "e1", "g5", {"sync", "O-O"}, "1/1 Move: O-O e1g1 upper t"},
        {u"4k3/8/8/8/8/8/8/4K2R w - - 0 1", "e1", "g1", {}, "0/0 Welcome e1-- lower i"},
        {u"4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 1", "e5", "d6", {"sync", "exd6"}, "1/1 Move: exd6 e5d6 upper t"},
        {u"1n2k3/P7/8/8/8/8/8/4K3 w - - 0 1", "a7", "b8", {"sync", "axb8=Q"}, "1/1 Move: axb8=Q+ a7b8 upper t"},
        {u"4k3/8/8/8/8/8/4K3/R6R w - - 0 1", "a1", "d1", {"sync", "Rad1"}, "1/1 Move: Rad1 a1d1 upper t"}};
    for (const auto& [fen, from, to, sent, look] : cases) {
        for (const bool drag : {false, true}) {
            StartFrom(fen);
            EXPECT_EQ(drag ? DragMove(from, to) : ClickMove(from, to), sent);
            EXPECT_EQ(Look(), look);
        }
    }
}

TEST_F(MoveInput, ThePieceChosenForPromotionStaysForBothColours) {
    StartFrom(u"4k3/P7/8/8/8/8/8/4K3 w - - 0 1");
    Choose(Game->Board.pprom[0]);
    EXPECT_THAT(DragMove("a7", "a8"), ElementsAre("sync", "a8=N"));
    Start();
    Choose(NewAsBlack());
    SayMove("e4");
    State().CurPos = PositionOf(u"r3k3/8/8/8/8/8/p5p1/4K3 b q - 0 1");
    Choose(Game->Board.pprom[2]);
    EXPECT_TRUE(Game->Board.pprom[2].Checked && !Game->Board.pprom[3].Checked);
    EXPECT_THAT(DragMove("a2", "a1"), ElementsAre("sync", "a1=R"));
    EXPECT_EQ(PieceAt(State().CurPos, 1, 8), Rook + BlackOffset);
    EXPECT_EQ(Look(), "2/2 Move: a1=R+ a2a1 upper t");
    SayMove("Kf2");
    EXPECT_THAT(ClickMove("g2", "g1"), ElementsAre("sync", "g1=R"));
    SayMove("Kf3");
    EXPECT_THAT(ClickMove("e8", "c8"), ElementsAre("sync", "O-O-O"));
    EXPECT_EQ(Look(), "6/6 Move: O-O-O e8c8 upper t");
}

TEST_F(MoveInput, AStalemateHasNoMarkAndAfterAMateTheBoardTakesNothingUntilANewGame) {
    StartFrom(u"7k/8/6K1/8/8/8/8/5Q2 w - - 0 1");
    DragMove("f1", "f7");
    EXPECT_EQ(Look(), "1/1 Move: Qf7 f1f7 upper t");
    StartFrom(u"7k/8/5KQ1/8/8/8/8/8 w - - 0 1");
    EXPECT_THAT(DragMove("g6", "g7"), ElementsAre("sync", "Qg7"));
    EXPECT_EQ(Look(), "1/1 Move: Qg7# g6g7 t");
    Choose(NewAsWhite());
    EXPECT_EQ(Look(), "0/0 Move: none ---- lower s");
    const PixelPoint king = SquareCorner({5, 8}, False);
    EXPECT_NE(Screen.Frames[&Window()].Frame.At(king.X, king.Y), Rgb(255, 0, 0)) << "the mate is over";
}

TEST_F(MoveInput, PressedWhileTheEngineSearchesForTheUserAPieceIsSelectedButNotDragged) {
    ChooseMoves(MoveNowItem);
    PressSquare("e2");
    Engine.Pull();
    EXPECT_EQ(Controller().FloatPiece, NoPiece);
    ReleaseSquare("e4");
    EXPECT_THAT(Engine.Pull(), IsEmpty());
    // The live selection keeps its frame when the engine's move comes.
    SayMove("d4");
    EXPECT_EQ(Look(), "1/1 Move: d4 e2d4 upper i");
}

TEST_F(MoveInput, PointerPositionsAreScaledByTheZoomAndMayLieLeftOfTheWindow) {
    Saved("wsize") = u"7";
    Start();
    EXPECT_THAT(DragMove("e2", "e4"), ElementsAre("sync", "e4"));
    SayMove("e5");
    PressSquare("d2");
    Screen.Move(Window(), -1, -1, PointerButton::Left);
    Screen.Release(Window(), -30, 250);
    EXPECT_THAT(Engine.Pull(), IsEmpty());
    EXPECT_EQ(Controller().CurrentX, -1);
    EXPECT_EQ(Controller().FloatPiece, NoPiece);
    EXPECT_EQ(Look(), "2/2 Move: e5 d2e5 lower i");
}

} // namespace
} // namespace quarnel
