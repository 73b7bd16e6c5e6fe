#include "ProgramWindow.h"

#include "window/MenuEye.h"

#include <iostream>
#include <stdexcept>

namespace quarnel::xdriver {
namespace {

constexpr Colour BoxColour = Rgb(206, 206, 206);
enum { GameMenu, OptionsMenu = 2 };
constexpr std::size_t GameRows = 5;
constexpr std::size_t OptionsRows = 4;
constexpr std::size_t LevelRows = 10;

} // namespace

ProgramWindow::ProgramWindow(const std::string& program, const std::filesystem::path& folder)
    : folder_(std::filesystem::absolute(folder)), screen_(VirtualDisplay::Start()), user_(screen_->Name()) {
    const std::string file = std::filesystem::absolute(program).string();
    std::filesystem::create_directories(folder_);
    const auto here = std::filesystem::current_path();
    std::filesystem::current_path(folder_);
    process_ = StartProgram({file}, screen_->Environment());
    std::filesystem::current_path(here);
    window_ = user_.WaitForWindow("Quarnel Chess v3.26");
    if (window_ == 0) throw std::runtime_error("The program's window did not appear.");
    eye_ = std::make_unique<BoardEye>(user_, window_);
    AwaitBoard("the start", [&] { return eye_->Piece(5, 7) == Pawn && eye_->LowerLight(); });
}

void ProgramWindow::Await(const std::string& what, const std::function<bool()>& state) {
    if (!user_.WaitUntil(state)) throw std::runtime_error("Awaited in vain: " + what + ".");
}

void ProgramWindow::AwaitBoard(const std::string& what, const std::function<bool()>& state) {
    Await(what, [&] { return eye_->Look() && state(); });
}

void ProgramWindow::Click(Square square) {
    const PixelPoint point = eye_->Middle(square);
    user_.Click(window_, point.X, point.Y);
}

void ProgramWindow::Drag(Square from, Square to) {
    const PixelPoint start = eye_->Middle(from);
    const PixelPoint end = eye_->Middle(to);
    user_.Drag(window_, start.X, start.Y, end.X, end.Y);
}

void ProgramWindow::Choose(std::size_t menu, std::initializer_list<MenuStep> steps) {
    const auto captions = ReadMenuBar(eye_->Picture(), eye_->MenuHeight());
    user_.MoveTo(window_, captions.at(menu), eye_->MenuHeight() / 2);
    Await("no tooltip", [&] { return user_.UnmanagedWindows().empty(); });
    user_.Press();
    user_.Release();
    std::size_t depth = 0;
    for (const MenuStep& step : steps) {
        ++depth;
        WindowId open = 0;
        std::vector<MenuRow> rows;
        Await("a menu", [&] {
            const auto menus = user_.UnmanagedWindows();
            if (menus.size() != depth) return false;
            open = menus.back();
            rows = ReadMenu(user_.GrabWindow(open));
            return rows.size() == step.Rows;
        });
        user_.Click(open, 40, rows.at(step.Item).Middle);
    }
    Await("no menu", [&] { return user_.UnmanagedWindows().empty(); });
}

void ProgramWindow::ChooseLevel(std::size_t level) {
    Choose(OptionsMenu, {{1, OptionsRows}, {level - 1, LevelRows}});
}

void ProgramWindow::StartGame(bool userIsBlack) {
    Choose(GameMenu, {{userIsBlack ? 1U : 0U, GameRows}});
    eye_->Flipped = ToTruth(userIsBlack);
}

void ProgramWindow::SaveGame(const std::string& name) {
    const auto file = folder_ / name;
    std::filesystem::remove(file); // the dialog would ask before it replaced one
    Choose(GameMenu, {{3, GameRows}});
    const WindowId dialog = user_.WaitForWindow("Enter a file name of your game to save.");
    user_.Activate(dialog);
    Await("the dialog's keys", [&] { return user_.HasKeys(dialog); });
    user_.Type(name);
    user_.Chord("Return");
    std::error_code notYet;
    Await("the record", [&] {
        const auto size = std::filesystem::file_size(file, notYet);
        return !notYet && size > 0;
    });
}

WindowId ProgramWindow::MessageBox() {
    const WindowId box = user_.FindWindow("Quarnel Chess");
    if (box == 0 || user_.Outline(box).size() < 5) return 0;
    const Surface picture = user_.GrabWindow(box);
    const bool painted = !picture.Empty() && picture.At(picture.Width() / 2, picture.Height() - 12) == BoxColour;
    return painted ? box : 0;
}

void ProgramWindow::PressOk() {
    const WindowId box = MessageBox();
    if (const auto area = user_.Area(box)) {
        user_.Click(box, (area->Right - area->Left) / 2, area->Bottom - area->Top - 29);
    }
    Await("the message's end", [&] { return user_.FindWindow("Quarnel Chess") == 0; });
}

void ProgramWindow::Keep(const std::string& name) {
    const std::string path = (folder_ / (name + ".png")).string();
    if (!WritePng(path, user_.GrabWindow(window_))) throw std::runtime_error("Cannot write " + path);
    std::cout << path << std::endl;
}

} // namespace quarnel::xdriver
