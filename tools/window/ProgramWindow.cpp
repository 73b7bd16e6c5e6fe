#include "window/ProgramWindow.h"

#include "quarnelchess/board/Fen.h"
#include "quarnelchess/board/MoveGen.h"
#include "quarnelchess/records/Records.h"

#include <csignal>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quarnel::xdriver {

namespace {

constexpr Colour BoxColour = Rgb(206, 206, 206);

} // namespace

ProgramWindow::~ProgramWindow() {
    if (process_ == 0) return;
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
}

void ProgramWindow::Start(const std::filesystem::path& program) {
    std::string file = program.string();
    char* const arguments[] = {file.data(), nullptr};
    const int error = posix_spawn(&process_, file.c_str(), nullptr, nullptr, arguments, environ);
    if (error != 0) throw std::system_error(error, std::generic_category(), file);
    User.MoveOnScreen(0, 0);
    Await("the window", [&] { return (Window = User.FindWindow("Quarnel Chess v3.26")) != 0; });
    Eye = std::make_unique<BoardEye>(User, Window);
    AwaitBoard("the start", [&] { return Eye->Idle() && Eye->LowerLight(); });
    AwaitSleep();
    bar_ = Eye->Captions();
}

void ProgramWindow::Await(const std::string& what, const std::function<bool()>& state) {
    if (!User.WaitUntil(state)) throw std::runtime_error("Awaited in vain: " + what + ".");
}

void ProgramWindow::AwaitBoard(const std::string& what, const std::function<bool()>& state) {
    Await(what, [&] { return Eye->Look() && state(); });
}

// Asleep is who was not woken up between looks that all went through the display's server, too.
void ProgramWindow::AwaitSleep() {
    std::string before;
    int same = 0;
    Await("sleep", [&] {
        User.Area(Window);
        std::ifstream status("/proc/" + std::to_string(process_) + "/status");
        std::string now;
        bool sleeps = false;
        for (std::string line; std::getline(status, line);) {
            if (line.starts_with("State:\tS")) sleeps = true;
            if (line.find("voluntary_ctxt_switches") != line.npos) now += line;
        }
        same = sleeps && now == std::exchange(before, now) ? same + 1 : 0;
        return same == 4;
    });
}

engine::Move ProgramWindow::AwaitReply(engine::Board& game) {
    engine::MoveBuffer replies;
    engine::GenerateMoves(game, replies);
    engine::Move reply;
    Await("a legal move in " + engine::WriteFen(game, 1), [&] {
        TakeMessageAway(); // it would cover the mating move
        if (!Eye->Look() || !Eye->Idle()) return false;
        for (const engine::Move move : replies) {
            engine::Board after = game;
            after.Make(move);
            if (Shows(after)) reply = move;
        }
        return reply && Eye->Mark(SquareOf(reply.To())) != SquareMark::None;
    });
    AwaitSleep(); // the move's end: until then a command may still be refused
    game.Make(reply);
    return reply;
}

bool ProgramWindow::Shows(const engine::Board& game) const {
    return Eye->ShowsBoardOf(engine::RecordFromBoard(game));
}

void ProgramWindow::Drag(engine::Move move) {
    const PixelPoint start = Eye->Middle(SquareOf(move.From()));
    const PixelPoint end = Eye->Middle(SquareOf(move.To()));
    User.MoveTo(Window, start.X, start.Y);
    User.Press();
    constexpr int Places = 8;
    for (int i = 1; i <= Places; ++i) {
        User.MoveTo(Window, start.X + (end.X - start.X) * i / Places, start.Y + (end.Y - start.Y) * i / Places);
    }
    User.Release();
}

void ProgramWindow::ClickBar(int menu) {
    User.MoveTo(Window, bar_.at(static_cast<std::size_t>(menu)), Eye->MenuHeight() / 2);
    Await("no tooltip", [&] { return User.Popups().empty(); });
    User.Press();
    User.Release();
}

void ProgramWindow::Choose(const std::vector<int>& path) {
    ClickBar(path[0]);
    for (std::size_t depth = 1; depth < path.size(); ++depth) {
        Await("a menu", [&] { return User.Popups().size() == depth; });
        // The first item of a menu in a menu is lit from the start.
        for (int i = depth > 1 ? 0 : -1; i < path[depth]; ++i) User.Chord("Down");
        if (path[depth] < 0) User.Chord("Up");
        User.Chord("Return");
    }
    Await("no menu", [&] { return User.Popups().empty(); });
}

void ProgramWindow::AnswerDialog(const std::string& title, const std::string& name) {
    const WindowId dialog = User.WaitForWindow(title);
    Await("the dialog's keys", [&] { return User.Activate(dialog); });
    User.Type(name);
    User.Chord(name.empty() ? "Escape" : "Return");
    Await("no dialog", [&] { return User.FindWindow(title) == 0; });
}

WindowId ProgramWindow::MessageBox() {
    const WindowId box = User.FindWindow("Quarnel Chess");
    const Surface picture = User.GrabWindow(box);
    const bool painted = !picture.Empty() && picture.At(picture.Width() / 2, picture.Height() - 12) == BoxColour;
    return painted ? box : 0;
}

bool ProgramWindow::TakeMessageAway() {
    const WindowId box = MessageBox();
    const auto area = User.Area(box);
    if (!area) return false;
    User.Click(box, (area->Right - area->Left) / 2, area->Bottom - area->Top - 29);
    Await("the message's end", [&] { return User.FindWindow("Quarnel Chess") == 0; });
    ++MessagesTaken;
    return true;
}

int ProgramWindow::Close() {
    int status = -1;
    User.AskToClose(Window);
    Await("the end", [&] { return waitpid(process_, &status, WNOHANG) != 0; });
    process_ = 0;
    return status;
}

void ProgramWindow::Keep(const std::string& file) {
    if (!WritePng(file, User.GrabWindow(Window))) throw std::runtime_error("Cannot write " + file);
}

} // namespace quarnel::xdriver
