// How the engine's output lines are read and what they do to the game.
#include "support/ProgramFixture.h"

namespace quarnel {
namespace {

class ComputerMoves : public ProgramTest {
  protected:
    /// Says the line and presses "OK" in the message box that it brings up; returns the box's text.
    std::string BoxOf(const std::string& line) {
        std::string text;
        Screen.Script.push_back([&] {
            FrmMsg& box = Game->Messages.Dialog();
            text = ToUtf8(box.Caption2.Caption.Get() + u": " + box.lbl_Prompt.Caption.Get());
            Screen.Click(box.Ok);
        });
        Engine.Say(line);
        EXPECT_TRUE(Screen.Script.empty());
        return text;
    }
};

TEST_F(ComputerMoves, ArePlayedOnlyWhenTheLineAndItsNumberMatch) {
    // The side is not looked at; the last blank ends the move, as the last character or the one before it.
    const std::pair<const char*, bool> cases[] = {
        {"Black(1): Nf6 ", true},      {"info (x) depth Black(1): done move Nf6 ", true},
        {"White(1): Nf6 ", true},      {"Black( 1 ): Nf6 ", true},
        {"Black((1): Nf6 ", true},     {"Black(1): mate Nf6 x", true},
        {"Black(1): (2): Nf6 ", true}, {"Black(2): (1): Nf6 ", false},
        {"Black(1): Nf6 xy", false},   {"Black(1): Nf6", false},
        {"Black(1):Nf6 ", false},      {"Black(1: Nf6 ", false},
        {"Black(2): Nf6 ", false},     {"Black(): Nf6 ", false},
        {"White(0): - ", false},       {"thinking about Nf6 ", false},
        {"black(1): Nf6 ", false},     {"Black (1): Nf6 ", false}};
    for (const auto& [line, played] : cases) {
        SCOPED_TRACE(line);
        Play([&, line = line, played = played] {
            DragMove("d2", "d4");
            Engine.Say(line);
            EXPECT_EQ(Strip(), played ? "Move: Nf6" : "Move: d4");
            EXPECT_EQ(Controls(), played ? 'i' : 't');
        });
    }
}

TEST_F(ComputerMoves, AMoveIsRecordedSlidAndMarkedOnBothEnds) {
    Play([&] {
        DragMove("e2", "e4");
        const int frames = FramesShown();
        SayMove("Black", "Nf6");
        EXPECT_GE(FramesShown() - frames, 10);
        EXPECT_EQ(Row(1), "1. e4 Nf6");
        EXPECT_EQ(Fen(), "rnbqkb1r/pppppppp/5n2/8/4P3/8/PPPP1PPP/RNBQKBNR w KQkq - 0 1");
        EXPECT_EQ(LastMark(), std::pair(6, 3));
        EXPECT_EQ(Selected(), std::pair(7, 1));
        EXPECT_TRUE(LowerLight() && !UpperLight());
    });
    PlayFrom(u"r3k3/8/8/8/8/8/P7/4K3 w q - 0 1", [&] {
        DragMove("a2", "a3");
        SayMove("Black", "O-O-O");
        EXPECT_EQ(Fen(), "2kr4/8/8/8/8/P7/8/4K3 w - - 0 1");
        EXPECT_EQ(LastMark(), std::pair(3, 1));
        EXPECT_EQ(Selected(), std::pair(5, 1));
    });
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

TEST_F(ComputerMoves, TheEndOfTheGameIsAnnouncedInTheMessageBox) {
    const std::pair<const char*, const char*> cases[] = {
        {"White mates", "Checkmate!"}, {"1-0 Black mates", "Checkmate!"}, {"stalemate", "Stalemate!"}};
    for (const auto& [line, text] : cases) {
        Play([&, line = line, text = text] {
            DragMove("e2", "e4");
            Screen.Log.clear();
            EXPECT_EQ(BoxOf(line), std::string("Quarnel Chess: ") + text + "  ");
            EXPECT_THAT(Screen.Log, testing::Contains("beep"));
            EXPECT_EQ(Controls(), 'i');
        });
    }
}

TEST_F(ComputerMoves, AMateByTheComputerIsRecordedAndEndsTheInput) {
    Play([&] {
        Exchange("f2", "f3", "e5");
        Exchange("g2", "g4", "Qh4");
        EXPECT_EQ(Row(2), "2. g4 Qh4#");
        EXPECT_FALSE(LowerLight() || UpperLight());
        BoxOf("Black mates");
        EXPECT_THAT(DragMove("a2", "a3"), testing::IsEmpty());
        EXPECT_THAT(ChooseMoves(BackOneItem), testing::IsEmpty());
        EXPECT_TRUE(UpperLight()); // a step back and the game goes on
    });
}

TEST_F(ComputerMoves, TheMessageBoxBlocksTheBoardButNotTheClosing) {
    Play([&] {
        Screen.Script.push_back([&] { PressSquare("e2"); });
        BoxOf("stalemate");
        EXPECT_EQ(Controller().SelFile, 0);
    });
    EXPECT_THROW(Play([&] {
                     Screen.Script.push_back([&] { Screen.Close(Window()); });
                     Engine.Say("stalemate");
                 }),
                 ScriptedDesktop::ProcessEnded);
}

} // namespace
} // namespace quarnel
