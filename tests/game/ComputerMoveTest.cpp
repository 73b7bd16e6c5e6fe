// How the engine's output lines are read and what they do to the game.
#include "support/ProgramFixture.h"

namespace quarnel {
namespace {

using testing::Contains;
using testing::ElementsAre;

class ComputerMoves : public ProgramTest {
  protected:
    /// A press on "OK" in the message box that comes up next; keeps its text.
    void AnswerNextBox() {
        Screen.Script.push_back([&] {
            FrmMsg& box = Game->Messages.Dialog();
            BoxText = ToUtf8(box.lbl_Prompt.Caption.Get());
            BoxTitle = ToUtf8(box.Caption2.Caption.Get());
            ++Boxes;
            Screen.Click(box.Ok);
        });
    }
    std::string BoxText;
    std::string BoxTitle;
    int Boxes = 0;
};

struct LineCase {
    const char* Name;
    const char* Line;
    const char* Strip; // after 1. d4 by the user
};

class OutputLines : public ComputerMoves, public testing::WithParamInterface<LineCase> {};

TEST_P(OutputLines, ArePlayedOnlyWhenTheyMatch) {
    Play([&] {
        DragMove("d2", "d4");
        Engine.Say(GetParam().Line);
        EXPECT_EQ(Strip(), GetParam().Strip);
        EXPECT_EQ(Controls(), std::string(GetParam().Strip) == "Move: d4" ? 't' : 'i');
    });
}

INSTANTIATE_TEST_SUITE_P(ComputerMoves, OutputLines,
                         testing::Values(LineCase{"Plain", "Black(1): Nf6 ", "Move: Nf6"},
                                         LineCase{"WithWordsAround", "info (x) depth Black(1): done move Nf6 ",
                                                  "Move: Nf6"},
                                         LineCase{"OtherNumber", "Black(2): Nf6 ", "Move: d4"},
                                         LineCase{"NoFinalBlank", "Black(1): Nf6", "Move: d4"},
                                         LineCase{"NoBracketEnd", "Black(1: Nf6 ", "Move: d4"},
                                         LineCase{"NumberNeverMatches", "White(0): - ", "Move: d4"},
                                         LineCase{"SideIsNotLookedAt", "White(1): Nf6 ", "Move: Nf6"},
                                         LineCase{"NumberWithBlanks", "Black( 1 ): Nf6 ", "Move: Nf6"},
                                         LineCase{"NoMoveLine", "thinking about Nf6 ", "Move: d4"},
                                         LineCase{"MateWordsInAMoveLine", "Black(1): mate Nf6 ", "Move: Nf6"}),
                         [](const auto& info) { return info.param.Name; });

TEST_F(ComputerMoves, AMoveIsRecordedSlidAndMarkedOnBothEnds) {
    Play([&] {
        DragMove("e2", "e4");
        const int frames = Screen.Frames[&Window()].Count;
        SayMove("Black", "Nf6");
        EXPECT_GE(Screen.Frames[&Window()].Count - frames, 10);
        EXPECT_EQ(Row(1), "1. e4 Nf6");
        EXPECT_EQ(Fen(), "rnbqkb1r/pppppppp/5n2/8/4P3/8/PPPP1PPP/RNBQKBNR w KQkq - 0 1");
        EXPECT_EQ(std::pair(int(State().LastMoveFile), int(State().LastMoveRow)), std::pair(6, 3));
        EXPECT_EQ(std::pair(int(Controller().SelFile), int(Controller().SelRow)), std::pair(7, 1));
        EXPECT_TRUE(LowerLight());
        EXPECT_FALSE(UpperLight());
    });
}

TEST_F(ComputerMoves, CastlingMarksTheKingsSquares) {
    Play([&] {
        Text fen = u"r3k3/8/8/8/8/8/P7/4K3 w q - 0 1";
        notation::FenToPosition(fen, State().CurPos);
        DragMove("a2", "a3");
        SayMove("Black", "O-O-O");
        EXPECT_EQ(Fen(), "2kr4/8/8/8/8/P7/8/4K3 w - - 0 1");
        EXPECT_EQ(std::pair(int(State().LastMoveFile), int(State().LastMoveRow)), std::pair(3, 1));
        EXPECT_EQ(std::pair(int(Controller().SelFile), int(Controller().SelRow)), std::pair(5, 1));
    });
}

struct EndCase {
    const char* Name;
    const char* Line;
    const char* Text;
};

class GameEnds : public ComputerMoves, public testing::WithParamInterface<EndCase> {};

TEST_P(GameEnds, AreAnnouncedInTheMessageBox) {
    Play([&] {
        DragMove("e2", "e4");
        AnswerNextBox();
        Screen.Log.clear();
        Engine.Say(GetParam().Line);
        EXPECT_EQ(BoxText, GetParam().Text);
        EXPECT_EQ(BoxTitle, "Quarnel Chess");
        EXPECT_EQ(Boxes, 1);
        EXPECT_THAT(Screen.Log, Contains("beep"));
        EXPECT_EQ(Controls(), 'i');
    });
}

INSTANTIATE_TEST_SUITE_P(ComputerMoves, GameEnds,
                         testing::Values(EndCase{"WhiteMates", "White mates", "Checkmate!  "},
                                         EndCase{"BlackMates", "1-0 Black mates", "Checkmate!  "},
                                         EndCase{"Stalemate", "stalemate", "Stalemate!  "}),
                         [](const auto& info) { return info.param.Name; });

TEST_F(ComputerMoves, AMateByTheComputerIsRecordedAndEndsTheInput) {
    Play([&] {
        Exchange("f2", "f3", "e5");
        DragMove("g2", "g4");
        SayMove("Black", "Qh4");
        EXPECT_EQ(Row(2), "2. g4 Qh4#");
        EXPECT_FALSE(LowerLight() || UpperLight());
        AnswerNextBox();
        Engine.Say("Black mates");
        EXPECT_EQ(BoxText, "Checkmate!  ");
        EXPECT_THAT(DragMove("a2", "a3"), testing::IsEmpty());
        EXPECT_THAT(ChooseMoves(BackOneItem), testing::IsEmpty());
        EXPECT_TRUE(UpperLight()); // a step back and the game goes on
    });
}

TEST_F(ComputerMoves, TheMessageBoxBlocksTheBoardButNotTheClosing) {
    Play([&] {
        Screen.Script.push_back([&] { PressSquare("e2"); });
        AnswerNextBox();
        Engine.Say("stalemate");
        EXPECT_EQ(Controller().SelFile, 0);
    });
    EXPECT_THROW(Play([&] {
                     Screen.Script.push_back([&] { Screen.Close(Window()); });
                     Engine.Say("stalemate");
                 }),
                 ScriptedDesktop::ProcessEnded);
}

TEST_F(ComputerMoves, AnUnreadableMoveIsRecordedAndLeavesThePosition) {
    Play([&] {
        DragMove("e2", "e4");
        const std::string before = Fen();
        SayMove("Black", "??");
        EXPECT_EQ(State().PlyNow, 2);
        EXPECT_EQ(Fen().substr(0, before.find(' ')), before.substr(0, before.find(' ')));
        EXPECT_EQ(Controls(), 'i');
    });
}

} // namespace
} // namespace quarnel
