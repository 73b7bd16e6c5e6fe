// Every menu item, toolbar button and shortcut, used in the real window, at three zooms and from both sides.
//
// One walk through all commands; each is followed by what it does to the picture, to the files, to the settings and to
// the engine. With QUARNEL_PICTURES set, the walks leave pictures of what they pass in the folder it names.
#include "PlayedProgram.h"

#include <cmath>
#include <cstdlib>

namespace quarnel::xdriver {
namespace {

// Where the menus stand in the bar, and the items in them.
enum { GameMenu, MovesMenu, OptionsMenu, HelpMenu, HomePageMenu };
enum { NewAsWhite, NewAsBlack, SaveItem = 3, LoadItem };
enum { BackOne, ForwardOne, BackToStart, ForwardToEnd, MoveNow = 5, StopThinking };
enum { ZoomMenu, StrengthMenu, PonderItem, PromoteMenu };
using Path = std::vector<int>;
constexpr std::size_t ItemCounts[] = {5, 7, 4};        // of Game, Moves, Options
constexpr std::size_t SubmenuCounts[] = {8, 10, 0, 4}; // of those in Options

// The three ways to each command of the Moves menu.
enum Way { ByButton, ByShortcut, ByMenu, WayCount };
constexpr int ButtonOf[] = {1, 2, 0, 3, -1, 4, 5};
constexpr const char* ShortcutOf[] = {"Ctrl+b", "Ctrl+f", "Ctrl+s", "Ctrl+e", "", "Ctrl+m", "Ctrl+h"};

// What each level tells the engine.
constexpr const char* Skills[] = {"10 5",  "20 5",   "30 5",   "50 5",   "75 5",
                                  "100 5", "100 10", "100 30", "100 50", "100 100"};

struct Side {
    const char* Name;
    const char* Header;
    const char* Opening;   ///< moves by their squares and as recorded; the user is to move at the end
    const char* Pawn;      ///< the same, leading a pawn of the user's to its last square but one
    const char* Promotion; ///< its way on
    const char* San;       ///< as the engine is told it, without the piece
    const char* Mate;      ///< moves up to the user's last one
    const char* MatingMove;
    const char* Stalemate;
    const char* StalingMove;
};
const Side AsWhite{"White",
                   "\tWhite(You)\tBlack\r\n",
                   "e2e4 e4 e7e5 e5 g1f3 Nf3 b8c6 Nc6 f1b5 Bb5 a7a6 a6",
                   "h2h4 h4 g7g5 g5 h4g5 hxg5 h7h6 h6 g5h6 gxh6 a7a6 a6 h6h7 h7 a6a5 a5",
                   "h7g8",
                   "hxg8=",
                   "e2e4 e4 e7e5 e5 f1c4 Bc4 b8c6 Nc6 d1h5 Qh5 g8f6 Nf6",
                   "h5f7",
                   "e2e3 e3 a7a5 a5 d1h5 Qh5 a8a6 Ra6 h5a5 Qxa5 h7h5 h5 h2h4 h4 a6h6 Rah6 a5c7 Qxc7 f7f6 f6 "
                   "c7d7 Qxd7+ e8f7 Kf7 d7b7 Qxb7 d8d3 Qd3 b7b8 Qxb8 d3h7 Qh7 b8c8 Qxc8 f7g6 Kg6",
                   "c8e6"};
const Side AsBlack{"Black",
                   "\tWhite\tBlack(You)\r\n",
                   "e2e4 e4 e7e5 e5 g1f3 Nf3 b8c6 Nc6 f1b5 Bb5",
                   "a2a3 a3 h7h5 h5 g2g4 g4 h5g4 hxg4 h2h3 h3 g4h3 gxh3 a3a4 a4 h3h2 h2 a4a5 a5",
                   "h2g1",
                   "hxg1=",
                   "f2f3 f3 e7e5 e5 g2g4 g4",
                   "d8h4",
                   "a2a3 a3 e7e6 e6 a3a4 a4 d8h4 Qh4 a1a3 Ra3 h4a4 Qxa4 h2h4 h4 h7h5 h5 a3h3 Rah3 a4c2 Qxc2 f2f3 f3 "
                   "c2d2 Qxd2+ e1f2 Kf2 d2b2 Qxb2 d1d6 Qd6 b2b1 Qxb1 d6h2 Qh2 b1c1 Qxc1 f2g3 Kg3",
                   "c1e3"};

Square At(const std::string& name) {
    return {name[0] - 'a' + 1, 9 - (name[1] - '0')};
}

// `position` after the piece on the first square of "e2e4" has gone to the second.
Position Played(const Position& position, const std::string& squares, int promote = NoPiece) {
    const MoveList moves = Legal(position);
    for (int i = 0; i < moves.Count; ++i) {
        MoveRec move = moves.Moves[i];
        if (Square{move.FromFile, move.FromRow} != At(squares) || Target(move) != At(squares.substr(2))) continue;
        if (promote != NoPiece) move.Promote = static_cast<std::uint8_t>(promote);
        return After(position, move);
    }
    throw std::logic_error(squares + " is no legal move");
}

class EveryCommand : public PlayedProgram, public testing::WithParamInterface<std::tuple<int, bool>> {
  protected:
    EveryCommand() : ZoomIndex(std::get<0>(GetParam())), Me(std::get<1>(GetParam()) ? AsBlack : AsWhite) {}

