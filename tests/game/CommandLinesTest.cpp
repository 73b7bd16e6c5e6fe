// Every line the engine is sent, in its order, for each thing a user can do.
#include "support/ProgramFixture.h"

#include <cstring>

namespace quarnel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string StartFen = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";
const std::string SetStart = "setboard " + StartFen;

class CommandLines : public ProgramTest {
  protected:
    MenuItem& NewAsWhite() { return Game->Board.SubFileMenu[0]; }
    MenuItem& NewAsBlack() { return Game->Board.SubFileMenu[1]; }
    Text& Saved(const std::string& key) { return Screen.Settings["quarnel chess/settings/" + key]; }
};

TEST_F(CommandLines, StartUpTellsPonderTwiceAroundTheOptionsAndTheNewGame) {
    const struct {
        Text Level, Ponder, Processors;
        const char *PonderLine, *ThreadLine, *SkillLine;
    } cases[] = {{u"6", u"0", u"4", "ponder off", "mt = 4", "skill 100 10"},
                 {u"2", u"-1", u"1", "ponder on", "mt = 1", "skill 30 5"},
                 {u"9", u"0", u"16", "ponder off", "mt = 8", "skill 100 100"},
                 {u"12", u"0", u"0", "ponder off", "mt = 1", "skill 100 10"},
                 // A level that is no number sends no strength; a ponder value that is none leaves it on as designed.
                 {u"seven", u"maybe", u"many", "ponder on", "mt = 1", nullptr}};
    for (const auto& [level, ponder, processors, ponderLine, threadLine, skillLine] : cases) {
        Saved("level") = level;
        Saved("ponder") = ponder;
        Screen.Environment["NUMBER_OF_PROCESSORS"] = processors;
        Lines expected{ponderLine, threadLine, "adaptive 10M 4M 64M 1M 16M", "new"};
        if (skillLine != nullptr) expected.emplace_back(skillLine);
        expected.emplace_back(ponderLine);
        Play([&] { EXPECT_EQ(StartLines, expected); });
    }
    Screen.Settings.clear();
    Screen.Environment.clear();
    Play([&] {
        EXPECT_THAT(StartLines, ElementsAre("ponder off", "mt = 1", "adaptive 10M 4M 64M 1M 16M", "new", "skill 100 10",
                                            "ponder off"));
    });
}

TEST_F(CommandLines, AMoveByClicksOrByDraggingSendsSyncAndTheMove) {
    Play([&] {
        EXPECT_EQ(Controls(), 'i');
        EXPECT_THAT(ClickMove("e2", "e4"), ElementsAre("sync", "e4"));
        EXPECT_EQ(Controls(), 't');
        SayMove("Black", "e5");
        EXPECT_EQ(Controls(), 'i');
        Exchange("g1", "f3", "Nc6");
        EXPECT_THAT(DragMove("f1", "c4"), ElementsAre("sync", "Bc4"));
        SayMove("Black", "Bc5");
        EXPECT_THAT(ClickMove("e1", "g1"), ElementsAre("sync", "O-O"));
        EXPECT_EQ(Fen(), "r1bqk1nr/pppp1ppp/2n5/2b1p3/2B1P3/5N2/PPPP1PPP/RNBQ1RK1 b kq - 0 1");
    });
}

TEST_F(CommandLines, StopThinkingSendsForceOnceAndTheMoveIsStillPlayed) {
    Play([&] {
        DragMove("e2", "e4");
        EXPECT_THAT(ChooseMoves(StopItem), ElementsAre("force"));
        EXPECT_EQ(Controls(), 's');
        EXPECT_THAT(ChooseMoves(StopItem), IsEmpty());
        SayMove("Black", "c5");
        EXPECT_EQ(Strip(), "Move: c5");
        EXPECT_EQ(Controls(), 'i');
        DragMove("d2", "d4");
        EXPECT_THAT(ChooseMoves(StopItem), ElementsAre("force"));
    });
}

