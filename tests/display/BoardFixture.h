// A board on the scripted desktop, and the frame it should show, worked out pixel by pixel.
#pragma once

#include "Pictures.h"
#include "display/PieceAnimation.h"
#include "platform/scripted/ScriptedDesktop.h"

#include <gtest/gtest.h>
#include <optional>
#include <string_view>

namespace quarnel {

/// A position from rank 8 to rank 1 in the usual letters, "." for empty squares.
inline Position MakePosition(std::string_view squares, Truth side = White) {
    Position position{};
    position.SideToMove = side;
    for (std::size_t i = 0; i < squares.size(); ++i) {
        const auto code = std::string_view(".PNBRQKpnbrqk").find(squares[i]);
        position.Board[1 + i / 8][1 + i % 8] = static_cast<std::uint8_t>(code);
    }
    return position;
}

inline constexpr std::string_view StartSquares = "rnbqkbnrpppppppp................................PPPPPPPPRNBQKBNR";

/// What a frame should show beside the pieces. Squares as (file, row); file 0 is none.
struct ExpectedFrame {
    Square LastMove{}, Selected{}, Hidden{}, Inverted{}, Red{}, Erased{};
    int Floating = 0; ///< a piece drawn over everything at
    PixelPoint At{};

    Surface Draw(Desktop& desktop, const Position& pieces, Truth flipped) const {
        Surface frame(366, 366, 0xFF590000U);
        DrawLabels(desktop, frame, flipped);
        for (int y = 18; y < 18 + 8 * 41; ++y) {
            for (int x = 18; x < 18 + 8 * 41; ++x) frame.Set(x, y, OnBoard(x, y, pieces, flipped));
        }
        for (int y = 0; Floating != 0 && y < 41; ++y) {
            for (int x = 0; x < 41; ++x) {
                const bool inside = At.X + x >= 0 && At.Y + y >= 0 && At.X + x < 366 && At.Y + y < 366;
                const auto pixel = Sprite(Floating, x, y);
                if (inside && pixel) frame.Set(At.X + x, At.Y + y, *pixel);
            }
        }
        return frame;
    }

  private:
    static void DrawLabels(Desktop& desktop, Surface& frame, Truth flipped) {
        const FontChoice font{u"Arial", 9, true};
        for (int i = 0; i < 8; ++i) {
            const auto letter = static_cast<char16_t>(flipped ? u'H' - i : u'A' + i);
            const auto digit = static_cast<char16_t>(flipped ? u'1' + i : u'8' - i);
            desktop.DrawText(frame, 35 + 41 * i, 3, Text(1, letter), font, ColourWhite);
            desktop.DrawText(frame, 7, 32 + 41 * i, Text(1, digit), font, ColourWhite);
        }
    }

    // A piece's colour where the mask sheet says that there is any.
    static std::optional<Colour> Sprite(int piece, int x, int y) {
        static const auto* const image = FindPicture("o_ppic");
        static const auto* const mask = FindPicture("m_ppic");
        const int kind = piece > 12 ? 0 : (piece - 1) % 6;
        const int index = (y + (piece > 6 && piece <= 12 ? 41 : 0)) * 246 + kind * 41 + x;
        if ((mask->pixels[index] & 0xFFFFFFU) == 0) return std::nullopt;
        return image->pixels[index] | 0xFF000000U;
    }

    Colour OnBoard(int x, int y, const Position& pieces, Truth flipped) const {
        const int column = (x - 18) / 41;
        const int line = (y - 18) / 41;
        const int insideX = (x - 18) % 41;
        const int insideY = (y - 18) % 41;
        const bool border = insideX < 4 || insideY < 4 || insideX >= 37 || insideY >= 37;
        const Square square = flipped ? Square{8 - column, 8 - line} : Square{column + 1, line + 1};
        Colour colour = (column + line) % 2 == 0 ? Rgb(209, 160, 120) : Rgb(131, 66, 38);
        if (square == Erased) return colour;
        if (square == Inverted) colour = ~colour | 0xFF000000U;
        if (square == Red) colour = Rgb(255, 0, 0);
        if (square == LastMove && border) colour = ColourWhite;
        const int piece = pieces.Board[square.Row][square.File];
        if (piece >= 1 && piece <= 16 && square != Hidden) colour = Sprite(piece, insideX, insideY).value_or(colour);
        if (square == Selected && border) colour = ColourBlack;
        return colour;
    }
};

class BoardFixture : public testing::Test {
  protected:
    BoardFixture() {
        desktop.Attach(frmBoard);
        status.AddTo(frmBoard);
        LoadDesignedPictures(pictures);
        renderer.LoadBoard_S();
        CreateWorkSurfaces(pictures);
        renderer.ploca();
        renderer.DrawCoordinates();
        animation.Bitmaps_LoadPieces();
        state.ShowLastMove = 1;
        state.ComputerColor = Black;
        state.CurPos = MakePosition(StartSquares);
    }

    /// Whether the frame on the screen is this one, pixel by pixel, with the pieces of the position.
    bool Shows(const ExpectedFrame& frame) { return Shows(frame, state.CurPos); }
    bool Shows(const ExpectedFrame& frame, const Position& pieces) {
        return desktop.Frames[&frmBoard].Frame == frame.Draw(desktop, pieces, state.BoardFlipped);
    }
    bool ShowsAfterRedraw(const ExpectedFrame& frame) {
        renderer.DrawCoordinates();
        renderer.RedrawBoard();
        return Shows(frame);
    }
    int Presented() { return desktop.Frames[&frmBoard].Count; }

    GameState state;
    ControllerState controller;
    BoardPictures pictures;
    StatusStrip status;
    Form frmBoard{"FrmBoard", FormBorder::Framed};
    ScriptedDesktop desktop;
    BoardRenderer renderer{state, controller, pictures, status, frmBoard, desktop};
    PieceAnimation animation{state, controller, pictures, renderer, frmBoard, desktop};
};

} // namespace quarnel
