// Every line the engine is sent, in its order, for each thing a user can do.
#include "support/ProgramFixture.h"

#include <cstring>

namespace quarnel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* StartFenText = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

class CommandLines : public ProgramTest {};

TEST_F(CommandLines, StartUpTellsPonderTwiceAroundTheOptionsAndTheNewGame) {
    Screen.Environment["NUMBER_OF_PROCESSORS"] = u"4";
    Play([&] {
        EXPECT_THAT(StartLines, ElementsAre("ponder off", "mt = 4", "adaptive 10M 4M 64M 1M 16M", "new", "skill 100 10",
                                            "ponder off"));
        EXPECT_EQ(Controls(), 'i');
    });
}

struct SettingsCase {
    const char* Name;
    std::map<std::string, Text> Settings;
    const char16_t* Processors;
    std::vector<std::string> Lines;
};

class SavedSettings : public CommandLines, public testing::WithParamInterface<SettingsCase> {};

TEST_P(SavedSettings, AreSentAtStartUp) {
    for (const auto& [key, value] : GetParam().Settings) Screen.Settings["quarnel chess/settings/" + key] = value;
    if (GetParam().Processors != nullptr) Screen.Environment["NUMBER_OF_PROCESSORS"] = GetParam().Processors;
    Play([&] { EXPECT_EQ(StartLines, GetParam().Lines); });
}

const char* const Adaptive = "adaptive 10M 4M 64M 1M 16M";

INSTANTIATE_TEST_SUITE_P(
    CommandLines, SavedSettings,
    testing::Values(
        SettingsCase{"Level3AndPonder",
                     {{"level", u"2"}, {"ponder", u"-1"}},
                     u"1",
                     {"ponder on", "mt = 1", Adaptive, "new", "skill 30 5", "ponder on"}},
        SettingsCase{"SixteenCoresAreEight",
                     {{"level", u"9"}},
                     u"16",
                     {"ponder off", "mt = 8", Adaptive, "new", "skill 100 100", "ponder off"}},
        // A level that is no number sends no strength line; a ponder value that is none leaves it on as designed.
        SettingsCase{"NothingConverts",
                     {{"level", u"seven"}, {"ponder", u"maybe"}, {"wsize", u"huge"}},
                     u"many",
                     {"ponder on", "mt = 1", Adaptive, "new", "ponder on"}},
        SettingsCase{"LevelOutsideTheMenu",
                     {{"level", u"12"}},
                     u"0",
                     {"ponder off", "mt = 1", Adaptive, "new", "skill 100 10", "ponder off"}}),
    [](const auto& info) { return info.param.Name; });

TEST_F(CommandLines, AMoveByClicksOrByDraggingSendsSyncAndTheMove) {
    Play([&] {
        EXPECT_THAT(ClickMove("e2", "e4"), ElementsAre("sync", "e4"));
        EXPECT_EQ(Controls(), 't');
        SayMove("Black", "e5");
        EXPECT_EQ(Controls(), 'i');
        EXPECT_THAT(DragMove("g1", "f3"), ElementsAre("sync", "Nf3"));
        SayMove("Black", "Nc6");
        EXPECT_THAT(DragMove("f1", "c4"), ElementsAre("sync", "Bc4"));
        SayMove("Black", "Bc5");
        EXPECT_THAT(ClickMove("e1", "g1"), ElementsAre("sync", "O-O"));
        EXPECT_EQ(Fen(), "r1bqk1nr/pppp1ppp/2n5/2b1p3/2B1P3/5N2/PPPP1PPP/RNBQ1RK1 b kq - 0 1");
    });
}

TEST_F(CommandLines, ThePieceChosenForPromotionGoesIntoTheMove) {
    Play([&] {
        Choose(Game->Board.pprom[0]);
        Exchange("a2", "a4", "b5");
        Exchange("a4", "b5", "Nc6");
        Exchange("b5", "b6", "Na5");
        Exchange("b6", "b7", "Nh6");
        EXPECT_THAT(DragMove("b7", "a8"), ElementsAre("sync", "bxa8=N"));
        EXPECT_EQ(PieceAt(State().CurPos, 1, 1), Knight);
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
    });
}

