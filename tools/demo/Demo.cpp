// A short demonstration on a virtual display: the real program, real mouse events, the real engine.
//
//   demo-player PROGRAM FOLDER
//
// Plays a few moves, by clicks and by dragging, and leaves screenshots in FOLDER, whose names it prints.
#include "support/BoardEye.h"
#include "support/VirtualDisplay.h"

#include <filesystem>
#include <iostream>
#include <stdexcept>

namespace quarnel::xdriver {
namespace {

class Demonstration {
  public:
    Demonstration(const std::string& program, std::string folder)
        : screen_(VirtualDisplay::Start()), user_(screen_->Name()), folder_(std::move(folder)) {
        process_ = StartProgram({std::filesystem::absolute(program).string()}, screen_->Environment());
        window_ = user_.WaitForWindow("Quarnel Chess v3.26");
        if (window_ == 0) throw std::runtime_error("The program's window did not appear.");
        eye_ = std::make_unique<BoardEye>(user_, window_);
    }
    ~Demonstration() { EndProgram(process_); }
    Demonstration(const Demonstration&) = delete;
    Demonstration& operator=(const Demonstration&) = delete;

    void Play() {
        Await([&] { return eye_->Piece(5, 7) == Pawn && eye_->LowerLight(); });
        Keep("1-start");
        Click("e2");
        Await([&] { return eye_->Mark(At("e2")) == SquareMark::Origin; });
        Keep("2-selected");
        Click("e4");
        AwaitAnswer("e4");
        Keep("3-answered");
        PressOn("g1");
        const PixelPoint above = eye_->Middle(At("f3"));
        user_.MoveTo(window_, above.X - 9, above.Y + 7);
        dragging_ = true;
        Await([&] { return eye_->Mark(At("g1")) == SquareMark::Origin && eye_->Piece(7, 8) == NoPiece; });
        Keep("4-dragging");
        dragging_ = false;
        user_.MoveTo(window_, above.X, above.Y);
        user_.Release();
        AwaitAnswer("f3");
        Keep("5-after-the-drag");
    }

  private:
    static Square At(const char* name) { return {name[0] - 'a' + 1, 9 - (name[1] - '0')}; }

    void Click(const char* square) {
        const PixelPoint point = eye_->Middle(At(square));
        user_.Click(window_, point.X, point.Y);
    }
    void PressOn(const char* square) {
        const PixelPoint point = eye_->Middle(At(square));
        user_.MoveTo(window_, point.X, point.Y);
        user_.Press();
    }
    void Await(const std::function<bool()>& state) {
        const bool held = user_.WaitUntil([&] { return (eye_->Look() || dragging_) && state(); });
        if (!held) throw std::runtime_error("The window did not show what was awaited.");
    }
    // The upper light is lit while the engine thinks, from before the moved piece stands on its square.
    void AwaitAnswer(const char* moved) {
        const Square square = At(moved);
        Await([&] { return eye_->Piece(square.File, square.Row) != NoPiece && eye_->LowerLight() && eye_->Idle(); });
    }
    void Keep(const std::string& name) {
        const std::string path = folder_ + "/" + name + ".png";
        if (!WritePng(path, user_.GrabWindow(window_))) throw std::runtime_error("Cannot write " + path);
        std::cout << path << "\n";
    }

    std::unique_ptr<VirtualDisplay> screen_;
    WindowDriver user_;
    std::string folder_;
    pid_t process_ = 0;
    WindowId window_ = 0;
    bool dragging_ = false; // a piece in the air covers squares that then read as nothing
    std::unique_ptr<BoardEye> eye_;
};

} // namespace
} // namespace quarnel::xdriver

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: demo-player PROGRAM FOLDER\n";
        return 2;
    }
    try {
        quarnel::xdriver::Demonstration(argv[1], argv[2]).Play();
    } catch (const std::exception& failure) {
        std::cerr << "demonstration: " << failure.what() << "\n";
        return 1;
    }
    return 0;
}
