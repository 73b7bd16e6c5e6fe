// A short demonstration on a virtual display: the real program, real mouse events, the real engine.
//
//   demo-player PROGRAM FOLDER
//
// Plays a few moves, by clicks and by dragging, and leaves screenshots in FOLDER, whose names it prints.
#include "ProgramWindow.h"

#include <iostream>

namespace quarnel::xdriver {
namespace {

Square At(const char* name) {
    return {name[0] - 'a' + 1, 9 - (name[1] - '0')};
}

// The upper light is lit while the engine thinks, from before the moved piece stands on its square.
void AwaitAnswer(ProgramWindow& program, const char* moved) {
    BoardEye& eye = program.Eye();
    const Square square = At(moved);
    program.AwaitBoard("an answer",
                       [&] { return eye.Piece(square.File, square.Row) != NoPiece && eye.LowerLight() && eye.Idle(); });
}

void Demonstrate(ProgramWindow& program) {
    BoardEye& eye = program.Eye();
    WindowDriver& user = program.User();
    program.Keep("1-start");
    program.Click(At("e2"));
    program.AwaitBoard("a selection", [&] { return eye.Mark(At("e2")) == SquareMark::Origin; });
    program.Keep("2-selected");
    program.Click(At("e4"));
    AwaitAnswer(program, "e4");
    program.Keep("3-answered");

    const PixelPoint from = eye.Middle(At("g1"));
    const PixelPoint above = eye.Middle(At("f3"));
    user.MoveTo(program.Window(), from.X, from.Y);
    user.Press();
    user.MoveTo(program.Window(), above.X - 9, above.Y + 7);
    program.Await("a piece in the hand", [&] {
        eye.Look(); // the piece in the air covers squares that then read as nothing
        return eye.Mark(At("g1")) == SquareMark::Origin && eye.Piece(7, 8) == NoPiece;
    });
    program.Keep("4-dragging");
    user.MoveTo(program.Window(), above.X, above.Y);
    user.Release();
    AwaitAnswer(program, "f3");
    program.Keep("5-after-the-drag");
}

} // namespace
} // namespace quarnel::xdriver

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: demo-player PROGRAM FOLDER\n";
        return 2;
    }
    try {
        quarnel::xdriver::ProgramWindow program(argv[1], argv[2]);
        quarnel::xdriver::Demonstrate(program);
    } catch (const std::exception& failure) {
        std::cerr << "demonstration: " << failure.what() << "\n";
        return 1;
    }
    return 0;
}
