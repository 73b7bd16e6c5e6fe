// A board on the scripted desktop, and the frame it should show, worked out pixel by pixel.
#pragma once

#include "Pictures.h"
#include "support/ProgramFixture.h"

namespace quarnel {

/// What a frame should show beside the pieces. Squares as (file, row); file 0 is none.
struct ExpectedFrame {
    Square LastMove{}, Selected{}, Hidden{}, Inverted{}, Red{};
    int Floating = 0; ///< a piece drawn over everything at
    PixelPoint At{};

    Surface Draw(Desktop& desktop, const Position& pieces, Truth flipped) const {
        Surface frame(366, 366, 0xFF590000U);
        for (int i = 0; i < 8; ++i) {
            const FontChoice font{u"Arial", 9, true};
            const auto letter = static_cast<char16_t>(flipped ? u'H' - i : u'A' + i);
            const auto digit = static_cast<char16_t>(flipped ? u'1' + i : u'8' - i);
            desktop.DrawText(frame, 35 + 41 * i, 3, Text(1, letter), font, ColourWhite);
            desktop.DrawText(frame, 7, 32 + 41 * i, Text(1, digit), font, ColourWhite);
        }
        for (int y = 0; y < 8 * 41; ++y) {
            for (int x = 0; x < 8 * 41; ++x) frame.Set(18 + x, 18 + y, OnBoard(x, y, pieces, flipped));
        }
        for (int y = std::max(At.Y, 0); Floating != 0 && y < std::min(At.Y + 41, 366); ++y) {
            for (int x = std::max(At.X, 0); x < std::min(At.X + 41, 366); ++x) {
                frame.Set(x, y, Sprite(Floating, x - At.X, y - At.Y).value_or(frame.At(x, y)));
            }
        }
        return frame;
    }

  private:
    // A piece's colour where the mask sheet says that there is any; codes above 12 look like a white pawn.
    static std::optional<Colour> Sprite(int piece, int x, int y) {
        const int cell = piece > 12 ? 0 : piece - 1;
        const int index = (y + cell / 6 * 41) * 246 + cell % 6 * 41 + x;
        static const auto* const image = FindPicture("o_ppic")->pixels;
        static const auto* const mask = FindPicture("m_ppic")->pixels;
        return (mask[index] & 0xFFFFFFU) == 0 ? std::nullopt : std::optional(image[index] | 0xFF000000U);
    }

    Colour OnBoard(int x, int y, const Position& pieces, Truth flipped) const {
        const int column = x / 41;
        const int line = y / 41;
        const bool border = x % 41 < 4 || y % 41 < 4 || x % 41 >= 37 || y % 41 >= 37;
        const Square square = flipped ? Square{8 - column, 8 - line} : Square{column + 1, line + 1};
        Colour colour = (column + line) % 2 == 0 ? Rgb(209, 160, 120) : Rgb(131, 66, 38);
        if (square == Inverted) colour = ~colour | 0xFF000000U;
        if (square == Red) colour = Rgb(255, 0, 0);
        if (square == LastMove && border) colour = ColourWhite;
        const int piece = pieces.Board[square.Row][square.File];
        if (piece >= 1 && piece <= 16 && square != Hidden) colour = Sprite(piece, x % 41, y % 41).value_or(colour);
        return square == Selected && border ? ColourBlack : colour;
    }
};

class BoardTest : public ProgramTest {
  protected:
    BoardTest() { Screen.Log.clear(); }

    /// Whether the frame on the screen is this one, pixel by pixel.
    bool Shows(const ExpectedFrame& frame, const std::optional<Position>& pieces = {}) {
        const Surface drawn = frame.Draw(Screen, pieces.value_or(State().CurPos), State().BoardFlipped);
        return Screen.Frames[&Window()].Frame == drawn;
    }
    bool ShowsAfterRedraw(const ExpectedFrame& frame) {
        Game->Renderer.DrawCoordinates();
        Game->Renderer.RedrawBoard();
        return Shows(frame);
    }
};

} // namespace quarnel
