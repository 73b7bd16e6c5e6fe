// A short demonstration on a virtual display: the real program, real mouse events, the real engine.
//
//   demo-player PROGRAM FOLDER
//
// Plays a few moves, by clicks and by dragging, and leaves screenshots in FOLDER, whose names it prints.
#include "window/ProgramWindow.h"

#include <iostream>

namespace quarnel::xdriver {
namespace {

Square At(const char* name) {
    return {name[0] - 'a' + 1, 9 - (name[1] - '0')};
}

// The upper light is lit while the engine thinks, from before the moved piece stands on its square.
void AwaitAnswer(ProgramWindow& program, const char* moved) {
    BoardEye& eye = *program.Eye;
    const Square square = At(moved);
    program.AwaitBoard("an answer",
                       [&] { return eye.Piece(square.File, square.Row) != NoPiece && eye.LowerLight() && eye.Idle(); });
}

void Demonstrate(ProgramWindow& program, const std::filesystem::path& folder) {
    BoardEye& eye = *program.Eye;
    WindowDriver& user = program.User;
    const auto keep = [&](const char* name) {
        program.Keep(name);
        std::cout << (folder / name).string() << std::endl;
    };
    keep("1-start.png");
    program.Click(eye.Middle(At("e2")));
    program.AwaitBoard("a selection", [&] { return eye.Mark(At("e2")) == SquareMark::Origin; });
    keep("2-selected.png");
    program.Click(eye.Middle(At("e4")));
    AwaitAnswer(program, "e4");
    keep("3-answered.png");

    const PixelPoint from = eye.Middle(At("g1"));
    const PixelPoint above = eye.Middle(At("f3"));
    user.MoveTo(program.Window, from.X, from.Y);
    user.Press();
    user.MoveTo(program.Window, above.X - 9, above.Y + 7);
    program.Await("a piece in the hand", [&] {
        eye.Look(); // the piece in the air covers squares that then read as nothing
        return eye.Mark(At("g1")) == SquareMark::Origin && eye.Piece(7, 8) == NoPiece;
    });
    keep("4-dragging.png");
    user.MoveTo(program.Window, above.X, above.Y);
    user.Release();
    AwaitAnswer(program, "f3");
    keep("5-after-the-drag.png");
}

} // namespace
} // namespace quarnel::xdriver

int main(int argc, char** argv) {
    using namespace quarnel::xdriver;
    if (argc != 3) {
        std::cerr << "usage: demo-player PROGRAM FOLDER\n";
        return 2;
    }
    try {
        EnterVirtualDisplay(argv);
        const auto file = std::filesystem::absolute(argv[1]);
        std::filesystem::create_directories(argv[2]);
        const auto folder = std::filesystem::absolute(argv[2]);
        std::filesystem::current_path(folder);
        ProgramWindow program;
        program.Start(file);
        Demonstrate(program, folder);
    } catch (const std::exception& failure) {
        std::cerr << "demonstration: " << failure.what() << "\n";
        return 1;
    }
    return 0;
}
