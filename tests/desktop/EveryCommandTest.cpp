// Every menu item, toolbar button and shortcut, used in the real window, in the smallest one as White and in the
// largest as Black.
//
// One walk through all commands; each is followed by what it does to the picture, to the files, to the settings and to
// the engine.
#include "PlayedProgram.h"

#include "notation/PositionText.h"
#include "quarnelchess/records/Records.h"
#include "quarnelchess/records/San.h"

#include <cmath>

namespace quarnel::xdriver {
namespace {

// Where the menus stand in the bar, and the items in them.
enum { GameMenu, MovesMenu, OptionsMenu, HelpMenu, HomePageMenu };
enum { NewAsWhite, NewAsBlack, SaveItem, LoadItem };
enum { ZoomMenu, StrengthMenu, PonderItem, PromoteMenu };

// The three ways to each command of the Moves menu.
enum Way { ByButton, ByShortcut, ByMenu, WayCount };
struct MoveCommand {
    int Item;
    int Button;
    const char* Shortcut;
};
constexpr MoveCommand BackOne{0, 1, "ctrl+b"}, ForwardOne{1, 2, "ctrl+f"}, BackToStart{2, 0, "ctrl+s"},
    ForwardToEnd{3, 3, "ctrl+e"}, MoveNow{4, 4, "ctrl+m"}, StopThinking{-1, 5, "ctrl+h"};

struct Side {
    const char* Header;
    const char* Opening;   ///< the user is to move at the end
    const char* Pawn;      ///< leads a pawn of the user's to its last square but one
    const char* Promotion; ///< its way on, without the piece
};
const Side AsWhite{"\tWhite(You)\tBlack\r\n", "e4 e5 Nf3 Nc6 Bb5 a6", "h4 g5 hxg5 h6 gxh6 a6 h7 a5", "hxg8="};
const Side AsBlack{"\tWhite\tBlack(You)\r\n", "e4 e5 Nf3 Nc6 Bb5", "a3 h5 g4 hxg4 h3 gxh3 a4 h2 a5", "hxg1="};

class EveryCommand : public PlayedProgram, public testing::WithParamInterface<std::pair<int, bool>> {
  protected:
    void StartInHome() {
        namespace fs = std::filesystem;
        fs::copy_file(QUARNEL_PROGRAM, Home / "quarnel-chess");
        fs::copy_file(QUARNEL_LISTENING_ENGINE, Home / "libQuarnelChess.so");
        std::ofstream(Home / "xdg-open") << "#!/bin/sh\necho \"$1\" >>\"$HOME/opened\"\n";
        fs::permissions(Home / "xdg-open", fs::perms::owner_all);
        fs::current_path(Home);
        fs::create_directory(DialogFolder);
        setenv("QUARNEL_COMMAND_LOG", "commands", 1);
        setenv("PATH", (Home.string() + ":" + std::getenv("PATH")).c_str(), 1);
        StartWith(Home / "quarnel-chess", "Level=0\nWsize=" + std::to_string(ZoomIndex) + "\n");
        AwaitGame("the start");
    }

    void AwaitGame(const std::string& what) {
        AwaitBoard(what, [&] { return Eye->Idle() && Shows(Game); });
        AwaitSleep();
    }
    void AwaitSetting(const std::string& line) {
        Await(line, [&] { return Contents(SettingsFile).find("\n" + line + "\n") != std::string::npos; });
    }

    // The command lines since the last call of Listen(), a line feed before and after each.
    std::string Heard() { return "\n" + Contents("commands").substr(Listened); }
    void Listen() { Listened = Contents("commands").size(); }
    void AwaitCommand(const std::string& line) {
        Await(line, [&] { return Heard().find("\n" + line + "\n") != std::string::npos; });
    }

    void Use(const MoveCommand& command, int way) {
        if (way == ByButton) Click(Eye->MiddleOfButton(command.Button));
        if (way == ByShortcut) User.Chord(command.Shortcut);
        if (way == ByMenu) Choose({MovesMenu, command.Item});
    }
    void PlayByDrag(const std::string& san) {
        const engine::Move move = engine::ReadSan(Game, san);
        Drag(move);
        Game.Make(move);
    }

