// What presses and releases on the board do, and what they refuse.
#include "support/ProgramFixture.h"

namespace quarnel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MoveInput : public ProgramTest {
  protected:
    void SetUp(const Text& fen, const std::function<void()>& body) {
        Play([&, fen, body] {
            Text text = fen;
            notation::FenToPosition(text, State().CurPos);
            body();
        });
    }
    std::pair<int, int> Selected() { return {Controller().SelFile, Controller().SelRow}; }
    std::pair<int, int> LastMark() { return {State().LastMoveFile, State().LastMoveRow}; }
};

TEST_F(MoveInput, AClickSelectsAndTheSecondOneMovesAndMarksBothEnds) {
    Play([&] {
        ClickSquare("e2");
        Engine.Pull();
        EXPECT_EQ(Selected(), std::pair(5, 7));
        EXPECT_EQ(Controller().FloatPiece, NoPiece);
        PressSquare("e4");
        EXPECT_THAT(Engine.Pull(), ElementsAre("sync", "e4"));
        EXPECT_EQ(Selected(), std::pair(5, 7));
        EXPECT_EQ(LastMark(), std::pair(5, 5));
        EXPECT_TRUE(UpperLight());
        EXPECT_FALSE(LowerLight());
        EXPECT_THAT(DragMove("d2", "d4"), IsEmpty()); // the computer is to move
    });
}

TEST_F(MoveInput, AMoveByClicksSlidesAndADraggedOneDoesNot) {
    Play([&] {
        const auto framesOf = [&](const auto& act) {
            const int before = Screen.Frames[&Window()].Count;
            act();
            return Screen.Frames[&Window()].Count - before;
        };
        ClickSquare("e2");
        Engine.Pull();
        PressSquare("e4");
        const int slide = framesOf([&] { Engine.Pull(); });
        EXPECT_GE(slide, 10); // 100 ms in steps of 10 ms
        ReleaseSquare("e4");
        SayMove("Black", "e5");
        EXPECT_LT(framesOf([&] { DragMove("d2", "d4"); }), 10);
    });
}

struct RefusalCase {
    const char* Name;
    const char* Press;
    const char* Release;
    std::pair<int, int> SelectedThen;
};

class Refusal : public MoveInput, public testing::WithParamInterface<RefusalCase> {};

TEST_P(Refusal, LeavesTheGameAlone) {
    Play([&] {
        EXPECT_THAT(DragMove(GetParam().Press, GetParam().Release), IsEmpty());
        EXPECT_EQ(Selected(), GetParam().SelectedThen);
        EXPECT_EQ(State().PlyNow, 0);
    });
}

INSTANTIATE_TEST_SUITE_P(MoveInput, Refusal,
                         testing::Values(RefusalCase{"PieceThatCannotBeTaken", "e2", "e7", {5, 7}},
                                         RefusalCase{"ComputersPiece", "e7", "e5", {0, 0}},
                                         RefusalCase{"EmptySquare", "e4", "e5", {0, 0}},
                                         RefusalCase{"IllegalTarget", "e2", "e5", {5, 7}},
                                         RefusalCase{"OwnPieceAsTarget", "a1", "a2", {1, 8}}),
                         [](const auto& info) { return info.param.Name; });

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

TEST_F(MoveInput, ARightClickOnTheBoardDropsTheSelectionAndOutsideItDoesNot) {
    Play([&] {
        ClickSquare("e2");
        Engine.Pull();
        Screen.Press(Window(), 10, 10, PointerButton::Right);
        Engine.Pull();
        EXPECT_EQ(Selected(), std::pair(5, 7));
        PressSquare("a5", PointerButton::Right);
        Engine.Pull();
        EXPECT_EQ(Selected(), std::pair(0, 0));
    });
}

TEST_F(MoveInput, AnotherOwnPieceIsSelectedInsteadAndTheSameOneAgain) {
    Play([&] {
        ClickSquare("e2");
        ClickSquare("g1");
        Engine.Pull();
        EXPECT_EQ(Selected(), std::pair(7, 8));
        ClickSquare("g1");
        EXPECT_THAT(Engine.Pull(), IsEmpty());
        EXPECT_EQ(Selected(), std::pair(7, 8));
        PressSquare("f3");
        EXPECT_THAT(Engine.Pull(), ElementsAre("sync", "Nf3"));
    });
}