    void Start() {
        namespace fs = std::filesystem;
        fs::copy_file(QUARNEL_PROGRAM, Home / "quarnel-chess");
        fs::copy_file(QUARNEL_LISTENING_ENGINE, Home / "libQuarnelChess.so");
        fs::create_directory(Home / "bin");
        std::ofstream(Home / "bin/xdg-open") << "#!/bin/sh\necho \"$1\" >>\"$HOME/opened\"\n";
        fs::permissions(Home / "bin/xdg-open", fs::perms::owner_all);
        fs::current_path(Home);
        StartWith(Home / "quarnel-chess", "Level=0\nWsize=" + std::to_string(ZoomIndex) + "\n",
                  {"QUARNEL_COMMAND_LOG=" + (Home / "commands").string(),
                   "PATH=" + (Home / "bin").string() + ":" + std::getenv("PATH")});
        User.MoveTo(0, 0, 0);
        AwaitGame("the start");
        Bar = ReadMenuBar(Eye->Picture(), Eye->MenuHeight());
        ASSERT_EQ(Bar.size(), 5U);
    }

    void Await(const std::string& what, const std::function<bool()>& state) {
        if (!User.WaitUntil(state)) throw std::runtime_error("awaited in vain: " + what);
    }
    void AwaitGame(const std::string& what) {
        Await(what, [&] { return Eye->Look() && Eye->Idle() && Eye->ShowsBoardOf(Game); });
        if (!WaitForSleep()) throw std::runtime_error("no sleep after " + what);
    }
    void AwaitSetting(const std::string& line) {
        Await(line, [&] { return Contents(SettingsFile()).find("\n" + line + "\n") != std::string::npos; });
    }

    // The command lines since the last call of Listen(), a line feed before and after each.
    std::string Heard() { return "\n" + Contents(Home / "commands").substr(Listened); }
    void Listen() { Listened = Contents(Home / "commands").size(); }
    void AwaitCommand(const std::string& line) {
        Await(line, [&] { return Heard().find("\n" + line + "\n") != std::string::npos; });
    }

    // Menus.

