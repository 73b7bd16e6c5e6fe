// Game records: their bytes, their two messages, and what survives each kind of failure.
#include "quarnelchess/records/Records.h"
#include "quarnelchess/search/Search.h"
#include "support/ProgramFixture.h"

#include <filesystem>
#include <fstream>
#include <random>

namespace quarnel {
namespace {

using testing::ElementsAre;

class GameRecords : public ProgramTest {
  protected:
    GameRecords() : folder_(std::filesystem::temp_directory_path() / ("quarnel-" + std::to_string(::getpid()))) {
        std::filesystem::create_directories(folder_);
    }
    ~GameRecords() override { std::filesystem::remove_all(folder_); }

    std::filesystem::path Path(const std::string& name) { return folder_ / name; }
    void WriteFile(const std::string& name, const std::string& bytes) {
        std::ofstream(Path(name), std::ios::binary) << bytes;
    }
    std::string ReadFile(const std::string& name) {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// Chooses the menu item, answers the dialog with the file and any message with a click.
    std::string Act(MenuItem& item, const std::optional<std::filesystem::path>& path) {
        Screen.DialogAnswers = {path};
        std::string message;
        Screen.Script = {[&] {
            message = ToUtf8(Game->Messages.Dialog().lbl_Prompt.Caption.Get());
            Screen.Click(Game->Messages.Dialog().Ok);
        }};
        Choose(item);
        Screen.Script.clear();
        return message;
    }
    std::string Save(const std::string& name) { return Act(Game->Board.SubFileMenu[3], Path(name)); }
    std::string Load(const std::string& name) { return Act(Game->Board.SubFileMenu[4], Path(name)); }
    std::string LoadBytes(const std::string& bytes) {
        WriteFile("given", bytes);
        return Load("given");
    }

  private:
    std::filesystem::path folder_;
};

constexpr const char* StartFenText = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

TEST_F(GameRecords, AreWrittenToTheByteUpToThePositionShown) {
    Play([&] {
        Exchange("e2", "e4", "e5");
        Exchange("g1", "f3", "Nc6");
        ASSERT_EQ(Save("even"), "");
        EXPECT_EQ(ReadFile("even"), "\tWhite(You)\tBlack\r\n1.\te4\te5\r\n2.\tNf3\tNc6\r\n");
        ChooseMoves(BackOneItem);
        ASSERT_EQ(Save("odd"), "");
        EXPECT_EQ(ReadFile("odd"), "\tWhite(You)\tBlack\r\n1.\te4\te5\r\n2.\tNf3\t\r\n");
        EXPECT_THAT(Screen.Log, testing::Contains("save Enter a file name of your game to save."));
    });
}

TEST_F(GameRecords, OfABlackUserTurnTheBoardForAWhiteOneAndOnlyOnce) {
    Play([&] {
        const std::string record = "\tWhite\tBlack(You)\r\n1.\td4\td5\r\n";
        EXPECT_EQ(LoadBytes(record), "");
        EXPECT_EQ(State().ComputerColor, White);
        EXPECT_EQ(State().BoardFlipped, True);
        EXPECT_EQ(LoadBytes(record), "");
        EXPECT_EQ(State().BoardFlipped, True);
        EXPECT_EQ(State().PlyNow, 2);
        EXPECT_EQ(Strip(), "Move: d5");
        EXPECT_EQ(LoadBytes("\tWhite(You)\tBlack\n1.\te4\t\n"), ""); // LF alone ends a line, too
        EXPECT_EQ(State().BoardFlipped, False);
        EXPECT_EQ(State().PlyCount, 1);
    });
}

struct DamageCase {
    const char* Name;
    std::string Bytes;
    const char* Message;
    bool GameSurvives; ///< otherwise: a new game at the start position
};

class Damaged : public GameRecords, public testing::WithParamInterface<DamageCase> {};

TEST_P(Damaged, RecordsEndInTheirMessage) {
    Play([&] {
        Exchange("e2", "e4", "e5");
        const std::string before = Fen();
        EXPECT_EQ(LoadBytes(GetParam().Bytes), GetParam().Message);
        EXPECT_EQ(Fen(), GetParam().GameSurvives ? before : StartFenText);
        EXPECT_EQ(State().PlyNow, GetParam().GameSurvives ? 2 : 0);
        EXPECT_EQ(State().PlyCount, GetParam().GameSurvives ? 2 : 0);
    });
}

std::string ManyLines(int count) {
    std::string bytes = "\tWhite(You)\tBlack\r\n";
    for (int i = 1; i <= count; ++i) bytes += std::to_string(i) + ".\ta\tb\r\n";
    return bytes;
}

constexpr const char* Failed = "Error!  ";
const std::string Header = "\tWhite(You)\tBlack\r\n";

INSTANTIATE_TEST_SUITE_P(GameRecords, Damaged,
                         testing::Values(DamageCase{"Empty", "", Failed, true},
                                         DamageCase{"BlankFirstLine", "\r\n1.\te4\te5\r\n", Failed, true},
                                         DamageCase{"HeaderOnly", Header, Failed, false},
                                         DamageCase{"BlankLine", Header + "1.\te4\te5\r\n\r\n", Failed, false},
                                         DamageCase{"OneTab", Header + "1.\te4\r\n", Failed, false},
                                         DamageCase{"OutOfSequence", Header + "1.\te4\te5\r\n3.\tNf3\tNc6\r\n",
                                                    "File corrupted. Illegal move  ", false},
                                         DamageCase{"TenMegabytes", std::string(10'000'000, '\xFE'), Failed, false},
                                         DamageCase{"Zeros", std::string(5000, '\0'), Failed, false},
                                         DamageCase{"MoreLinesThanPliesCount", ManyLines(100000), Failed, false}),
                         [](const auto& info) { return info.param.Name; });

TEST_F(GameRecords, AnIllegalMoveIsSkippedWithoutAMessage) {
    Play([&] {
        EXPECT_EQ(LoadBytes(Header + "1.\te4\tRa9\r\n2.\td4\t\r\n"), "");
        EXPECT_EQ(State().PlyNow, 3);
        EXPECT_EQ(Fen(), "rnbqkbnr/pppppppp/8/8/3PP3/8/PPP2PPP/RNBQKBNR b KQkq d3 0 1");
    });
}

TEST_F(GameRecords, FailuresOfDialogPathAndEmptyGameSayWhich) {
    Play([&] {
        EXPECT_EQ(Act(Game->Board.SubFileMenu[3], std::nullopt), "There are no moves. Nothing to save.  ");
        EXPECT_EQ(Act(Game->Board.SubFileMenu[4], std::nullopt), Failed);
        Exchange("e2", "e4", "e5");
        EXPECT_EQ(Act(Game->Board.SubFileMenu[3], std::nullopt), Failed);
        EXPECT_EQ(Act(Game->Board.SubFileMenu[3], Path("no/such/folder")), Failed);
        EXPECT_EQ(Act(Game->Board.SubFileMenu[3], Path("")), Failed); // a folder
        EXPECT_EQ(Act(Game->Board.SubFileMenu[3], "/dev/full"), Failed);
        EXPECT_EQ(Load("missing"), Failed);
        EXPECT_EQ(State().PlyNow, 2);
    });
}

TEST_F(GameRecords, TheDrawTokenRoundTripsInTheCentralEuropeanCodePage) {
    Screen.CodePage = 1250;
    Play([&] {
        const std::string record = Header + "1.\te4\t\xBD-\xBD\r\n";
        EXPECT_EQ(LoadBytes(record), "");
        EXPECT_EQ(State().MoveText[1][2], u"\u02DD-\u02DD");
        EXPECT_EQ(State().PlyNow, 1); // never on the result
        State().PlyNow = 2;
        EXPECT_EQ(Save("again"), "");
        EXPECT_EQ(ReadFile("again"), record);
    });
}

// A record of a user of Black: dropping the abandoned move leaves every control off, so a new game is next.
TEST_F(GameRecords, OfABlackUserLoadedWhileTheEngineThinksKeepTheThinkingState) {
    Play([&] {
        DragMove("e2", "e4");
        WriteFile("given", "\tWhite\tBlack(You)\r\n1.\td4\t\r\n");
        Screen.DialogAnswers = {Path("given")};
        EXPECT_THAT(Choose(Game->Board.SubFileMenu[4]), ElementsAre("force"));
        Engine.Say("Black(1): c5 ");
        EXPECT_EQ(State().Thinking, True);
        EXPECT_EQ(State().StopRequested, False);
        EXPECT_EQ(Controls(), 's');
        EXPECT_EQ(State().CurPos.SideToMove, Black);
        EXPECT_EQ(State().PlyCount, 1);
    });
}

TEST_F(GameRecords, SavedWhileTheEngineThinksHoldTheMovesSoFar) {
    Play([&] {
        Choose(Game->Board.SubFileMenu[1]);
        SayMove("White", "e4");
        DragMove("e7", "e5");
        EXPECT_EQ(Save("black"), "");
        EXPECT_EQ(ReadFile("black"), "\tWhite\tBlack(You)\r\n1.\te4\te5\r\n");
        EXPECT_EQ(Controls(), 't');
    });
}

TEST_F(GameRecords, LoadedWhileTheEngineThinksTheComingMoveIsDropped) {
    Play([&] {
        DragMove("e2", "e4");
        WriteFile("given", Header + "1.\td4\td5\r\n");
        Screen.DialogAnswers = {Path("given")};
        EXPECT_THAT(Choose(Game->Board.SubFileMenu[4]), ElementsAre("force"));
        Engine.Say("Black(1): c5 ");
        EXPECT_EQ(Strip(), "Move: d5");
        EXPECT_EQ(Controls(), 'i');
        EXPECT_THAT(DragMove("c2", "c4"),
                    ElementsAre("sync", testing::StartsWith("setboard "), "white", "movenumber 2", "c4"));
    });
}

// Games of the engine against itself, saved, loaded and saved again: the same bytes, and the same position after
// every ply.
TEST_F(GameRecords, RoundTripWithEveryPosition) {
    engine::SteadyClock clock;
    engine::Search search(clock);
    search.SetHash(1);
    engine::SearchLimits limits;
    limits.Nodes = 100;
    limits.Skill = 20; // errs enough to let every kind of game happen
    Play([&] {
        std::mt19937 random(7);
        std::size_t longest = 0;
        for (int game = 0; game < 200; ++game) {
            search.SetSeed(static_cast<std::uint64_t>(game));
            Choose(Game->Board.SubFileMenu[0]);
            std::vector<std::string> positions{Fen()};
            const std::size_t plies = 1 + random() % (game % 8 == 0 ? 240 : 60);
            for (Position& position = State().CurPos; positions.size() <= plies;) {
                const auto board =
                    engine::BoardFromRecord(position, position.SideToMove == Black ? engine::Black : engine::White);
                const engine::Move best = search.Run({*board, {}}, limits).Best;
                if (!best) break;
                const MoveRec move = engine::RecordFromMove(*board, best);
                Game->Recorder.RecordMove(notation::MoveToLongText(position, move));
                Game->Library.MakeMove(position, move);
                position.SideToMove = Not(position.SideToMove);
                positions.push_back(Fen());
            }
            longest = std::max(longest, positions.size());
            ASSERT_EQ(Save("first"), "");
            ASSERT_EQ(Load("first"), "");
            ASSERT_EQ(Save("second"), "");
            ASSERT_EQ(ReadFile("first"), ReadFile("second"));
            for (std::size_t ply = 0; ply < positions.size(); ++ply) {
                State().CurPos = Game->Steps.ReplayToPly(static_cast<int>(ply), False, False);
                ASSERT_EQ(Fen(), positions[ply]) << "game " << game << ", ply " << ply;
            }
        }
        EXPECT_GT(longest, 100U); // some games are long, or this shows little
    });
}

} // namespace
} // namespace quarnel
