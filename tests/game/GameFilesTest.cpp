// Game records: their bytes, their two messages, and what survives each kind of failure.
#include "support/ProgramFixture.h"

#include <random>

namespace quarnel {
namespace {

using testing::ElementsAre;

constexpr const char* Failed = "Error!  ";
const std::string Header = "\tWhite(You)\tBlack\r\n";

class GameRecords : public ProgramTest {
  protected:
    const std::string& Bytes() { return Screen.Files["saved"]; }
    /// Answers the dialog with the file and any message with a click; the message.
    std::string Save(const std::optional<std::string>& path = "saved") { return Act(3, path); }
    std::string Load(const std::optional<std::string>& path) { return Act(4, path); }
    std::string LoadBytes(const std::string& bytes) {
        Screen.Files["given"] = bytes;
        return Load("given");
    }
    Lines Sent; ///< by the last of these

  private:
    std::string Act(std::size_t item, const std::optional<std::string>& path) {
        Screen.DialogAnswers = {path};
        std::string message;
        Screen.Script = {[&] {
            message = ToUtf8(Game->Messages.Dialog().lbl_Prompt.Caption.Get());
            Screen.Click(Game->Messages.Dialog().Ok);
        }};
        Sent = Choose(Game->Board.SubFileMenu[item]);
        Screen.Script.clear();
        return message;
    }
};

TEST_F(GameRecords, AreWrittenToTheByteUpToThePositionShown) {
    Exchange("e2", "e4", "e5");
    Exchange("g1", "f3", "Nc6");
    EXPECT_EQ(Save(), "");
    EXPECT_EQ(Bytes(), Header + "1.\te4\te5\r\n2.\tNf3\tNc6\r\n");
    ChooseMoves(BackOneItem);
    EXPECT_EQ(Save("  saved "), ""); // blanks around the name do not count
    EXPECT_EQ(Bytes(), Header + "1.\te4\te5\r\n2.\tNf3\t\r\n");
    EXPECT_THAT(Screen.Log, testing::Contains("save Enter a file name of your game to save."));

    Choose(NewAsBlack());
    SayMove("e4");
    DragMove("e7", "e5");
    EXPECT_EQ(Save(), ""); // while the engine thinks
    EXPECT_EQ(Bytes(), "\tWhite\tBlack(You)\r\n1.\te4\te5\r\n");
}

TEST_F(GameRecords, OfABlackUserTurnTheBoardForAWhiteOneAndOnlyOnce) {
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(LoadBytes("\tWhite\tBlack(You)\r\n1.\td4\td5\r\n"), "");
        EXPECT_EQ(State().BoardFlipped, True);
        EXPECT_EQ(Look(), "2/2 Move: d5 ---- upper i");
    }
    EXPECT_EQ(LoadBytes(" \t White(You)\tBlack\n 1.\te4\t\n"), ""); // blanks lead, and LF alone ends a line
    EXPECT_EQ(State().BoardFlipped, False);
    EXPECT_EQ(Look(), "1/1 Move: e4 ---- upper i");
}

TEST_F(GameRecords, DamagedOnesEndInTheirMessage) {
    std::string tooManyLines = Header;
    for (int i = 1; i <= 40000; ++i) tooManyLines += std::to_string(i) + ".\ta\tb\r\n";
    const std::tuple<std::string, bool, std::string> cases[] = {
        {"", true, Failed},
        {"\r\n1.\te4\te5\r\n", true, Failed},
        {Header, false, Failed},
        {"\tWhite(You)\tBlack\t\r\n", false, Failed},
        {"\tWhite(You)\tBlack\t1\r\n", false, Failed},
        {Header + "1.\te4\te5\r\n\r\n", false, Failed},
        {Header + "1.\te4\r\n", false, Failed},
        {Header + "1.\te4\te5\r\n3.\tNf3\tNc6\r\n", false, "File corrupted. Illegal move  "},
        {std::string(1000, '\xFE'), false, Failed},
        {Header + "1.\te4\te5\r\n2.\tNf3\t" + std::string(64 << 20, ' '), false, Failed},
        {tooManyLines, false, Failed}};
    // Where the game does not survive, a new one stands at the start position.
    for (const auto& [bytes, survives, message] : cases) {
        SCOPED_TRACE(bytes.substr(0, 80));
        Start();
        Exchange("e2", "e4", "e5");
        EXPECT_EQ(LoadBytes(bytes), message);
        EXPECT_EQ(Look(), survives ? "2/2 Move: e5 e7e5 lower i" : "0/0 Move: e5 ---- lower i");
        EXPECT_EQ(PieceAt(State().CurPos, 5, 7), survives ? NoPiece : Pawn);
    }
}

TEST_F(GameRecords, AnIllegalMoveIsSkippedWithoutAMessage) {
    EXPECT_EQ(LoadBytes(Header + "1.\te4\tRa9\r\n2.\td4\t\r\n"), "");
    EXPECT_EQ(Fen(), "rnbqkbnr/pppppppp/8/8/3PP3/8/PPP2PPP/RNBQKBNR b KQkq d3 0 1");
}

TEST_F(GameRecords, FailuresOfDialogPathAndEmptyGameSayWhich) {
    EXPECT_EQ(Save(std::nullopt), "There are no moves. Nothing to save.  ");
    Exchange("e2", "e4", "e5");
    for (const auto& path : {std::optional<std::string>(), {""}, {"  "}}) EXPECT_EQ(Save(path), Failed);
    EXPECT_TRUE(Screen.Files.empty());
    Screen.StoresFail = true;
    EXPECT_EQ(Save(), Failed);
    for (const auto& path : {std::optional<std::string>(), {"missing"}}) EXPECT_EQ(Load(path), Failed);
    EXPECT_EQ(State().PlyNow, 2);
}

TEST_F(GameRecords, TheDrawTokenRoundTripsInTheCentralEuropeanCodePage) {
    Screen.CodePage = 1250;
    Start();
    const std::string record = Header + "1.\te4\t\xBD-\xBD\r\n";
    EXPECT_EQ(LoadBytes(record), "");
    EXPECT_EQ(State().MoveText[1][2], u"\u02DD-\u02DD");
    EXPECT_EQ(State().PlyNow, 1); // never on the result
    State().PlyNow = 2;
    EXPECT_EQ(Save(), "");
    EXPECT_EQ(Bytes(), record);
}

TEST_F(GameRecords, LoadedWhileTheEngineThinksTheComingMoveIsDropped) {
    DragMove("e2", "e4");
    EXPECT_EQ(LoadBytes(Header + "1.\td4\td5\r\n"), "");
    EXPECT_THAT(Sent, ElementsAre("force"));
    Engine.Say("Black(1): c5 ");
    EXPECT_EQ(Look(), "2/2 Move: d5 ---- lower i");
    EXPECT_THAT(DragMove("c2", "c4"),
                ElementsAre("sync", testing::StartsWith("setboard "), "white", "movenumber 2", "c4"));
}

// Dropping the abandoned move leaves every control off, so a new game is next.
TEST_F(GameRecords, OfABlackUserLoadedWhileTheEngineThinksKeepTheThinkingState) {
    DragMove("e2", "e4");
    EXPECT_EQ(LoadBytes("\tWhite\tBlack(You)\r\n1.\td4\t\r\n"), "");
    Engine.Say("Black(1): c5 ");
    EXPECT_EQ(State().Thinking, True);
    EXPECT_EQ(State().StopRequested, False);
    EXPECT_EQ(Look(), "1/1 Move: d4 ---- lower s");
}

// Random games, saved and loaded: the same position after every ply.
TEST_F(GameRecords, RoundTripWithEveryPosition) {
    std::mt19937 random(7);
    for (int game = 0; game < 15; ++game) {
        Choose(NewAsWhite());
        std::vector<std::string> positions{Fen()};
        for (Position& position = State().CurPos; positions.size() <= 150;) {
            const MoveList list = GenerateMoves(Game->Library, position, position.SideToMove);
            if (list.Count == 0) break;
            const MoveRec& move = list.Moves[random() % list.Count];
            Game->Recorder.RecordMove(notation::MoveToLongText(position, move));
            Game->Library.MakeMove(position, move);
            position.SideToMove = Not(position.SideToMove);
            positions.push_back(Fen());
        }
        ASSERT_EQ(Save(), "");
        ASSERT_EQ(Load("saved"), "");
        for (std::size_t ply = 0; ply < positions.size(); ++ply) {
            State().CurPos = Game->Steps.ReplayToPly(static_cast<int>(ply), False, False);
            ASSERT_EQ(Fen(), positions[ply]) << "game " << game << ", ply " << ply;
        }
    }
}

} // namespace
} // namespace quarnel