    // Opens the menus on the path, one in the other, and reads the last.
    std::vector<MenuRow> Open(const Path& path) {
        User.MoveTo(Window, Bar[static_cast<std::size_t>(path[0])], Eye->MenuHeight() / 2);
        Await("no tooltip", [&] { return User.UnmanagedWindows().empty(); });
        User.Press();
        User.Release();
        std::vector<MenuRow> rows;
        for (std::size_t depth = 1; depth <= path.size(); ++depth) {
            if (depth > 1) ClickRow(rows, path[depth - 1]);
            const std::size_t count = depth == 1 ? ItemCounts[path[0]] : SubmenuCounts[path[1]];
            Await("a menu", [&] {
                const auto open = User.UnmanagedWindows();
                if (open.size() != depth) return false;
                Menu = open.back();
                rows = ReadMenu(User.GrabWindow(Menu));
                return rows.size() == count;
            });
        }
        Keep("menu-" + std::to_string(path[0]) + (path.size() > 1 ? "-" + std::to_string(path[1]) : ""));
        return rows;
    }
    void ClickRow(const std::vector<MenuRow>& rows, int item) {
        User.Click(Menu, 40, rows[static_cast<std::size_t>(item)].Middle);
    }
    void AwaitNoMenu() {
        Await("no menu", [&] { return User.UnmanagedWindows().empty(); });
    }
    // The item that alone is checked; -1 for none, -2 for several.
    static int CheckedItem(const std::vector<MenuRow>& rows) {
        int checked = -1;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (rows[i].Checked) checked = checked == -1 ? static_cast<int>(i) : -2;
        }
        return checked;
    }
    // Chooses the item at the path's end; where `checked` is given, the check mark must stand there before.
    void Choose(Path path, std::optional<int> checked = std::nullopt) {
        const int item = path.back();
        path.pop_back();
        const auto rows = Open(path);
        EXPECT_EQ(CheckedItem(rows), checked.value_or(CheckedItem(rows)));
        ClickRow(rows, item);
        AwaitNoMenu();
    }
    void ClickBar(int menu) { Click({Bar[static_cast<std::size_t>(menu)], Eye->MenuHeight() / 2}); }

    void Use(int item, int way) {
        if (way == ByButton) Click(Eye->MiddleOfButton(ButtonOf[item]));
        if (way == ByShortcut) User.Chord(ShortcutOf[item]);
        if (way == ByMenu) Choose({MovesMenu, item});
    }
    // Once an item was used, by whatever way, it alone has a check mark.
    void ExpectMovesMark(int item) {
        EXPECT_EQ(CheckedItem(Open({MovesMenu})), item);
        User.Chord("Escape");
        AwaitNoMenu();
    }

    // Files.

    // Types the name, or cancels the dialog when it is empty.
    void AnswerDialog(const std::string& title, const std::string& name) {
        const WindowId dialog = User.WaitForWindow(title);
        User.Activate(dialog);
        Await("the keys", [&] { return User.HasKeys(dialog); });
        User.Type(name);
        Keep("dialog", User.Area(dialog));
        User.Chord(name.empty() ? "Escape" : "Return");
        Await("no dialog", [&] { return User.FindWindow(title) == 0; });
    }
    // Fills Plies and Records with the game and loads it.
    void Load(const char* moves) {
        std::istringstream words(moves);
        std::string squares;
        std::string san;
        Plies = {StartPosition};
        Records = {Me.Header};
        for (std::size_t ply = 0; words >> squares >> san; ++ply) {
            Plies.push_back(Played(Plies.back(), squares));
            const std::string white = std::to_string(ply / 2 + 1) + ".\t" + san + "\t";
            std::string& last = Records.back();
            Records.push_back(ply % 2 == 0 ? last + white + "\r\n" : last.substr(0, last.size() - 2) + san + "\r\n");
        }
        std::ofstream("game.txt", std::ios::binary) << Records.back();
        Choose({GameMenu, LoadItem});
        AnswerDialog(LoadTitle, "game.txt");
        Game = Plies.back();
        Eye->Flipped = ToTruth(&Me == &AsBlack);
        AwaitGame("the loaded game");
    }