TEST_F(CommandLines, ANewGameWhileThinkingDropsTheMoveAndSendsThePositionBeforeTheNextOne) {
    Play([&] {
        DragMove("e2", "e4");
        EXPECT_THAT(Choose(Game->Board.SubFileMenu[0]), ElementsAre("force"));
        Engine.Say("Black(1): c5 ");
        EXPECT_EQ(Fen(), StartFenText);
        EXPECT_EQ(Controls(), 'i');
        EXPECT_THAT(DragMove("d2", "d4"),
                    ElementsAre("sync", std::string("setboard ") + StartFenText, "white", "movenumber 0", "d4"));
    });
}

TEST_F(CommandLines, ANewGameAsBlackLetsTheEngineBegin) {
    Play([&] {
        EXPECT_THAT(Choose(Game->Board.SubFileMenu[1]), ElementsAre("new", "skill 100 10", "sync", "go"));
        EXPECT_EQ(State().BoardFlipped, True);
        SayMove("White", "Nf3");
        EXPECT_EQ(Controls(), 'i');
        EXPECT_THAT(ClickMove("d7", "d5"), ElementsAre("sync", "d5"));
    });
}

// The running search is abandoned by the new game and then taken for the first move's own: "go" goes
// out behind "force", and the dropped move leaves the controls waiting for the new one.
TEST_F(CommandLines, ANewGameAsBlackWhileThinkingSendsThePositionAndGoAtOnce) {
    Play([&] {
        DragMove("e2", "e4");
        EXPECT_THAT(Choose(Game->Board.SubFileMenu[1]), ElementsAre("force", std::string("setboard ") + StartFenText,
                                                                    "white", "movenumber 0", "sync", "go"));
        Engine.Say("Black(1): c5 ");
        EXPECT_EQ(Fen(), StartFenText);
        EXPECT_EQ(State().Thinking, True);
        SayMove("White", "e4");
        EXPECT_EQ(Strip(), "Move: e4");
        EXPECT_EQ(Controls(), 'i');
    });
}

// Whoever abandons a search by a new game: what is sent, what the dropped move leaves, and that the next
// game plays. A user of Black is left waiting for the engine's next move, one of White is not.
TEST_F(CommandLines, AUserOfBlackWhoStartsAgainWhileTheEngineThinksIsAnsweredOnce) {
    Play([&] {
        Choose(Game->Board.SubFileMenu[1]);
        const Position start = State().CurPos;
        EXPECT_THAT(Choose(Game->Board.SubFileMenu[1]), ElementsAre("force", std::string("setboard ") + StartFenText,
                                                                    "white", "movenumber 0", "sync", "go"));
        EXPECT_EQ(State().BoardFlipped, True);
        Engine.Say("White(7): e4 "); // the abandoned search's, whatever its number
        EXPECT_EQ(std::memcmp(&State().CurPos, &start, sizeof start), 0);
        EXPECT_EQ(Controls(), 't');
        SayMove("White", "d4");
        EXPECT_EQ(Row(1), "1. d4 ");

        DragMove("d7", "d5");
        EXPECT_THAT(Choose(Game->Board.SubFileMenu[0]), ElementsAre("force"));
        EXPECT_EQ(State().BoardFlipped, False);
        SayMove("White", "c4");
        EXPECT_EQ(Fen(), StartFenText);
        EXPECT_EQ(Controls(), 'i');
        EXPECT_EQ(DragMove("e2", "e4").back(), "e4");
    });
}

