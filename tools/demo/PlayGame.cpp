// A whole game in the program's window, by mouse: any engine for the universal chess interface plays the user's side.
//
//   play-game PROGRAM LEVEL white|black MILLISECONDS ENGINE FOLDER
//
// The level (1..10) and the colour are chosen in the menus; ENGINE, a command for the shell, has MILLISECONDS for each
// of the user's moves, played by clicks and drags in turn. The program's moves are read off the pixels and must be
// legal. Mate, stalemate, the third repetition, fifty moves or bare material end the game. FOLDER then has a screenshot
// of every tenth move and of the end, and the record as the program's own dialog saved it, game.txt.
#include "tools/match/Player.h"
#include "window/ProgramWindow.h"

#include <cstdlib>
#include <iostream>

namespace quarnel::xdriver {
namespace {

constexpr int LongestGame = 400; // plies
enum { GameMenu, OptionsMenu = 2 };
enum { NewAsWhite, NewAsBlack, SaveItem };
constexpr int StrengthMenu = 1;

using match::Board;
using match::Move;

class PlayedGame {
  public:
    PlayedGame(ProgramWindow& program, match::Player& player, engine::Color user)
        : program_(program), eye_(*program.Eye), player_(player), user_(user) {}

    void Play(int level) {
        program_.Choose({OptionsMenu, StrengthMenu, level - 1});
        program_.Choose({GameMenu, user_ == engine::Black ? NewAsBlack : NewAsWhite});
        eye_.Flipped = ToTruth(user_ == engine::Black);
        while (!IsOver()) {
            if (game_.SideToMove() == user_) {
                PlayUsersMove();
            } else {
                ReadProgramsMove();
            }
        }
        ShowEnd();
        std::filesystem::remove("game.txt"); // the dialog would ask before it replaced one
        program_.Choose({GameMenu, SaveItem});
        program_.AnswerDialog("Enter a file name of your game to save.", "game.txt");
        program_.AwaitSleep();
    }

  private:
    // The program knows mates and stalemates only; after a draw by another rule it still answers.
    bool IsOver() {
        if (!end_) end_ = game_.EndByRules();
        if (!end_ && game_.Plies() >= LongestGame) end_ = match::Outcome{};
        return end_ && (game_.SideToMove() == user_ || engine::CountMoves(game_.Position()) == 0);
    }

    void PlayUsersMove() {
        if (game_.Plies() % 20 < 2 && game_.Plies() >= 20) {
            program_.Keep("move-" + std::to_string(game_.Plies() / 2) + ".png");
        }
        const match::Answer answer = player_.Choose(game_, {});
        Move move = match::FindMove(game_.Position(), answer.Text);
        if (!move) throw std::runtime_error("The engine plays " + answer.Text + ", which is not legal.");
        // The Options menu is left at its choice for pawns.
        if (move.IsPromotion()) move = Move(move.From(), move.To(), engine::MoveKind::Promotion, engine::Queen);

        if (game_.Plies() / 2 % 2 == 0) {
            program_.Click(move.From());
            program_.AwaitBoard("a selection", [&] { return eye_.Mark(SquareOf(move.From())) == SquareMark::Origin; });
            program_.Click(move.To());
        } else {
            program_.Drag(move);
        }
        Note(move, answer.ScoreCp);
    }

    void ReadProgramsMove() {
        Board board = game_.Position();
        Note(program_.AwaitReply(board), std::nullopt);
    }

    void Note(Move move, std::optional<int> scoreCp) {
        if (game_.SideToMove() == engine::White) std::cout << game_.Plies() / 2 + 1 << ". ";
        std::cout << match::MoveText(move);
        if (scoreCp) std::cout << " (" << *scoreCp << ")";
        std::cout << std::endl;
        game_.Play(move);
    }

    void ShowEnd() {
        std::cout << match::NameOf(end_->How) << std::endl;
        if (engine::CountMoves(game_.Position()) == 0) {
            program_.Await("a message", [&] { return program_.TakeMessageAway() || program_.MessagesTaken > 0; });
        }
        program_.AwaitBoard("the last position", [&] { return eye_.Idle() && program_.Shows(game_.Position()); });
        program_.Keep("end.png");
    }

    ProgramWindow& program_;
    BoardEye& eye_;
    match::Player& player_;
    engine::Color user_;
    match::Game game_;
    std::optional<match::Outcome> end_;
};

} // namespace
} // namespace quarnel::xdriver

int main(int argc, char** argv) {
    using namespace quarnel;
    const std::vector<std::string> words(argv, argv + argc);
    const int level = argc == 7 ? std::atoi(argv[2]) : 0;
    const int moveTimeMs = argc == 7 ? std::atoi(argv[4]) : 0;
    if (level < 1 || level > 10 || moveTimeMs < 1 || (words[3] != "white" && words[3] != "black")) {
        std::cerr << "usage: play-game PROGRAM LEVEL white|black MILLISECONDS ENGINE FOLDER\n";
        return 2;
    }
    try {
        xdriver::EnterVirtualDisplay(argv);
        const auto player = match::MakePlayer({"user", words[5], {}, {match::Limit::Kind::MoveTimeMs, moveTimeMs}},
                                              match::WatchSignals());
        player->NewGame(1);
        const auto file = std::filesystem::absolute(words[1]);
        std::filesystem::create_directories(words[6]);
        std::filesystem::current_path(words[6]);
        xdriver::ProgramWindow program;
        program.Start(file);
        const engine::Color user = words[3] == "white" ? engine::White : engine::Black;
        xdriver::PlayedGame(program, *player, user).Play(level);
    } catch (const std::exception& failure) {
        std::cerr << "game: " << failure.what() << "\n";
        return 1;
    }
    return 0;
}