struct SpecialCase {
    const char* Name;
    const char16_t* Fen;
    const char* From;
    const char* To;
    std::vector<std::string> Lines; // behind "sync"
    std::pair<int, int> Mark;
};

class SpecialMove : public MoveInput, public testing::WithParamInterface<SpecialCase> {};

TEST_P(SpecialMove, IsFoundAmongTheLegalOnes) {
    for (const bool drag : {false, true}) {
        SetUp(GetParam().Fen, [&] {
            Lines expected = GetParam().Lines;
            if (!expected.empty()) expected.insert(expected.begin(), "sync");
            EXPECT_EQ(drag ? DragMove(GetParam().From, GetParam().To) : ClickMove(GetParam().From, GetParam().To),
                      expected);
            EXPECT_EQ(LastMark(), GetParam().Mark);
        });
    }
}

INSTANTIATE_TEST_SUITE_P(
    MoveInput, SpecialMove,
    testing::Values(SpecialCase{"CastlesKingSide", u"4k3/8/8/8/8/8/8/4K2R w K - 0 1", "e1", "g1", {"O-O"}, {7, 8}},
                    SpecialCase{"CastlesQueenSide", u"4k3/8/8/8/8/8/8/R3K3 w Q - 0 1", "e1", "c1", {"O-O-O"}, {3, 8}},
                    // The file alone decides: with the right to castle, a king sent to g5 castles.
                    SpecialCase{
                        "CastlesByTheFileAlone", u"4k3/8/8/8/8/8/8/4K2R w K - 0 1", "e1", "g5", {"O-O"}, {7, 8}},
                    SpecialCase{"NoRight", u"4k3/8/8/8/8/8/8/4K2R w - - 0 1", "e1", "g1", {}, {0, 0}},
                    SpecialCase{"EnPassant", u"4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 1", "e5", "d6", {"exd6"}, {4, 3}},
                    SpecialCase{"PromotesToAQueen", u"4k3/P7/8/8/8/8/8/4K3 w - - 0 1", "a7", "a8", {"a8=Q"}, {1, 1}},
                    SpecialCase{"Disambiguates", u"4k3/8/8/8/8/8/4K3/R6R w - - 0 1", "a1", "d1", {"Rad1"}, {4, 8}}),
    [](const auto& info) { return info.param.Name; });

TEST_F(MoveInput, ABlackUserPromotesAndCastlesOnATurnedBoard) {
    Play([&] {
        Choose(Game->Board.SubFileMenu[1]);
        SayMove("White", "e4");
        Text fen = u"r3k3/8/8/8/8/8/p5p1/4K3 b q - 0 1";
        notation::FenToPosition(fen, State().CurPos);
        Choose(Game->Board.pprom[2]);
        EXPECT_TRUE(Game->Board.pprom[2].Checked);
        EXPECT_FALSE(Game->Board.pprom[3].Checked);
        EXPECT_THAT(DragMove("a2", "a1"), ElementsAre("sync", "a1=R"));
        EXPECT_EQ(PieceAt(State().CurPos, 1, 8), Rook + BlackOffset);
        EXPECT_EQ(Strip(), "Move: a1=R+");
        SayMove("White", "Kf2");
        EXPECT_THAT(ClickMove("g2", "g1"), ElementsAre("sync", "g1=R")); // the choice stays
        SayMove("White", "Kf3");
        EXPECT_THAT(ClickMove("e8", "c8"), ElementsAre("sync", "O-O-O"));
        EXPECT_EQ(LastMark(), std::pair(3, 1));
    });
}

TEST_F(MoveInput, AStalemateHasNoMark) {
    SetUp(u"7k/8/6K1/8/8/8/8/5Q2 w - - 0 1", [&] {
        DragMove("f1", "f7");
        EXPECT_EQ(Strip(), "Move: Qf7");
        EXPECT_TRUE(UpperLight());
    });
}

TEST_F(MoveInput, AfterAMateTheBoardTakesNothingUntilANewGame) {
    SetUp(u"7k/8/5KQ1/8/8/8/8/8 w - - 0 1", [&] {
        EXPECT_THAT(DragMove("g6", "g7"), ElementsAre("sync", "Qg7"));
        EXPECT_EQ(Strip(), "Move: Qg7#");
        EXPECT_FALSE(LowerLight() || UpperLight());
        Choose(Game->Board.SubFileMenu[0]);
        EXPECT_TRUE(LowerLight());
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
