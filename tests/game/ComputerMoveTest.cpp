// How the engine's output lines are read and what they do to the game.
#include "support/ProgramFixture.h"

namespace quarnel {
namespace {

using ComputerMoves = ProgramTest;

TEST_F(ComputerMoves, ArePlayedOnlyWhenTheLineAndItsNumberMatch) {
    // The side is not looked at; the last blank ends the move, as the last character or the one before it.
    const std::vector<std::string> played{"(x) Black(1): done Nf6 ", "White(1): Nf6 ",       "Black( 1 ): Nf6 ",
                                          "Black((1): Nf6 ",         "Black(1): mate Nf6 x", "Black(1): (2): Nf6 "};
    const std::vector<std::string> ignored{"Black(2): (1): Nf6 ", "Black(1): Nf6 xy", "Black(1): Nf6",
                                           "Black(1):Nf6 ",       "Black(1: Nf6 ",    "Black(): Nf6 ",
                                           "Black (1): Nf6 ",     "black(1): Nf6 "};
    for (const auto* lines : {&played, &ignored}) {
        for (const std::string& line : *lines) {
            Start();
            DragMove("d2", "d4");
            Engine.Say(line);
            EXPECT_EQ(Look(), lines == &played ? "2/2 Move: Nf6 g8f6 lower i" : "1/1 Move: d4 d2d4 upper t") << line;
        }
    }
}

TEST_F(ComputerMoves, AreRecordedSlidAndMarkedOnBothEnds) {
    DragMove("e2", "e4");
    const int frames = FramesShown();
    SayMove("Nf6");
    EXPECT_GE(FramesShown() - frames, 10);
    EXPECT_EQ(Look(), "2/2 Move: Nf6 g8f6 lower i");
    DragMove("d2", "d4");
    SayMove("??"); // unreadable: recorded, and nothing moves
    EXPECT_EQ(Look(), "4/4 Move:  ---- lower i");
    EXPECT_EQ(Fen(), "rnbqkb1r/pppppppp/5n2/8/3PP3/8/PPP2PPP/RNBQKBNR w KQkq d6 0 1");
    StartFrom(u"r3k3/8/8/8/8/8/P7/4K3 w q - 0 1");
    Exchange("a2", "a3", "O-O-O");
    EXPECT_EQ(Fen(), "2kr4/8/8/8/8/P7/8/4K3 w - - 0 1");
    EXPECT_EQ(Look(), "2/2 Move: O-O-O e8c8 lower i");
}

TEST_F(ComputerMoves, TheEndOfTheGameIsAnnouncedInTheMessageBox) {
    const std::pair<const char*, Text> cases[] = {
        {"White mates", u"Checkmate!  "}, {"1-0 Black mates", u"Checkmate!  "}, {"stalemate", u"Stalemate!  "}};
    for (const auto& [line, text] : cases) {
        Start();
        DragMove("e2", "e4");
        Screen.Script = {[&, text = text] {
            EXPECT_EQ(Game->Messages.Dialog().lbl_Prompt.Caption.Get(), text);
            Screen.Click(Game->Messages.Dialog().Ok);
        }};
        Engine.Say(line);
        EXPECT_TRUE(Screen.Script.empty());
        EXPECT_EQ(Controls(), 'i');
    }
}

} // namespace
} // namespace quarnel