// A new game in the middle of the computer's slide: "force" goes out for a search that has ended, the rest
// of the move runs on the new position, and the answer that plays nothing clears what is left.
TEST_F(CommandLines, ANewGameInTheComputersSlideIsClearedByTheEmptyAnswer) {
    Play([&] {
        DragMove("e2", "e4");
        int passes = 0;
        Screen.BeforeProcess = [&] {
            if (++passes == 3) Screen.Click(Game->Board.SubFileMenu[0]);
        };
        SayMove("Black", "e5");
        Screen.BeforeProcess = nullptr;
        EXPECT_EQ(State().DiscardNextMove, True);
        EXPECT_EQ(State().CurPos.SideToMove, Black);
        EXPECT_THAT(Engine.Pull(), ElementsAre("force"));
        Engine.Say("White(0): - ");
        EXPECT_EQ(State().DiscardNextMove, False);
        EXPECT_THAT(Choose(Game->Board.SubFileMenu[0]), ElementsAre("new", "skill 100 10"));
        EXPECT_EQ(DragMove("e2", "e4").back(), "e4");
        SayMove("Black", "e5");
        EXPECT_EQ(Row(1), "1. e4 e5");
    });
}

TEST_F(CommandLines, ANewGameInTheUsersOwnSlideLeavesTheNextOneInOrder) {
    Play([&] {
        ClickSquare("e2");
        Engine.Pull();
        int passes = 0;
        Screen.BeforeProcess = [&] {
            if (++passes == 4) Screen.Click(Game->Board.SubFileMenu[0]);
        };
        PressSquare("e4");
        EXPECT_THAT(Engine.Pull(), ElementsAre("sync", "e4", "force"));
        Screen.BeforeProcess = nullptr;
        Engine.Say("Black(1): e5 ");
        EXPECT_EQ(Controls(), 'i');
        EXPECT_THAT(Choose(Game->Board.SubFileMenu[0]), ElementsAre("new", "skill 100 10"));
        ReleaseSquare("e4");
        Engine.Pull();
        EXPECT_EQ(DragMove("d2", "d4").back(), "d4");
        EXPECT_EQ(Row(1), "1. d4 ");
    });
}

TEST_F(CommandLines, MoveNowSearchesForTheUserAndChangesSidesWithEachMove) {
    Play([&] {
        EXPECT_THAT(ChooseMoves(MoveNowItem), ElementsAre("sync", "go"));
        SayMove("White", "e4");
        EXPECT_THAT(ChooseMoves(MoveNowItem), ElementsAre("sync", "go"));
        SayMove("Black", "e5");
        EXPECT_EQ(Row(1), "1. e4 e5");
        EXPECT_THAT(DragMove("g1", "f3"), ElementsAre("sync", "Nf3"));
    });
}

TEST_F(CommandLines, PonderChangedWhileThinkingIsToldOnceWhenTheSearchEnds) {
    Play([&] {
        EXPECT_THAT(Choose(Game->Settings.pnd), ElementsAre("ponder on"));
        DragMove("e2", "e4");
        EXPECT_THAT(Choose(Game->Settings.pnd), IsEmpty());
        EXPECT_THAT(Choose(Game->Settings.pnd), IsEmpty());
        SayMove("Black", "e5");
        EXPECT_THAT(Engine.Pull(), ElementsAre("ponder on"));
        EXPECT_EQ(Screen.Settings["quarnel chess/settings/ponder"], u"-1");
    });
}

TEST_F(CommandLines, ALevelChosenWhileThinkingIsSentAtOnceAndKept) {
    Play([&] {
        DragMove("e2", "e4");
        EXPECT_THAT(Choose(Game->Settings.cs[1]), ElementsAre("skill 20 5"));
        SayMove("Black", "e5");
        EXPECT_THAT(Choose(Game->Board.SubFileMenu[0]), ElementsAre("new", "skill 20 5"));
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
    Screen.ProcessEvents();
    EXPECT_EQ(Fen(), StartFenText);
    EXPECT_EQ(Controller().SelFile, 5);
    Screen.Click(Game->Board.SubFileMenu[1]);
    Screen.ProcessEvents();
    EXPECT_EQ(Game->Commands.CommandCount, waiting + 2);
    EXPECT_EQ(State().BoardFlipped, True);
}

TEST_F(CommandLines, ClosingTheWindowEndsTheProcessWhileTheEngineThinks) {
    EXPECT_THROW(Play([&] {
                     DragMove("e2", "e4");
                     Screen.Close(Window());
                 }),
                 ScriptedDesktop::ProcessEnded);
}

} // namespace
} // namespace quarnel