    // Fills Plies and Records with the game and loads it.
    void Load(const std::string& moves) {
        std::istringstream words(moves);
        Plies = {engine::Board::Start()};
        Records = {Me.Header};
        for (std::string san; words >> san;) {
            const std::size_t ply = Plies.size() - 1;
            const std::string& last = Records.back();
            Records.push_back(ply % 2 == 0 ? last + std::to_string(ply / 2 + 1) + ".\t" + san + "\t\r\n"
                                           : last.substr(0, last.size() - 2) + san + "\r\n");
            Plies.push_back(Plies.back());
            Plies.back().Make(engine::ReadSan(Plies.back(), san));
        }
        std::ofstream(DialogFolder / "game.txt", std::ios::binary) << Records.back();
        Choose({GameMenu, LoadItem});
        AnswerDialog(LoadTitle, "game.txt");
        Game = Plies.back();
        Eye->Flipped = ToTruth(Black);
        AwaitGame("the loaded game");
    }

    // Nothing else can be used while a message is shown, and it stays above.
    void AwaitBoxAndPressOk() {
        const Square corner = Mirrored({1, 8}, Eye->Flipped);
        Await("a message", [&] { return MessageBox() != 0; });
        Listen();
        EXPECT_TRUE(User.Activate(Window));
        Click(Eye->Middle(corner));
        ClickBar(HelpMenu);
        ClickBar(GameMenu);
        User.Chord(MoveNow.Shortcut);
        AwaitSleep();
        EXPECT_TRUE(MessageBox() != 0 && User.Popups().empty()) << "the message stays above";
        Await("its end", [&] { return TakeMessageAway(); });
        AwaitGame("the board as before");
        EXPECT_EQ(Eye->Mark(corner), SquareMark::None);
        EXPECT_EQ(Heard().find("\ngo\n"), std::string::npos);
    }

    // The walk's stages.

    void ShowHelpAndHomePage() {
        ClickBar(HelpMenu);
        const double z = Eye->Zoom();
        const double left =
            std::floor((std::lround(361 * z) - 268) / 2.0) - 1; // 268 x 258 pixels in the window's middle
        const double top = std::floor((std::lround(362 * z) - 258) / 2.0);
        const auto isPanel = [&](double x, double y) {
            return Eye->At((left + x + 0.5) / z, (top + y + 0.5) / z) == Rgb(206, 206, 206);
        };
        Await("the help panel",
              [&] { return !Eye->Look() && isPanel(2, 2) && isPanel(265, 2) && isPanel(2, 255) && isPanel(265, 255); });
        Click(Eye->InWindow((left + 134) / z, (top + 238) / z));
        AwaitGame("the board without the panel");

        ClickBar(HomePageMenu);
        Await("the home page", [&] { return Contents("opened") == "https://www.quarnel-chess.example/\n"; });

        const PixelPoint button = Eye->MiddleOfButton(0);
        User.MoveTo(Window, button.X, button.Y);
        Await("a tooltip", [&] { return !User.Popups().empty(); });
    }

    void StartNewGames() {
        Choose({GameMenu, SaveItem});
        AwaitBoxAndPressOk();
        for (const bool black : {true, false, Black}) {
            Listen();
            Choose({GameMenu, black ? NewAsBlack : NewAsWhite});
            Game = engine::Board::Start();
            Eye->Flipped = ToTruth(black);
            if (black) {
                AwaitReply(Game);
                AwaitCommand("go");
            } else {
                AwaitGame("a new game");
            }
            AwaitCommand("new");
            EXPECT_TRUE(Eye->LowerLight() && !Eye->UpperLight()) << "the user is to move";
        }
    }

    void ChooseStrengthAndPonder() {
        for (int level = 9; level >= 0; --level) {
            Choose({OptionsMenu, StrengthMenu, level});
            AwaitSetting("Level=" + std::to_string(level));
        }
        for (const char* on : {"on", "off"}) {
            Listen();
            Choose({OptionsMenu, PonderItem});
            AwaitCommand(std::string("ponder ") + on);
        }
        AwaitSetting("Ponder=0");
    }

    void StepThroughAGame() {
        Load(Me.Opening);
        const std::size_t last = Plies.size() - 1;
        const std::pair<MoveCommand, std::size_t> steps[] = {
            {BackToStart, 0}, {ForwardOne, 1}, {ForwardToEnd, last}, {BackOne, last - 1}};
        for (int way = 0; way < WayCount; ++way) {
            for (const auto& [command, ply] : steps) {
                Use(command, way);
                Game = Plies[ply];
                AwaitGame(command.Shortcut);
                EXPECT_EQ(Eye->Mark({5, 5}), ply == 1 ? SquareMark::Target : SquareMark::None);
                EXPECT_EQ(Eye->Mark({5, 7}), ply == 1 ? SquareMark::Origin : SquareMark::None);
                EXPECT_EQ(Eye->LowerLight(), (ply % 2 == 0) != Black);
            }
        }
    }