// A search that a new game abandons has its move dropped, whatever its number. A user of White then begins
// with the position; a user of Black has "go" sent behind "force" and is left waiting for its answer.
TEST_F(CommandLines, ANewGameWhileTheEngineThinksDropsItsMove) {
    Play([&] {
        EXPECT_THAT(Choose(NewAsBlack()), ElementsAre("new", "skill 100 10", "sync", "go"));
        SayMove("White", "Nf3");
        EXPECT_THAT(Choose(NewAsWhite()), ElementsAre("new", "skill 100 10"));
        EXPECT_EQ(LastMark().first, 0);
        EXPECT_EQ(Selected(), std::pair(0, 0));
        DragMove("e2", "e4");
        EXPECT_THAT(Choose(NewAsWhite()), ElementsAre("force"));
        Engine.Say("Black(1): c5 ");
        EXPECT_EQ(Fen(), StartFen);
        EXPECT_EQ(Controls(), 'i');
        EXPECT_THAT(DragMove("d2", "d4"), ElementsAre("sync", SetStart, "white", "movenumber 0", "d4"));

        EXPECT_THAT(Choose(NewAsBlack()), ElementsAre("force", SetStart, "white", "movenumber 0", "sync", "go"));
        const Position start = State().CurPos;
        Engine.Say("Black(7): c5 ");
        EXPECT_EQ(std::memcmp(&State().CurPos, &start, sizeof start), 0);
        EXPECT_EQ(Controls(), 't');
        EXPECT_THAT(Choose(NewAsBlack()), ElementsAre("force", SetStart, "white", "movenumber 0", "sync", "go"));
        EXPECT_EQ(State().BoardFlipped, True);
        Engine.Say("White(1): a3 ");
        SayMove("White", "e4");
        EXPECT_EQ(Row(1), "1. e4 ");
        EXPECT_EQ(Controls(), 'i');

        DragMove("d7", "d5");
        EXPECT_THAT(Choose(NewAsWhite()), ElementsAre("force"));
        EXPECT_EQ(State().BoardFlipped, False);
        SayMove("White", "c4");
        EXPECT_EQ(Fen(), StartFen);
        EXPECT_EQ(DragMove("e2", "e4").back(), "e4");
    });
}

// A new game in the middle of the computer's slide: "force" goes out for a search that has ended, the rest
// of the move runs on the new position, and the answer that plays nothing clears what is left.
TEST_F(CommandLines, ANewGameInTheComputersSlideIsClearedByTheEmptyAnswer) {
    Play([&] {
        DragMove("e2", "e4");
        ChooseAtPass(3, NewAsWhite());
        SayMove("Black", "e5");
        EXPECT_EQ(State().DiscardNextMove, True);
        EXPECT_EQ(State().CurPos.SideToMove, Black);
        EXPECT_THAT(Engine.Pull(), ElementsAre("force"));
        Engine.Say("White(0): - ");
        EXPECT_EQ(State().DiscardNextMove, False);
        EXPECT_THAT(Choose(NewAsWhite()), ElementsAre("new", "skill 100 10"));
        DragMove("e2", "e4");
        SayMove("Black", "e5");
        EXPECT_EQ(Row(1), "1. e4 e5");
    });
}

TEST_F(CommandLines, ANewGameInTheUsersOwnSlideLeavesTheNextOneInOrder) {
    Play([&] {
        ClickSquare("e2");
        Engine.Pull();
        ChooseAtPass(4, NewAsWhite());
        PressSquare("e4");
        EXPECT_THAT(Engine.Pull(), ElementsAre("sync", "e4", "force"));
        Engine.Say("Black(1): e5 ");
        EXPECT_EQ(Controls(), 'i');
        EXPECT_THAT(Choose(NewAsWhite()), ElementsAre("new", "skill 100 10"));
        ReleaseSquare("e4");
        Engine.Pull();
        EXPECT_EQ(DragMove("d2", "d4").back(), "d4");
        EXPECT_EQ(Row(1), "1. d4 ");
    });
}

TEST_F(CommandLines, WhileTheEngineThinksALevelIsSentAtOnceAndPonderingWhenTheSearchEnds) {
    Play([&] {
        EXPECT_THAT(Choose(Game->Settings.pnd), ElementsAre("ponder on"));
        DragMove("e2", "e4");
        EXPECT_THAT(Choose(Game->Settings.pnd), IsEmpty());
        EXPECT_THAT(Choose(Game->Settings.pnd), IsEmpty());
        EXPECT_THAT(Choose(Game->Settings.cs[1]), ElementsAre("skill 20 5"));
        SayMove("Black", "e5");
        EXPECT_THAT(Engine.Pull(), ElementsAre("ponder on"));
        EXPECT_EQ(Saved("ponder"), u"-1");
        EXPECT_EQ(Saved("level"), u"1");
        EXPECT_THAT(Choose(NewAsWhite()), ElementsAre("new", "skill 20 5"));
    });
}

TEST_F(CommandLines, WithoutTheLibraryTheWindowOpensAndTakesInput) {
    Screen.Libraries.clear();
    Start();
    EXPECT_EQ(Game->Library.EngineLib, 0);
    EXPECT_THAT(Screen.Shown(), ElementsAre(&Window()));
    EXPECT_EQ(Controls(), 'i');
    // A piece can be taken and dropped; no move is legal without rules, and lines only pile up.
    const auto waiting = Game->Commands.CommandCount;
    PressSquare("e2");
    ReleaseSquare("e4");
    Screen.Click(NewAsBlack());
    Screen.ProcessEvents();
    EXPECT_EQ(Fen(), StartFen);
    EXPECT_EQ(Game->Commands.CommandCount, waiting + 2);
    EXPECT_EQ(State().BoardFlipped, True);
}

} // namespace
} // namespace quarnel