    // Nothing else can be used while a message is shown, and it stays above.
    void AwaitBoxAndPressOk(const std::string& name) {
        Await("a message", [&] { return BoxIsPainted(); });
        Keep(name);
        Listen();
        User.Activate(Window);
        Await("the keys", [&] { return User.HasKeys(Window); });
        Click(Eye->Middle(Mirrored({1, 8}, Eye->Flipped)));
        ClickBar(HelpMenu);
        ClickBar(GameMenu);
        User.Chord("Ctrl+m");
        Await("the message above", [&] { return WaitForSleep() && BoxIsPainted(); });
        EXPECT_TRUE(User.UnmanagedWindows().empty());
        Await("its end", [&] { return TakeBoxAway(); });
        AwaitGame("the board as before");
        EXPECT_EQ(Eye->Mark(Mirrored({1, 8}, Eye->Flipped)), SquareMark::None);
        EXPECT_EQ(Heard().find("\ngo\n"), std::string::npos);
    }

    // Leaves a picture of the window and the menus above it, or of `area`, where pictures are wanted.
    void Keep(const std::string& name, std::optional<Rectangle> area = std::nullopt) {
        const char* folder = std::getenv("QUARNEL_PICTURES");
        if (folder == nullptr) return;
        if (!area) area = User.Area(Window);
        for (const WindowId menu : User.UnmanagedWindows()) {
            const Rectangle other = User.Area(menu).value_or(*area);
            area->Right = std::max(area->Right, other.Right);
            area->Bottom = std::max(area->Bottom, other.Bottom);
        }
        const std::string zoom = std::to_string(75 + 25 * ZoomIndex);
        WritePng(std::string(folder) + "/" + zoom + "-" + Me.Name + "-" + name + ".png", User.Grab(*area));
    }

    // The walk's stages.
    void ShowHelpAndHomePage();
    void StartNewGames();
    void ChooseStrengthAndPonder();
    void StepThroughAGame();
    void SaveAndCancel();
    void LetTheEngineMove();
    void StopTheEngine();
    void PromoteToEachPiece();
    void EndGamesAndLoadNonsense();
    void ZoomThroughAllSizes();
    void CloseUnderAQuestion();

