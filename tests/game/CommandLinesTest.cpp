// Every line the engine is sent, in its order, for each thing a user can do.
#include "support/ProgramFixture.h"

namespace quarnel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string StartFen = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";
const std::string SetStart = "setboard " + StartFen;

using CommandLines = ProgramTest;

// A level that is no number sends no strength; a ponder value that is none leaves it on as designed.
TEST_F(CommandLines, StartUpTellsPonderTwiceAroundTheOptionsAndTheNewGame) {
    const std::string adaptive = "adaptive 10M 4M 64M 1M 16M";
    const std::tuple<Text, Text, Text, Lines> cases[] = {
        {u"2", u"-1", u"2", {"ponder on", "mt = 2", adaptive, "new", "skill 30 5", "ponder on"}},
        {u"12", u"0", u"16", {"ponder off", "mt = 8", adaptive, "new", "skill 100 10", "ponder off"}},
        {u"seven", u"maybe", u"many", {"ponder on", "mt = 1", adaptive, "new", "ponder on"}}};
    for (const auto& [level, ponder, processors, lines] : cases) {
        Saved("level") = level;
        Saved("ponder") = ponder;
        Screen.Environment["NUMBER_OF_PROCESSORS"] = processors;
        Start();
        EXPECT_EQ(StartLines, lines);
    }
}

TEST_F(CommandLines, StopThinkingSendsForceOnceAndTheMoveIsStillPlayed) {
    EXPECT_EQ(Look(), "0/0 Welcome ---- lower i");
    DragMove("e2", "e4");
    EXPECT_EQ(Look(), "1/1 Move: e4 e2e4 upper t");
    EXPECT_THAT(ChooseMoves(StopItem), ElementsAre("force"));
    EXPECT_EQ(Controls(), 's');
    EXPECT_THAT(ChooseMoves(StopItem), IsEmpty());
    SayMove("c5");
    EXPECT_EQ(Look(), "2/2 Move: c5 c7c5 lower i");
    DragMove("d2", "d4");
    EXPECT_THAT(ChooseMoves(StopItem), ElementsAre("force"));
}

// A search that a new game abandons has its move dropped, whatever its number. A user of White then begins
// with the position; a user of Black has "go" sent behind "force" and is left waiting for its answer.
TEST_F(CommandLines, ANewGameWhileTheEngineThinksDropsItsMove) {
    EXPECT_THAT(Choose(NewAsBlack()), ElementsAre("new", "skill 100 10", "sync", "go"));
    SayMove("Nf3");
    EXPECT_THAT(Choose(NewAsWhite()), ElementsAre("new", "skill 100 10"));
    EXPECT_EQ(Look(), "0/0 Move: none ---- lower i");
    DragMove("e2", "e4");
    EXPECT_THAT(Choose(NewAsWhite()), ElementsAre("force"));
    Engine.Say("Black(1): c5 ");
    EXPECT_EQ(Look(), "0/0 Move: none ---- lower i");
    EXPECT_THAT(DragMove("d2", "d4"), ElementsAre("sync", SetStart, "white", "movenumber 0", "d4"));

    for (const char* abandoned : {"Black(7): c5 ", "White(1): a3 "}) {
        EXPECT_THAT(Choose(NewAsBlack()), ElementsAre("force", SetStart, "white", "movenumber 0", "sync", "go"));
        Engine.Say(abandoned);
        EXPECT_EQ(Fen(), StartFen);
        EXPECT_EQ(Controls(), 't');
    }
    EXPECT_EQ(State().BoardFlipped, True);
    SayMove("e4");
    EXPECT_EQ(Look(), "1/1 Move: e4 e2e4 lower i");
    DragMove("d7", "d5");
    EXPECT_THAT(Choose(NewAsWhite()), ElementsAre("force"));
    EXPECT_EQ(State().BoardFlipped, False);
    SayMove("c4");
    EXPECT_EQ(Fen(), StartFen);
    EXPECT_EQ(DragMove("e2", "e4").back(), "e4");
}

// A new game in the middle of the computer's slide: "force" goes out for a search that has ended, the rest
// of the move runs on the new position, and the answer that plays nothing clears what is left.
TEST_F(CommandLines, ANewGameInTheComputersSlideIsClearedByTheEmptyAnswer) {
    DragMove("e2", "e4");
    ChooseAtPass(3, NewAsWhite());
    SayMove("e5");
    EXPECT_EQ(State().DiscardNextMove, True);
    EXPECT_EQ(State().CurPos.SideToMove, Black);
    EXPECT_THAT(Engine.Pull(), ElementsAre("force"));
    Engine.Say("White(0): - ");
    EXPECT_EQ(State().DiscardNextMove, False);
    EXPECT_THAT(Choose(NewAsWhite()), ElementsAre("new", "skill 100 10"));
    Exchange("e2", "e4", "e5");
    EXPECT_EQ(Look(), "2/2 Move: e5 e7e5 lower i");
}

TEST_F(CommandLines, ANewGameInTheUsersOwnSlideLeavesTheNextOneInOrder) {
    ClickSquare("e2");
    Engine.Pull();
    ChooseAtPass(4, NewAsWhite());
    EXPECT_THAT(ClickMove("e4", "e4"), ElementsAre("sync", "e4", "force"));
    Engine.Say("Black(1): e5 ");
    EXPECT_THAT(Choose(NewAsWhite()), ElementsAre("new", "skill 100 10"));
    EXPECT_EQ(DragMove("d2", "d4").back(), "d4");
    EXPECT_EQ(Look(), "1/1 Move: d4 d2d4 upper t");
}

TEST_F(CommandLines, WhileTheEngineThinksALevelIsSentAtOnceAndPonderingWhenTheSearchEnds) {
    EXPECT_THAT(Choose(Game->Settings.pnd), ElementsAre("ponder on"));
    DragMove("e2", "e4");
    for (int i = 0; i < 2; ++i) EXPECT_THAT(Choose(Game->Settings.pnd), IsEmpty());
    EXPECT_THAT(Choose(Game->Settings.cs[1]), ElementsAre("skill 20 5"));
    SayMove("e5");
    EXPECT_THAT(Engine.Pull(), ElementsAre("ponder on"));
    EXPECT_EQ(Saved("ponder"), u"-1");
    EXPECT_EQ(Saved("level"), u"1");
}

// A piece can be taken and dropped; no move is legal without rules, and lines only pile up.
TEST_F(CommandLines, WithoutTheLibraryTheWindowOpensAndTakesInput) {
    Screen.Libraries.clear();
    Start();
    EXPECT_THAT(Screen.Shown(), ElementsAre(&Window()));
    const auto waiting = Game->Commands.CommandCount;
    PressSquare("e2");
    ReleaseSquare("e4");
    Screen.Click(NewAsBlack());
    Screen.ProcessEvents();
    EXPECT_EQ(Look(), "0/0 Move: none ---- upper i");
    EXPECT_EQ(Game->Commands.CommandCount, waiting + 2);
    EXPECT_EQ(State().BoardFlipped, True);
}

} // namespace
} // namespace quarnel