    void SaveAndCancel() {
        Choose({GameMenu, SaveItem});
        DialogFolder = Home / "records"; // where the next one opens, too
        std::filesystem::create_directory(DialogFolder);
        AnswerDialog(SaveTitle, "../records/saved.txt");
        Await("the record", [&] { return Contents(DialogFolder / "saved.txt") == Records[Records.size() - 2]; });
        for (const int item : {SaveItem, LoadItem}) {
            Choose({GameMenu, item});
            AnswerDialog(item == SaveItem ? SaveTitle : LoadTitle, "");
            AwaitBoxAndPressOk();
        }
    }

    void LetTheEngineMove() {
        for (int way = 0; way < WayCount; ++way) {
            const std::string position = ToUtf8(notation::PositionToFen(engine::RecordFromBoard(Game)));
            Listen();
            Use(MoveNow, way);
            AwaitReply(Game);
            AwaitCommand("go");
            // It knows the game of its own moves, but not where the user has stepped to.
            EXPECT_EQ(Heard().find("setboard " + position) != std::string::npos, way == 0);
        }
    }

    void StopTheEngine() {
        Load(Me.Pawn); // which no book knows: an answer from there would come before it can be stopped
        Choose({OptionsMenu, StrengthMenu, 9});
        for (int way = 0; way < WayCount; ++way) {
            Listen();
            Use(MoveNow, ByShortcut);
            AwaitBoard("a search", [&] { return Eye->ShowsButton(StopThinking.Button) && !Eye->Idle(); });
            User.Chord(MoveNow.Shortcut); // is disabled
            Use(StopThinking, way);
            AwaitReply(Game);
            EXPECT_EQ(Heard().find("\ngo\n"), Heard().rfind("\ngo\n"));
            AwaitCommand("force");
        }
        Choose({OptionsMenu, StrengthMenu, 0});
    }

    void PromoteToEachPiece() {
        for (int piece = 0; piece < 4; ++piece) {
            const std::string san = std::string(Me.Promotion) + "NBRQ"[piece];
            Load(Me.Pawn);
            Choose({OptionsMenu, PromoteMenu, piece});
            Listen();
            PlayByDrag(san);
            AwaitReply(Game);
            AwaitCommand(san);
        }
    }

    void ZoomThroughAllSizes() {
        for (const int index : {0, 1, 2, 3, 4, 5, 6, 7, ZoomIndex}) {
            Choose({OptionsMenu, ZoomMenu, index});
            AwaitSetting("Wsize=" + std::to_string(index));
            AwaitBoard("another zoom", [&] { return Eye->Zoom() == 0.75 + 0.25 * index; });
            AwaitGame("the board at another zoom");
        }
    }

    // A message or a dialog must not keep the main window from being closed.
    void CloseUnderAQuestion() {
        if (Black) {
            Choose({GameMenu, LoadItem});
            EXPECT_NE(User.WaitForWindow(LoadTitle), 0U);
        } else {
            Choose({GameMenu, NewAsWhite});
            Choose({GameMenu, SaveItem});
            Await("a message", [&] { return MessageBox() != 0; });
        }
        EXPECT_EQ(Close(), 0);
    }

    static constexpr const char* LoadTitle = "Enter a file name of your game to load.";
    static constexpr const char* SaveTitle = "Enter a file name of your game to save.";
    const int ZoomIndex = GetParam().first;
    const bool Black = GetParam().second;
    const Side& Me = Black ? AsBlack : AsWhite;
    std::filesystem::path DialogFolder = Home / "Documents"; ///< not the one the program is started in
    std::size_t Listened = 0;
    std::vector<engine::Board> Plies; ///< of the loaded game, after each of its plies
    std::vector<std::string> Records; ///< and as it is saved there
};

TEST_P(EveryCommand, DoesWhatItSays) {
    StartInHome();
    ShowHelpAndHomePage();
    StartNewGames();
    ChooseStrengthAndPonder();
    StepThroughAGame();
    SaveAndCancel();
    LetTheEngineMove();
    StopTheEngine();
    PromoteToEachPiece();
    ZoomThroughAllSizes();
    CloseUnderAQuestion();
}

INSTANTIATE_TEST_SUITE_P(, EveryCommand, testing::Values(std::pair(0, false), std::pair(7, true)),
                         [](const auto& test) { return test.param.second ? "LargestAsBlack" : "SmallestAsWhite"; });

} // namespace
} // namespace quarnel::xdriver