    static constexpr const char* LoadTitle = "Enter a file name of your game to load.";
    static constexpr const char* SaveTitle = "Enter a file name of your game to save.";
    const int ZoomIndex;
    const Side& Me;
    const Position StartPosition = Game;
    std::vector<int> Bar; ///< the captions' middles
    WindowId Menu = 0;    ///< the one that was opened last
    std::size_t Listened = 0;
    std::vector<Position> Plies;      ///< of the loaded game, after each of its plies
    std::vector<std::string> Records; ///< and as it is saved there
};

void EveryCommand::ShowHelpAndHomePage() {
    ClickBar(HelpMenu);
    const auto pixel = [&](double x, double y) { // of the panel, 268 x 258 in the window's middle
        const double z = Eye->Zoom();
        const int left = (static_cast<int>(std::lround(361 * z)) - 268) / 2 - 1;
        const int top = (static_cast<int>(std::lround(362 * z)) - 258) / 2;
        return PixelPoint{left + static_cast<int>(x), top + static_cast<int>(y) + Eye->MenuHeight()};
    };
    const auto isPanel = [&](double x, double y) {
        const PixelPoint at = pixel(x, y);
        return Eye->Picture().At(at.X, at.Y) == Rgb(206, 206, 206);
    };
    Await("the help panel",
          [&] { return !Eye->Look() && isPanel(2, 2) && isPanel(265, 2) && isPanel(2, 255) && isPanel(265, 255); });
    EXPECT_FALSE(isPanel(-3, 100) || isPanel(270, 100));
    Keep("help");
    Click(pixel(134, 238));
    AwaitGame("the board without the panel");

    ClickBar(HomePageMenu);
    Await("the home page", [&] { return Contents(Home / "opened") == "https://www.quarnel-chess.example/\n"; });

    const PixelPoint button = Eye->MiddleOfButton(0);
    User.MoveTo(Window, button.X, button.Y);
    Await("a tooltip", [&] { return !User.UnmanagedWindows().empty(); });
}

void EveryCommand::StartNewGames() {
    Choose({GameMenu, SaveItem});
    AwaitBoxAndPressOk("nothing-to-save");
    for (const bool black : {true, false, &Me == &AsBlack}) {
        Listen();
        Choose({GameMenu, black ? NewAsBlack : NewAsWhite});
        Game = StartPosition;
        Eye->Flipped = ToTruth(black);
        if (black) {
            TakeEngineMove();
            AwaitCommand("go");
        } else {
            AwaitGame("a new game");
        }
        AwaitCommand("new");
        EXPECT_TRUE(Eye->LowerLight() && !Eye->UpperLight()) << "the user is to move";
    }
    Keep("new");
}

void EveryCommand::ChooseStrengthAndPonder() {
    for (int level = 9, before = 0; level >= 0; before = level--) {
        Listen();
        Choose({OptionsMenu, StrengthMenu, level}, before);
        AwaitSetting("Level=" + std::to_string(level));
        AwaitCommand("skill " + std::string(Skills[level]));
    }
    for (const bool on : {true, false}) {
        Listen();
        Choose({OptionsMenu, PonderItem}, on ? -1 : PonderItem);
        AwaitSetting(on ? "Ponder=-1" : "Ponder=0");
        AwaitCommand(on ? "ponder on" : "ponder off");
    }
}

void EveryCommand::StepThroughAGame() {
    Load(Me.Opening);
    const int last = static_cast<int>(Plies.size()) - 1;
    std::map<int, Surface> strips{{last, Eye->Strip()}};
    const std::pair<int, int> steps[] = {{BackToStart, 0}, {ForwardOne, 1}, {ForwardToEnd, last}, {BackOne, last - 1}};
    for (int way = 0; way < WayCount; ++way) {
        for (const auto& [item, ply] : steps) {
            Use(item, way);
            Game = Plies[static_cast<std::size_t>(ply)];
            AwaitGame(ShortcutOf[item]);
            EXPECT_EQ(Eye->Strip(), strips.try_emplace(ply, Eye->Strip()).first->second);
            EXPECT_EQ(Eye->Mark(At("e4")), item == ForwardOne ? SquareMark::Target : SquareMark::None);
            EXPECT_EQ(Eye->Mark(At("e2")), item == ForwardOne ? SquareMark::Origin : SquareMark::None);
            EXPECT_EQ(Eye->LowerLight(), (ply % 2 == 0) == (&Me == &AsWhite));
            ExpectMovesMark(item);
        }
    }
    EXPECT_FALSE(strips.at(0) == strips.at(1));
}

void EveryCommand::SaveAndCancel() {
    Choose({GameMenu, SaveItem});
    AnswerDialog(SaveTitle, "saved.txt");
    Await("the record", [&] { return Contents("saved.txt") == Records[Records.size() - 2]; });
    for (const int item : {SaveItem, LoadItem}) {
        Choose({GameMenu, item});
        AnswerDialog(item == SaveItem ? SaveTitle : LoadTitle, "");
        AwaitBoxAndPressOk("error");
    }
}

void EveryCommand::LetTheEngineMove() {
    for (int way = 0; way < WayCount; ++way) {
        const std::string position = ToUtf8(notation::PositionToFen(Game));
        Listen();
        Use(MoveNow, way);
        TakeEngineMove();
        AwaitCommand("go");
        // It knows the game of its own moves, but not where the user has stepped to.
        EXPECT_EQ(Heard().find("setboard " + position) != std::string::npos, way == 0);
        ExpectMovesMark(MoveNow);
    }
}

void EveryCommand::StopTheEngine() {
    Choose({OptionsMenu, StrengthMenu, 9}, 0);
    for (int way = 0; way < WayCount; ++way) {
        Listen();
        Use(MoveNow, ByShortcut);
        Await("a search", [&] { return Eye->Look() && Eye->ShowsButton(5) && !Eye->Idle(); });
        User.Chord("Ctrl+m"); // is disabled
        std::string enabled;
        for (const MenuRow& row : Open({MovesMenu})) enabled += row.Separator ? '-' : row.Enabled ? '1' : '0';
        EXPECT_EQ(enabled, "0000-01");
        User.Chord("Escape");
        AwaitNoMenu();
        Use(StopThinking, way);
        TakeEngineMove();
        EXPECT_EQ(Heard().find("\ngo\n"), Heard().rfind("\ngo\n"));
        AwaitCommand("force");
        ExpectMovesMark(StopThinking);
    }
    Choose({OptionsMenu, StrengthMenu, 0}, 9);
}

void EveryCommand::PromoteToEachPiece() {
    Load(Me.Pawn);
    const char* const pieces = "NBRQ";
    for (int piece = 0, before = 3; piece < 4; before = piece++) {
        Choose({OptionsMenu, PromoteMenu, piece}, before);
        Listen();
        Drag(At(Me.Promotion), At(Me.Promotion + 2));
        Game = Played(Plies.back(), Me.Promotion, Knight + piece + (&Me == &AsBlack ? BlackOffset : 0));
        const Position promoted = Game;
        TakeEngineMove();
        AwaitCommand(std::string(Me.San) + pieces[piece]);
        for (const Position& earlier : {promoted, Plies.back()}) {
            User.Chord(ShortcutOf[BackOne]);
            Game = earlier;
            AwaitGame("a step back");
        }
    }
}

void EveryCommand::EndGamesAndLoadNonsense() {
    const auto endWith = [&](const char* name, const char* moves, const char* last) {
        Load(moves);
        Drag(At(last), At(last + 2));
        Game = Played(Game, last);
        EXPECT_EQ(Legal(Game).Count, 0);
        AwaitBoxAndPressOk(name);
    };
    endWith("stalemate", Me.Stalemate, Me.StalingMove);
    endWith("checkmate", Me.Mate, Me.MatingMove);
    EXPECT_FALSE(Eye->LowerLight() || Eye->UpperLight());
    std::ofstream("nonsense.txt", std::ios::binary) << Me.Header << "2.\te4\te5\r\n";
    Choose({GameMenu, LoadItem});
    AnswerDialog(LoadTitle, "nonsense.txt");
    Game = StartPosition;
    AwaitBoxAndPressOk("corrupted");
}

void EveryCommand::ZoomThroughAllSizes() {
    int before = ZoomIndex;
    for (const int index : {0, 1, 2, 3, 4, 5, 6, 7, ZoomIndex}) {
        Choose({OptionsMenu, ZoomMenu, index}, before);
        before = index;
        AwaitSetting("Wsize=" + std::to_string(index));
        Await("another zoom", [&] { return Eye->Look() && Eye->Zoom() == 0.75 + 0.25 * index; });
        AwaitGame("the board at another zoom");
        Keep("zoom-" + std::to_string(75 + 25 * index));
    }
}

// A message or a dialog must not keep the main window from being closed.
void EveryCommand::CloseUnderAQuestion() {
    if (&Me == &AsWhite) {
        Choose({GameMenu, NewAsWhite});
        Choose({GameMenu, SaveItem});
        Await("a message", [&] { return Box() != 0; });
    } else {
        Choose({GameMenu, LoadItem});
        EXPECT_NE(User.WaitForWindow(LoadTitle), 0U);
    }
    ExpectItEndsWhenClosed();
}

TEST_P(EveryCommand, DoesWhatItSays) {
    ASSERT_NO_FATAL_FAILURE(Start());
    ShowHelpAndHomePage();
    StartNewGames();
    ChooseStrengthAndPonder();
    StepThroughAGame();
    SaveAndCancel();
    LetTheEngineMove();
    StopTheEngine();
    PromoteToEachPiece();
    EndGamesAndLoadNonsense();
    ZoomThroughAllSizes();
    CloseUnderAQuestion();
}

std::string NameOf(const testing::TestParamInfo<EveryCommand::ParamType>& test) {
    return std::to_string(75 + 25 * std::get<0>(test.param)) + (std::get<1>(test.param) ? "AsBlack" : "AsWhite");
}
INSTANTIATE_TEST_SUITE_P(, EveryCommand, testing::Combine(testing::Values(0, 1, 7), testing::Bool()), NameOf);

} // namespace
} // namespace quarnel::xdriver
